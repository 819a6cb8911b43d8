#include "tools/calib/CalibCompare.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/Json.hpp"

#include <cmath>
#include <limits>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

double distance(double one, double other) {
    if (one == other || (std::isnan(one) && std::isnan(other))) return 0.0;
    const double difference = std::abs(one - other);
    return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

/// Appends what differs.
void compareRecord(const CalibRecord& one, const CalibRecord& other, double tolerance,
                   CalibDifferences& found) {
    if (one.matrix.rows() != other.matrix.rows() || one.matrix.cols() != other.matrix.cols()) {
        found.records.push_back(
            {one.name,
             fmt::format("{} x {} in the first file, {} x {} in the second", one.matrix.rows(),
                         one.matrix.cols(), other.matrix.rows(), other.matrix.cols()),
             0.0});
        return;
    }
    double largest = 0.0;
    Eigen::Index largestRow = 0;
    Eigen::Index largestCol = 0;
    for (Eigen::Index col = 0; col < one.matrix.cols(); ++col)
        for (Eigen::Index row = 0; row < one.matrix.rows(); ++row) {
            const double difference = distance(one.matrix(row, col), other.matrix(row, col));
            if (difference <= largest) continue;
            largest = difference;
            largestRow = row;
            largestCol = col;
        }
    if (largest <= tolerance) {
        ++found.sameCount;
        return;
    }
    found.records.push_back(
        {one.name,
         fmt::format("row {}, column {}: {} in the first file, {} in the second", largestRow + 1,
                     largestCol + 1, one.matrix(largestRow, largestCol),
                     other.matrix(largestRow, largestCol)),
         largest});
}

}  // namespace

CalibDifferences compareCalib(const CalibSource& one, const CalibSource& other, double tolerance) {
    CalibDifferences found;
    for (const CalibRecord& record : one.records) {
        const CalibRecord* const match = other.find(record.name);
        if (match != nullptr)
            compareRecord(record, *match, tolerance, found);
        else
            found.records.push_back({record.name, "in the first file only", 0.0});
    }
    for (const CalibRecord& record : other.records)
        if (one.find(record.name) == nullptr)
            found.records.push_back({record.name, "in the second file only", 0.0});
    return found;
}

std::string differencesToText(const CalibDifferences& differences) {
    std::string text;
    for (const CalibDifference& difference : differences.records)
        text += fmt::format("{}: {}\n", Texts::toVisible(difference.name), difference.what);
    return text;
}

std::string differencesToJson(const CalibDifferences& differences) {
    Json list = Json::array();
    for (const CalibDifference& difference : differences.records)
        list.push_back({{"record", difference.name},
                        {"what", difference.what},
                        {"largest_difference", jsonNumber(difference.largest)}});
    return jsonLine({{"schema", "sensorfile-calib-compare-1"},
                     {"same_records", differences.sameCount},
                     {"differences", list}});
}

}  // namespace SensorFileTool
