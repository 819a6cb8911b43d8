#pragma once

#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"

#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace Quoril::Core {

/// Writes every sample that comes in as one line of JSON (see SampleLine.hpp for its form).
///
/// Input pins: "input#1" ... "input#n", for matrices of any size, with buffers of 256 samples.
///
/// | property      | kind  | default | meaning                                                  |
/// |---------------|-------|---------|----------------------------------------------------------|
/// | "File Name"   | file  | ""      | the file to write; "" or "-": the standard output        |
/// | "Label"       | text  | ""      | if not empty, begins each line as the member "label"     |
/// | "Pins Number" | range | 0       | number of pins, 0 to 64; pins come and go at the end     |
///
/// The file is created, or emptied, when the first sample comes; another "File Name" closes it. A
/// call takes all samples that wait, pin by pin, and hands the lines to the system. When that fails
/// process() throws once and later samples are only taken, until "File Name" is changed.
///
/// Call under the filter's synchronizer, as the host does.
class QUORIL_CORE_API FilterProbe final : public Filter {
 public:
    static constexpr const char* kClassName = "FilterProbe";
    static constexpr const char* kFileName = "File Name";
    static constexpr const char* kLabel = "Label";
    static constexpr const char* kPinsNumber = "Pins Number";
    static constexpr const char* kPinPrefix = "input#";
    static constexpr int kMaxPins = 64;
    static constexpr unsigned kBufferSize = 256;

    explicit FilterProbe(const std::string& name);
    ~FilterProbe() override;

    /// @throws Poco::IOException if the file cannot be opened or written; told once
    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

 private:
    struct ProbedPin;

    void onFileName();
    void onLabel();
    void onPinsNumber();
    void setMembers(ProbedPin& pin) const;
    void drain();
    void write();
    std::ostream& getStream();
    [[noreturn]] void giveUp(const std::string& cause);

    std::vector<std::unique_ptr<ProbedPin>> pins_;
    FileNameProperty fileName_;
    StringProperty label_;
    RangeProperty<int> pinsNumber_;

    std::ofstream file_;
    bool hasFailed_ = false;
    std::string lines_;  ///< waiting to be written
};

}  // namespace Quoril::Core
