#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <functional>
#include <string>
#include <vector>

namespace Quoril::Core {
class AbstractProperty;
class Filter;
class Flow;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// Rows of a recording that did not get into its file.
struct RecordingLoss {
    std::string filter;
    std::string path;
    std::string cause;  ///< "No space left on device"
};
using OnRecordingLoss = std::function<void(const RecordingLoss&)>;

/// Warns of columns that a text recording writes as single characters: of their values, 9 to 13 and
/// 32 are white space and vanish when the file is read.
void warnOfLossyTextColumns(const FilterEntry& entry, const Core::Filter& filter,
                            Problems& problems);

/// The switch by which a filter records, or null.
[[nodiscard]] Core::AbstractProperty* findRecord(const Core::Filter& filter);

/// True if the text switches the filter's recording on, or off.
[[nodiscard]] bool isRecordSwitch(const Core::Filter& filter,
                                  const Core::AbstractProperty& property, const std::string& text,
                                  bool isOn);

/// The absolute paths of the files that the filter writes, variables expanded. Those without a name
/// yet and the standard output are left out.
[[nodiscard]] std::vector<std::string> listWrittenFiles(const Core::Filter& filter);

/// The absolute path that a text of such a property means; empty as above.
[[nodiscard]] std::string writtenPathOf(const std::string& text);

/// Switches a recording off. What the file did not take any more is told as a loss.
/// @throws whatever else the filter throws
void endRecording(const Core::Filter& filter, const OnRecordingLoss& onLoss);

/// Switches off "Record" of every filter that records, so that its file is complete. A filter that
/// refuses is told as a failure.
void closeRecordings(const Core::Flow& flow, const OnRecordingLoss& onLoss, Problems& problems);

}  // namespace Quoril::Runner
