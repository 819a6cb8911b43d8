#pragma once

#include "framework/AbstractProperty.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Core>
#include <Poco/Any.h>
#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Quoril::Core::TestKit {

using Sample = TimeStampedData<Eigen::MatrixXd>;

/// A file, or just its name, that is removed at the end of the test.
class ScratchFile {
 public:
    /// A name that no file has yet.
    ScratchFile();
    /// A file of that content.
    explicit ScratchFile(std::string_view content);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    void write(std::string_view content) const;
    [[nodiscard]] std::string read() const;

 private:
    std::string path_;
};

/// Takes everything that an output pin sends.
class Receiver {
 public:
    explicit Receiver(Filter& filter, const std::string& pinName, unsigned size = 100000);

    /// Whether another sample has come; it is then the present one.
    [[nodiscard]] bool next();
    [[nodiscard]] const Sample& sample() const { return *sample_; }
    /// Samples that wait.
    [[nodiscard]] unsigned count() const { return pin_.getWaitingCount(); }
    /// All values of all waiting samples, column by column.
    std::vector<double> takeValues();
    /// Time stamps of all waiting samples.
    std::vector<double> takeTimes();

 private:
    InputPin<Eigen::MatrixXd> pin_;
    const Sample* sample_ = nullptr;
};

AbstractProperty& property(Filter& filter, const std::string& name);

template <class T>
void set(Filter& filter, const std::string& name, const T& value) {
    property(filter, name).setAny(Poco::Any(value));
}
inline void set(Filter& filter, const std::string& name, const char* value) {
    set(filter, name, std::string(value));
}

template <class T>
T get(Filter& filter, const std::string& name) {
    return *Poco::AnyCast<const T*>(property(filter, name).getAny());
}

void trigger(Filter& filter, const std::string& name);

std::vector<std::string> outputNames(const Filter& filter);

/// The message of the POCO exception that the call throws; fails the test if it throws nothing.
template <class Exception, class Call>
std::string messageOf(Call call) {
    try {
        call();
    } catch (const Exception& exception) {
        return exception.message();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

}  // namespace Quoril::Core::TestKit
