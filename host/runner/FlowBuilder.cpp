#include "host/runner/FlowBuilder.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/Flow.hpp"
#include "host/runner/ExceptionText.hpp"
#include "host/runner/FileCause.hpp"
#include "host/runner/FileClash.hpp"
#include "host/runner/FileUse.hpp"
#include "host/runner/Names.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/Recordings.hpp"
#include "host/runner/Room.hpp"

#include <Poco/Exception.h>
#include <Poco/Path.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr unsigned kDefaultBuffer = 256;
constexpr const char* kStandardOutput = "-";

std::vector<std::string> listClasses() {
    std::vector<std::string> names;
    for (const auto* factory :
         Core::FlowManager::instance().getPluginManager().getFilterFactories())
        names.emplace_back(factory->name());
    return names;
}

template <class Pins>
std::vector<std::string> listNames(const Pins& pins) {
    std::vector<std::string> names;
    names.reserve(pins.size());
    for (const auto* pin : pins)
        names.push_back(pin->getName());
    return names;
}

/// Wrong texts and names are the user's mistake, files and devices are not.
Severity severityOf(const Poco::Exception& error) {
    const bool isMistake = dynamic_cast<const Poco::DataFormatException*>(&error) != nullptr ||
                           dynamic_cast<const Poco::RangeException*>(&error) != nullptr ||
                           dynamic_cast<const Poco::NoPermissionException*>(&error) != nullptr;
    return isMistake ? Severity::kWrongInput : Severity::kFailure;
}

bool isDeferred(const PropertyDescription& property) {
    return !property.isPersistent || property.isWrittenFile;
}
}  // namespace

void FlowBuilder::build() {
    addLayouts();
    for (const FilterEntry& entry : model_.filters)
        addFilter(entry);
    for (const ConnectionEntry& connection : model_.connections)
        connect(connection);
    checkSwitches();
    checkFileClashes(model_, flow_, problems_);
    checkScript();
    checkStop();
}

void FlowBuilder::setSwitches() {
    // Before any of them: the recording that comes first has emptied its file already when a later
    // one is refused.
    if (!checkRoom()) return;
    for (const Switch& later : switches_) {
        const std::string& text = later.entry->value.text;
        Core::AbstractProperty* property =
            later.filter->getPropertyBag()->find(later.entry->name.text);
        if (property == nullptr) continue;
        try {
            setFromText(*property, text);
        } catch (const Poco::Exception& error) {
            tellRefusal(*later.entry, later.filterName,
                        describeRefusal(error, *later.filter, *property, text), Severity::kFailure);
        }
    }
}

void FlowBuilder::addLayouts() {
    for (const LayoutEntry& layout : model_.layouts)
        flow_.addLayout(layout.name.text, layout.period);
}

void FlowBuilder::addFilter(const FilterEntry& entry) {
    const std::vector<std::string> classes = listClasses();
    const std::string& className = entry.className.text;
    auto& plugins = Core::FlowManager::instance().getPluginManager();
    if (plugins.findFilterFactory(className) == nullptr) {
        problems_.add(entry.className.place,
                      fmt::format("filter '{}': no loaded plug-in has a class '{}'{}",
                                  entry.name.text, className, suggestName(className, classes)));
        return;
    }
    try {
        Core::Filter& filter = flow_.addFilter(className, entry.name.text,
                                               *flow_.findLayout(model_.getLayoutOf(entry)));
        setProperties(entry, filter);
    } catch (const Poco::Exception& error) {
        problems_.add(entry.name.place,
                      fmt::format("filter '{}': {}", entry.name.text, describeException(error)),
                      Severity::kFailure);
    }
}

void FlowBuilder::setProperties(const FilterEntry& entry, Core::Filter& filter) {
    for (const PropertyEntry& property : entry.properties)
        setProperty(property, filter);
    warnOfLossyTextColumns(entry, filter, problems_);
}

