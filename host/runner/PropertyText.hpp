#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Quoril::Core {
class AbstractProperty;
}

namespace Quoril::Runner {

enum class PropertyKind {
    kBoolean,
    kInteger,
    kUnsigned,
    kShort,
    kNumber,
    kText,
    kRange,
    kChoice,
    kFileName,
    kCommand,
    kOther,
};

/// "boolean", "integer", "unsigned integer", "short integer", "number", "text", "integer range",
/// "choice", "file name", "command" or "other".
[[nodiscard]] const char* toText(PropertyKind kind) noexcept;

/// What a user can know of a property.
struct PropertyDescription {
    struct Range {
        long long minimum = 0;
        long long maximum = 0;
        long long step = 0;  ///< 0 for a kind without steps
    };
    std::string name;
    PropertyKind kind = PropertyKind::kOther;
    std::string value;                 ///< as a user writes it: true, INT16, 200
    std::optional<Range> range;        ///< of whole numbers
    std::vector<std::string> entries;  ///< of a choice
    bool isWritable = false;
    bool isPersistent = false;   ///< false: a switch that starts something
    bool isWrittenFile = false;  ///< a file name whose file the filter writes
};

[[nodiscard]] PropertyDescription describeProperty(const Core::AbstractProperty& property);

/// Turns a user's text into the text that the property's deSerialize() takes: true and false and
/// the entries of a choice may be written as such, numbers must be nothing but a number.
/// @throws Poco::DataFormatException if the text is no value of the property
[[nodiscard]] std::string toSerialized(const PropertyDescription& property,
                                       const std::string& text);

/// Sets the property from a user's text.
/// @throws Poco::DataFormatException as toSerialized(), and whatever the property throws
void setFromText(Core::AbstractProperty& property, const std::string& text);

/// True if the property has the value that the user's text means.
/// @throws Poco::DataFormatException as toSerialized()
[[nodiscard]] bool hasValue(const Core::AbstractProperty& property, const std::string& text);

}  // namespace Quoril::Runner
