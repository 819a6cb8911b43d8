#include "tools/check/ColumnRule.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "tools/check/CounterRule.hpp"
#include "tools/check/ValueRules.hpp"

#include <algorithm>

namespace SensorFileTool {

namespace {

using Rules = std::vector<std::unique_ptr<ColumnRule>>;

/// Makes the rules of a column of values of type T.
struct RuleMaker {
    const SensorFile::Column& column;
    std::size_t index;
    bool isBinary;
    const ColumnRoles& roles;
    DefectList& defects;
    Rules& rules;

    [[nodiscard]] bool isTime() const { return roles.time && roles.time->index == index; }
    [[nodiscard]] bool isCounter() const {
        return std::any_of(roles.counters.begin(), roles.counters.end(),
                           [this](const CounterColumn& one) { return one.index == index; });
    }

    template <typename T>
    void addTime() const {
        rules.push_back(std::make_unique<TimeRule<T>>(index, *roles.time, defects));
    }

    template <typename T>
    void addIntegers() const {
        if (isTime())
            addTime<T>();
        else if (isCounter())
            rules.push_back(std::make_unique<CounterRule<T>>(index, column.getName(), defects));
        else
            rules.push_back(std::make_unique<LimitRule<T>>(index, column.getName(), defects));
    }

    template <typename T>
    void addFloats() const {
        rules.push_back(
            std::make_unique<FiniteRule<T>>(index, column.getName(), isBinary, defects));
        if (isTime()) addTime<T>();
    }

    void add() const {
        switch (column.getTypeCode()) {
            case SensorFile::kUChar:
            case SensorFile::kUInt8:
                return addIntegers<std::uint8_t>();
            case SensorFile::kChar:
            case SensorFile::kInt8:
                return addIntegers<std::int8_t>();
            case SensorFile::kUShort:
            case SensorFile::kUInt16:
                return addIntegers<std::uint16_t>();
            case SensorFile::kShort:
            case SensorFile::kInt16:
                return addIntegers<std::int16_t>();
            case SensorFile::kUInt32:
                return addIntegers<std::uint32_t>();
            case SensorFile::kInt32:
                return addIntegers<std::int32_t>();
            case SensorFile::kUInt64:
                return addIntegers<std::uint64_t>();
            case SensorFile::kInt64:
                return addIntegers<std::int64_t>();
            case SensorFile::kFloat:
                return addFloats<float>();
            case SensorFile::kDouble:
                return addFloats<double>();
            default:
                rules.push_back(std::make_unique<BoolRule>(index, column.getName(), defects));
        }
    }
};

}  // namespace

Rules makeColumnRules(const SensorFile::SensorFileConfig& config, bool isBinary,
                      const ColumnRoles& roles, DefectList& defects) {
    Rules rules;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        RuleMaker{config.getColumn(i), i, isBinary, roles, defects, rules}.add();
    return rules;
}

}  // namespace SensorFileTool
