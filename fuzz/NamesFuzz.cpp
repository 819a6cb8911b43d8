/// Splits hostile lists of names, as users type them for columns, groups columns into outputs by
/// their names, and looks types up by name. The first byte of the input chooses how long common
/// parts must be and a code, the rest is the list.
///
/// All of it is found out a second time in the plainest way. Beyond that: a list that is put
/// together of the names gives them again, in whatever dress, and no column is lost.

#include "filters/common/ColumnTypeChoice.hpp"
#include "filters/common/NameList.hpp"
#include "filters/sensorfile/OutputNaming.hpp"
#include "fuzz/Harness.hpp"
#include "sensorfile/ColumnType.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace {

using Fuzz::require;
using Names = std::vector<std::string>;

/// Longer lists show nothing more.
constexpr std::size_t kLongest = 128;
constexpr const char* kNotAType = "Column type is not compatible with SensorFile format";

// ---- Lists ----

Names splitPlainly(const std::string& text) {
    constexpr const char* kBlanks = " \t\n\v\f\r";
    Names names(1);
    for (const char c : text) {
        if (c == ';' || c == ',' || c == ' ')
            names.emplace_back();
        else
            names.back() += c;
    }
    Names kept;
    for (const std::string& name : names) {
        const std::size_t first = name.find_first_not_of(kBlanks);
        if (first == std::string::npos) continue;
        kept.push_back(name.substr(first, name.find_last_not_of(kBlanks) - first + 1));
    }
    return kept;
}

std::string join(const Names& names, const std::string& between) {
    std::string text;
    for (const std::string& name : names)
        text += between + name;
    return text + between;
}

Names checkList(const std::string& text) {
    Names names = Filters::splitNames(text);
    require(names == splitPlainly(text), "split otherwise");
    for (const char* between : {";", ",", " ", " ;, "})
        require(Filters::splitNames(join(names, between)) == names, "joined again, it differs");
    const std::size_t half = text.size() / 2;
    Names parts = Filters::splitNames(text.substr(0, half) + ",");
    const Names rest = Filters::splitNames(text.substr(half));
    parts.insert(parts.end(), rest.begin(), rest.end());
    require(parts == Filters::splitNames(text.substr(0, half) + "," + text.substr(half)),
            "a list is not the sum of its parts");
    return names;
}

// ---- Outputs ----

std::vector<OutputDescription> groupPlainly(const Names& columns, std::size_t minLength) {
    std::vector<OutputDescription> found;
    for (std::size_t i = 0; i < columns.size();) {
        OutputDescription group{columns[i], 1};
        if (i + 1 < columns.size()) {
            std::string part;
            while (part.size() < columns[i].size() && part.size() < columns[i + 1].size() &&
                   columns[i][part.size()] == columns[i + 1][part.size()])
                part += columns[i][part.size()];
            if (!part.empty() && part.size() >= minLength) {
                group = {part, 2};
                while (i + group.columnCount < columns.size()) {
                    const std::string& next = columns[i + group.columnCount];
                    if (next.size() != columns[i].size() || next.substr(0, part.size()) != part)
                        break;
                    ++group.columnCount;
                }
            }
        }
        i += group.columnCount;
        bool isKnown = false;
        for (OutputDescription& earlier : found) {
            if (earlier.name != group.name) continue;
            earlier.columnCount += group.columnCount;
            isKnown = true;
        }
        if (!isKnown) found.push_back(group);
    }
    return found;
}

void checkOutputs(const Names& columns, std::size_t minLength) {
    const std::vector<OutputDescription> outputs = detectOutputs(columns, minLength);
    require(outputs == groupPlainly(columns, minLength), "grouped otherwise");
    std::size_t count = 0;
    for (const OutputDescription& output : outputs)
        count += output.columnCount;
    require(count == columns.size(), "columns are lost or made");
}

// ---- Types ----

