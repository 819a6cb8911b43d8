#include "host/filters/MatrixText.hpp"

#include "host/filters/NumberText.hpp"
#include "host/filters/QuotedText.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Core {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Cuts off the text before the separator, or all of it.
std::string_view cutFront(std::string_view& rest, std::string_view separators) {
    const std::size_t end = std::min(rest.find_first_of(separators), rest.size());
    const std::string_view front = rest.substr(0, end);
    rest.remove_prefix(end);
    return front;
}

std::vector<double> parseRow(std::string_view text, std::size_t row) {
    std::vector<double> values;
    std::string_view rest = withoutBlanks(text);
    bool isAfterComma = false;
    while (!rest.empty() || isAfterComma) {
        const std::string_view number = cutFront(rest, ", \t\r\n");
        double value = 0.0;
        if (!parseNumber(number, value))
            throw Poco::DataFormatException(fmt::format("row {}, value {}: {} is not a number", row,
                                                        values.size() + 1,
                                                        quoteForMessage(number)));
        values.push_back(value);
        rest = withoutBlanks(rest);
        isAfterComma = rest.starts_with(',');
        if (isAfterComma) rest = withoutBlanks(rest.substr(1));
    }
    return values;
}

std::vector<std::vector<double>> parseRows(std::string_view text) {
    std::vector<std::vector<double>> rows;
    std::string_view rest = withoutBlanks(text);
    while (!rest.empty()) {
        rows.push_back(parseRow(cutFront(rest, ";"), rows.size() + 1));
        if (rows.back().size() != rows.front().size() || rows.back().empty())
            throw Poco::DataFormatException(fmt::format("row {} has {} values, row 1 has {}",
                                                        rows.size(), rows.back().size(),
                                                        rows.front().size()));
        if (!rest.empty()) rest = withoutBlanks(rest.substr(1));
    }
    return rows;
}

}  // namespace

Eigen::MatrixXd parseMatrix(const std::string& text) {
    const std::vector<std::vector<double>> rows = parseRows(text);
    if (rows.empty()) return {};
    Eigen::MatrixXd matrix(rows.size(), rows.front().size());
    for (Eigen::Index row = 0; row < matrix.rows(); ++row)
        for (Eigen::Index column = 0; column < matrix.cols(); ++column)
            matrix(row, column) =
                rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    return matrix;
}

}  // namespace Quoril::Core
