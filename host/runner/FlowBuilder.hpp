#pragma once

#include "framework/AbstractInputPin.hpp"
#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"
#include "host/runner/PropertyText.hpp"

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Quoril::Core {
class AbstractOutputPin;
class AbstractProperty;
class Filter;
class Flow;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// Builds the flow that a model describes: layouts, filters, properties in their order, and, when
/// all pins are there, connections. Everything wrong is told; what it concerns is left out.
///
/// Nothing is written or started until setSwitches(): building a flow only to check it leaves the
/// disk alone. The plug-ins are loaded before.
class FlowBuilder {
 public:
    /// All three must outlive the builder.
    FlowBuilder(const FlowModel& model, Core::Flow& flow, Problems& problems)
        : model_(model), flow_(flow), problems_(problems) {}

    /// Properties that start something ("Record", "Replay": the host does not save them) or name a
    /// file that the filter writes are only tested, and left to setSwitches().
    void build();

    /// Sets what build() left, in the order of the file. Call once, with a good flow, before its
    /// start; what a filter refuses is told as a failure.
    void setSwitches();

 private:
    struct Switch {
        Core::Filter* filter;
        std::string filterName;
        const PropertyEntry* entry;
    };

    void addLayouts();
    void addFilter(const FilterEntry& entry);
    void setProperties(const FilterEntry& entry, Core::Filter& filter);
    void setProperty(const PropertyEntry& entry, Core::Filter& filter);
    [[nodiscard]] bool hasRefusedFile(const std::string& filterName) const;
    void checkSwitches();
    void checkWrittenFile(const Switch& later);
    [[nodiscard]] bool checkRoom();
    [[nodiscard]] std::string findLackOfRoomOf(const Switch& later) const;
    void connect(const ConnectionEntry& connection);
    void checkScript();
    void checkStop();
    void checkValue(const MemberName& name, const Text& value);
    void checkCommand(const MemberName& name);

    [[nodiscard]] Core::AbstractProperty* findProperty(const MemberName& name);
    [[nodiscard]] Core::AbstractInputPin* findInput(const MemberName& name);
    [[nodiscard]] Core::AbstractOutputPin* findOutput(const MemberName& name);
    /// Tells that a filter lacks a name, unless a property that could have made it was refused.
    void tellUnknown(const MemberName& name, const std::string& what,
                     const std::vector<std::string>& names);
    void tellRefusal(const PropertyEntry& entry, const std::string& filterName,
                     const std::string& cause, Severity severity);

    const FlowModel& model_;
    Core::Flow& flow_;
    Problems& problems_;
    std::set<std::string> incomplete_;  ///< filters of which a property could not be set
    /// Filters, and what they had against files.
    std::set<std::pair<std::string, std::string>> fileRefusals_;
    std::vector<Switch> switches_;
};

/// The buffer of a connected input: as the user says, 256 samples first in first out otherwise. A
/// pin whose filter chose a buffer of its own, and pins of calibration data, where only the newest
/// counts, keep theirs.
[[nodiscard]] std::optional<Core::BufferSettings> chooseBuffer(const ConnectionEntry& connection,
                                                               const Core::AbstractInputPin& input);

}  // namespace Quoril::Runner
