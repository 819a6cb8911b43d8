#pragma once

#include "tests/flows/ModuleFixture.hpp"

#include <array>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// The classes of the module's filters, in the order in which hosts list them.
inline constexpr std::array kFilterClasses{
    "FilterRecordKivra2Format",    "FilterRecordSensorFile",      "FilterReplayKivra2Format",
    "FilterReplaySensorFile",      "FilterKivra2CalibReader",     "FilterKivra2CalibWriter",
    "FilterCalibSensorFileReader", "FilterCalibSensorFileWriter",
};

/// The filters of the module, one by one, with files that they can work on. The current folder is
/// a temporary one, so that file names of any kind do no harm.
class EveryFilterFixture : public ModuleFixture, public testing::WithParamInterface<const char*> {
 protected:
    EveryFilterFixture();
    ~EveryFilterFixture() override;
    EveryFilterFixture(const EveryFilterFixture&) = delete;
    EveryFilterFixture& operator=(const EveryFilterFixture&) = delete;

    /// Sets a filter up, short of switching it on: files, pins, no sleeps.
    void prepare(Quoril::Core::Filter& filter) const;
    /// Lets a filter do its work: record, replay, save or send.
    void switchOn(Quoril::Core::Filter& filter) const;
    /// The opposite, where there is one.
    static void switchOff(Quoril::Core::Filter& filter);

    /// Calls the function; false if it throws an exception of Poco's. Any other one is a failure.
    template <class Function>
    static bool accepts(Function&& function);

    Quoril::Core::Filter& addFilter(Quoril::Core::LayoutManager& layout) {
        return flow.addFilter(GetParam(), "filter", layout);
    }

    Quoril::Core::Flow flow;

 private:
    using Settings = std::vector<std::pair<std::string, std::string>>;
    [[nodiscard]] Settings settingsOf(const std::string& className) const;
    void writeFiles() const;

    const std::filesystem::path before_ = std::filesystem::current_path();
    const std::string recording_ = folder.file("recording.bin");
    const std::string calibs_ = folder.file("calibs.bin");
    const std::string unit_ = folder.file("unit.cal");
    const std::string output_ = folder.file("output.bin");
};

template <class Function>
bool EveryFilterFixture::accepts(Function&& function) {
    try {
        std::forward<Function>(function)();
        return true;
    } catch (const Poco::Exception&) {
        return false;
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
        return false;
    }
}

#define INSTANTIATE_FOR_EVERY_FILTER(Fixture)                                     \
    INSTANTIATE_TEST_SUITE_P(Filters, Fixture, testing::ValuesIn(kFilterClasses), \
                             [](const auto& variant) { return std::string(variant.param); })
