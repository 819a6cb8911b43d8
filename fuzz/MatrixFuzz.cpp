/// Reads a hostile text as a matrix, and as a number, as the host's source of a matrix does. The
/// whole input is the text.
///
/// The text is read a second time in the plainest way: the same numbers, or an error in a row and a
/// value that are there. A refused text leaves the property and what is sent.

#include "framework/AbstractProperty.hpp"
#include "framework/OutputPin.hpp"
#include "fuzz/Harness.hpp"
#include "fuzz/HostCsvPlain.hpp"
#include "host/filters/FilterMatrixSource.hpp"
#include "host/filters/MatrixText.hpp"
#include "host/filters/NumberText.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace {

using namespace Quoril::Core;
using Fuzz::require;

using Rows = std::vector<std::vector<double>>;

/// Longer texts show nothing more.
constexpr std::size_t kLongest = 128;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    bool isOpen = false;
    for (const char c : text) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (!isBlank && !isOpen) words.emplace_back();
        if (!isBlank) words.back() += c;
        isOpen = !isBlank;
    }
    return words;
}

/// Nothing if a value is no number, or missing before or behind a comma.
std::optional<std::vector<double>> readRow(const std::string& text) {
    std::vector<double> values;
    const std::vector<std::string> parts = split(text, ',');
    for (const std::string& part : parts) {
        const std::vector<std::string> words = wordsOf(part);
        if (words.empty() && parts.size() > 1) return std::nullopt;
        for (const std::string& word : words) {
            const std::optional<double> value = Fuzz::readPlainNumber(word);
            if (!value) return std::nullopt;
            values.push_back(*value);
        }
    }
    return values;
}

std::optional<Rows> readPlainly(const std::string& text) {
    std::vector<std::string> parts = split(text, ';');
    if (wordsOf(parts.back()).empty()) parts.pop_back();
    Rows rows;
    for (const std::string& part : parts) {
        const std::optional<std::vector<double>> row = readRow(part);
        if (!row || row->empty() || (!rows.empty() && rows[0].size() != row->size()))
            return std::nullopt;
        rows.push_back(*row);
    }
    return rows;
}

bool isSame(const Eigen::MatrixXd& matrix, const Rows& rows) {
    if (matrix.rows() != static_cast<Eigen::Index>(rows.size())) return false;
    if (!rows.empty() && matrix.cols() != static_cast<Eigen::Index>(rows[0].size())) return false;
    for (Eigen::Index row = 0; row < matrix.rows(); ++row)
        for (Eigen::Index column = 0; column < matrix.cols(); ++column)
            if (!Fuzz::isSame(
                    matrix(row, column),
                    rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]))
                return false;
    return true;
}

void checkPlace(const std::string& message, const std::string& text) {
    require(message.starts_with("row "), "refused without a row");
    const std::size_t row = std::stoul(message.substr(4));
    require(row >= 1 && row <= split(text, ';').size(), "a row outside of the text");
}

void checkNumber(const std::string& text) {
    constexpr double kBefore = 17.25;
    double value = kBefore;
    const bool isRead = parseNumber(text, value);
    const std::optional<double> plain = Fuzz::readPlainNumber(text);
    require(isRead == plain.has_value(), "a number is read or not");
    require(Fuzz::isSame(value, plain.value_or(kBefore)), "another number");
}

void checkSource(const std::string& text, const std::optional<Rows>& rows) {
    const Rows kBefore = {{1.0, 2.0}};
    static FilterMatrixSource source("source");
    const AbstractProperty& property = *source.getPropertyBag()->find(FilterMatrixSource::kMatrix);
    property.deSerialize("1 2");
    source.getPropertyBag()->find(FilterMatrixSource::kSend)->setAny({});
    std::string saved;
    try {
        property.deSerialize(text);
        require(rows.has_value(), "a text that is no matrix is taken");
        property.serialize(saved);
        require(saved == text, "the text is not as it was typed");
    } catch (const Poco::DataFormatException&) {
        require(!rows.has_value(), "a matrix is refused");
        property.serialize(saved);
        require(saved == "1 2", "a refused text stays");
    }
    const auto& pin =
        dynamic_cast<const OutputPin<Eigen::MatrixXd>&>(*source.getOutputPins().front());
    require(isSame(pin.getSample().value, rows.value_or(kBefore)), "another matrix would be sent");
    const bool isEmpty = rows && rows->empty();
    require(source.isFinished() == isEmpty, "it has something to send or not");
    source.process();
    require(source.isFinished(), "sent twice");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(Fuzz::toText(data, std::min(size, kLongest)));
    checkNumber(text);
    const std::optional<Rows> rows = readPlainly(text);
    try {
        const Eigen::MatrixXd matrix = parseMatrix(text);
        require(rows && isSame(matrix, *rows), "another matrix");
    } catch (const Poco::DataFormatException& error) {
        require(!rows, "a matrix is refused");
        checkPlace(error.message(), text);
    }
    checkSource(text, rows);
    return 0;
}
