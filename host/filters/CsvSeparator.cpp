#include "host/filters/CsvSeparator.hpp"

#include <string_view>

#include <Poco/Ascii.h>
#include <Poco/Exception.h>

namespace Quoril::Core {
namespace {

bool canSeparate(char c) {
    constexpr std::string_view kTaken = "\"#+-.[]";
    return kTaken.find(c) == std::string_view::npos && Poco::Ascii::isPrintable(c) &&
           !Poco::Ascii::isAlphaNumeric(c);
}

}  // namespace

CsvSeparator CsvSeparator::parse(const std::string& text) {
    if (text == "\t" || text == "\\t" || text == "tab") return CsvSeparator('\t');
    if (text == " " || text == "blanks") return CsvSeparator(' ');
    if (text.size() == 1 && canSeparate(text.front())) return CsvSeparator(text.front());
    throw Poco::DataFormatException("'" + text +
                                    "' cannot separate fields; use a character such as , or ; or "
                                    "|, or the words tab or blanks");
}

}  // namespace Quoril::Core
