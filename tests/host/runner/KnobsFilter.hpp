#pragma once

#include "framework/CommandProperty.hpp"
#include "framework/DefaultPlugin.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"

#include <memory>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace Quoril::Runner::Testing {

/// A filter with a property of each kind and pins of each kind, which notes what is done to it.
class KnobsFilter final : public Core::Filter {
 public:
    static constexpr const char* kClassName = "FilterKnobs";

    explicit KnobsFilter(const std::string& name);
    ~KnobsFilter() override;

    void process() override {}
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    /// What was done to all filters of this class, in order: "rec.Record=1".
    static std::vector<std::string>& log();

    Core::ValueProperty<bool> record;
    Core::ValueProperty<double> freq;
    Core::RangeProperty<int> pinsNumber;
    Core::EnumProperty<std::string> mode;
    Core::FileNameProperty fileName;
    Core::FileNameProperty readFile;
    Core::StringProperty refusing;
    Core::CommandProperty save;
    Core::ValueProperty<int> shown;
    Core::OutputPin<Eigen::MatrixXd> out;
    Core::InputPin<Eigen::MatrixXd> calib;
    /// The next recording's end does not get onto the disk; set by the file name "/dev/full".
    bool failsToEnd = false;

 private:
    void note(const std::string& what);
    void onRecord(const bool& value);
    void onFileName(const std::string& value);
    void onRefusing(const std::string& value);
    void onPinsNumber();
    void onSave() { note("Save"); }

    std::vector<std::unique_ptr<Core::InputPin<Eigen::MatrixXd>>> inputs_;
};

/// Makes the class known to the process, once.
void installKnobs();

}  // namespace Quoril::Runner::Testing
