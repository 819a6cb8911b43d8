/// Sets properties of every kind from hostile texts, as a saved flow and as a user writes them. The
/// first byte of the input chooses the kind, the second whether the property is read-only and
/// whether its callback refuses, the third the value before; the rest is the text.
///
/// What a text means is found out a second time in the plainest way. Beyond that: a text that is
/// refused leaves the old value and tells nobody, validate() and set() agree, the value's own texts
/// give it again, and a change is told exactly once.

#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/RangeProperty.hpp"
#include "fuzz/Harness.hpp"
#include "fuzz/PlainNumber.hpp"
#include "host/runner/PropertyText.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <Poco/Environment.h>
#include <Poco/Exception.h>

namespace {

using Fuzz::require;
using Fuzz::WholeNumber;
using Quoril::Core::AbstractProperty;
using Quoril::Core::CommandProperty;
using Quoril::Core::EnumProperty;
using Quoril::Core::FileNameProperty;
using Quoril::Core::RangeProperty;
using Quoril::Core::StringProperty;
using Quoril::Core::ValueProperty;

constexpr const char* kRefusal = "refused by the callback";
constexpr const char* kName = "Some Name";
/// Longer texts show nothing more.
constexpr std::size_t kLongest = 32;

enum class Outcome { kStored, kNoValue, kOutOfRange, kReadOnly, kRefused };

/// How an operation ended; exceptions that belong to none of these ends go on.
Outcome attempt(const std::function<void()>& operation) {
    try {
        operation();
        return Outcome::kStored;
    } catch (const Poco::NoPermissionException& error) {
        require(error.message() == std::string("Property '") + kName + "' is not writable",
                "another message of a read-only property");
        return Outcome::kReadOnly;
    } catch (const Poco::RangeException&) {
        return Outcome::kOutOfRange;
    } catch (const Poco::DataFormatException&) {
        return Outcome::kNoValue;
    } catch (const Poco::DataException& error) {
        require(error.message() == kRefusal, "an unknown refusal");
        return Outcome::kRefused;
    }
}

// ---- What texts mean, in the plainest way ----

template <class T>
std::optional<T> integerOf(const std::optional<WholeNumber>& number) {
    if (!number || !number->fits<T>()) return std::nullopt;
    return number->to<T>();
}

template <class T>
std::optional<T> savedValue(std::string_view text) {
    return integerOf<T>(Fuzz::extractInteger(text));
}
template <>
std::optional<unsigned> savedValue(std::string_view text) {
    // Streams negate what fits without its sign.
    std::optional<WholeNumber> number = Fuzz::extractInteger(text);
    if (!number) return std::nullopt;
    const bool isNegative = std::exchange(number->isNegative, false);
    const std::optional<unsigned> value = integerOf<unsigned>(number);
    return value && isNegative ? 0 - *value : value;
}
template <>
std::optional<bool> savedValue(std::string_view text) {
    const auto number = integerOf<long>(Fuzz::extractInteger(text));
    if (!number || *number < 0 || *number > 1) return std::nullopt;
    return *number == 1;
}
template <>
std::optional<double> savedValue(std::string_view text) {
    return Fuzz::extractDouble(text);
}
template <>
std::optional<std::string> savedValue(std::string_view text) {
    return std::string(text);
}

/// A plus sign may stand in front of a number, but not two signs.
std::string_view withoutPlus(std::string_view text) {
    const bool hasOne = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return hasOne ? text.substr(1) : text;
}

template <class T>
std::optional<T> typedValue(std::string_view text) {
    return integerOf<T>(Fuzz::readInteger(withoutPlus(text)));
}
template <>
std::optional<unsigned> typedValue(std::string_view text) {
    const auto number = Fuzz::readInteger(withoutPlus(text));
    // A minus sign before a zero is one too many only for choices, see typedChoice().
    return integerOf<unsigned>(number);
}
template <>
std::optional<bool> typedValue(std::string_view text) {
    const std::string lower = Fuzz::toLower(text);
    if (lower == "1" || lower == "true") return true;
    if (lower == "0" || lower == "false") return false;
    return std::nullopt;
}
template <>
std::optional<double> typedValue(std::string_view text) {
    const std::string_view number = withoutPlus(text);
    const bool isNegative = !number.empty() && number[0] == '-';
    if (!Fuzz::isDecimal(isNegative ? number.substr(1) : number)) return std::nullopt;
    const std::optional<double> value = Fuzz::readDouble(std::string(number));
    if (!value || *value - *value != 0.0) return std::nullopt;
    // What is too small for a double is refused as what is too large.
    const std::string_view digits = number.substr(0, number.find_first_of("eE"));
    if (*value == 0.0 && digits.find_first_of("123456789") != std::string_view::npos)
        return std::nullopt;
    return value;
}
std::optional<unsigned> typedChoice(std::string_view text,
                                    const std::vector<std::string>& entries) {
    const auto entry = std::find(entries.begin(), entries.end(), text);
    if (entry != entries.end()) return static_cast<unsigned>(entry - entries.begin());
    if (text.starts_with('-')) return std::nullopt;
    const std::optional<unsigned> index = typedValue<unsigned>(text);
    return index && (entries.empty() || *index < entries.size()) ? index : std::nullopt;
}

/// As Poco::Path::expand, by which file names replace variables.
std::string expandPath(const std::string& text) {
    std::string expanded;
    std::size_t at = 0;
    if (text.starts_with("~/")) {
        expanded = std::string(std::getenv("HOME")) + "/";
        at = 2;
    }
    while (at < text.size()) {
        if (text[at] != '$') {
            expanded += text[at++];
            continue;
        }
        ++at;
        const bool hasBrace = at < text.size() && text[at] == '{';
        std::size_t end = at;
        if (hasBrace)
            end = std::min(text.find('}', at), text.size());
        else
            while (end < text.size() && (Fuzz::isDigit(text[end]) || text[end] == '_' ||
                                         std::isalpha(static_cast<unsigned char>(text[end])) != 0))
                ++end;
        const std::string name =
            text.substr(at + (hasBrace ? 1 : 0), end - at - (hasBrace ? 1 : 0));
        if (const char* value = std::getenv(name.c_str())) expanded += value;
        at = std::min(end + (hasBrace ? 1 : 0), text.size());
    }
    return expanded;
}

/// Slashes that stand together are one, and the library leaves some of them out.
std::string withoutDoubleSlashes(const std::string& path) {
    std::string result;
    for (const char c : path)
        if (c != '/' || !result.ends_with('/')) result += c;
    return result;
}

// ---- A property, and who is told of it ----

class Owner final : public Quoril::Core::PropertyBagOwner {
 public:
    [[nodiscard]] Quoril::Core::Synchronizer* getPropertySynchronizer() override {
        return &synchronizer_;
    }

