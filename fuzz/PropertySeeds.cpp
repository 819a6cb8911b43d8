/// Texts of values, each behind the bytes by which the harness chooses a property and its state.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kKinds = 10;
constexpr int kSituations = 4;

const std::vector<std::string> kTexts = {
    "",
    "0",
    "1",
    "true",
    "FALSE",
    " 12abc",
    "-1",
    "+7",
    "2147483648",
    "-2147483648",
    "4294967295",
    "32767",
    "99999999999999999999",
    "0.1",
    "3.14159265358979",
    "-2e-3",
    "1e999",
    "4.9406564584124654e-324",
    "1e",
    "nan",
    "-inf",
    "819,2",
    "CHAR",
    "INT16",
    "~/data/$A/${EMPTY}x$",
    std::string("a\0b", 3),
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (int kind = 0; kind < kKinds; ++kind) {
        for (std::size_t i = 0; i < kTexts.size(); ++i) {
            const int situation = static_cast<int>(i) % kSituations;
            for (const int chosen : {0, situation}) {
                const std::string name =
                    std::to_string(kind) + "-" + std::to_string(chosen) + "-" + std::to_string(i);
                std::ofstream(folder / name, std::ios::binary)
                    << static_cast<char>(kind) << static_cast<char>(chosen) << static_cast<char>(i)
                    << kTexts[i];
            }
        }
    }
}
