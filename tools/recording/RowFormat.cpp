#include "tools/recording/RowFormat.hpp"

#include "text/VisibleText.hpp"
#include "tools/recording/ValueText.hpp"

#include <algorithm>
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
    constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
    return Texts::toVisibleJson(nlohmann::json(name).dump(-1, ' ', false, kReplace));
}

}  // namespace

RowText::RowText(RowFormat format, const SensorFile::SensorFileConfig& config,
                 std::vector<std::size_t> columns)
    : format_(format),
      separator_(format == RowFormat::kTsv ? '\t' : ','),
      columns_(std::move(columns)) {
    constexpr std::size_t kRoomForSigns = 8;
    std::size_t room = kRoomForSigns;
    for (const std::size_t column : columns_) {
        const std::string& name = config.getColumn(column).getName();
        names_.push_back(format == RowFormat::kJsonLines ? quoteJson(name)
                                                         : quoteField(name, separator_));
        room += names_.back().size() + kMaxValueText + kRoomForSigns;
    }
    line_.resize(room);
}

void RowText::appendHeader(std::string& text) const {
    if (format_ == RowFormat::kJsonLines || names_.empty()) return;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (i > 0) text += separator_;
        text += names_[i];
    }
    text += '\n';
}

void RowText::appendRow(std::string& text, const Row& row) {
    char* const line = line_.data();
    const char* const end =
        format_ == RowFormat::kJsonLines ? formatJson(line, row) : formatPlain(line, row);
    text.append(line, static_cast<std::size_t>(end - line));
}

char* RowText::formatPlain(char* out, const Row& row) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) *out++ = separator_;
        out = formatValue(out, row, columns_[i]);
    }
    *out++ = '\n';
    return out;
}

char* RowText::formatJson(char* out, const Row& row) const {
    *out++ = '{';
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) *out++ = ',';
        out = std::copy(names_[i].begin(), names_[i].end(), out);
        *out++ = ':';
        const bool isNumber = isPlainNumber(row, columns_[i]);
        if (!isNumber) *out++ = '"';
        out = formatValue(out, row, columns_[i]);
        if (!isNumber) *out++ = '"';
    }
    *out++ = '}';
    *out++ = '\n';
    return out;
}

}  // namespace SensorFileTool