 private:
    Quoril::Core::Synchronizer synchronizer_;
};

/// How the property is before it is set.
struct Situation {
    bool isWritable = true;
    bool isRefused = false;
};

template <class Property, class T>
class Subject final : public Quoril::Core::PropertyObserver {
 public:
    /// What the property has against a value beside being read-only and the callback.
    using FitsRange = std::function<bool(const T&)>;

    Subject() {
        property_.attach(*this, &Subject::onValue);
        property_.AbstractProperty::attach(*this, &Subject::onChange);
        property_.addObserver(*this);
    }
    ~Subject() override { property_.removeObserver(*this); }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    [[nodiscard]] Property& getProperty() { return property_; }
    /// @param comesFirst  the range is tested before everything else
    void setRange(FitsRange fits, bool comesFirst) {
        fits_ = std::move(fits);
        isRangeFirst_ = comesFirst;
    }

    [[nodiscard]] const T& value() { return *Poco::AnyCast<const T*>(property_.getAny()); }

    void begin(const T& old, const Situation& situation) {
        isRefused_ = false;
        old_ = value();
        property_.setIsWritable(true);
        property_.set(old);
        require(isSame(value(), old), "the value before is not there");
        property_.setIsWritable(situation.isWritable);
        isRefused_ = situation.isRefused;
        old_ = old;
        valueCalls_ = plainCalls_ = told_ = 0;
    }

