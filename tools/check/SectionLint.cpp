#include "tools/check/SectionLint.hpp"

#include "sensorfile/Kivra2Layout.hpp"
#include "tools/check/CalibCheck.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <unordered_map>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::int64_t kSizeField = 8;
constexpr std::int64_t kDateField = 6;
constexpr std::int64_t kCountField = 2;
constexpr std::int64_t kNameSize = std::int64_t{SensorFile::kNameSize};
// No sections have so many lines; what blanks a hostile file is made of need not be kept in mind.
constexpr std::size_t kMaxPatches = 100'000;
// Of a named record: a name, a type code, rows, columns.
constexpr std::int64_t kRecordHead = kNameSize + 3;

bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

}  // namespace

void SectionLint::run() {
    if (map_.headerEnd != SectionMap::kNowhere) lintHeader();
    if (map_.calibEnd != SectionMap::kNowhere) lintCalibration();
    if (map_.hasRows()) {
        const unsigned version = map_.config.getDataVersion();
        lintVersion(map_.dataOpening, "data", version, version == SensorFile::kDefaultDataVersion);
    }
    if (!map_.isBinary) lintLineEnds();
}

void SectionLint::lintVersion(std::int64_t offset, const char* section, unsigned version,
                              bool isKnown) {
    if (isKnown) return;
    defects_.add(DefectCode::kUnknownVersion, {offset}, "", [&] {
        return fmt::format("nothing is known of version 0x{:04x} of the {} section", version,
                           section);
    });
}

void SectionLint::lintHeader() {
    const unsigned version = map_.config.getHeaderVersion();
    lintVersion(0, "header", version,
                version == SensorFile::kDefaultHeaderVersion ||
                    version == SensorFile::kIntegerFrequencyVersion);
    if (map_.isBinary)
        lintBinaryHeader();
    else
        lintTextColumns();
    lintFrequency();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < map_.config.getColumnCount(); ++i)
        names.push_back(map_.config.getColumn(i).getName());
    lintNames(names, columnOffsets_, "column");
}

void SectionLint::lintBinaryHeader() {
    const std::int64_t body = map_.headerBody;
    const std::uint64_t size = numberAt(body, kSizeField, map_.isHeaderBigEndian);
    const std::uint64_t wanted = map_.config.getHeaderSize();
    if (size != wanted) {
        defects_.add(DefectCode::kHeaderSize, {body}, "", [&] {
            return fmt::format("the header's size is given as {} and is {}", size, wanted);
        });
        patchNumber(body, wanted, kSizeField, map_.isHeaderBigEndian, "the header's size is wrong");
    }
    lintDate(body + kSizeField, "header");
    const bool isShort = map_.config.getHeaderVersion() == SensorFile::kIntegerFrequencyVersion;
    std::int64_t record = body + kSizeField + kDateField + (isShort ? 2 : 8) + kCountField;
    for (std::size_t i = 0; i < map_.config.getColumnCount(); ++i) {
        lintBinaryColumn(i, record);
        record += std::int64_t{SensorFile::kColumnRecordSize};
    }
}

void SectionLint::lintBinaryColumn(std::size_t column, std::int64_t offset) {
    const std::string& name = map_.config.getColumn(column).getName();
    const std::size_t wanted = map_.config.getColumn(column).getSize();
    const std::size_t size = byteAt(offset);
    if (size != wanted) {
        defects_.add(DefectCode::kColumnSize, {offset}, name, [&] {
            return fmt::format("the width of a value is given as {} byte(s) and is {}", size,
                               wanted);
        });
        patchNumber(offset, wanted, 1, true, "the width of column '" + name + "' is wrong");
    }
    columnOffsets_.push_back(offset + 2);
    lintBinaryName(offset + 2, name);
}

void SectionLint::lintBinaryName(std::int64_t offset, const std::string& name) {
    if (name.size() == SensorFile::kNameSize) {
        defects_.add(DefectCode::kNameFull, {offset}, name, [] {
            return std::string("the name fills its field: it may have been longer");
        });
        return;
    }
    for (std::int64_t i = offset + static_cast<std::int64_t>(name.size()); i < offset + kNameSize;
         ++i) {
        if (byteAt(i) == 0) continue;
        defects_.add(DefectCode::kNameJunk, {i}, name,
                     [] { return std::string("bytes behind the name's NUL are not zero"); });
        return;
    }
}