void FlowBuilder::setProperty(const PropertyEntry& entry, Core::Filter& filter) {
    const std::string& filterName = filter.getName();
    Core::AbstractProperty* property =
        findProperty({filterName, entry.name.text, entry.name.place});
    if (property == nullptr) return;
    const PropertyDescription description = describeProperty(*property);
    try {
        if (description.kind == PropertyKind::kCommand)
            throw Poco::DataFormatException("it is a command; call it from the script");
        const std::string serialized = toSerialized(description, entry.value.text);
        requireUsableFile(description, entry.value.text);
        if (isDeferred(description))
            switches_.push_back({&filter, filterName, &entry});
        else
            property->deSerialize(serialized);
    } catch (const Poco::Exception& error) {
        incomplete_.insert(filterName);
        // What a file holds is no mistake of the flow, whatever the kind of exception.
        const bool isFile = description.kind == PropertyKind::kFileName;
        const std::string cause = describeRefusal(error, filter, *property, entry.value.text);
        // A file that cannot be read is refused again by each property that makes it be read, and
        // keeps properties locked that it would have unlocked.
        const bool isLocked = dynamic_cast<const Poco::NoPermissionException*>(&error) != nullptr;
        const bool isTold =
            fileRefusals_.contains({filterName, cause}) || (isLocked && hasRefusedFile(filterName));
        if (isFile) fileRefusals_.insert({filterName, cause});
        if (!isTold)
            tellRefusal(entry, filterName, cause, isFile ? Severity::kFailure : severityOf(error));
    }
}

bool FlowBuilder::hasRefusedFile(const std::string& filterName) const {
    const auto found = fileRefusals_.lower_bound({filterName, ""});
    return found != fileRefusals_.end() && found->first == filterName;
}

void FlowBuilder::checkSwitches() {
    for (const Switch& later : switches_) {
        const Core::AbstractProperty* property =
            later.filter->getPropertyBag()->find(later.entry->name.text);
        if (property == nullptr || incomplete_.contains(later.filterName)) continue;
        const PropertyDescription description = describeProperty(*property);
        if (!description.isWritable)
            tellRefusal(*later.entry, later.filterName, "it is read-only", Severity::kWrongInput);
        if (description.isWrittenFile) checkWrittenFile(later);
    }
}

void FlowBuilder::checkWrittenFile(const Switch& later) {
    const std::string& path = later.entry->value.text;
    if (path.empty() || path == kStandardOutput) return;
    const std::string obstacle = findWriteObstacle(Poco::Path::expand(path));
    if (!obstacle.empty())
        tellRefusal(*later.entry, later.filterName, obstacle, Severity::kFailure);
}

bool FlowBuilder::checkRoom() {
    bool hasRoom = true;
    for (const Switch& later : switches_) {
        const std::string lack = findLackOfRoomOf(later);
        if (lack.empty()) continue;
        tellRefusal(*later.entry, later.filterName, lack, Severity::kFailure);
        hasRoom = false;
    }
    return hasRoom;
}

// The names of files are not set yet.
std::string FlowBuilder::findLackOfRoomOf(const Switch& later) const {
    const std::string& text = later.entry->value.text;
    const Core::PropertyBag& bag = *later.filter->getPropertyBag();
    const Core::AbstractProperty* property = bag.find(later.entry->name.text);
    if (property == nullptr) return "";
    if (!isRecordSwitch(*later.filter, *property, text, /*isOn=*/true))
        return findLackOfRoom(*later.filter, *property, text);
    for (const Switch& file : switches_) {
        if (file.filter != later.filter) continue;
        const Core::AbstractProperty* name = bag.find(file.entry->name.text);
        if (name == nullptr || !describeProperty(*name).isWrittenFile) continue;
        std::string lack =
            findLackOfRoom(writtenPathOf(file.entry->value.text), /*isRecording=*/true);
        if (!lack.empty()) return lack;
    }
    return "";
}

