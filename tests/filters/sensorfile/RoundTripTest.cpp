#include "filters/sensorfile/FilterRecordSensorFile.hpp"
#include "filters/sensorfile/FilterReplaySensorFile.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Support::FilterHarness;

namespace {

/// A type that users choose, with the values that it holds exactly in both encodings.
struct Type {
    const char* name;
    double minimum;
    double maximum;
    double step;
};

// Single characters are missing: in text a blank among them is lost.
constexpr Type kTypes[] = {
    {"USHORT", 0, 65535, 1},
    {"SHORT", -32768, 32767, 1},
    {"UINT32", 0, 4294967295.0, 1},
    {"INT32", -2147483648.0, 2147483647.0, 1},
    {"FLOAT", -1000, 1000, 0.125},
    {"DOUBLE", -1e6, 1e6, 0.0078125},
    {"BOOL", 0, 1, 1},
    {"UINT8", 0, 255, 1},
    {"INT8", -128, 127, 1},
    {"UINT16", 0, 65535, 1},
    {"INT16", -32768, 32767, 1},
    {"UINT64", 0, 9007199254740992.0, 1},
    {"INT64", -9007199254740992.0, 9007199254740992.0, 1},
};

struct PinPlan {
    std::size_t type;
    Eigen::Index rows;
    Eigen::Index cols;
};

Eigen::MatrixXd arbitraryMatrix(const PinPlan& plan) {
    const Type& type = kTypes[plan.type];
    const double steps = (type.maximum - type.minimum) / type.step;
    return Eigen::MatrixXd::NullaryExpr(plan.rows, plan.cols, [&]() {
        const double share = *rc::gen::inRange(0, 1000001) / 1e6;
        return type.minimum + std::floor(share * steps) * type.step;
    });
}

// Names that make one pin each on replay: they share no leading part.
std::string columnNames(std::size_t pin, Eigen::Index count) {
    std::string names;
    for (Eigen::Index i = 0; i < count; ++i)
        names += std::string(1, static_cast<char>('a' + pin)) + std::to_string(i) + ";";
    return names;
}

}  // namespace

RC_GTEST_PROP(RoundTripTest, WhatIsRecordedComesOutOfTheReplay, (bool binary)) {
    const auto pinCount = *rc::gen::inRange<std::size_t>(1, 5);
    std::vector<PinPlan> plans;
    for (std::size_t i = 0; i < pinCount; ++i)
        plans.push_back({*rc::gen::inRange<std::size_t>(0, std::size(kTypes)),
                         *rc::gen::inRange<Eigen::Index>(1, 4),
                         *rc::gen::inRange<Eigen::Index>(1, 3)});

    const Support::TemporaryFolder folder;
    FilterRecordSensorFile recorder("recorder");
    FilterHarness rec(recorder);
    rec.set("Binary", binary);
    rec.set("Double Precision", 7);
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "COUNT");
    rec.set("Pins Number", static_cast<int>(pinCount));
    for (std::size_t i = 0; i < pinCount; ++i) {
        const std::string number = std::to_string(i + 1);
        rec.set("ColNames#" + number, columnNames(i, plans[i].rows * plans[i].cols));
        rec.choose("ColTypes#" + number, kTypes[plans[i].type].name);
    }
    rec.set("File Name", folder.file("a.sf"));
    rec.set("Record", true);
    std::vector<std::vector<double>> recorded;
    const int rowCount = *rc::gen::inRange(0, 20);
    for (int row = 0; row < rowCount; ++row) {
        std::vector<double> values{static_cast<double>(row)};
        rec.push("TimeStampPin", Support::column({values[0]}));
        for (std::size_t i = 0; i < pinCount; ++i) {
            const Eigen::MatrixXd value = arbitraryMatrix(plans[i]);
            values.insert(values.end(), value.data(), value.data() + value.size());
            rec.push("input#" + std::to_string(i + 1), value);
        }
        recorded.push_back(values);
        rec.step();
    }
    rec.step();
    rec.set("Record", false);

    const Support::RecordedSleeps sleeps;
    FilterReplaySensorFile player("player");
    FilterHarness replay(player);
    replay.set("Binary", binary);
    replay.set("MinSize AutoDetectName", 30);
    replay.set("Load File", folder.file("a.sf"));
    replay.watch();
    replay.set("Replay", true);
    replay.step(rowCount + 1);
    RC_ASSERT(!replay.get<bool>("Replay"));
    std::vector<std::vector<double>> replayed(recorded.size());
    for (const std::string& pin : replay.outputNames()) {
        const auto values = replay.pullValues(pin);
        RC_ASSERT(values.size() == replayed.size());
        for (std::size_t row = 0; row < values.size(); ++row)
            replayed[row].push_back(values[row].at(0));
    }
    RC_ASSERT(replayed == recorded);
}
