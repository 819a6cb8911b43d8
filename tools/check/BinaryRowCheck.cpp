#include "tools/check/BinaryRowCheck.hpp"

#include "tools/check/ByteSearch.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;
// The smallest piece that a file system leaves as zeros.
constexpr std::size_t kZeroBlock = 512;
// Magic words, without the id.
constexpr std::size_t kMagicSize = 12;

/// How many bytes at the beginning are zero.
std::size_t countLeadingZeros(const char* bytes, std::size_t size) {
    static constexpr std::array<char, 4096> kZeros{};
    std::size_t count = 0;
    while (size - count >= kZeros.size() &&
           std::memcmp(bytes + count, kZeros.data(), kZeros.size()) == 0)
        count += kZeros.size();
    while (count < size && bytes[count] == 0)
        ++count;
    return count;
}

/// How many bytes are left without those at the end that are zero.
std::size_t sizeWithoutZeros(const char* bytes, std::size_t size) {
    while (size > 0 && bytes[size - 1] == 0)
        --size;
    return size;
}

}  // namespace

BinaryRowCheck::BinaryRowCheck(const std::string& path, const SectionMap& map,
                               std::vector<std::unique_ptr<ColumnRule>>& rules, DefectList& defects)
    : map_(map), rules_(rules), defects_(defects) {
    for (std::size_t i = 0; i < map.config.getColumnCount(); ++i) {
        columnOffsets_.push_back(rowSize_);
        rowSize_ += map.config.getColumn(i).getSize();
    }
    isSequence_ = std::any_of(rules.begin(), rules.end(),
                              [](const auto& rule) { return rule->isSequence(); });
    file_.open(path);
    file_.seek(map.rowStart);
    if (rowSize_ == 0) return;
    minZeroRows_ =
        static_cast<std::int64_t>(std::max<std::size_t>(2, (kZeroBlock + rowSize_ - 1) / rowSize_));
    buffer_.resize(kMagicSize - 1 + std::max(rowSize_, kBlock / rowSize_ * rowSize_));
}

void BinaryRowCheck::run(const std::function<void(std::int64_t)>& onBlock) {
    if (rowSize_ == 0) {
        tellRest();
        return;
    }
    char* const block = buffer_.data() + kMagicSize - 1;
    const std::size_t blockSize = buffer_.size() - (kMagicSize - 1);
    for (;;) {
        const auto bytes = static_cast<std::size_t>(std::max<std::streamsize>(
            0, file_.sgetn(block, static_cast<std::streamsize>(blockSize))));
        lookAtBlock(block, bytes / rowSize_);
        searchSections(bytes);
        onBlock(file_.position());
        if (bytes < blockSize) break;
        std::memmove(buffer_.data(), block + blockSize - (kMagicSize - 1), kMagicSize - 1);
    }
    endZeros(/*isAtEnd=*/true);
    for (const auto& rule : rules_)
        rule->finish();
    tellRest();
}

/// Only every minZeroRows_-th row is looked at for zeros: a run that is long enough holds one.
void BinaryRowCheck::lookAtBlock(const char* block, std::size_t count) {
    const std::int64_t base = rowCount_;
    rowCount_ += static_cast<std::int64_t>(count);
    const auto rowAt = [&](std::size_t i) { return block + i * rowSize_; };
    std::size_t begin = 0;
    if (zeroCount_ != 0) {
        begin = countLeadingZeros(block, count * rowSize_) / rowSize_;
        zeroCount_ += static_cast<std::int64_t>(begin);
        if (begin == count) return;
        endZeros(/*isAtEnd=*/false);
    }
    const std::size_t used = sizeWithoutZeros(block, count * rowSize_);
    const std::size_t end = std::max(begin, (used + rowSize_ - 1) / rowSize_);
    const auto rowsFrom = [&](std::size_t first, std::size_t last) {
        return Rows{rowAt(first), last - first, base + static_cast<std::int64_t>(first)};
    };
    const auto step = static_cast<std::size_t>(minZeroRows_);
    for (std::size_t probe = begin + step - 1; probe < end; probe += step) {
        if (!isZero(rowAt(probe))) continue;
        std::size_t first = probe;
        while (first > begin && isZero(rowAt(first - 1)))
            --first;
        while (isZero(rowAt(probe + 1)))  // the last row is none
            ++probe;
        if (probe + 1 - first < step) continue;
        lookAt(rowsFrom(begin, first));
        zeroStart_ = base + static_cast<std::int64_t>(first);
        zeroCount_ = static_cast<std::int64_t>(probe + 1 - first);
        endZeros(/*isAtEnd=*/false);
        begin = probe + 1;
    }
    lookAt(rowsFrom(begin, end));
    zeroStart_ = base + static_cast<std::int64_t>(end);
    zeroCount_ = static_cast<std::int64_t>(count - end);
}