void FlowBuilder::connect(const ConnectionEntry& connection) {
    Core::AbstractOutputPin* output = findOutput(connection.from);
    Core::AbstractInputPin* input = findInput(connection.to);
    if (output == nullptr || input == nullptr) return;
    try {
        flow_.connect(*output, *input, chooseBuffer(connection, *input));
    } catch (const Poco::Exception& error) {
        problems_.add(
            connection.to.place,
            fmt::format("'{}.{}' cannot be connected to '{}.{}': {}", connection.from.filter,
                        connection.from.member, connection.to.filter, connection.to.member,
                        describeException(error)));
    }
}

void FlowBuilder::checkScript() {
    for (const ScriptEntry& action : model_.script) {
        if (action.value)
            checkValue(action.target, *action.value);
        else
            checkCommand(action.target);
    }
}

void FlowBuilder::checkStop() {
    for (const StopEntry& stop : model_.stop)
        for (const ValueCondition& condition : stop.when)
            checkValue(condition.property, condition.value);
}

void FlowBuilder::checkValue(const MemberName& name, const Text& value) {
    const Core::AbstractProperty* property = findProperty(name);
    if (property == nullptr) return;
    try {
        (void)toSerialized(describeProperty(*property), value.text);
    } catch (const Poco::Exception& error) {
        problems_.add(value.place, fmt::format("property '{}' of filter '{}': {}", name.member,
                                               name.filter, describeException(error)));
    }
}

void FlowBuilder::checkCommand(const MemberName& name) {
    const Core::AbstractProperty* property = findProperty(name);
    if (property == nullptr || describeProperty(*property).kind == PropertyKind::kCommand) return;
    problems_.add(name.place, fmt::format("property '{}' of filter '{}' is no command", name.member,
                                          name.filter));
}

Core::AbstractProperty* FlowBuilder::findProperty(const MemberName& name) {
    Core::Filter* filter = flow_.findFilter(name.filter);
    if (filter == nullptr) return nullptr;
    Core::AbstractProperty* property = filter->getPropertyBag()->find(name.member);
    if (property == nullptr) tellUnknown(name, "property", filter->getPropertyBag()->getNames());
    return property;
}

Core::AbstractInputPin* FlowBuilder::findInput(const MemberName& name) {
    Core::Filter* filter = flow_.findFilter(name.filter);
    if (filter == nullptr) return nullptr;
    Core::AbstractInputPin* pin = filter->findInputPin(name.member);
    if (pin == nullptr) tellUnknown(name, "input pin", listNames(filter->getInputPins()));
    return pin;
}

Core::AbstractOutputPin* FlowBuilder::findOutput(const MemberName& name) {
    Core::Filter* filter = flow_.findFilter(name.filter);
    if (filter == nullptr) return nullptr;
    Core::AbstractOutputPin* pin = filter->findOutputPin(name.member);
    if (pin == nullptr) tellUnknown(name, "output pin", listNames(filter->getOutputPins()));
    return pin;
}

void FlowBuilder::tellUnknown(const MemberName& name, const std::string& what,
                              const std::vector<std::string>& names) {
    if (incomplete_.contains(name.filter)) return;
    problems_.add(name.place, fmt::format("filter '{}' has no {} '{}'{}", name.filter, what,
                                          name.member, suggestName(name.member, names)));
}

void FlowBuilder::tellRefusal(const PropertyEntry& entry, const std::string& filterName,
                              const std::string& cause, Severity severity) {
    problems_.add(entry.value.place,
                  fmt::format("property '{}' of filter '{}' cannot be set to '{}': {}",
                              entry.name.text, filterName, entry.value.text, cause),
                  severity);
}

std::optional<Core::BufferSettings> chooseBuffer(const ConnectionEntry& connection,
                                                 const Core::AbstractInputPin& input) {
    const Core::BufferSettings& present = input.getBuffer();
    const bool isChosen = input.isBufferChosen();
    if (!connection.bufferSize && !connection.isLifo && isChosen) return std::nullopt;
    const unsigned usual = isChosen ? present.size : kDefaultBuffer;
    return Core::BufferSettings{connection.bufferSize.value_or(usual),
                                connection.isLifo.value_or(false)};
}

}  // namespace Quoril::Runner