/// Behind "column(s):" and a TAB three fields for each column.
void SectionLint::lintTextColumns() {
    const std::string mark = " column(s):\t";
    const std::size_t found = head_.find(mark, static_cast<std::size_t>(map_.headerBody));
    const auto end = static_cast<std::size_t>(map_.headerEnd);
    std::size_t at = found == std::string::npos || found > end ? end : found + mark.size();
    for (std::size_t i = 0; i < map_.config.getColumnCount(); ++i) {
        columnOffsets_.push_back(static_cast<std::int64_t>(at));
        const std::size_t type = head_.find('\t', at);
        const std::size_t size = type == std::string::npos ? type : head_.find('\t', type + 1);
        const std::size_t next = size == std::string::npos ? size : head_.find('\t', size + 1);
        if (next == std::string::npos || next >= end) continue;
        lintTextSize(i, size + 1, next);
        at = next + 1;
    }
}

void SectionLint::lintTextSize(std::size_t column, std::size_t first, std::size_t end) {
    const std::string wanted = fmt::format("({})", map_.config.getColumn(column).getSize());
    std::string found = head_.substr(first, end - first);
    while (!found.empty() && found.back() == ' ')
        found.pop_back();
    if (found == wanted) return;
    const std::string& name = map_.config.getColumn(column).getName();
    const auto offset = static_cast<std::int64_t>(first);
    defects_.add(DefectCode::kColumnSize, {offset}, name, [&] {
        return fmt::format("the width of a value is given as '{}' and is {}", found, wanted);
    });
    map_.patches.push_back({offset, static_cast<std::int64_t>(end - first), wanted + ' ',
                            "the width of column '" + name + "' is wrong"});
}

void SectionLint::lintFrequency() {
    const double frequency = map_.config.getSampleFrequency();
    if (std::isfinite(frequency) && frequency > 0.0) return;
    if (frequency == 0.0 && SensorFile::Kivra2::isLayout(map_.config)) {
        defects_.add(DefectCode::kFrequencyUnset, {map_.headerBody}, "", [] {
            return std::string("the sample frequency is 0: the unit did not tell it");
        });
        return;
    }
    defects_.add(DefectCode::kFrequency, {map_.headerBody}, "", [frequency] {
        return fmt::format("a sample frequency of {} Hz cannot be meant", frequency);
    });
}

void SectionLint::lintNames(const std::vector<std::string>& names,
                            const std::vector<std::int64_t>& offsets, const std::string& what) {
    std::unordered_map<std::string, std::size_t> firsts;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Place place{offsets[i]};
        const std::string& name = names[i];
        if (name.empty())
            defects_.add(DefectCode::kNameEmpty, place, "",
                         [&] { return fmt::format("{} {} has no name", what, i); });
        if (std::any_of(name.begin(), name.end(), isControl))
            defects_.add(DefectCode::kNameCharacters, place, name, [&] {
                return fmt::format("the name of {} {} holds control characters", what, i);
            });
        const std::size_t first = firsts.emplace(name, i).first->second;
        if (first != i && !name.empty())
            defects_.add(DefectCode::kNameRepeated, place, name, [&] {
                return fmt::format("{} {} has the name of {} {}", what, i, what, first);
            });
    }
}

/// A month or day of 0 is taken as 1, in binary alone.
void SectionLint::lintDate(std::int64_t offset, const char* section) {
    // The first two bytes, in either byte order.
    if (byteAt(offset) != 0 && byteAt(offset + 1) != 0) return;
    defects_.add(DefectCode::kZeroDate, {offset}, "", [&] {
        return fmt::format("the {}'s date has a day or month of 0, taken as 1", section);
    });
}

void SectionLint::lintCalibration() {
    const unsigned version = map_.config.getCalibVersion();
    const std::array<unsigned, 4> known = {SensorFile::kShortFormatVersion, 0x0101,
                                           SensorFile::kNamedRecordsVersion,
                                           SensorFile::kCodedCalibVersion};
    lintVersion(map_.calibOpening, "calibration", version,
                std::find(known.begin(), known.end(), version) != known.end());
    if (map_.isBinary) lintDate(map_.calibBody + kSizeField, "calibration");
    const std::vector<CalibRecord> records = listRecords(map_.config);
    std::vector<std::string> names;
    names.reserve(records.size());
    for (const CalibRecord& record : records)
        names.push_back(record.name);
    findRecords(names);
    if (map_.isBinary && !SensorFile::isBareCalibVersion(map_.config.getCalibVersion())) {
        lintCalibrationSize();
        for (std::size_t i = 0; i < names.size(); ++i)
            lintBinaryName(recordOffsets_[i], names[i]);
    }
    lintNames(names, recordOffsets_, "calibration record");
    lintBlanks(names);
    for (std::size_t i = 0; i < records.size(); ++i)
        checkRecord(records[i], recordOffsets_[i], defects_);
}

