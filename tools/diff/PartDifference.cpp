#include "tools/diff/PartDifference.hpp"

#include "tools/recording/CalibRecords.hpp"
#include "tools/recording/ColumnChoice.hpp"

#include <algorithm>
#include <deque>
#include <map>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

using SensorFile::SensorFileConfig;

namespace {

using Differences = std::vector<PartDifference>;

std::string date(const Poco::DateTime& time) {
    return time == SensorFileConfig::zeroTime()
               ? std::string()
               : Poco::DateTimeFormatter::format(time, "%Y-%m-%dT%H:%M:%SZ");
}

void compareTexts(const char* part, const std::string& name, const std::string& a,
                  const std::string& b, Differences& found) {
    if (a != b) found.push_back({part, name, a, b});
}

std::string kindOf(const SensorFileConfig& config) {
    return config.isCalibOnly() ? "calibration" : "recording";
}

std::string listNames(const SensorFileConfig& config, const std::vector<ColumnPair>& pairs,
                      std::optional<std::size_t> ColumnPair::*side) {
    std::vector<std::size_t> indexes;
    for (const ColumnPair& pair : pairs)
        if (pair.a && pair.b) indexes.push_back(*(pair.*side));
    std::sort(indexes.begin(), indexes.end());
    std::string list;
    for (const std::size_t index : indexes)
        list += (list.empty() ? "" : ", ") + config.getColumn(index).getName();
    return list;
}

std::string typeOf(const SensorFileConfig& config, std::optional<std::size_t> index) {
    return index ? config.getColumn(*index).getTypeName() : std::string();
}

std::string describe(const CalibRecord& record) {
    return fmt::format("{} {} x {}", record.type, record.matrix.rows(), record.matrix.cols());
}

void compareMatrices(const CalibRecord& a, const CalibRecord& b, const Tolerance& tolerance,
                     Differences& found) {
    for (Eigen::Index row = 0; row < a.matrix.rows(); ++row)
        for (Eigen::Index col = 0; col < a.matrix.cols(); ++col)
            if (differenceBetween(a.matrix(row, col), b.matrix(row, col), tolerance))
                found.push_back({"calibration", fmt::format("{}({},{})", a.name, row, col),
                                 fmt::format("{}", a.matrix(row, col)),
                                 fmt::format("{}", b.matrix(row, col))});
}

void compareRecords(const CalibRecord& a, const CalibRecord& b, const Tolerance& tolerance,
                    Differences& found) {
    const std::string textA = describe(a);
    const std::string textB = describe(b);
    compareTexts("calibration", a.name, textA, textB, found);
    if (a.matrix.rows() == b.matrix.rows() && a.matrix.cols() == b.matrix.cols())
        compareMatrices(a, b, tolerance, found);
}

}  // namespace

std::vector<ColumnPair> pairColumns(const SensorFileConfig& a, const SensorFileConfig& b,
                                    const std::string& patterns) {
    std::vector<ColumnPair> pairs;
    SensorFileConfig both;
    std::map<std::string, std::deque<std::size_t>> unpaired;
    for (std::size_t i = 0; i < a.getColumnCount(); ++i) {
        pairs.push_back({a.getColumn(i).getName(), i, std::nullopt});
        unpaired[pairs.back().name].push_back(i);
    }
    for (std::size_t i = 0; i < b.getColumnCount(); ++i) {
        const std::string& name = b.getColumn(i).getName();
        const auto found = unpaired.find(name);
        if (found == unpaired.end() || found->second.empty()) {
            pairs.push_back({name, std::nullopt, i});
        } else {
            pairs[found->second.front()].b = i;
            found->second.pop_front();
        }
    }
    for (const ColumnPair& pair : pairs)
        both.addColumn(pair.name, pair.a ? a.getColumn(*pair.a).getTypeCode()
                                         : b.getColumn(*pair.b).getTypeCode());
    std::vector<std::size_t> chosen = chooseColumns(both, patterns);
    std::sort(chosen.begin(), chosen.end());
    std::vector<ColumnPair> result;
    result.reserve(chosen.size());
    for (const std::size_t index : chosen)
        result.push_back(pairs[index]);
    return result;
}

std::vector<PartDifference> compareHeaders(const SensorFileConfig& a, const SensorFileConfig& b,
                                           const Tolerance& tolerance, bool isWithDates) {
    Differences found;
    compareTexts("header", "kind", kindOf(a), kindOf(b), found);
    if (isWithDates) {
        compareTexts("header", "created", date(a.getCreationTime()), date(b.getCreationTime()),
                     found);
        compareTexts("header", "calibrated", date(a.getCalibTime()), date(b.getCalibTime()), found);
    }
    if (a.isCalibOnly() || b.isCalibOnly()) return found;
    if (differenceBetween(a.getSampleFrequency(), b.getSampleFrequency(), tolerance))
        found.push_back({"header", "frequency_hz", fmt::format("{}", a.getSampleFrequency()),
                         fmt::format("{}", b.getSampleFrequency())});
    return found;
}

std::vector<PartDifference> compareColumns(const SensorFileConfig& a, const SensorFileConfig& b,
                                           const std::vector<ColumnPair>& pairs) {
    Differences found;
    for (const ColumnPair& pair : pairs)
        compareTexts("column", pair.name, typeOf(a, pair.a), typeOf(b, pair.b), found);
    compareTexts("column", "order", listNames(a, pairs, &ColumnPair::a),
                 listNames(b, pairs, &ColumnPair::b), found);
    return found;
}

std::vector<PartDifference> compareCalibrations(const SensorFileConfig& a,
                                                const SensorFileConfig& b,
                                                const Tolerance& tolerance) {
    Differences found;
    std::vector<CalibRecord> others = listRecords(b);
    for (const CalibRecord& record : listRecords(a)) {
        const auto partner =
            std::find_if(others.begin(), others.end(),
                         [&](const CalibRecord& other) { return other.name == record.name; });
        if (partner == others.end()) {
            found.push_back({"calibration", record.name, describe(record), ""});
        } else {
            compareRecords(record, *partner, tolerance, found);
            others.erase(partner);
        }
    }
    for (const CalibRecord& record : others)
        found.push_back({"calibration", record.name, "", describe(record)});
    return found;
}

}  // namespace SensorFileTool
