#include "host/filters/QuotedText.hpp"

#include <fmt/format.h>

namespace Quoril::Core {
namespace {

constexpr std::size_t kMaxLength = 40;

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

bool isControl(unsigned char c) {
    return c < 0x20 || c == 0x7F;
}

}  // namespace

std::string quoteForMessage(std::string_view text) {
    std::size_t length = text.size();
    if (length > kMaxLength) {
        length = kMaxLength;
        while (length > 0 && continuesCharacter(text[length]))
            --length;
    }
    std::string quoted = "'";
    for (const char c : text.substr(0, length)) {
        const auto byte = static_cast<unsigned char>(c);
        if (isControl(byte))
            quoted += fmt::format("\\x{:02X}", byte);
        else
            quoted += c;
    }
    return quoted + (length < text.size() ? "...'" : "'");
}

}  // namespace Quoril::Core
