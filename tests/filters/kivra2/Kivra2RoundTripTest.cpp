#include "filters/kivra2/FilterRecordKivra2Format.hpp"
#include "filters/kivra2/FilterReplayKivra2Format.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Support::FilterHarness;
using Support::matrix;

namespace {

constexpr int kFirstCounter = 65530;  ///< wraps within the file

std::vector<std::string> pinNames(bool hasGyro) {
    std::vector<std::string> names{"3a",     "3aGain", "3aOff",       "3m",
                                   "3mGain", "3mOff",  "FrameNumber", "Button"};
    if (hasGyro) names.insert(names.end(), {"3g", "3gGain", "3gOff"});
    return names;
}

Eigen::MatrixXd arbitraryAxes() {
    return Eigen::MatrixXd::NullaryExpr(
        1, 3, []() { return static_cast<double>(*rc::gen::arbitrary<std::int16_t>()); });
}

Eigen::MatrixXd arbitraryCoefficients(Eigen::Index rows) {
    return Eigen::MatrixXd::NullaryExpr(rows, 3, []() { return *rc::gen::arbitrary<double>(); });
}

// A unit's samples, recorded at one time.
void recordUnit(const std::string& file, int rowCount, bool hasGyro) {
    FilterRecordKivra2Format filter("recorder");
    FilterHarness rec(filter);
    rec.set("Save Gyro", hasGyro);
    rec.set("File Name", file);
    for (const std::string& name : pinNames(hasGyro))
        if (name.ends_with("Gain") || name.ends_with("Off"))
            rec.push(name, arbitraryCoefficients(name.ends_with("Gain") ? 3 : 1));
    rec.set("Record", true);
    for (int i = 0; i < rowCount; ++i) {
        rec.push("FrameNumber", matrix({{1.0 * kFirstCounter + i, 0.0, 128.0}}));
        rec.push("3a", arbitraryAxes());
        rec.push("3m", arbitraryAxes());
        if (hasGyro) rec.push("3g", arbitraryAxes());
        rec.push("Button", matrix({{1.0 * *rc::gen::arbitrary<std::uint8_t>()}}));
        rec.step();
    }
    rec.set("Record", false);
}

// A replay into another recorder. False unless all rows came.
bool recordReplay(const std::string& from, const std::string& to, int rowCount, bool hasGyro) {
    FilterReplayKivra2Format player("player");
    FilterRecordKivra2Format recorder("recorder");
    FilterHarness replay(player);
    FilterHarness rec(recorder);
    rec.set("Save Gyro", hasGyro);
    replay.set("Load File", from);
    for (const std::string& name : pinNames(hasGyro))
        player.findOutputPin(name)->attach(rec.input(name), /*skipNotification=*/true);
    rec.set("File Name", to);
    rec.set("Record", true);
    replay.set("Replay", true);
    for (int i = 0; i < rowCount; ++i) {
        replay.step();
        rec.step();
    }
    replay.step();
    rec.set("Record", false);
    return !replay.get<bool>("Replay");
}

// Overwrites the six bytes of the header's and the calibration's dates.
std::string withoutDates(std::string bytes, bool hasGyro) {
    const std::size_t headerSize = 40 + 34 * (hasGyro ? 11U : 8U);
    for (const std::size_t start : {std::size_t{24}, headerSize + 24})
        bytes.replace(start, 6, "------");
    return bytes;
}

}  // namespace

RC_GTEST_PROP(Kivra2RoundTripTest, ReplayRecordedAgainIsTheSameFileOfAnotherDate, (bool hasGyro)) {
    const int rowCount = *rc::gen::inRange(1, 20);
    const Support::TemporaryFolder folder;
    const Support::RecordedSleeps sleeps;
    {
        const Support::FixedClock clock(Poco::DateTime(2021, 3, 4, 5, 6, 7));
        recordUnit(folder.file("a.sf"), rowCount, hasGyro);
    }
    const Support::FixedClock clock(Poco::DateTime(2022, 1, 31, 23, 59, 58));
    RC_ASSERT(recordReplay(folder.file("a.sf"), folder.file("b.sf"), rowCount, hasGyro));
    const std::string first = Support::readBytes(folder.file("a.sf"));
    const std::string second = Support::readBytes(folder.file("b.sf"));
    RC_ASSERT(first != second);
    RC_ASSERT(withoutDates(first, hasGyro) == withoutDates(second, hasGyro));
}