    [[nodiscard]] Outcome expect(const std::optional<T>& wanted) const {
        if (!wanted) return Outcome::kNoValue;
        const bool fits = !fits_ || fits_(*wanted);
        if (isRangeFirst_ && !fits) return Outcome::kOutOfRange;
        if (!property_.getIsWritable()) return Outcome::kReadOnly;
        if (isRefused_) return Outcome::kRefused;
        return fits ? Outcome::kStored : Outcome::kOutOfRange;
    }

    /// Compares what an operation did with what it was to do.
    void check(const std::optional<T>& wanted, Outcome outcome) {
        require(outcome == expect(wanted), "another end than expected");
        const bool isStored = outcome == Outcome::kStored;
        require(isSame(value(), isStored ? *wanted : old_), "another value than expected");
        const int changes = isStored && *wanted != old_ ? 1 : 0;
        require(plainCalls_ == changes && told_ == changes, "a change is told wrongly");
        if (isStored) require(valueCalls_ == 1, "the callback was not asked once");
        if (valueCalls_ > 0) require(isSame(seen_, *wanted), "the callback saw another value");
    }

    static bool isSame(const T& a, const T& b) {
        if constexpr (std::is_same_v<T, double>)
            return Fuzz::isSame(a, b);
        else
            return a == b;
    }

    void attributeChanged(const AbstractProperty& /*property*/) override {}
    void valueChanged(const AbstractProperty& property) override {
        require(&property == &property_, "told of another property");
        ++told_;
    }

 private:
    void onValue(const T& value) {
        ++valueCalls_;
        seen_ = value;
        require(isSame(this->value(), old_), "stored before the callback agreed");
        if (isRefused_) throw Poco::DataException(kRefusal);
    }
    void onChange() { ++plainCalls_; }

