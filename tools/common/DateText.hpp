#pragma once

#include <string>

#include <Poco/DateTime.h>

namespace SensorFileTool {

/// A date as a user writes it, "2017-05-23T10:04:31Z"; a blank in place of the T and no Z are
/// allowed. It is UTC.
/// @param option  for the message, e.g. "--creation-time"
/// @throws UsageException if it is none, or of a year that sensor files cannot hold
[[nodiscard]] Poco::DateTime parseDate(const std::string& option, const std::string& text);

}  // namespace SensorFileTool
