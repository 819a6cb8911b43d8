/// Rows of bytes of every column type, in either order of bytes.

#include "fuzz/FileHarness.hpp"
#include "fuzz/FileSeeds.hpp"
#include "fuzz/Seeds.hpp"

#include <string>

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (int type = 0; type < kTypeCount; ++type) {
        for (const unsigned choice : {0U, 5U, 10U, 15U}) {
            std::string bytes;
            for (unsigned i = 0; i < 24 + 29 * choice; ++i)
                bytes.push_back(static_cast<char>(i % 3 == 0 ? 0x7f + i : 37 * i));
            std::string choices{static_cast<char>(choice), static_cast<char>(choice)};
            for (unsigned i = 0; i <= choice % 8; ++i)
                choices.push_back(
                    static_cast<char>(choice == 15 ? type : type + static_cast<int>(i)));
            writeSeed(folder, std::to_string(type) + "-" + std::to_string(choice), choices, bytes);
        }
    }
    // Kivra2 rows: a counter, nine axes of which the choices take seven, and the buttons.
    writeSeed(folder, "kivra2", "\1\7\13\14\14\14\14\14\14\11", std::string(61, '\x81'));
}