    Owner owner_;
    Property property_{kName, owner_.getPropertyBag()};
    FitsRange fits_;
    bool isRangeFirst_ = false;
    bool isRefused_ = false;
    T old_{};
    T seen_{};
    int valueCalls_ = 0;
    int plainCalls_ = 0;
    int told_ = 0;
};

/// The texts that the host saves.
template <class Property, class T>
void checkSaved(Subject<Property, T>& subject, const T& old, const Situation& situation,
                const std::string& text) {
    Property& property = subject.getProperty();
    const std::optional<T> wanted = savedValue<T>(text);
    subject.begin(old, situation);
    const Outcome outcome = attempt([&] { property.deSerialize(text); });
    subject.check(wanted, outcome);
    if (!wanted) return;

    subject.begin(old, situation);
    require(attempt([&] { property.validate(*wanted); }) == outcome, "validate does not agree");
    require(Subject<Property, T>::isSame(subject.value(), old), "asking changed the value");
    subject.begin(old, situation);
    subject.check(wanted, attempt([&] { property.setAny(Poco::Any(*wanted)); }));
    if (outcome != Outcome::kStored) return;

    std::string saved;
    property.serialize(saved);
    subject.begin(old, {});
    property.deSerialize(saved);
    std::string again;
    property.serialize(again);
    require(again == saved, "the saved text changes");
    if constexpr (!std::is_same_v<T, double>)
        require(subject.value() == *wanted, "the saved text gives another value");
}

/// The texts that users type.
template <class Property, class T>
void checkTyped(Subject<Property, T>& subject, const T& old, const Situation& situation,
                const std::string& text, const std::optional<T>& wanted) {
    using namespace Quoril::Runner;
    Property& property = subject.getProperty();
    subject.begin(old, situation);
    const Outcome outcome = attempt([&] { setFromText(property, text); });
    subject.check(wanted, outcome);

    // 0.0 and -0.0 are one value to everybody but isSame().
    const bool isThere = wanted && subject.value() == *wanted;
    bool has = false;
    const Outcome asked = attempt([&] { has = hasValue(property, text); });
    require(asked == (wanted ? Outcome::kStored : Outcome::kNoValue), "another text is a value");
    require(!wanted || has == isThere, "it does not know its own value");

    const PropertyDescription description = describeProperty(property);
    require(description.isWritable == situation.isWritable, "described as writable or not");
    const T value = subject.value();
    subject.begin(old, {});
    setFromText(property, description.value);
    require(Subject<Property, T>::isSame(subject.value(), value),
            "the described value is another one");
    require(hasValue(property, description.value), "the described value is not its value");
}

template <class T>
void checkPlain(const T& old, const Situation& situation, const std::string& text) {
    static Subject<ValueProperty<T>, T> subject;
    checkSaved(subject, old, situation, text);
    checkTyped(subject, old, situation, text, typedValue<T>(text));
}

void checkRange(int choice, const Situation& situation, const std::string& text) {
    static Subject<RangeProperty<int>, int> subject;
    struct Range {
        int minimum, maximum, step;
    };
    constexpr Range kRanges[] = {
        {0, 20, 1}, {-2147483647, 2147483647, 0}, {-5, -1, 3}, {1, 1, 0}, {-2147483647 - 1, 0, 2}};
    const Range range = kRanges[static_cast<std::size_t>(choice) % std::size(kRanges)];
    const auto fits = [range](int value) {
        return value >= range.minimum && value <= range.maximum;
    };
    RangeProperty<int>& property = subject.getProperty();
    property.setIsWritable(true);
    property.setRange(range.minimum, range.maximum, range.step);
    subject.setRange(fits, false);
    const int old = range.minimum;
    checkSaved(subject, old, situation, text);
    std::optional<int> typed = typedValue<int>(text);
    // The runner looks at the range itself, to say it in the user's words.
    if (typed && !fits(*typed)) typed.reset();
    checkTyped(subject, old, situation, text, typed);

    const std::optional<int> wanted = savedValue<int>(text);
    if (!wanted || fits(*wanted)) return;
    subject.begin(old, {});
    try {
        property.set(*wanted);
        Fuzz::fail("out of range, but taken");
    } catch (const Poco::RangeException& error) {
        require(error.message() == std::to_string(*wanted) + " does not fit in [" +
                                       std::to_string(range.minimum) + ";" +
                                       std::to_string(range.maximum) +
                                       "], (step : " + std::to_string(range.step) + ")",
                "another message of the range");
    }
}

void checkChoice(int choice, const Situation& situation, const std::string& text) {
    static Subject<EnumProperty<std::string>, unsigned> subject;
    static const std::vector<std::string> kLists[] = {
        {"UCHAR", "CHAR", "USHORT"}, {}, {"1", "0", "", "-1", "A b"}, {"one"}};
    const std::vector<std::string>& entries =
        kLists[static_cast<std::size_t>(choice) % std::size(kLists)];
    EnumProperty<std::string>& property = subject.getProperty();
    property.setEntries(entries);
    subject.setRange(
        [&entries](unsigned value) { return entries.empty() || value < entries.size(); }, true);
    checkSaved(subject, 0U, situation, text);
    checkTyped(subject, 0U, situation, text, typedChoice(text, entries));
}

void checkText(int choice, const Situation& situation, const std::string& text) {
    static const std::string kOld[] = {"", "old", "a;b, c", std::string("\0x", 2)};
    const std::string& old = kOld[static_cast<std::size_t>(choice) % std::size(kOld)];
    static Subject<StringProperty, std::string> subject;
    checkSaved(subject, old, situation, text);
    checkTyped(subject, old, situation, text, {text});
    require(subject.getProperty().get() == subject.value(), "the text is not as it was typed");
}

/// False for texts that may be refused as names of files: what is replaced in them may be unknown,
/// and what they name may be a device.
bool isSurelyUsable(const std::string& text) {
    return text.find_first_of("\\$/.") == std::string::npos;
}

void checkUnusable(Subject<FileNameProperty, std::string>& subject, const std::string& old,
                   const std::string& text) {
    subject.begin(old, {});
    try {
        Quoril::Runner::setFromText(subject.getProperty(), text);
        require(subject.value() == text, "another name of a file is stored");
    } catch (const Poco::InvalidArgumentException&) {
        require(subject.value() == old, "a refused name of a file is stored");
    }
}

void checkFileName(int choice, const Situation& situation, const std::string& text) {
    static const std::string kOld[] = {"", "a.bin", "$HOME/x", "~"};
    const std::string& old = kOld[static_cast<std::size_t>(choice) % std::size(kOld)];
    static Subject<FileNameProperty, std::string> subject;
    checkSaved(subject, old, situation, text);
    if (isSurelyUsable(text))
        checkTyped(subject, old, situation, text, {text});
    else
        checkUnusable(subject, old, text);
    // What the library does with a backslash is its own affair.
    if (text.find('\\') == std::string::npos)
        require(withoutDoubleSlashes(subject.getProperty().get()) ==
                    withoutDoubleSlashes(expandPath(subject.value())),
                "variables are replaced otherwise");
}

/// A command that counts.
class Button {
 public:
    Button() { command_.AbstractProperty::attach(*this, &Button::onPress); }

