#pragma once

#include "sensorfile/Clock.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <locale>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <Poco/DateTime.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace SensorFile {

/// A statement that throws exactly this exception with exactly this message.
#define EXPECT_THROW_MESSAGE(statement, Expected, text)                            \
    try {                                                                          \
        statement;                                                                 \
        ADD_FAILURE() << "expected " #Expected;                                    \
    } catch (const Expected& caught) {                                             \
        EXPECT_EQ(caught.message(), text);                                         \
    } catch (const Poco::Exception& other) {                                       \
        ADD_FAILURE() << "expected " #Expected ", caught " << other.displayText(); \
    }

/// A path in the temporary folder; what lies there is removed in the end.
class TemporaryFile {
 public:
    TemporaryFile();
    explicit TemporaryFile(const std::string& content);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string content() const;
    void setContent(std::string_view content) const;

 private:
    std::string path_;
};

/// The library's clock for the time of a test: stands still until it is moved.
class FakeClock : public Clock {
 public:
    FakeClock();
    ~FakeClock() override;
    [[nodiscard]] Poco::DateTime now() const override { return date; }
    [[nodiscard]] std::chrono::nanoseconds steady() const override { return time; }

    Poco::DateTime date{2017, 5, 23, 10, 4, 31};
    std::chrono::milliseconds time{1000};

 private:
    const Clock* before_;
};

/// The process's locale for the time of a test: a comma for the point, dots between thousands.
class CommaLocale {
 public:
    CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale();

 private:
    std::locale before_;
};

using ColumnList = std::vector<std::pair<std::string, int>>;

/// Columns of the given names and types, dated 2017-05-23 10:04:31.
SensorFileConfig configOf(const ColumnList& columns);
/// As configOf(), with columns named "a", "b", "c" ... of the given types.
SensorFileConfig configOfTypes(const std::vector<int>& typeCodes);

/// Bytes from hexadecimal digits; blanks between them do not matter.
std::string bytes(std::string_view hex);
/// Hexadecimal digits of bytes, so that failures can be read.
std::string hexOf(std::string_view bytes);

std::string headerText(const SensorFileConfig& config);
std::string headerBytes(const SensorFileConfig& config);
std::string calibText(const SensorFileConfig& config);
std::string calibBytes(const SensorFileConfig& config);
std::string dataText(const SensorFileConfig& config);
std::string dataBytes(const SensorFileConfig& config);
/// Everything before the samples, as a writer puts it there.
std::string openingOf(const SensorFileConfig& config, bool binary);

/// All type codes that a column can have.
inline const std::vector<int> kAllTypeCodes = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

}  // namespace SensorFile