/// A type's name in files, and what else is taken for it; the code counts from 2.
const std::vector<Names>& typeNames() {
    static const std::vector<Names> kNames = {{"unsigned char", "uc"},
                                              {"signed char", "char", "c"},
                                              {"unsigned short", "us", "00"},
                                              {"short", "signed short", "s", "01"},
                                              {"uint32", "unsigned int32", "ui32", "ui"},
                                              {"int32", "i32", "i"},
                                              {"float", "f"},
                                              {"double", "d"},
                                              {"bool", "b"},
                                              {"uint8", "unsigned int8", "ui8"},
                                              {"int8", "i8"},
                                              {"uint16", "unsigned int16", "ui16"},
                                              {"int16", "i16"},
                                              {"uint64", "unsigned int64", "ui64"},
                                              {"int64", "i64"}};
    return kNames;
}

std::optional<int> findTypePlainly(const std::string& name) {
    int code = 2;
    for (const Names& names : typeNames()) {
        if (std::find(names.begin(), names.end(), name) != names.end()) return code;
        ++code;
    }
    return std::nullopt;
}

/// The result of a look-up, or nothing if it throws what look-ups of types throw.
template <class LookUp>
auto orNothing(LookUp lookUp) -> std::optional<decltype(lookUp())> {
    try {
        return lookUp();
    } catch (const Poco::DataException& error) {
        require(error.message() == kNotAType, "another message of a type");
        return std::nullopt;
    }
}

void checkTypeName(const std::string& name) {
    const auto code = orNothing([&] { return SensorFile::columnTypeFromName(name); });
    require(code == findTypePlainly(name), "another type of that name");
    if (code) require(findTypePlainly(SensorFile::columnTypeName(*code)) == code, "renamed");
    const Names& choices = Filters::columnTypeChoices();
    const auto position = std::find(choices.begin(), choices.end(), name) - choices.begin();
    const auto chosen =
        orNothing([&] { return Filters::columnTypeCode(static_cast<unsigned>(position)); });
    require(chosen.has_value() == (position < 15) && (!chosen || *chosen == position + 2),
            "another code of a choice");
}

void checkTypeCode(int code) {
    const auto stored = orNothing([&] { return SensorFile::canonicalColumnType(code); });
    const bool isType = code >= 2 && code <= 18;
    require(stored.has_value() == isType, "a code is or is not a type");
    if (!isType) return;
    require(*stored == (code > 16 ? code - 11 : code), "stored as another type");
    const std::string& name = SensorFile::columnTypeName(code);
    require(name == typeNames()[static_cast<std::size_t>(*stored - 2)][0], "another name");
    constexpr std::size_t kSizes[] = {1, 1, 2, 2, 4, 4, 4, 8, 1, 1, 1, 2, 2, 8, 8};
    require(SensorFile::columnTypeSize(code) == kSizes[*stored - 2], "another size");
}

void checkBinaryType(unsigned size, unsigned kind) {
    const auto code = orNothing([&] { return SensorFile::columnTypeFromBinary(size, kind); });
    if (kind > 1) {
        require(code.has_value() == (kind <= 18) && (!code || *code == static_cast<int>(kind)),
                "another type of that kind");
        return;
    }
    static const std::map<unsigned, int> kUnsigned = {{1, 11}, {2, 13}, {4, 6}, {8, 15}};
    const auto expected = kUnsigned.find(size);
    require(code.has_value(), "a width is refused as a code is");
    require(code->has_value() == (expected != kUnsigned.end()), "a width is or is not one");
    if (*code) require(**code == expected->second + static_cast<int>(kind), "another width's type");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const unsigned choice = data[0];
    const std::string text(Fuzz::toText(data + 1, std::min(size - 1, kLongest)));
    const Names names = checkList(text);
    checkOutputs(names, choice % 8);
    checkTypeName(text);
    if (!names.empty()) checkTypeName(names.front());
    checkTypeCode(static_cast<int>(choice) - 8);
    checkBinaryType(choice % 16, choice / 8);
    return 0;
}
