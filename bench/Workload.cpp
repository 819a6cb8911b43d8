#include "bench/Workload.hpp"

#include "bench/PlainWay.hpp"

#include <random>
#include <sstream>

namespace Bench {
namespace {

std::array<BinaryRow, kCycle> makeBinaryRows() {
    std::mt19937 random{1};
    std::uniform_int_distribution<int> counts{-32768, 32767};
    std::uniform_int_distribution<int> flags{0, 255};
    std::array<BinaryRow, kCycle> rows{};
    for (std::size_t i = 0; i < kCycle; ++i) {
        rows[i].fill(0.0);
        rows[i].front() = static_cast<double>(i * 64);
        for (std::size_t column = 1; column + 1 < kBinaryColumns; ++column) {
            rows[i][column] = counts(random);
        }
        rows[i].back() = flags(random);
    }
    return rows;
}

std::array<TextRow, kCycle> makeTextRows() {
    std::mt19937 random{2};
    std::normal_distribution<double> acceleration{0.0, 9.81};
    std::normal_distribution<double> turnRate{0.0, 1.5};
    std::array<TextRow, kCycle> rows{};
    for (std::size_t i = 0; i < kCycle; ++i) {
        const double time = static_cast<double>(i) * 2.44 + 0.005;
        rows[i] = {time,
                   acceleration(random),
                   acceleration(random),
                   acceleration(random),
                   turnRate(random),
                   turnRate(random),
                   turnRate(random)};
    }
    return rows;
}

std::vector<std::string> makeTextLines() {
    std::vector<std::string> lines;
    for (const TextRow& row : textRows()) {
        std::ostringstream line;
        PlainTextRows{}.write(line, row);
        lines.push_back(line.str());
    }
    return lines;
}

}  // namespace

const std::array<BinaryRow, kCycle>& binaryRows() {
    static const auto rows = makeBinaryRows();
    return rows;
}

const std::array<TextRow, kCycle>& textRows() {
    static const auto rows = makeTextRows();
    return rows;
}

const std::vector<std::string>& textLines() {
    static const auto lines = makeTextLines();
    return lines;
}

}  // namespace Bench
