#include "tools/import/CsvDialect.hpp"

#include "tools/import/CsvReader.hpp"

#include <algorithm>
#include <array>
#include <map>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

using Kind = CsvNumber::Kind;

// The one that comes first is taken where others fit as well.
constexpr std::array kCandidates = {',', ';', '\t', kCsvBlanks};
// So much is looked at, and two records in any case.
constexpr std::size_t kSampleRecords = 100;
constexpr std::size_t kSampleBytes = std::size_t{256} * 1024;
constexpr std::size_t kMinRecords = 2;

bool isNumber(std::string_view text, const CsvNumberStyle& style) {
    const Kind kind = scanNumber(text, style).kind;
    return kind != Kind::kBlank && kind != Kind::kText;
}

/// A number, a list of numbers, or a number with a decimal comma, which the user may have forgotten
/// to say.
bool looksNumeric(std::string_view text, char separator) {
    if (isNumber(text, {}) || (separator != ',' && isNumber(text, {.hasDecimalComma = true})))
        return true;
    std::vector<std::string_view> elements;
    return splitList(text, elements) &&
           std::all_of(elements.begin(), elements.end(),
                       [](std::string_view element) { return isNumber(element, {}); });
}

std::vector<CsvRecord> readSample(const std::string& path, const std::string& name,
                                  char separator) {
    std::vector<CsvRecord> sample;
    CsvReader reader(path, name, separator);
    std::size_t size = 0;
    while (sample.size() < kSampleRecords && (size < kSampleBytes || sample.size() < kMinRecords) &&
           reader.next()) {
        CsvRecord& record = sample.emplace_back();
        record.line = reader.line();
        for (const std::string_view field : reader.fields()) {
            record.fields.emplace_back(field);
            size += field.size() + sizeof(std::string);
        }
    }
    return sample;
}

/// How well a separator fits: by the share of records that have the most frequent count of fields,
/// and by the share of numbers among fields that are not blank.
double rate(const std::vector<CsvRecord>& sample, char separator) {
    std::map<std::size_t, std::size_t> counts;
    std::size_t fields = 0;
    std::size_t numbers = 0;
    for (const CsvRecord& record : sample) {
        ++counts[record.fields.size()];
        for (const std::string& field : record.fields) {
            if (field.empty()) continue;
            ++fields;
            if (looksNumeric(field, separator)) ++numbers;
        }
    }
    const auto most = std::max_element(counts.begin(), counts.end(), [](auto& one, auto& other) {
        return one.second < other.second;
    });
    if (most == counts.end() || most->first < 2 || fields == 0) return 0.0;
    const double share = static_cast<double>(most->second) / static_cast<double>(sample.size());
    return share * (0.5 + static_cast<double>(numbers) / static_cast<double>(fields));
}

bool looksLikeHeader(const std::vector<CsvRecord>& sample, const CsvNumberStyle& style) {
    if (sample.empty()) return false;
    const std::vector<std::string>& first = sample.front().fields;
    bool hasNumber = false;
    bool hasText = false;
    for (std::size_t i = 0; i < first.size(); ++i) {
        std::vector<std::string_view> elements;
        const bool isText =
            !first[i].empty() && !isNumber(first[i], style) && !splitList(first[i], elements);
        const bool isNumberBelow = sample.size() > 1 && i < sample[1].fields.size() &&
                                   isNumber(sample[1].fields[i], style);
        if (isText && isNumberBelow) return true;
        hasText = hasText || isText;
        hasNumber = hasNumber || isNumber(first[i], style);
    }
    return hasText && !hasNumber;
}

/// The sample of a separator that may not be the file's; none if it cannot be read so.
std::vector<CsvRecord> trySample(const std::string& path, const std::string& name, char separator) {
    try {
        return readSample(path, name, separator);
    } catch (const Poco::DataFormatException&) {
        return {};
    }
}

char detectSeparator(const std::string& path, const std::string& name, bool hasDecimalComma) {
    char best = kCandidates.front();
    double bestRate = 0.0;
    for (const char separator : kCandidates) {
        if (hasDecimalComma && separator == ',') continue;
        const double found = rate(trySample(path, name, separator), separator);
        if (found <= bestRate) continue;
        best = separator;
        bestRate = found;
    }
    return bestRate == 0.0 && hasDecimalComma ? ';' : best;
}

}  // namespace

CsvDialect detectDialect(const std::string& path, const std::string& name,
                         const CsvOptions& options) {
    CsvDialect dialect;
    dialect.separator = options.separator
                            ? *options.separator
                            : detectSeparator(path, name, options.style.hasDecimalComma);
    dialect.sample = readSample(path, name, dialect.separator);
    dialect.hasHeader = options.hasHeader.value_or(looksLikeHeader(dialect.sample, options.style));
    return dialect;
}

bool splitList(std::string_view text, std::vector<std::string_view>& elements) {
    elements.clear();
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') return false;
    text = text.substr(1, text.size() - 2);
    const auto isBetween = [](char c) { return c == ',' || c == ';' || c == ' ' || c == '\t'; };
    const auto isMark = [](char c) { return c == ',' || c == ';'; };
    for (std::size_t at = 0; at < text.size();) {
        // A mark stands between two elements, blanks around it do not count.
        const std::size_t first = text.find_first_not_of(" \t", at);
        if (first == std::string_view::npos) break;
        std::size_t last = first;
        while (last < text.size() && !isBetween(text[last]))
            ++last;
        elements.push_back(text.substr(first, last - first));
        at = std::min(text.find_first_not_of(" \t", last), text.size());
        if (at < text.size() && isMark(text[at])) ++at;
    }
    return !elements.empty();
}

std::string describeSeparator(char separator) {
    switch (separator) {
        case ',':
            return "comma";
        case ';':
            return "semicolon";
        case '\t':
            return "tab";
        case kCsvBlanks:
            return "blanks";
        default:
            return std::string("'") + separator + "'";
    }
}

}  // namespace SensorFileTool
