/// Lists of columns as users type them, and names of types.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> kLists = {
    "ACCX, ACCY, ACCZ",
    "ax;ay az,,; ",
    "ACCX,ACCY,ACCZ,COUNT",
    "ACC1 ACC2 GYR1 GYR2 ACC3 ACC4",
    "AA,AB,ABC,B,A",
    "\tname with\ttabs\n;\r\n",
    "unsigned short",
    "ui64;00,01 d",
    "UCHAR INT64",
    "",
    "x",
    "\xc3\xa4\xc3\xb6,\xc3\xa4\xc3\xbc",
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (const int choice : {0, 3, 10, 26}) {
        for (std::size_t i = 0; i < kLists.size(); ++i) {
            const std::string name = std::to_string(choice) + "-" + std::to_string(i);
            std::ofstream(folder / name, std::ios::binary)
                << static_cast<char>(choice) << kLists[i];
        }
    }
}
