#include "tests/stress/PropertyEdit.hpp"

#include "framework/PropertyBag.hpp"
#include "host/runner/PropertyText.hpp"
#include "tests/stress/Dice.hpp"
#include "tests/stress/Graph.hpp"
#include "tests/stress/Platform.hpp"

#include <map>
#include <string>
#include <vector>

#include <Poco/Any.h>

namespace Stress {

using Quoril::Core::AbstractProperty;
using Quoril::Core::Filter;
using Quoril::Runner::PropertyDescription;
using Quoril::Runner::PropertyKind;
using Texts = std::vector<std::string>;

namespace {

/// Values for properties of these names, right ones and wrong ones. They keep the program going:
/// no endless sleeps (a layout sleeps under its lock), no matrices of gigabytes.
const std::map<std::string, Texts>& namedValues() {
    static const std::map<std::string, Texts> kValues{
        {"Rate", {"8000", "8000", "8000", "200", "20000", "0", "-1", "nan", "fast"}},
        {"Freq", {"8000", "200", "1e6", "0", "-1", "nan", ""}},
        {"SampleDelay", {"0", "0", "1", "2", "-1", "1001", "x"}},
        {"Count", {"0", "0", "1", "5000", "-1"}},
        {"Start Time", {"0", "1000", "-5", "inf"}},
        {"Matrix", {"1 0 0; 0 1 0; 0 0 1", "0 0 0", "1 2; 3 4", "", "1 2; 3", "x"}},
        {"Columns", {"", "v=a,b,c;t=time", "x=a", "x=nosuch", "=;=", "w=a,b;x=c"}},
        {"Time Column", {"", "time", "nosuch"}},
        {"Separator", {",", ",", "tab", "blanks", "::"}},
        {"Header", {"0", "0", "1", "2", "3"}},
        {"Scale Time", {"1", "1e-9", "nan"}},
        {"Pins Number", {"0", "1", "2", "3", "20", "21", "-1"}},
        {"Calib Pins Number", {"0", "1", "2", "3", "20", "21", "-1"}},
        {"Manually Set ColsName", {"ACC;GYR;COUNT", "ACCX", "nosuch", "", "COUNT"}},
        {"Manually Set Calibs Name", {"AccGain;AccOffset", "nosuch", ""}},
        {"Manually Set Calibration Coefficients", {"AccGain;MagGain", "nosuch", ""}},
        {"TimeStampColName", {"COUNT", "TIME", "INFO", ""}},
        {"MinSize AutoDetectName", {"1", "3", "5", "30", "0"}},
        // Recordings are to live for some hundreds of rows.
        {"Record", {"0", "1", "1", "1", "1", "1", "1", "maybe"}},
        {"Drop-out Probability", {"0", "0", "0.5", "2"}},
    };
    return kValues;
}

const Texts& booleans() {
    static const Texts kTexts{"0", "1", "0", "1", "maybe"};
    return kTexts;
}

const Texts& numbers() {
    static const Texts kTexts{"0", "1", "2", "7", "100", "-1", "0.5", "1e9", "99999999999", "x"};
    return kTexts;
}

const Texts& texts() {
    static const Texts kTexts{"A", "A;B;C", "B", "X,Y", "C", ";", "0", ""};
    return kTexts;
}

std::string fileFor(const Filter& filter, const PropertyDescription& property, Dice& dice,
                    Surroundings& surroundings) {
    const InputFiles& files = surroundings.files;
    if (filter.getName() == "probe") return nullFile();
    if (filter.getName() == "table") return dice.chance(70) ? files.table : dice.pick(files.bad);
    if (!property.isWrittenFile)
        return dice.chance(60) ? dice.pick(files.recordings) : dice.pick(files.all);
    const Texts wrong{"", surroundings.folder, surroundings.folder + "/no/such",
                      surroundings.folder + "/"};
    return dice.chance(80) ? surroundings.newFile() : dice.pick(wrong);
}

std::string valueFor(const Filter& filter, const PropertyDescription& property, Dice& dice,
                     Surroundings& surroundings) {
    const auto named = namedValues().find(property.name);
    if (named != namedValues().end()) return dice.pick(named->second);
    switch (property.kind) {
        case PropertyKind::kFileName:
            return fileFor(filter, property, dice, surroundings);
        case PropertyKind::kBoolean:
            return dice.pick(booleans());
        case PropertyKind::kText:
            return dice.pick(texts());
        case PropertyKind::kChoice:
            return std::to_string(dice.below(property.entries.size() + 1));
        default:
            return dice.pick(numbers());
    }
}

/// A value in the type that the property has, or in one that it has not.
Poco::Any anyOf(const PropertyDescription& property, const std::string& text, Dice& dice) {
    if (property.kind == PropertyKind::kBoolean) return dice.chance(50);
    if (property.kind == PropertyKind::kFileName || property.kind == PropertyKind::kText)
        return text;
    return Poco::Any(static_cast<int>(dice.below(5)));
}

}  // namespace

void editProperty(Filter& filter, Dice& dice, Surroundings& surroundings) {
    const std::vector<std::string> names = filter.getPropertyBag()->getNames();
    if (names.empty()) return;
    AbstractProperty& property = *filter.getPropertyBag()->find(dice.pick(names));
    const PropertyDescription description = Quoril::Runner::describeProperty(property);
    const std::string value = valueFor(filter, description, dice, surroundings);
    const bool isSpecial = namedValues().contains(description.name);
    const auto way = dice.below(10);
    if (description.kind == PropertyKind::kCommand || (way == 0 && !isSpecial))
        property.setAny(anyOf(description, value, dice));
    else if (way <= 2)
        Quoril::Runner::setFromText(property, value);
    else
        property.deSerialize(value);
}

}  // namespace Stress
