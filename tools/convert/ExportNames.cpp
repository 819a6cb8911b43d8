#include "tools/convert/ExportNames.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace SensorFileTool {

namespace {

constexpr std::size_t kMaxMatlabName = 63;

constexpr std::array<std::string_view, 20> kMatlabWords{
    "break",      "case",   "catch",    "classdef", "continue", "else",      "elseif",
    "end",        "for",    "function", "global",   "if",       "otherwise", "parfor",
    "persistent", "return", "spmd",     "switch",   "try",      "while"};

bool isUtf8(const std::string& text) {
    try {
        return !nlohmann::json(text).dump().empty();
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

std::string utf8OfLatin1(const std::string& text) {
    std::string utf8;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x80) {
            utf8 += letter;
        } else {
            utf8 += static_cast<char>(0xc0 | code >> 6);
            utf8 += static_cast<char>(0x80 | (code & 0x3f));
        }
    }
    return utf8;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

std::vector<std::string> columnNames(const SensorFile::SensorFileConfig& config) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        names.push_back(config.getColumn(i).getName());
    return names;
}

std::string plainName(const std::string& name) {
    std::string plain = isUtf8(name) ? name : utf8OfLatin1(name);
    for (char& letter : plain)
        if (static_cast<unsigned char>(letter) < ' ' || letter == '\x7f') letter = '_';
    return plain.empty() ? "unnamed" : plain;
}

std::string matlabName(const std::string& name) {
    std::string fit = name.substr(0, kMaxMatlabName - 1);
    for (char& letter : fit)
        if (!isLetter(letter) && !isDigit(letter)) letter = '_';
    const bool isWord =
        std::find(kMatlabWords.begin(), kMatlabWords.end(), fit) != kMatlabWords.end();
    return fit.empty() || !isLetter(fit.front()) || isWord ? "x" + fit : fit;
}

std::vector<std::string> uniqueNames(const std::vector<std::string>& names,
                                     const std::vector<std::string>& taken, std::size_t maxLength) {
    std::set<std::string> used(taken.begin(), taken.end());
    // Names that are given once stay what they are, whatever is put behind others.
    const std::set<std::string> given(names.begin(), names.end());
    std::vector<std::string> unique;
    for (const std::string& name : names) {
        std::string candidate = name;
        for (int i = 2; used.count(candidate) > 0 || (i > 2 && given.count(candidate) > 0); ++i) {
            const std::string end = fmt::format("_{}", i);
            const std::size_t room =
                maxLength == 0 ? name.size() : std::min(name.size(), maxLength - end.size());
            candidate = name.substr(0, room) + end;
        }
        used.insert(candidate);
        unique.push_back(candidate);
    }
    return unique;
}

}  // namespace SensorFileTool
