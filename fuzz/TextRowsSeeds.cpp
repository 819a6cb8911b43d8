/// Rows of text of every column type: as writers write them, and as other programs may.

#include "fuzz/FileHarness.hpp"
#include "fuzz/FileSeeds.hpp"
#include "fuzz/Seeds.hpp"

#include <string>

namespace {

/// The choices of one to eight columns, all of one type or of this one and those behind it.
std::string choicesOf(unsigned block, unsigned count, int type, bool isOneType) {
    std::string choices{static_cast<char>(block), static_cast<char>(count - 1)};
    for (unsigned i = 0; i < count; ++i)
        choices.push_back(static_cast<char>(type + (isOneType ? 0 : static_cast<int>(i))));
    return choices;
}

constexpr const char* kSamples[] = {
    "1\t0\t1\t0\t1\t0\t1\t0\t\n0\t1\t1\t0\t1\t1\t0\t1\t\n",
    "65\t-1\t+7\t127\t255\t-128\t300\t65535\t\n",
    "18446744073709551615\t-9223372036854775808\t9007199254740993\t-1\t",
    "1.5\t-0.25\t.5\t5.\t1e-7\t+1E3\t-0\t0.1\t\n",
    "nan\t-nan\tinf\t-inf\t1.7976931348623157e308\t5e-324\t3.4028235e38\t1e-45\t\n",
    "1e999\t1\t\n",
    "12.3456789012345678901234567890\t123456789012345678901234567890\t0.000000000000000000000001\t",
    "a\tb\t\xff\t\x80\t~\t!\t0\t9\t\n",
    "1 2\n3\r\n4\v5\f6\t\t\t7 8 9",
    "1\t2\t3\n\n4\t5\t6",
    "0x10\t1.5.3\t1e\t--1\t+-1\t1,5\t",
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < std::size(kSamples); ++i) {
        for (int type = 0; type < kTypeCount; type += 2) {
            const auto block = static_cast<unsigned>(i + static_cast<std::size_t>(type));
            const std::string name = std::to_string(i) + "-" + std::to_string(type);
            writeSeed(folder, name, choicesOf(block, 1 + block % 3, type, true), kSamples[i]);
            writeSeed(folder, name + "-all", choicesOf(block, 8, type, false), kSamples[i]);
        }
    }
}