    void check(const Situation& situation, const std::string& text) {
        presses_ = 0;
        command_.setIsWritable(situation.isWritable);
        std::string saved = "something";
        command_.deSerialize(text);
        command_.serialize(saved);
        require(presses_ == 0 && saved.empty(), "restoring presses a button");
        require(attempt([&] { Quoril::Runner::setFromText(command_, text); }) == Outcome::kNoValue,
                "a command takes a value");
        require(presses_ == 0, "a refused text presses a button");
        const Outcome outcome = attempt([&] { command_.setAny(Poco::Any(text)); });
        require(outcome == (situation.isWritable ? Outcome::kStored : Outcome::kReadOnly) &&
                    presses_ == (situation.isWritable ? 1 : 0),
                "pressed wrongly");
    }

 private:
    void onPress() { ++presses_; }

    Owner owner_;
    CommandProperty command_{kName, owner_.getPropertyBag()};
    int presses_ = 0;
};

/// Variables that file names can hold, the same wherever the harness runs.
bool defineVariables() {
    Poco::Environment::set("HOME", "/home/user");
    Poco::Environment::set("A", "value of A");
    Poco::Environment::set("EMPTY", "");
    return true;
}

void checkCommand(const Situation& situation, const std::string& text) {
    static Button button;
    button.check(situation, text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool areDefined = defineVariables();
    if (!areDefined || size < 3) return 0;
    const Situation situation{(data[1] & 1) == 0, (data[1] & 2) != 0};
    const int choice = data[2];
    const std::string text(Fuzz::toText(data + 3, std::min(size - 3, kLongest)));
    switch (data[0] % 10) {
        case 0:
            checkPlain<bool>(choice % 2 == 1, situation, text);
            break;
        case 1:
            checkPlain<int>(choice - 128, situation, text);
            break;
        case 2:
            checkPlain<unsigned>(static_cast<unsigned>(choice), situation, text);
            break;
        case 3:
            checkPlain<short>(static_cast<short>(choice - 128), situation, text);
            break;
        case 4:
            checkPlain<double>(choice * 0.1, situation, text);
            break;
        case 5:
            checkRange(choice, situation, text);
            break;
        case 6:
            checkChoice(choice, situation, text);
            break;
        case 7:
            checkText(choice, situation, text);
            break;
        case 8:
            checkFileName(choice, situation, text);
            break;
        default:
            checkCommand(situation, text);
            break;
    }
    return 0;
}
