/// CSV files with the columns that are selected of them, behind the byte by which the harness
/// chooses separator and header.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <vector>

namespace {

struct Table {
    int separator;
    std::string columns;
    std::string time;
    std::string text;
};

constexpr int kSeparators = 6;
constexpr int kHeaders = 3;

const std::vector<Table> kTables = {
    {0, "acc=ax,ay;t=time", "time", "time,ax,ay\r\n0,1.5,-2\r\n0.01,nan,3e-5\r\n"},
    {0, "a=#1,2;b=\"x,y\"", "", "\"x,y\",b\n1,2\n\n# comment\n,1e999\n"},
    {1, "v=v[];w=v[1]", "#1", "t;v\n0;[1, 2, 3]\n1;[4 5,6]\n2;\n3;[7]\n"},
    {2, "a=gyro[0]", "", "gyro[0]\tb\n1\t2\n"},
    {3, "p=1,#2,3[0]", "3[1]", "  1.0   -inf [1,2]\n \"2\" +.5 \"[3 4]\" \n"},
    {0, "\"a \"\"b\"\"\"=#1", "", "\xef\xbb\xbf\"1\",\"say \"\"x\"\"\"\n\"2\"x\n\"open\n"},
    {4, "a=1", "2", "1|2\n3|nan\n"},
    {5, "", "", "a:b\n1:2"},
    {0, "a==b", "x[]", ""},
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < kTables.size(); ++i) {
        const Table& table = kTables[i];
        for (int header = 0; header < kHeaders; ++header) {
            const int choice = table.separator + kSeparators * header + 64 * (header + 1);
            std::ofstream(folder / (std::to_string(i) + "-" + std::to_string(header)),
                          std::ios::binary)
                << static_cast<char>(choice) << table.columns << '\n'
                << table.time << '\n'
                << table.text;
        }
    }
}
