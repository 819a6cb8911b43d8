#include "tools/import/CsvReader.hpp"

#include "sensorfile/BlockSize.hpp"
#include "sensorfile/ByteOrder.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

/// The high bit of each of eight bytes that are equal to a character; the first byte is the lowest.
/// @param pattern  the character eight times
std::uint64_t findEqual(const char* bytes, std::uint64_t pattern) {
    constexpr std::uint64_t kLowBits = 0x7f7f7f7f7f7f7f7fU;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = SensorFile::reverseBytes(word);
    const std::uint64_t difference = word ^ pattern;
    return ~(((difference & kLowBits) + kLowBits) | difference | kLowBits);
}

/// Behind the quote that closes a field; nullptr if none does.
/// @param first  behind the quote that opens it
const char* findClosingQuote(const char* first, const char* last) {
    while (first != last) {
        const void* const found = std::memchr(first, '"', static_cast<std::size_t>(last - first));
        if (found == nullptr) break;
        first = static_cast<const char*>(found) + 1;
        if (first == last || *first != '"') return first;
        ++first;
    }
    return nullptr;
}

}  // namespace

CsvReader::CsvReader(const std::string& path, std::string name, char separator)
    : name_(std::move(name)),
      separator_(separator),
      blockSize_(SensorFile::BlockSize::current()),
      buffer_(blockSize_) {
    file_.open(path, std::ios::in);
    skipByteOrderMark();
}

void CsvReader::skipByteOrderMark() {
    while (end_ < 3 && refill()) {
    }
    const std::string_view start(buffer_.data(), std::min<std::size_t>(end_, 3));
    if (start.starts_with("\xff\xfe") || start.starts_with("\xfe\xff"))
        throw Poco::DataFormatException(name_ + ": UTF-16 text; only UTF-8 can be read");
    if (start == "\xef\xbb\xbf") nextBegin_ = start.size();
}

void CsvReader::fail(const std::string& cause) const {
    throw Poco::DataFormatException(name_ + ": line " + std::to_string(line_) + ": " + cause);
}

bool CsvReader::next() {
    for (;;) {
        begin_ = nextBegin_;
        line_ = nextLine_;
        if (!takeLine()) return false;
        ++nextLine_;
        const std::size_t text = skipBlanks(begin_);
        if (text == recordEnd_) continue;
        if (buffer_[text] != '#') break;
        ++commentCount_;
    }
    return takeRecord();
}

bool CsvReader::takeLine() {
    std::size_t scanned = 0;
    for (;;) {
        const char* const first = buffer_.data() + begin_;
        const std::size_t size = end_ - begin_;
        const void* const found = std::memchr(first + scanned, '\n', size - scanned);
        if (found != nullptr) {
            const auto end = static_cast<std::size_t>(static_cast<const char*>(found) - first);
            endRecord(begin_ + end, begin_ + end + 1);
            return true;
        }
        scanned = size;
        if (refill()) continue;
        endRecord(end_, end_);
        return begin_ != end_;
    }
}

bool CsvReader::takeRecord() {
    const auto textOf = [this] { return buffer_.data() + begin_; };
    fields_.clear();
    problem_.reset();
    if (std::memchr(textOf(), '\0', recordEnd_ - begin_) != nullptr) {
        problem_ = Problem{0, "a NUL byte, which no text has"};
        fields_.emplace_back();
        return true;
    }
    const bool hasQuote = std::memchr(textOf(), '"', recordEnd_ - begin_) != nullptr;
    if (!hasQuote) {
        const char* const last = buffer_.data() + recordEnd_;
        separator_ == kCsvBlanks ? splitBlanks(textOf(), last) : splitPlain(textOf(), last);
        return true;
    }
    std::size_t end = 0;
    Extent extent = findQuotedEnd(end);
    while (extent != Extent::kWhole && refill())
        extent = findQuotedEnd(end);
    if (extent == Extent::kOpenQuote)
        fail("the quote of field " + std::to_string(openField_ + 1) +
             " is not closed before the end of the file");
    const bool hasLineEnd = extent == Extent::kWhole;
    endRecord(hasLineEnd ? end : end_, hasLineEnd ? end + 1 : end_);
    nextLine_ +=
        static_cast<std::uint64_t>(std::count(textOf(), buffer_.data() + recordEnd_, '\n'));
    splitQuoted(textOf(), buffer_.data() + recordEnd_);
    return true;
}

void CsvReader::endRecord(std::size_t end, std::size_t next) {
    recordEnd_ = end;
    nextBegin_ = next;
    if (recordEnd_ > begin_ && buffer_[recordEnd_ - 1] == '\r') --recordEnd_;
    if (recordEnd_ - begin_ > kMaxRecord) refuseLong();
}

