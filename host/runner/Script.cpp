#include "host/runner/Script.hpp"

#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/runner/FileCause.hpp"
#include "host/runner/PropertyText.hpp"
#include "host/runner/Room.hpp"

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
std::string describe(const ScriptEntry& entry) {
    const std::string name = entry.target.filter + "." + entry.target.member;
    return entry.value ? fmt::format("set '{}' to '{}'", name, entry.value->text)
                       : fmt::format("command '{}'", name);
}
}  // namespace

Script::Script(const std::vector<ScriptEntry>& entries, const Core::Flow& flow,
               std::function<void(const std::string&)> onAction, OnRecordingLoss onLoss)
    : entries_(entries), flow_(flow), onAction_(std::move(onAction)), onLoss_(std::move(onLoss)) {}

std::optional<std::chrono::nanoseconds> Script::getNextTime() const {
    if (next_ == entries_.size()) return std::nullopt;
    return entries_[next_].at;
}

void Script::runDue(std::chrono::nanoseconds sinceStart, Problems& problems) {
    while (next_ < entries_.size() && entries_[next_].at <= sinceStart) {
        const ScriptEntry& entry = entries_[next_++];
        onAction_(describe(entry));
        const std::string refusal = run(entry);
        if (refusal.empty()) continue;
        problems.add(entry.target.place, describe(entry) + ": " + refusal, Severity::kFailure);
        next_ = entries_.size();
    }
}

std::string Script::run(const ScriptEntry& entry) const {
    Core::Filter* filter = flow_.findFilter(entry.target.filter);
    Core::AbstractProperty* property =
        filter == nullptr ? nullptr : filter->getPropertyBag()->find(entry.target.member);
    if (property == nullptr) return "the property is gone";
    const std::string text = entry.value ? entry.value->text : "";
    try {
        std::string lack = findLackOfRoom(*filter, *property, text);
        if (!lack.empty()) return lack;
        if (isRecordSwitch(*filter, *property, text, /*isOn=*/false))
            endRecording(*filter, onLoss_);
        else if (entry.value)
            setFromText(*property, text);
        else
            dynamic_cast<Core::CommandProperty&>(*property).trigger();
    } catch (const Poco::Exception& error) {
        return describeRefusal(error, *filter, *property, text);
    }
    return "";
}

}  // namespace Quoril::Runner
