/// Matrices as users type them, right and wrong.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> kTexts = {
    "1 0 0; 0 1 0; 0 0 1",
    "1,2 , 3;4 5\t6;\n",
    "",
    ";",
    "1;;2",
    "1 2;3",
    "1,,2",
    "1,",
    "+1.5 -2e-3 .5 5. inf -nan NAN(x) 1e999 1e-999",
    "-0",
    "4.9406564584124654e-324",
    "0x10",
    "abc\r\n",
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < kTexts.size(); ++i)
        std::ofstream(folder / std::to_string(i), std::ios::binary) << kTexts[i];
}
