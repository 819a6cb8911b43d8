#pragma once

#include "tools/recording/Row.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// A column of integers that counts rows (or frames of a sensor) and begins again at 0 behind its
/// type's largest number.
struct CounterColumn {
    /// How a row follows the one before.
    struct Step {
        std::uint64_t missing = 0;  ///< numbers left out between them
        bool isRepeated = false;    ///< the same number
        bool isBackward = false;    ///< a smaller one, which no wrap explains
    };

    std::size_t index = 0;
    std::string name;
    int bitCount = 64;  ///< of the type: the counter wraps at 2^bitCount

    /// The counter of a row, of bitCount bits.
    [[nodiscard]] std::uint64_t numberOf(const Row& row) const;
    /// A step of more than half the counter's range is one backward.
    [[nodiscard]] Step stepBetween(std::uint64_t from, std::uint64_t to) const;
    /// Numbers from one to another, modulo the counter's range.
    [[nodiscard]] std::uint64_t distanceBetween(std::uint64_t from, std::uint64_t to) const;
};

/// The columns of integers whose names say that they count: COUNT, COUNTER, CNT, FRAME, SEQ,
/// SAMPLE, PACKET, INDEX and the like, in any case.
[[nodiscard]] std::vector<CounterColumn> findCounterColumns(
    const SensorFile::SensorFileConfig& config);

/// What the user named.
/// @param name  a column of integers; empty: as findCounterColumns()
/// @throws UsageException "--counter: ..." if there is no such column of integers
[[nodiscard]] std::vector<CounterColumn> chooseCounterColumns(
    const SensorFile::SensorFileConfig& config, const std::string& name);

}  // namespace SensorFileTool
