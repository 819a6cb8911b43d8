#include "host/runner/PropertyText.hpp"

#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "host/runner/ConnectionText.hpp"
#include "host/runner/FileUse.hpp"
#include "host/runner/Names.hpp"
#include "host/runner/NumberText.hpp"

#include <algorithm>
#include <limits>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
using Core::AbstractProperty;

template <class T>
using Visit = Util::System::Visitor<T, void, void, 1>;

template <class T>
PropertyDescription::Range rangeOf() {
    return {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), 0};
}

/// Finds out the kind of a property and what only its kind has.
class Describer final : public Visit<Core::ValueProperty<bool>>,
                        public Visit<Core::ValueProperty<int>>,
                        public Visit<Core::ValueProperty<unsigned int>>,
                        public Visit<Core::ValueProperty<short>>,
                        public Visit<Core::ValueProperty<double>>,
                        public Visit<Core::ValueProperty<std::string>>,
                        public Visit<Core::RangeProperty<int>>,
                        public Visit<Core::EnumProperty<std::string>>,
                        public Visit<Core::StringProperty>,
                        public Visit<Core::FileNameProperty>,
                        public Visit<Core::CommandProperty> {
 public:
    explicit Describer(PropertyDescription& description) : description_(description) {}

    void visit(const Core::ValueProperty<bool>& property) override {
        describe(PropertyKind::kBoolean, property.get() ? "true" : "false");
    }
    void visit(const Core::ValueProperty<int>& property) override {
        describe(PropertyKind::kInteger, std::to_string(property.get()));
        description_.range = rangeOf<int>();
    }
    void visit(const Core::ValueProperty<unsigned int>& property) override {
        describe(PropertyKind::kUnsigned, std::to_string(property.get()));
        description_.range = rangeOf<unsigned int>();
    }
    void visit(const Core::ValueProperty<short>& property) override {
        describe(PropertyKind::kShort, std::to_string(property.get()));
        description_.range = rangeOf<short>();
    }
    void visit(const Core::ValueProperty<double>& property) override {
        describe(PropertyKind::kNumber, fmt::format("{}", property.get()));
    }
    void visit(const Core::ValueProperty<std::string>& property) override {
        describe(PropertyKind::kText, property.get());
    }
    void visit(const Core::RangeProperty<int>& property) override {
        describe(PropertyKind::kRange, std::to_string(property.get()));
        description_.range = {property.getMinimum(), property.getMaximum(), property.getStep()};
    }
    void visit(const Core::EnumProperty<std::string>& property) override {
        const unsigned int index = property.get();
        description_.entries = property.getEntries();
        describe(PropertyKind::kChoice, index < description_.entries.size()
                                            ? description_.entries[index]
                                            : std::to_string(index));
    }
    void visit(const Core::StringProperty& property) override {
        describe(PropertyKind::kText, rawText(property));
    }
    void visit(const Core::FileNameProperty& property) override {
        describe(PropertyKind::kFileName, rawText(property));
        description_.isWrittenFile = property.getIsWritten();
    }
    void visit(const Core::CommandProperty& /*property*/) override {
        describe(PropertyKind::kCommand, "");
    }

 private:
    /// The text as it was typed: get() would expand the variables in it.
    static std::string rawText(const AbstractProperty& property) {
        std::string text;
        property.serialize(text);
        return text;
    }

    void describe(PropertyKind kind, const std::string& value) {
        description_.kind = kind;
        description_.value = value;
    }

    PropertyDescription& description_;
};

[[noreturn]] void refuse(const std::string& text, const std::string& expected) {
    throw Poco::DataFormatException("'" + text + "' is not " + expected);
}

std::string booleanToSerialized(const std::string& text) {
    if (text == "0" || text == "1") return text;
    return parseTruth(text) ? "1" : "0";
}

std::string integerToSerialized(const PropertyDescription::Range& range, const std::string& text) {
    const auto number = parseNumber<long long>(text);
    if (!number || *number < range.minimum || *number > range.maximum)
        refuse(text, fmt::format("a whole number from {} to {}", range.minimum, range.maximum));
    return std::to_string(*number);
}

std::string choiceToSerialized(const std::vector<std::string>& entries, const std::string& text) {
    const auto entry = std::find(entries.begin(), entries.end(), text);
    if (entry != entries.end()) return std::to_string(entry - entries.begin());
    const auto index = parseNumber<unsigned>(text);
    if (index && (entries.empty() || *index < entries.size())) return std::to_string(*index);
    refuse(text, "one of the choices" + suggestName(text, entries));
}
}  // namespace

const char* toText(PropertyKind kind) noexcept {
    switch (kind) {
        case PropertyKind::kBoolean:
            return "boolean";
        case PropertyKind::kInteger:
            return "integer";
        case PropertyKind::kUnsigned:
            return "unsigned integer";
        case PropertyKind::kShort:
            return "short integer";
        case PropertyKind::kNumber:
            return "number";
        case PropertyKind::kText:
            return "text";
        case PropertyKind::kRange:
            return "integer range";
        case PropertyKind::kChoice:
            return "choice";
        case PropertyKind::kFileName:
            return "file name";
        case PropertyKind::kCommand:
            return "command";
        case PropertyKind::kOther:
            break;
    }
    return "other";
}

PropertyDescription describeProperty(const AbstractProperty& property) {
    const Core::Synchronizer::DisablerLocker lock(property.getSynchronizer(), nullptr);
    PropertyDescription description;
    description.name = property.getName();
    description.isWritable = property.getIsWritable();
    description.isPersistent = property.getIsPersistent();
    Describer describer(description);
    property.accept(describer);
    return description;
}

std::string toSerialized(const PropertyDescription& property, const std::string& text) {
    switch (property.kind) {
        case PropertyKind::kBoolean:
            return booleanToSerialized(text);
        case PropertyKind::kChoice:
            return choiceToSerialized(property.entries, text);
        case PropertyKind::kNumber:
            if (!parseNumber<double>(text)) refuse(text, "a number such as -1.5 or 2e-3");
            return text;
        case PropertyKind::kCommand:
            throw Poco::DataFormatException("'" + property.name +
                                            "' is a command, which has no value");
        default:
            return property.range ? integerToSerialized(*property.range, text) : text;
    }
}

void setFromText(AbstractProperty& property, const std::string& text) {
    const PropertyDescription description = describeProperty(property);
    requireUsableFile(description, text);
    property.deSerialize(toSerialized(description, text));
}

bool hasValue(const AbstractProperty& property, const std::string& text) {
    const PropertyDescription description = describeProperty(property);
    const std::string wanted = toSerialized(description, text);
    // The serialized form of a number has only six digits.
    if (description.kind == PropertyKind::kNumber)
        return parseNumber<double>(description.value) == parseNumber<double>(wanted);
    std::string serialized;
    property.serialize(serialized);
    return serialized == wanted;
}

}  // namespace Quoril::Runner
