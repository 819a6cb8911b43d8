#include "tools/recording/CounterColumn.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/common/UsageException.hpp"

#include <algorithm>
#include <array>
#include <limits>

#include <Poco/String.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBitsPerByte = 8;

bool isInteger(int typeCode) {
    return typeCode != SensorFile::kFloat && typeCode != SensorFile::kDouble &&
           typeCode != SensorFile::kBool && typeCode != SensorFile::kUChar &&
           typeCode != SensorFile::kChar;
}

bool isCounterName(const std::string& name) {
    constexpr std::array kNames = {"COUNT",      "COUNTER",       "CNT",         "FRAME",
                                   "FRAMECOUNT", "FRAMENUMBER",   "FRAME_COUNT", "FRAME_NUMBER",
                                   "SEQ",        "SEQUENCE",      "SAMPLE",      "SAMPLE_NUMBER",
                                   "PACKET",     "PACKET_NUMBER", "INDEX"};
    const std::string upper = Poco::toUpper(name);
    return std::find(kNames.begin(), kNames.end(), upper) != kNames.end();
}

CounterColumn counterOf(const SensorFile::Column& column, std::size_t index) {
    return {index, column.getName(), static_cast<int>(column.getSize() * kBitsPerByte)};
}

std::uint64_t maskOf(int bitCount) {
    constexpr int kAllBits = std::numeric_limits<std::uint64_t>::digits;
    return std::numeric_limits<std::uint64_t>::max() >> (kAllBits - bitCount);
}

}  // namespace

std::uint64_t CounterColumn::numberOf(const Row& row) const {
    if (row.isWide(index)) return row.getBits(index);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(row.getValue(index))) &
           maskOf(bitCount);
}

std::uint64_t CounterColumn::distanceBetween(std::uint64_t from, std::uint64_t to) const {
    return (to - from) & maskOf(bitCount);
}

CounterColumn::Step CounterColumn::stepBetween(std::uint64_t from, std::uint64_t to) const {
    const std::uint64_t distance = distanceBetween(from, to);
    if (distance == 0) return {.isRepeated = true};
    if (distance > maskOf(bitCount) / 2) return {.isBackward = true};
    return {.missing = distance - 1};
}

std::vector<CounterColumn> findCounterColumns(const SensorFile::SensorFileConfig& config) {
    std::vector<CounterColumn> counters;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const SensorFile::Column& column = config.getColumn(i);
        if (isInteger(column.getTypeCode()) && isCounterName(column.getName()))
            counters.push_back(counterOf(column, i));
    }
    return counters;
}

std::vector<CounterColumn> chooseCounterColumns(const SensorFile::SensorFileConfig& config,
                                                const std::string& name) {
    if (name.empty()) return findCounterColumns(config);
    std::size_t index = 0;
    if (!config.findColumn(name, index))
        throw UsageException("--counter: there is no column '" + name + "'");
    if (!isInteger(config.getColumn(index).getTypeCode()))
        throw UsageException("--counter: the column '" + name + "' holds no integers");
    return {counterOf(config.getColumn(index), index)};
}

}  // namespace SensorFileTool
