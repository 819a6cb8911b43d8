#pragma once

#include "framework/EnumProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/Core>
#include <Poco/Any.h>

namespace Support {

using Sample = Quoril::Core::TimeStampedData<Eigen::MatrixXd>;

/// A matrix that stands in one line of a test, row by row.
Eigen::MatrixXd matrix(std::initializer_list<std::initializer_list<double>> rows);
/// A column vector.
Eigen::MatrixXd column(std::initializer_list<double> values);

/// Works a filter from outside, by the names of its properties and pins: no flow, no threads.
class FilterHarness {
 public:
    /// @param filter  must outlive the harness
    explicit FilterHarness(Quoril::Core::Filter& filter) : filter_(filter) {}

    // Properties.
    [[nodiscard]] std::vector<std::string> propertyNames() const;
    [[nodiscard]] Quoril::Core::AbstractProperty& property(const std::string& name) const;
    void set(const std::string& name, bool value) { setAny(name, value); }
    void set(const std::string& name, int value) { setAny(name, value); }
    void set(const std::string& name, double value) { setAny(name, value); }
    void set(const std::string& name, const std::string& value) { setAny(name, value); }
    void set(const std::string& name, const char* value) { setAny(name, std::string(value)); }
    /// Chooses an entry of an enumeration by its text.
    void choose(const std::string& name, const std::string& entry);
    void trigger(const std::string& name);
    /// The stored value; text as it was typed.
    template <class T>
    [[nodiscard]] T get(const std::string& name) const {
        return *Poco::AnyCast<const T*>(property(name).getAny());
    }
    [[nodiscard]] bool isWritable(const std::string& name) const;
    /// The names of the properties that users may not change now, in order.
    [[nodiscard]] std::vector<std::string> lockedNames() const;

    // Pins.
    [[nodiscard]] std::vector<std::string> inputNames() const;
    [[nodiscard]] std::vector<std::string> outputNames() const;
    [[nodiscard]] Quoril::Core::AbstractInputPin& input(const std::string& name) const;
    /// Connects a source to an input pin, unless one is.
    void connect(const std::string& pin);
    void disconnect(const std::string& pin);
    /// Connects if need be, and delivers a sample.
    void push(const std::string& pin, const Eigen::MatrixXd& value, double timeStamp = 0.0);
    /// Connects a sink to every output pin of now; sinks of before are dropped.
    void watch();
    /// What the output pin of that name sent since the last call, oldest first. With pins of equal
    /// names the first one, then the next by `nth`.
    std::vector<Sample> pull(const std::string& pin, std::size_t nth = 0);
    /// Only the values, each as a list in storage order.
    std::vector<std::vector<double>> pullValues(const std::string& pin, std::size_t nth = 0);
    /// Only the time stamps.
    std::vector<double> pullTimes(const std::string& pin);

    void step(int calls = 1);

 private:
    using Source = Quoril::Core::OutputPin<Eigen::MatrixXd>;
    using Sink = Quoril::Core::InputPin<Eigen::MatrixXd>;

    void setAny(const std::string& name, const Poco::Any& value) { property(name).setAny(value); }

    Quoril::Core::Filter& filter_;
    std::map<std::string, std::unique_ptr<Source>> sources_;
    std::vector<std::unique_ptr<Sink>> sinks_;
};

}  // namespace Support
