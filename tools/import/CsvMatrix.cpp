#include "tools/import/CsvMatrix.hpp"

#include "tools/common/InputFile.hpp"
#include "tools/import/CsvTable.hpp"

#include <vector>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// Sensor files hold each count in a byte.
constexpr std::size_t kMaxCount = 255;

void appendRow(const CsvTable& table, std::vector<double>& values) {
    if (table.defect()) table.fail(*table.defect());
    for (std::size_t i = 0; i < table.cells().size(); ++i) {
        double value = 0.0;
        if (!readDouble(table.cells()[i], {}, value))
            table.fail({i, quoteText(table.cells()[i]) + " is no number"});
        values.push_back(value);
    }
}

}  // namespace

Eigen::MatrixXd readCsvMatrix(const std::string& path) {
    const InputFile input(path);
    CsvOptions options;
    options.hasHeader = false;
    CsvTable table(input.getPath(), path, detectDialect(input.getPath(), path, options));
    const std::size_t cols = table.columns().size();
    if (cols > kMaxCount)
        throw Poco::DataFormatException(fmt::format(
            "{}: {} columns; a calibration record has at most {}", path, cols, kMaxCount));
    std::vector<double> values;
    while (table.next()) {
        if (values.size() == cols * kMaxCount)
            table.fail(
                {std::nullopt, fmt::format("a calibration record has at most {} rows", kMaxCount)});
        appendRow(table, values);
    }
    using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    return Eigen::Map<const RowMajor>(values.data(),
                                      static_cast<Eigen::Index>(values.size() / cols),
                                      static_cast<Eigen::Index>(cols));
}

}  // namespace SensorFileTool
