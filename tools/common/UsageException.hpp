#pragma once

#include <string>

#include <Poco/Exception.h>

namespace SensorFileTool {

/// The command line asks for what cannot be: the message tells the option and the cause, as in
/// "--rows: ...".
class UsageException : public Poco::Exception {
 public:
    explicit UsageException(const std::string& message) : Poco::Exception(message) {}

    [[nodiscard]] const char* name() const noexcept override { return "Usage exception"; }
    [[nodiscard]] const char* className() const noexcept override {
        return "SensorFileTool::UsageException";
    }
    [[nodiscard]] Poco::Exception* clone() const override { return new UsageException(*this); }
    void rethrow() const override { throw *this; }
};

}  // namespace SensorFileTool
