/// Small CSV files of every kind, each behind the bytes by which the harness chooses how to read
/// it.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kTables[] = {
    "Time (s),ax,ay\r\n0,1.5,-2\r\n0.01,nan,3e-5\r\n",
    "1,1558680737.898025,\"[-1366, -471, 8203]\"\n2,1558680738,\"[1 2 3]\"",
    "\357\273\277a;b;c\n1;;true\n2;x;false\n",
    "a\tb\n# it's 5\" long\n18446744073709551615\t-9223372036854775808\n",
    "  1.0   -inf\n +.5   1e999\n",
    "\"two\nlines\",\"say \"\"x\"\"\"\n\"1\",\"2\"x\n3\n4,5,6\n7,8,\n",
    "a;b\n1,5;2,25\n-3;4\n",
    "-128,255,65535,-32768\n4294967295,-2147483648,18446744073709551615,TRUE\n1e3,-0,2.50,.5e1\n",
    "[1,2;3 4],\n[,],x\n,[5 6 7 8]\n",
    "1.7976931348623157e308,4.9406564584124654e-324,1e-400,1e39\n",
    "\"open,1\n2,3\n",
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    // Found out, commas, semicolons without header, blanks with one, decimal commas.
    for (const int choice : {0, 4, 13, 31, 37, 32}) {
        for (std::size_t i = 0; i < std::size(kTables); ++i) {
            const std::string name = "csv-" + std::to_string(choice) + "-" + std::to_string(i);
            std::ofstream(folder / name, std::ios::binary)
                << static_cast<char>(choice) << static_cast<char>(67 * i + 7 * choice)
                << kTables[i];
        }
    }
}