void BinaryRowCheck::lookAt(const Rows& rows) {
    if (rows.count == 0) return;
    ColumnSpan span;
    span.count = rows.count;
    span.rowSize = rowSize_;
    span.row = rows.row;
    span.isBigEndian = map_.config.isBigEndian();
    for (const auto& rule : rules_) {
        const std::size_t place = columnOffsets_[rule->getColumn()];
        span.first = rows.first + place;
        span.offset = offsetOf(rows.row) + static_cast<std::int64_t>(place);
        rule->scan(span);
    }
}

/// Rows of zeros have ended. Few of them are rows as all others, unless the file ends with them and
/// a counter or a time stamp says that they were not recorded.
void BinaryRowCheck::endZeros(bool isAtEnd) {
    const std::vector<char> zeros(zeroCount_ > 0 ? rowSize_ : 0);
    const auto lookAtFirst = [&] {
        lookAt({zeros.data(), 1, zeroStart_++});
        --zeroCount_;
    };
    const bool isFew = zeroCount_ < minZeroRows_;
    // The row at which a counter comes to 0 may have been recorded.
    if (zeroCount_ > 0 && isSequence_ && !isZeroRefused()) lookAtFirst();
    const bool isProven = isZeroRefused();
    while (zeroCount_ > 0 && isFew && !(isAtEnd && isProven))
        lookAtFirst();
    if (zeroCount_ == 0) return;
    tellZeros(zeroStart_, zeroCount_, isProven);
    if (isAtEnd) zeroTail_ = {zeroStart_, zeroCount_, isProven};
    zeroCount_ = 0;
}

void BinaryRowCheck::tellZeros(std::int64_t first, std::int64_t count, bool isProven) {
    const bool isAll = first == 0 && count == rowCount_;
    defects_.add(isProven ? DefectCode::kZeroFilled : DefectCode::kZeroRows,
                 {offsetOf(first), first}, "", [&] {
                     return fmt::format("{}{} row(s), {} bytes, of zeros{}", isAll ? "all " : "",
                                        count, count * static_cast<std::int64_t>(rowSize_),
                                        isProven ? ", which do not continue the rows before" : "");
                 });
}

void BinaryRowCheck::tellRest() {
    const std::int64_t offset = offsetOf(rowCount_);
    const std::int64_t rest = map_.fileSize - offset;
    if (rest <= 0) return;
    if (rowSize_ == 0) {
        defects_.add(DefectCode::kBytesWithoutColumns, {offset}, "", [rest] {
            return fmt::format("{} byte(s) follow, and the file has no columns", rest);
        });
        return;
    }
    const auto whole =
        static_cast<std::size_t>(std::upper_bound(columnOffsets_.begin(), columnOffsets_.end(),
                                                  static_cast<std::size_t>(rest)) -
                                 columnOffsets_.begin() - 1);
    defects_.add(DefectCode::kTruncatedRow, {offset, rowCount_}, "", [=, this] {
        return fmt::format("the file ends within a row: {} of {} bytes, {} whole value(s)", rest,
                           rowSize_, whole);
    });
}

/// Files that were put together, one behind the other.
void BinaryRowCheck::searchSections(std::size_t bytes) {
    static const std::vector<std::string> kOpenings = dataOpenings(/*binary=*/true);
    const std::string_view magic(kOpenings[map_.config.isBigEndian() ? 0 : 1].data(), kMagicSize);
    // Before the first block there are zeros.
    const std::string_view window(buffer_.data(), kMagicSize - 1 + bytes);
    for (std::size_t at = window.find(magic); at != std::string_view::npos;
         at = window.find(magic, at + 1)) {
        const std::int64_t offset =
            file_.position() - static_cast<std::int64_t>(window.size() - at);
        const std::int64_t row = (offset - map_.rowStart) / static_cast<std::int64_t>(rowSize_);
        defects_.add(DefectCode::kSectionInData, {offset, row}, "", [] {
            return std::string("a section opens among the rows: were files put together?");
        });
    }
}

bool BinaryRowCheck::isZero(const char* row) const {
    return row[0] == 0 && std::memcmp(row, row + 1, rowSize_ - 1) == 0;
}

bool BinaryRowCheck::isZeroRefused() const {
    return std::any_of(rules_.begin(), rules_.end(),
                       [](const auto& rule) { return !rule->canBeZero(); });
}

std::int64_t BinaryRowCheck::offsetOf(std::int64_t row) const {
    return map_.rowStart + row * static_cast<std::int64_t>(rowSize_);
}

}  // namespace SensorFileTool
