#pragma once

#include <string>

#include <Poco/Exception.h>

namespace SensorFile {

/// A section that cannot be understood; the message says what was wrong with it. The reader passes
/// it on nested in a Poco::DataException that names the file.
class FormatException : public Poco::DataException {
 public:
    explicit FormatException(const std::string& cause) : Poco::DataException(cause) {}

    [[nodiscard]] const char* name() const noexcept override { return "Format exception"; }
    [[nodiscard]] const char* className() const noexcept override {
        return "SensorFile::FormatException";
    }
    [[nodiscard]] Poco::Exception* clone() const override { return new FormatException(*this); }
    void rethrow() const override { throw *this; }
};

}  // namespace SensorFile
