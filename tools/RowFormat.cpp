#include "tools/RowFormat.hpp"

#include "tools/ValueText.hpp"

#include <utility>

#include <nlohmann/json.hpp>

namespace SensorFileTool {

namespace {

std::string quoteField(const std::string& name, char separator) {
    const std::string special = std::string("\"\r\n") + separator;
    if (name.find_first_of(special) == std::string::npos) return name;
    std::string quoted = "\"";
    for (const char letter : name) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + '"';
}

// Names are bytes without a character set: what is no UTF-8 is replaced.
std::string quoteJson(const std::string& name) {
    return nlohmann::json(name).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

RowText::RowText(RowFormat format, const SensorFile::SensorFileConfig& config,
                 std::vector<std::size_t> columns)
    : format_(format),
      separator_(format == RowFormat::kTsv ? '\t' : ','),
      columns_(std::move(columns)) {
    for (const std::size_t column : columns_) {
        const std::string& name = config.getColumn(column).getName();
        names_.push_back(format == RowFormat::kJsonLines ? quoteJson(name)
                                                         : quoteField(name, separator_));
    }
}

void RowText::appendHeader(std::string& text) const {
    if (format_ == RowFormat::kJsonLines || names_.empty()) return;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (i > 0) text += separator_;
        text += names_[i];
    }
    text += '\n';
}

void RowText::appendRow(std::string& text, const RowReader& rows) const {
    if (format_ == RowFormat::kJsonLines) {
        appendJson(text, rows);
        return;
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) text += separator_;
        appendValue(text, rows, columns_[i]);
    }
    text += '\n';
}

void RowText::appendJson(std::string& text, const RowReader& rows) const {
    text += '{';
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) text += ',';
        text += names_[i];
        text += ':';
        const bool isNumber = isPlainNumber(rows, columns_[i]);
        if (!isNumber) text += '"';
        appendValue(text, rows, columns_[i]);
        if (!isNumber) text += '"';
    }
    text += "}\n";
}

}  // namespace SensorFileTool
