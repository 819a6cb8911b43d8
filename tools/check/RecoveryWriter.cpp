#include "tools/check/RecoveryWriter.hpp"

#include <algorithm>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

constexpr std::int64_t kBlock = std::int64_t{256} * 1024;

/// Why a line is no row.
DefectCode codeOf(const TextRow& row, std::int64_t fileSize) {
    switch (row.form) {
        case TextRow::Form::kNuls:
            return DefectCode::kNulBytes;
        case TextRow::Form::kEmpty:
            return DefectCode::kEmptyLine;
        case TextRow::Form::kEndless:
            return DefectCode::kEndlessLine;
        case TextRow::Form::kTooFew:
            return DefectCode::kTooFewFields;
        case TextRow::Form::kTooMany:
            return DefectCode::kTooManyFields;
        case TextRow::Form::kCut:
            return row.line.offset + row.line.size == fileSize ? DefectCode::kTruncatedRow
                                                               : DefectCode::kTornRow;
        default:
            break;
    }
    if (row.line.isBehindNuls) return DefectCode::kTornRow;
    const TextField::State state = row.fields[row.badField].state;
    return state == TextField::State::kBlankCharacter ? DefectCode::kBlankCharacter
                                                      : DefectCode::kBadField;
}

}  // namespace

RecoveryWriter::RecoveryWriter(const std::string& inPath, const std::string& outPath,
                               Recovery& recovery)
    : map_(recovery.before.map), recovery_(recovery), inPath_(inPath), out_(outPath) {
    in_.open(inPath);
}

void RecoveryWriter::copy() {
    copyRange(0, recovery_.before.size);
}

void RecoveryWriter::copyRange(std::int64_t begin, std::int64_t end) {
    std::vector<char> block(static_cast<std::size_t>(kBlock));
    in_.seek(begin);
    while (begin < end) {
        const std::int64_t count =
            in_.sgetn(block.data(), static_cast<std::streamsize>(std::min(kBlock, end - begin)));
        if (count <= 0) throw Poco::ReadFileException(inPath_ + " was cut while it was read");
        out_.write({block.data(), static_cast<std::size_t>(count)});
        begin += count;
    }
}

/// With what belongs where the sections are wrong.
void RecoveryWriter::copyPatched(std::int64_t begin, std::int64_t end) {
    std::vector<Patch> patches = map_.patches;
    std::sort(patches.begin(), patches.end(),
              [](const Patch& one, const Patch& other) { return one.offset < other.offset; });
    for (const Patch& patch : patches) {
        if (patch.offset < begin || patch.offset >= end) continue;
        copyRange(begin, patch.offset);
        out_.write(patch.bytes);
        mend(patch.reason, {patch.offset});
        begin = patch.offset + patch.size;
    }
    copyRange(begin, end);
}

void RecoveryWriter::writeSections() {
    if (map_.config.isCalibOnly()) {
        copyPatched(0, map_.calibEnd);
        if (!map_.isBinary) out_.write("\t\n");
        const std::int64_t rest = map_.fileSize - map_.calibEnd;
        const bool isSection =
            recovery_.before.defects.count(DefectCode::kSectionBehindCalibration) != 0;
        drop(isSection ? DefectCode::kSectionBehindCalibration : DefectCode::kJunkBehindCalibration,
             {map_.calibEnd}, 0, rest);
        return;
    }
    const std::int64_t end = map_.calibEnd == SectionMap::kNowhere ? map_.headerEnd : map_.calibEnd;
    if (map_.dataOpening == end) {
        copyPatched(0, map_.rowStart);
        return;
    }
    copyPatched(0, end);
    if (!map_.isBinary) out_.write("\n\n");
    copyPatched(map_.dataOpening, map_.rowStart);
    drop(DefectCode::kBadCalibration, {end}, 0, map_.dataOpening - end);
}

