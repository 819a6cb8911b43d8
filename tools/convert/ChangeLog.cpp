#include "tools/convert/ChangeLog.hpp"

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

std::string inBrackets(const std::string& advice) {
    return advice.empty() ? advice : " (" + advice + ")";
}

}  // namespace

void ChangeLog::add(const std::string& place, const std::string& before, const std::string& after,
                    const std::string& advice) {
    if (areForbidden_)
        throw Poco::DataException(place + ": " + before + " would become " + after +
                                  inBrackets(advice));
    if (++count_ > 1) return;
    first_ = fmt::format("{}: {} became {}", place, before, after);
    advice_ = advice;
}

std::string ChangeLog::describe() const {
    if (count_ == 0) return "no value changed";
    return fmt::format("{} {} changed, {}{}{}", count_, count_ == 1 ? "value" : "values",
                       count_ == 1 ? "" : "first in ", first_, inBrackets(advice_));
}

}  // namespace SensorFileTool
