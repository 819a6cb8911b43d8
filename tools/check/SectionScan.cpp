#include "tools/check/SectionScan.hpp"

#include "sensorfile/FormatException.hpp"
#include "tools/check/ByteSearch.hpp"
#include "tools/check/SectionLint.hpp"

#include <algorithm>
#include <locale>
#include <sstream>

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <fmt/format.h>

namespace SensorFileTool {

using SensorFile::SensorFileConfig;

namespace {

// Sections are some kilobytes; what is longer is not looked at byte by byte.
constexpr std::int64_t kMaxHead = std::int64_t{16} * 1024 * 1024;
// So many that look like a data section's opening and are none are enough.
constexpr int kMaxOpenings = 1000;
// The size of the section stands before a binary date.
constexpr std::int64_t kDateOffset = 8;
constexpr std::int64_t kDateSize = 6;

constexpr const char* kGoodTextDate = "01/01/2000\t00:00:00";

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::size_t skipBlanks(const std::string& text, std::size_t at) {
    while (at < text.size() && isBlank(text[at]))
        ++at;
    return at;
}

std::size_t skipWord(const std::string& text, std::size_t at) {
    at = skipBlanks(text, at);
    while (at < text.size() && !isBlank(text[at]))
        ++at;
    return at;
}

std::int64_t readPosition(std::istream& stream) {
    return stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
}

const char* nameOf(bool isHeader) {
    return isHeader ? "header" : "calibration";
}

}  // namespace

/// A section whose date was replaced.
struct SectionScan::DatePatch {
    std::int64_t start = 0;  ///< of the section's body
    std::string bytes;       ///< the body and what follows it, with another date
    Patch patch;