bool CsvReader::refill() {
    if (isFileAtEnd_) return false;
    const std::size_t size = end_ - begin_;
    if (size > kMaxRecord) refuseLong();
    std::memmove(buffer_.data(), buffer_.data() + begin_, size);
    begin_ = 0;
    end_ = size;
    if (buffer_.size() - size < blockSize_) buffer_.resize(size + std::max(size, blockSize_));
    const std::size_t count = file_.readSome(buffer_.data() + end_, buffer_.size() - end_);
    end_ += count;
    position_ += count;
    isFileAtEnd_ = count == 0;
    return count > 0;
}

void CsvReader::refuseLong() const {
    fail("longer than " + std::to_string(kMaxRecord) + " bytes, or a quote in it is not closed");
}

std::size_t CsvReader::skipBlanks(std::size_t from) const {
    while (from < recordEnd_ && (buffer_[from] == ' ' || buffer_[from] == '\t'))
        ++from;
    return from;
}

CsvReader::Extent CsvReader::findQuotedEnd(std::size_t& end) {
    const char* const last = buffer_.data() + end_;
    openField_ = 0;
    for (const char* at = buffer_.data() + begin_;; ++at, ++openField_) {
        while (at != last && isPadding(*at))
            ++at;
        if (at != last && *at == '"') at = findClosingQuote(at + 1, last);
        if (at == nullptr) return Extent::kOpenQuote;
        while (at != last && *at != '\n' && !isSeparator(*at))
            ++at;
        if (at == last) return Extent::kCut;
        if (*at != '\n') continue;
        end = static_cast<std::size_t>(at - buffer_.data());
        return Extent::kWhole;
    }
}

void CsvReader::splitPlain(const char* first, const char* last) {
    constexpr std::uint64_t kEachByte = 0x0101010101010101U;
    constexpr int kByteBits = 8;
    const std::uint64_t pattern = kEachByte * static_cast<unsigned char>(separator_);
    const char* field = first;
    const char* at = first;
    for (; last - at >= static_cast<std::ptrdiff_t>(sizeof pattern); at += sizeof pattern) {
        for (std::uint64_t found = findEqual(at, pattern); found != 0; found &= found - 1) {
            const char* const end = at + std::countr_zero(found) / kByteBits;
            addField(field, end);
            field = end + 1;
        }
    }
    for (; at != last; ++at) {
        if (*at != separator_) continue;
        addField(field, at);
        field = at + 1;
    }
    addField(field, last);
}

void CsvReader::splitBlanks(const char* first, const char* last) {
    for (const char* at = first;;) {
        while (at != last && isSeparator(*at))
            ++at;
        if (at == last) return;
        const char* const field = at;
        while (at != last && !isSeparator(*at))
            ++at;
        addField(field, at);
    }
}

void CsvReader::splitQuoted(const char* first, const char* last) {
    unquotedSize_ = 0;
    unquoted_.resize(std::max(unquoted_.size(), static_cast<std::size_t>(last - first)));
    for (const char* at = first;; ++at) {
        while (at != last && isPadding(*at))
            ++at;
        if (at == last && separator_ == kCsvBlanks) return;
        const char* field = at;
        const bool isQuoted = at != last && *at == '"';
        if (isQuoted) field = at = takeQuoted(at + 1, last);
        while (at != last && !isSeparator(*at))
            ++at;
        if (!isQuoted) {
            addField(field, at);
        } else if (!std::all_of(field, at, [this](char c) { return isPadding(c); }) && !problem_) {
            problem_ = Problem{fields_.size() - 1, "text stands behind a closing quote"};
        }
        if (at == last) return;
    }
}

const char* CsvReader::takeQuoted(const char* first, const char* last) {
    const char* const behind = findClosingQuote(first, last);
    char* const text = unquoted_.data() + unquotedSize_;
    char* out = text;
    for (const char* at = first; at != behind - 1; ++at) {
        *out++ = *at;
        if (*at == '"') ++at;
    }
    const auto size = static_cast<std::size_t>(out - text);
    unquotedSize_ += size;
    addField(text, text + size);
    return behind;
}

void CsvReader::addField(const char* first, const char* last) {
    if (fields_.size() == kMaxFields) fail("more than " + std::to_string(kMaxFields) + " fields");
    while (first != last && isPadding(*first))
        ++first;
    while (first != last && isPadding(last[-1]))
        --last;
    fields_.emplace_back(first, static_cast<std::size_t>(last - first));
}

}  // namespace SensorFileTool