void RecoveryWriter::writeBinaryRows(ZeroRows zeroRows) {
    std::int64_t rowSize = 0;
    for (std::size_t i = 0; i < map_.config.getColumnCount(); ++i)
        rowSize += static_cast<std::int64_t>(map_.config.getColumn(i).getSize());
    const ZeroTail& zeros = recovery_.before.zeroTail;
    const bool isDropped =
        zeroRows == ZeroRows::kDrop || (zeroRows == ZeroRows::kDropProven && zeros.isProven);
    recovery_.rowsKept = recovery_.before.rows;
    if (isDropped && zeros.rowCount > 0) {
        recovery_.rowsKept -= zeros.rowCount;
        drop(zeros.isProven ? DefectCode::kZeroFilled : DefectCode::kZeroRows,
             {map_.rowStart + zeros.firstRow * rowSize, zeros.firstRow}, zeros.rowCount,
             zeros.rowCount * rowSize);
    }
    copyRange(map_.rowStart, map_.rowStart + recovery_.rowsKept * rowSize);
    const std::int64_t wholeEnd = map_.rowStart + recovery_.before.rows * rowSize;
    if (wholeEnd < map_.fileSize)
        drop(rowSize == 0 ? DefectCode::kBytesWithoutColumns : DefectCode::kTruncatedRow,
             {wholeEnd, recovery_.before.rows}, rowSize == 0 ? 0 : 1, map_.fileSize - wholeEnd);
}

void RecoveryWriter::writeTextRows() {
    if (map_.config.getColumnCount() == 0) {
        drop(DefectCode::kBytesWithoutColumns, {map_.rowStart}, 0, map_.fileSize - map_.rowStart);
        return;
    }
    TextRowScanner rows(inPath_, map_);
    while (rows.next()) {
        if (rows.row().isUsable()) {
            writeRow(rows.row());
            ++recovery_.rowsKept;
        } else {
            dropRow(rows.row());
        }
    }
}

/// As it stands if a writer wrote it so.
void RecoveryWriter::writeRow(const TextRow& row) {
    const Place place{row.line.offset, row.row};
    if (!row.line.hasEnd()) mend("no line end behind the last row", place);
    if (row.isTabMissing) mend("no TAB behind the last field", place);
    if (row.isCrlf) mend("lines end with CR and LF", place);
    if (row.isBlankBehind) mend("blanks behind the last field", place);
    const bool hasBlanks = std::any_of(row.fields.begin(), row.fields.end(),
                                       [](const TextField& field) { return field.hasBlanks; });
    if (hasBlanks) mend("blanks around numbers", place);
    const bool isGood =
        row.line.hasEnd() && !row.isTabMissing && !row.isCrlf && !row.isBlankBehind && !hasBlanks;
    if (isGood)
        out_.write(row.line.text);
    else
        writeLine(row);
}

void RecoveryWriter::writeLine(const TextRow& row) {
    for (const TextField& field : row.fields) {
        const std::string_view text = row.textOf(field);
        out_.write(field.hasBlanks ? withoutBlanks(text) : text);
        out_.write("\t");
    }
    out_.write("\n");
}

void RecoveryWriter::dropRow(const TextRow& row) {
    const bool isRow = row.form != TextRow::Form::kNuls && row.form != TextRow::Form::kEmpty;
    drop(codeOf(row, map_.fileSize), {row.line.offset, isRow ? row.row : Place::kNoRow},
         isRow ? 1 : 0, row.line.size);
}

void RecoveryWriter::drop(DefectCode code, const Place& place, std::int64_t rows,
                          std::int64_t bytes) {
    if (bytes == 0) return;
    auto& list = recovery_.dropped;
    auto found = std::find_if(list.begin(), list.end(),
                              [code](const Dropped& one) { return one.code == code; });
    if (found == list.end()) {
        list.push_back({code, place, 0, 0, ""});
        found = list.end() - 1;
        for (const Defect& defect : recovery_.before.defects.getKept())
            if (defect.code == code && found->message.empty()) found->message = defect.message;
    }
    found->rows += rows;
    found->bytes += bytes;
}

void RecoveryWriter::mend(const std::string& what, const Place& place) {
    auto& list = recovery_.mended;
    auto found = std::find_if(list.begin(), list.end(),
                              [&what](const Mended& one) { return one.what == what; });
    if (found == list.end()) found = list.insert(list.end(), {what, place, 0});
    ++found->count;
}

}  // namespace SensorFileTool
