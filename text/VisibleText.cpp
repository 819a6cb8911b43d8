#include "text/VisibleText.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Texts {

namespace {

constexpr char32_t kInvalid = 0x110000;

struct Character {
    char32_t code = kInvalid;
    std::size_t size = 1;  ///< in bytes
};

/// What the first byte of a sequence tells, and the smallest code that needs so many bytes.
struct Lead {
    unsigned mask;
    unsigned bits;
    std::size_t size;
    char32_t smallest;
};
constexpr std::array<Lead, 4> kLeads = {{{0x80, 0x00, 1, 0x0},
                                         {0xe0, 0xc0, 2, 0x80},
                                         {0xf0, 0xe0, 3, 0x800},
                                         {0xf8, 0xf0, 4, 0x10000}}};
constexpr unsigned kContinuationMask = 0xc0;
constexpr unsigned kContinuation = 0x80;
constexpr unsigned kContinuationBits = 6;

struct Range {
    char32_t first;
    char32_t last;
};
// Controls of ASCII and of Latin-1 (0x9b begins terminal sequences as ESC [ does), marks of
// direction, ends of lines and paragraphs, embeddings and isolates.
constexpr std::array<Range, 7> kHidden = {{{0x00, 0x1f},
                                           {0x7f, 0x9f},
                                           {0x061c, 0x061c},
                                           {0x200e, 0x200f},
                                           {0x2028, 0x202e},
                                           {0x2066, 0x2069},
                                           {0xfeff, 0xfeff}}};

bool isSurrogate(char32_t code) {
    return code >= 0xd800 && code <= 0xdfff;
}

/// The first character of a text that is not empty; a byte that begins none is invalid.
Character decode(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const auto* const lead = std::find_if(kLeads.begin(), kLeads.end(), [first](const Lead& one) {
        return (first & one.mask) == one.bits;
    });
    if (lead == kLeads.end() || lead->size > text.size()) return {};
    char32_t code = first & ~lead->mask;
    for (std::size_t i = 1; i < lead->size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & kContinuationMask) != kContinuation) return {};
        code = code << kContinuationBits | (byte & ~kContinuationMask);
    }
    if (code < lead->smallest || code >= kInvalid || isSurrogate(code)) return {};
    return {code, lead->size};
}

bool isHidden(char32_t code) {
    return code == kInvalid ||
           std::any_of(kHidden.begin(), kHidden.end(), [code](const Range& range) {
               return code >= range.first && code <= range.last;
           });
}

void appendHex(std::string& text, unsigned number, unsigned digits) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr unsigned kBits = 4;
    for (unsigned i = digits; i > 0; --i)
        text += kDigits[number >> (kBits * (i - 1)) & 0xfU];
}

/// @param write  appends a hidden character, with its bytes, to the text
template <typename Write>
std::string replaceHidden(std::string_view text, const Write& write) {
    std::string visible;
    visible.reserve(text.size());
    while (!text.empty()) {
        const Character character = decode(text);
        const std::string_view bytes = text.substr(0, character.size);
        if (isHidden(character.code))
            write(visible, character.code, bytes);
        else
            visible += bytes;
        text.remove_prefix(character.size);
    }
    return visible;
}

void appendBytes(std::string& visible, std::string_view bytes) {
    for (const char byte : bytes) {
        visible += "\\x";
        appendHex(visible, static_cast<unsigned char>(byte), 2);
    }
}

}  // namespace

std::string toVisible(std::string_view text) {
    return replaceHidden(text, [](std::string& visible, char32_t /*code*/, std::string_view bytes) {
        appendBytes(visible, bytes);
    });
}

std::string toVisibleLines(std::string_view text) {
    return replaceHidden(text, [](std::string& visible, char32_t code, std::string_view bytes) {
        if (code == U'\n' || code == U'\t')
            visible += bytes;
        else
            appendBytes(visible, bytes);
    });
}

std::string toVisibleJson(std::string_view json) {
    constexpr unsigned kDigits = 4;
    return replaceHidden(json, [](std::string& visible, char32_t code, std::string_view bytes) {
        // Below a blank it stands between the parts: in texts JSON has escaped it already.
        if (code < U' ' || code == kInvalid) {
            visible += bytes;
        } else {
            visible += "\\u";
            appendHex(visible, static_cast<unsigned>(code), kDigits);
        }
    });
}

}  // namespace Texts