    /// An offset in the bytes as one in the file.
    [[nodiscard]] std::int64_t toFile(std::int64_t offset) const {
        const std::int64_t growth = static_cast<std::int64_t>(patch.bytes.size()) - patch.size;
        return start + offset - growth;
    }
};

SectionScan::SectionScan(const std::string& path, bool binary, DefectList& defects)
    : defects_(defects) {
    stream_.imbue(std::locale::classic());
    stream_.exceptions(std::ios::badbit);
    block_.open(path);
    stream_.clear();
    map_.isBinary = binary;
    map_.fileSize = static_cast<std::int64_t>(Poco::File(path).getSize());
}

SectionMap SectionScan::scan() {
    switch (readId()) {
        case SensorFileConfig::kHeaderSection:
            scanRecording();
            break;
        case SensorFileConfig::kCalibSection:
            scanCalibration();
            break;
        default:
            throw Poco::DataException("no sensor file: it begins with no header or calibration");
    }
    lint();
    return std::move(map_);
}

int SectionScan::readId() {
    return map_.config.readSectionId(stream_, map_.isBinary);
}

void SectionScan::seek(std::int64_t offset) {
    stream_.clear();
    block_.seek(offset);
}

std::string SectionScan::readBytes(std::int64_t offset, std::int64_t maxSize) {
    seek(offset);
    std::string bytes(static_cast<std::size_t>(std::min(maxSize, map_.fileSize - offset)), '\0');
    const auto count = block_.sgetn(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

/// The configuration is as before if the section cannot be read. Offsets count from the stream's
/// start.
std::optional<SectionScan::Failure> SectionScan::tryStream(std::istream& stream, bool isHeader) {
    const SensorFileConfig before = map_.config;
    try {
        const bool isRead = isHeader ? map_.config.readColumns(stream, map_.isBinary)
                                     : map_.config.readCalibSection(stream, map_.isBinary);
        if (isRead) return std::nullopt;
        throw SensorFile::FormatException("a column has an impossible size");
    } catch (const Poco::DataException& error) {
        map_.config = before;
        return Failure{readPosition(stream),
                       fmt::format("{} section: {}", nameOf(isHeader), error.message())};
    }
}

std::optional<SectionScan::Failure> SectionScan::readOnce(bool isHeader) {
    std::optional<Failure> failure = tryStream(stream_, isHeader);
    if (failure) failure->offset = block_.position();
    return failure;
}

SectionScan::DatePatch SectionScan::patchDate(bool isHeader, std::int64_t body) {
    DatePatch result;
    result.start = body;
    result.bytes = readBytes(body, kMaxHead);
    std::size_t first = kDateOffset;
    std::size_t size = kDateSize;
    result.patch.bytes = {'\1', '\1', '\0', '\0', '\0', '\0'};  // in either order
    if (!map_.isBinary) {
        first = isHeader ? 0 : skipWord(result.bytes, skipWord(result.bytes, 0));
        first = skipBlanks(result.bytes, first);
        const std::size_t end = result.bytes.find_first_of("\r\n", first);
        size = (end == std::string::npos ? result.bytes.size() : end) - first;
        result.patch.bytes = kGoodTextDate;
    }
    first = std::min(first, result.bytes.size());
    result.patch.offset = body + static_cast<std::int64_t>(first);
    result.patch.size = static_cast<std::int64_t>(std::min(size, result.bytes.size() - first));
    result.patch.reason = fmt::format("the {}'s date is unreadable", nameOf(isHeader));
    result.bytes.replace(first, size, result.patch.bytes);
    return result;
}

void SectionScan::tellFailure(const Failure& failure, DefectCode code) {
    const bool isCut = failure.offset >= map_.fileSize;
    defects_.add(isCut ? DefectCode::kCutSection : code, {failure.offset}, "", [&] {
        return isCut ? "the file ends here: " + failure.message : failure.message;
    });
}

/// Reads the body of a section. What cannot be read for its date alone is read without it.
std::optional<SectionScan::Failure> SectionScan::readSection(bool isHeader) {
    const std::int64_t body = block_.position();
    std::optional<Failure> first = readOnce(isHeader);
    if (!first) return std::nullopt;
    const DatePatch dated = patchDate(isHeader, body);
    std::istringstream patched(dated.bytes);
    std::optional<Failure> second = tryStream(patched, isHeader);
    if (second) second->offset = dated.toFile(second->offset);
    if (second && second->message == first->message) return first;
    defects_.add(DefectCode::kImpossibleDate, {dated.patch.offset}, "",
                 [&] { return fmt::format("the {}'s {}", nameOf(isHeader), first->message); });
    if (second) return second;
    map_.patches.push_back(dated.patch);
    seek(dated.toFile(readPosition(patched)));
    return std::nullopt;
}

void SectionScan::scanRecording() {
    map_.headerBody = block_.position();
    map_.isHeaderBigEndian = map_.config.isBigEndian();
    if (const std::optional<Failure> failure = readSection(/*isHeader=*/true)) {
        tellFailure(*failure, DefectCode::kBadHeader);
        return;
    }
    map_.headerEnd = block_.position();
    map_.dataOpening = map_.headerEnd;
    int id = readId();
    if (id == SensorFileConfig::kCalibSection) {
        map_.calibOpening = map_.headerEnd;
        map_.calibBody = block_.position();
        map_.isCalibBigEndian = map_.config.isBigEndian();
        if (const std::optional<Failure> failure = readSection(/*isHeader=*/false)) {
            searchData(map_.calibBody, *failure);
            return;
        }
        map_.dataOpening = block_.position();
        id = readId();
        if (id == SensorFileConfig::kDataSection) map_.calibEnd = map_.dataOpening;
    }
    if (id == SensorFileConfig::kDataSection)
        findRowStart();
    else
        searchData(map_.headerEnd,
                   {block_.position(), "no section that can be read follows the one before"});
}

/// @param failure  why the data section is not where it ought to be
void SectionScan::searchData(std::int64_t from, const Failure& failure) {
    map_.config.clearCalibData();
    ByteSearch search(block_, dataOpenings(map_.isBinary));
    std::int64_t at = search.find(from);
    for (int i = 0; at >= 0 && i < kMaxOpenings; ++i, at = search.find(at + 1)) {
        seek(map_.isBinary ? at : search.lineStart(at));
        map_.dataOpening = block_.position();
        map_.config.setBigEndian(true);
        if (readId() != SensorFileConfig::kDataSection) continue;
        defects_.add(DefectCode::kBadCalibration, {failure.offset}, "", [&] {
            return fmt::format("{}; the data section is at offset {}", failure.message,
                               map_.dataOpening);
        });
        findRowStart();
        return;
    }
    map_.dataOpening = SectionMap::kNowhere;
    tellFailure(failure, DefectCode::kNoDataSection);
}

/// In text the opening ends with a TAB and a line end.
void SectionScan::findRowStart() {
    map_.rowStart = block_.position();
    if (map_.isBinary) return;
    const std::string rest = readBytes(map_.rowStart, 8);
    const std::size_t end = rest.find_first_not_of("\t\r ");
    if (end == std::string::npos)
        map_.rowStart += static_cast<std::int64_t>(rest.size());
    else if (rest[end] == '\n')
        map_.rowStart += static_cast<std::int64_t>(end) + 1;
}

void SectionScan::scanCalibration() {
    map_.calibOpening = 0;
    map_.calibBody = block_.position();
    map_.isCalibBigEndian = map_.config.isBigEndian();
    map_.config.setCalibOnly(true);
    if (const std::optional<Failure> failure = readSection(/*isHeader=*/false)) {
        tellFailure(*failure, DefectCode::kBadCalibration);
        return;
    }
    const std::int64_t end = block_.position();
    if (!map_.isBinary && end >= map_.fileSize) {
        tellFailure({end, "calibration section: no TAB behind the last value"},
                    DefectCode::kBadCalibration);
        return;
    }
    map_.calibEnd = end;
    const std::uint16_t version = map_.config.getCalibVersion();
    const bool isSection = readId() != SensorFileConfig::kNoSection;
    map_.config.setCalibVersion(version);
    seek(map_.calibEnd);
    if (!map_.isBinary) stream_ >> std::ws;
    stream_.clear();
    const std::int64_t rest = map_.fileSize - block_.position();
    if (rest <= 0) return;
    const DefectCode code =
        isSection ? DefectCode::kSectionBehindCalibration : DefectCode::kJunkBehindCalibration;
    defects_.add(code, {block_.position()}, "", [&] {
        return fmt::format("{} byte(s) follow the calibration section{}", rest,
                           isSection ? ", another section first" : "");
    });
}

void SectionScan::lint() {
    const std::int64_t ends[] = {map_.headerEnd, map_.calibEnd, map_.rowStart};
    const std::int64_t end = *std::max_element(std::begin(ends), std::end(ends));
    if (end <= 0 || end > kMaxHead) return;
    SectionLint(map_, readBytes(0, end), defects_).run();
}

}  // namespace SensorFileTool
