#include "tools/recording/TimeColumn.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/common/UsageException.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <string_view>

namespace SensorFileTool {

namespace {

struct Unit {
    const char* name;
    double seconds;
};

constexpr std::array kUnits = {Unit{"s", 1.0}, Unit{"ms", 1e-3}, Unit{"us", 1e-6},
                               Unit{"ns", 1e-9}};

const Unit* findUnit(std::string_view name) {
    for (const Unit& unit : kUnits)
        if (name == unit.name) return &unit;
    return name == "sec" || name == "seconds" ? kUnits.data() : nullptr;
}

struct NameParts {
    std::string base;
    std::string unit;
};

/// "Time (s)" is "time" and "s"; "update_timestamp_ns" is "update_timestamp" and "ns".
NameParts splitName(const std::string& name) {
    NameParts parts;
    for (const char letter : name) {
        const auto code = static_cast<unsigned char>(letter);
        if (std::isalnum(code) != 0) {
            parts.base += static_cast<char>(std::tolower(code));
        } else if (!parts.base.empty() && parts.base.back() != '_') {
            parts.base += '_';
        }
    }
    while (!parts.base.empty() && parts.base.back() == '_')
        parts.base.pop_back();
    const std::size_t last = parts.base.rfind('_');
    if (last == std::string::npos || findUnit(parts.base.substr(last + 1)) == nullptr) return parts;
    parts.unit = parts.base.substr(last + 1);
    parts.base.erase(last);
    return parts;
}

bool isTimeName(const std::string& base) {
    constexpr std::array kNames = {"time", "timestamp", "time_stamp", "stamp", "t"};
    const std::string prefix = "update_";
    const std::string name = base.starts_with(prefix) ? base.substr(prefix.size()) : base;
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

bool isNumber(int typeCode) {
    return typeCode != SensorFile::kUChar && typeCode != SensorFile::kChar &&
           typeCode != SensorFile::kBool;
}

TimeColumn timeColumnOf(const SensorFile::Column& column, std::size_t index) {
    TimeColumn time;
    time.index = index;
    time.name = column.getName();
    const NameParts parts = splitName(column.getName());
    const Unit* const unit = findUnit(parts.unit);
    time.isUnitKnown = unit != nullptr;
    if (unit != nullptr) time.secondsPerUnit = unit->seconds;
    return time;
}

/// How many times one number is the other, or the other the one.
double factorBetween(double one, double other) {
    return std::exp(std::abs(std::log(one / other)));
}

}  // namespace

double TimeColumn::secondsBetween(const Row& from, const Row& to) const {
    if (!to.isWide(index)) return (to.getValue(index) - from.getValue(index)) * secondsPerUnit;
    const std::uint64_t steps = to.getBits(index) - from.getBits(index);
    return static_cast<double>(std::bit_cast<std::int64_t>(steps)) * secondsPerUnit;
}

std::string TimeColumn::getUnit() const {
    for (const Unit& unit : kUnits)
        if (unit.seconds == secondsPerUnit) return unit.name;
    return "";
}

void TimeColumn::guessUnit(double meanStep, double frequency, const Row& row) {
    if (isUnitKnown || !(meanStep > 0.0) || !(frequency > 0.0) || !std::isfinite(meanStep)) return;
    const int type = row.getTypeCode(index);
    if (type == SensorFile::kDouble || type == SensorFile::kFloat) return;
    const double period = 1.0 / frequency;
    for (const Unit& unit : kUnits)
        if (factorBetween(meanStep * unit.seconds, period) <
            factorBetween(meanStep * secondsPerUnit, period))
            secondsPerUnit = unit.seconds;
}

std::vector<TimeColumn> findTimeColumns(const SensorFile::SensorFileConfig& config) {
    std::vector<TimeColumn> columns;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const SensorFile::Column& column = config.getColumn(i);
        if (isNumber(column.getTypeCode()) && isTimeName(splitName(column.getName()).base))
            columns.push_back(timeColumnOf(column, i));
    }
    return columns;
}

std::optional<TimeColumn> chooseTimeColumn(const SensorFile::SensorFileConfig& config,
                                           const std::string& name, const std::string& unit) {
    std::optional<TimeColumn> time;
    if (name.empty()) {
        const std::vector<TimeColumn> found = findTimeColumns(config);
        if (!found.empty()) time = found.front();
    } else {
        std::size_t index = 0;
        if (!config.findColumn(name, index))
            throw UsageException("--time: there is no column '" + name + "'");
        time = timeColumnOf(config.getColumn(index), index);
    }
    if (unit.empty() || !time) return time;
    const Unit* const known = findUnit(unit);
    if (known == nullptr)
        throw UsageException("--time-unit: '" + unit + "' is not s, ms, us or ns");
    time->secondsPerUnit = known->seconds;
    time->isUnitKnown = true;
    return time;
}

}  // namespace SensorFileTool