/// Readers of text that take names as words stumble over blanks.
void SectionLint::lintBlanks(const std::vector<std::string>& names) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].find(' ') == std::string::npos) continue;
        defects_.add(DefectCode::kNameBlank, {recordOffsets_[i]}, "", [&] {
            return fmt::format("the name '{}' of a calibration record holds blanks", names[i]);
        });
    }
}

/// Writers leave the count of records and the rests of names out of the size; others may count
/// them.
void SectionLint::lintCalibrationSize() {
    const std::uint64_t size = numberAt(map_.calibBody, kSizeField, map_.isCalibBigEndian);
    const std::uint64_t usual = map_.config.getCalibSectionSize();
    const auto whole = static_cast<std::uint64_t>(map_.calibEnd - map_.calibOpening);
    std::uint64_t longest = usual;
    for (std::size_t i = 0; i < map_.config.getCalibCount(); ++i)
        if (map_.config.getCalibName(i).size() == SensorFile::kNameSize) longest = UINT64_MAX;
    if ((size >= usual && size <= longest) || size == whole) return;
    defects_.add(DefectCode::kCalibrationSize, {map_.calibBody}, "", [&] {
        return fmt::format(
            "the calibration's size is given as {}; writers give {}, in all it is "
            "{}",
            size, usual, whole);
    });
    patchNumber(map_.calibBody, usual, kSizeField, map_.isCalibBigEndian,
                "the calibration's size is wrong");
}

/// Where each record begins; of bare values, which have no names, where the section does.
void SectionLint::findRecords(const std::vector<std::string>& names) {
    recordOffsets_.assign(names.size(), map_.calibOpening);
    if (SensorFile::isBareCalibVersion(map_.config.getCalibVersion())) return;
    std::int64_t binary = map_.calibOpening + 40;
    auto text = static_cast<std::size_t>(map_.calibBody);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (map_.isBinary) {
            recordOffsets_[i] = binary;
            const auto& record = map_.config.getCalibData(i);
            const std::int64_t width = record.typeCode() == SensorFile::kDouble ? 8 : 4;
            binary +=
                kRecordHead + width * static_cast<std::int64_t>(record.rows() * record.cols());
        } else {
            const std::size_t found = head_.find('\n' + names[i] + '\t', text);
            if (found == std::string::npos) continue;
            text = found + 1;
            recordOffsets_[i] = static_cast<std::int64_t>(text);
        }
    }
}

void SectionLint::lintLineEnds() {
    for (std::size_t at = head_.find("\r\n"); at != std::string::npos;
         at = head_.find("\r\n", at + 2)) {
        const auto offset = static_cast<std::int64_t>(at);
        defects_.add(DefectCode::kCrlf, {offset}, "",
                     [] { return std::string("a line of the sections ends with CR and LF"); });
        if (map_.patches.size() < kMaxPatches)
            map_.patches.push_back({offset, 1, "", "lines end with CR and LF"});
    }
}

void SectionLint::patchNumber(std::int64_t offset, std::uint64_t value, std::size_t size,
                              bool isBigEndian, const std::string& reason) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[isBigEndian ? size - 1 - i : i] = static_cast<char>(value >> (8 * i) & 0xff);
    map_.patches.push_back({offset, static_cast<std::int64_t>(size), bytes, reason});
}

std::uint64_t SectionLint::numberAt(std::int64_t offset, std::size_t size, bool isBigEndian) const {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t at = isBigEndian ? i : size - 1 - i;
        number = number << 8 | byteAt(offset + static_cast<std::int64_t>(at));
    }
    return number;
}

unsigned SectionLint::byteAt(std::int64_t offset) const {
    return static_cast<unsigned char>(head_.at(static_cast<std::size_t>(offset)));
}

}  // namespace SensorFileTool
