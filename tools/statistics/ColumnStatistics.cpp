#include "tools/statistics/ColumnStatistics.hpp"

#include "sensorfile/ColumnType.hpp"

#include <bit>
#include <cmath>
#include <limits>

namespace SensorFileTool {

namespace {

// A sensor at its limit stays there; two equal values may happen.
constexpr std::uint64_t kClippedRun = 3;

bool isFloating(int typeCode) {
    return typeCode == SensorFile::kFloat || typeCode == SensorFile::kDouble;
}

bool isSigned(int typeCode) {
    switch (typeCode) {
        case SensorFile::kChar:
        case SensorFile::kShort:
        case SensorFile::kInt32:
        case SensorFile::kInt8:
        case SensorFile::kInt16:
        case SensorFile::kInt64:
            return true;
        default:
            return false;
    }
}

bool isLess(std::uint64_t one, std::uint64_t other, bool isSigned) {
    return isSigned ? std::bit_cast<std::int64_t>(one) < std::bit_cast<std::int64_t>(other)
                    : one < other;
}

/// The largest number of an integer type, as its 64 bits.
std::uint64_t limitOf(std::size_t size, bool isSigned) {
    constexpr std::size_t kBitsPerByte = 8;
    const std::size_t unused = (sizeof(std::uint64_t) - size) * kBitsPerByte;
    return std::numeric_limits<std::uint64_t>::max() >> (unused + (isSigned ? 1 : 0));
}

}  // namespace

double distanceBetween(std::uint64_t from, std::uint64_t to, bool isSigned) {
    return isLess(to, from, isSigned) ? -static_cast<double>(from - to)
                                      : static_cast<double>(to - from);
}

ColumnStatistics::ColumnStatistics(const SensorFile::SensorFileConfig& config,
                                   const std::vector<std::size_t>& columns)
    : config_(config) {
    const Row row(config);
    for (const std::size_t index : columns) {
        Column column;
        column.index = index;
        column.isWide = row.isWide(index);
        column.typeCode = row.getTypeCode(index);
        column.isSigned = isSigned(column.typeCode);
        column.summary.index = index;
        column.summary.name = config.getColumn(index).getName();
        column.summary.type = config.getColumn(index).getTypeName();
        columns_.push_back(column);
    }
}

void ColumnStatistics::add(const Row& row, std::uint64_t number) {
    for (Column& column : columns_) {
        const double value = row.getValue(column.index);
        if (column.isWide) {
            addWide(column, value, row.getBits(column.index), number);
        } else if (std::isfinite(value)) {
            addNumber(column, value, number);
        } else {
            ++column.summary.notFinite;
            column.run = 0;
        }
    }
}

void ColumnStatistics::addNumber(Column& column, double value, std::uint64_t number) {
    ColumnSummary& summary = column.summary;
    if (summary.count++ == 0) {
        column.least = value;
        column.greatest = value;
        column.origin = value;
    }
    addRun(column, value == column.last, number);
    countClipped(column, value);
    column.moments.add(value - column.origin);
    column.last = value;
}

void ColumnStatistics::addWide(Column& column, double value, std::uint64_t bits,
                               std::uint64_t number) {
    ColumnSummary& summary = column.summary;
    if (summary.count++ == 0) {
        column.leastBits = bits;
        column.greatestBits = bits;
        column.origin = value;
        column.originBits = bits;
    }
    addRun(column, bits == column.lastBits, number);
    if (isLess(bits, column.leastBits, column.isSigned)) {
        column.leastBits = bits;
        summary.atLeast = 0;
    }
    if (isLess(column.greatestBits, bits, column.isSigned)) {
        column.greatestBits = bits;
        summary.atGreatest = 0;
    }
    if (bits == column.leastBits) ++summary.atLeast;
    if (bits == column.greatestBits) ++summary.atGreatest;
    column.moments.add(distanceBetween(column.originBits, bits, column.isSigned));
    column.lastBits = bits;
}

void ColumnStatistics::addRun(Column& column, bool isEqual, std::uint64_t number) {
    ColumnSummary& summary = column.summary;
    if (isEqual && column.run > 0) {
        ++summary.repeated;
        ++column.run;
    } else {
        column.run = 1;
        column.runRow = number;
    }
    if (column.run <= summary.longestRun) return;
    summary.longestRun = column.run;
    summary.longestRunRow = column.runRow;
}

/// Begins anew whenever a value goes beyond what was the least or the greatest.
void ColumnStatistics::countClipped(Column& column, double value) {
    ColumnSummary& summary = column.summary;
    const std::uint64_t clipped =
        column.run < kClippedRun ? 0 : (column.run == kClippedRun ? kClippedRun : 1);
    if (value <= column.least) {
        if (value < column.least) {
            column.least = value;
            summary.atLeast = 0;
            summary.clippedLow = 0;
        }
        ++summary.atLeast;
        summary.clippedLow += clipped;
    }
    if (value >= column.greatest) {
        if (value > column.greatest) {
            column.greatest = value;
            summary.atGreatest = 0;
            summary.clippedHigh = 0;
        }
        ++summary.atGreatest;
        summary.clippedHigh += clipped;
    }
}

void ColumnStatistics::judgeClipped(const Column& column, ColumnSummary& summary) {
    const int type = column.typeCode;
    const bool isConstant =
        column.isWide ? column.leastBits == column.greatestBits : column.least == column.greatest;
    if (isFloating(type)) {
        if (isConstant) summary.clippedLow = summary.clippedHigh = 0;
        return;
    }
    const std::uint64_t limit = limitOf(SensorFile::columnTypeSize(type), column.isSigned);
    const auto bitsOf = [&](double value, std::uint64_t bits) {
        return column.isWide ? bits
                             : std::bit_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    };
    const bool isJudged = type != SensorFile::kBool && summary.count > 0;
    const bool isAtEnd = bitsOf(column.greatest, column.greatestBits) == limit;
    const bool isAtBegin = column.isSigned && bitsOf(column.least, column.leastBits) == ~limit;
    summary.clippedHigh = isJudged && isAtEnd ? summary.atGreatest : 0;
    summary.clippedLow = isJudged && isAtBegin ? summary.atLeast : 0;
}

Row ColumnStatistics::getEnds(std::uint64_t Column::*bits, double Column::*value) const {
    Row row(config_);
    for (const Column& column : columns_) {
        if (column.isWide)
            row.setBits(column.index, column.*bits);
        else
            row.setValue(column.index, column.*value);
    }
    return row;
}

std::vector<ColumnSummary> ColumnStatistics::summarize() const {
    std::vector<ColumnSummary> summaries;
    for (const Column& column : columns_) {
        ColumnSummary summary = column.summary;
        summary.mean = column.origin + column.moments.getMean();
        summary.deviation = column.moments.getDeviation();
        judgeClipped(column, summary);
        summaries.push_back(summary);
    }
    return summaries;
}

}  // namespace SensorFileTool
