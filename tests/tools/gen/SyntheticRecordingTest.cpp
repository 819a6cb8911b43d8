#include "sensorfile/Kivra2Layout.hpp"
#include "tools/gen/SyntheticRecording.hpp"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

using Layout = SyntheticOptions::Layout;

double norm(const SyntheticMotion::Vector& vector) {
    double sum = 0.0;
    for (const std::int64_t value : vector)
        sum += static_cast<double>(value) * static_cast<double>(value);
    return std::sqrt(sum);
}

SyntheticOptions optionsOf(Layout layout) {
    SyntheticOptions options;
    options.layout = layout;
    options.start = Poco::DateTime(2020, 2, 3, 4, 5, 6);
    return options;
}

/// The first rows that are recorded.
std::vector<std::vector<double>> rowsOf(const SyntheticOptions& options, std::size_t count) {
    SyntheticRecording recording(options);
    std::vector<std::vector<double>> rows;
    while (rows.size() < count)
        if (recording.next())
            rows.emplace_back(recording.row().values().begin(), recording.row().values().end());
    return rows;
}

TEST(RandomNumbersTest, GiveTheSameOnEveryMachine) {
    // The first numbers that the generators' authors' own programs give for this seed.
    RandomNumbers random(0);
    EXPECT_EQ(random.next(), 0x53175d61490b23dfU);
    EXPECT_EQ(random.next(), 0x61da6f3dc380d507U);
    EXPECT_EQ(random.next(), 0x5c0fdf91ec9a7bfcU);
}

TEST(RandomNumbersTest, NoiseHasMeanAndDeviationAndNoFarValues) {
    constexpr int kCount = 200000;
    constexpr std::int64_t kDeviation = 1000000;
    RandomNumbers random(7);
    double sum = 0.0;
    double squares = 0.0;
    for (int i = 0; i < kCount; ++i) {
        const std::int64_t value = random.noise(kDeviation);
        ASSERT_LE(std::abs(value), 3.5 * kDeviation);
        sum += static_cast<double>(value);
        squares += static_cast<double>(value) * static_cast<double>(value);
    }
    EXPECT_NEAR(sum / kCount, 0.0, 0.01 * kDeviation);
    EXPECT_NEAR(std::sqrt(squares / kCount), kDeviation, 0.01 * kDeviation);
}

TEST(FixedSineTest, IsTheSineAllAround) {
    constexpr double kOne = 1 << 30;
    for (std::uint64_t angle = 0; angle < std::uint64_t{1} << 32U; angle += 1000003) {
        const double turns = static_cast<double>(angle) / 4294967296.0;
        ASSERT_NEAR(static_cast<double>(fixedSine(static_cast<std::uint32_t>(angle))) / kOne,
                    std::sin(2 * std::numbers::pi * turns), 1e-6);
    }
    EXPECT_EQ(fixedSine(0), 0);
    EXPECT_NEAR(static_cast<double>(fixedSine(0x40000000)) / kOne, 1.0, 1e-6);
    EXPECT_NEAR(static_cast<double>(fixedSine(0xc0000000)) / kOne, -1.0, 1e-6);
}

TEST(SyntheticMotionTest, GravityAndFieldKeepTheirStrength) {
    const SyntheticMotion motion(100.0, 12345678901234567890U);
    for (std::uint64_t i = 0; i < 10000; ++i) {
        const SyntheticMotion::Sample sample = motion.sampleAt(i);
        ASSERT_NEAR(norm(sample.acceleration), 9806650.0, 50.0);
        ASSERT_NEAR(norm(sample.field), std::hypot(20000.0, 44000.0), 5.0);
    }
}

TEST(SyntheticMotionTest, RatesTurnGravityAndField) {
    // What stands still in the world turns backward in the sensor: dv/dt = -rate x v.
    constexpr double kFrequency = 1000.0;
    const SyntheticMotion motion(kFrequency, 99);
    for (std::uint64_t i = 1; i < 20000; i += 7) {
        const SyntheticMotion::Sample before = motion.sampleAt(i - 1);
        const SyntheticMotion::Sample now = motion.sampleAt(i);
        const SyntheticMotion::Sample after = motion.sampleAt(i + 1);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t next = (axis + 1) % 3;
            const std::size_t last = (axis + 2) % 3;
            const auto check = [&](const auto quantity, double tolerance) {
                const auto change =
                    static_cast<double>((after.*quantity)[axis] - (before.*quantity)[axis]);
                const auto product = [&](std::size_t a, std::size_t b) {
                    return static_cast<double>(now.rate[a]) * 1e-6 *
                           static_cast<double>((now.*quantity)[b]);
                };
                ASSERT_NEAR(change * kFrequency / 2.0, product(last, next) - product(next, last),
                            tolerance)
                    << i << " " << axis;
            };
            check(&SyntheticMotion::Sample::acceleration, 40000.0);
            check(&SyntheticMotion::Sample::field, 1500.0);
        }
    }
}

TEST(SyntheticRecordingTest, SameOptionsGiveTheSameRows) {
    for (const Layout layout : {Layout::kImu, Layout::kCounts, Layout::kKivra2}) {
        SyntheticOptions options = optionsOf(layout);
        options.lostShare = 0.1;
        EXPECT_EQ(rowsOf(options, 100), rowsOf(options, 100));
        SyntheticOptions other = options;
        other.seed = 2;
        EXPECT_NE(rowsOf(options, 100), rowsOf(other, 100));
    }
}

TEST(SyntheticRecordingTest, FirstRowsStayWhatTheyAre) {
    // Files made with a version of the program are made again with the next.
    EXPECT_EQ(rowsOf(optionsOf(Layout::kKivra2), 2),
              (std::vector<std::vector<double>>{
                  {0, -202, -677, 1980, 595, 71, -718, 131, -502, 143, 0},
                  {1, -199, -670, 1985, 592, 67, -723, 139, -504, 139, 0}}));
}

TEST(SyntheticRecordingTest, Kivra2RecordingsHaveTheLayout) {
    const SyntheticRecording recording(optionsOf(Layout::kKivra2));
    EXPECT_TRUE(SensorFile::Kivra2::isLayout(recording.getConfig()));
    EXPECT_TRUE(SensorFile::Kivra2::hasGyro(recording.getConfig()));
    EXPECT_EQ(recording.getConfig().getCalibCount(), 6U);
    EXPECT_EQ(recording.getConfig().getCalibName(2), "MagGain");
}

TEST(SyntheticRecordingTest, CounterBeginsAgainAt0) {
    SyntheticRecording recording(optionsOf(Layout::kCounts));
    for (int i = 0; i < 65536; ++i)
        ASSERT_TRUE(recording.next());
    EXPECT_EQ(recording.row().getValue(0), 65535.0);
    recording.next();
    EXPECT_EQ(recording.row().getValue(0), 0.0);
}

TEST(SyntheticRecordingTest, LostFramesCountAndTakeTheirTime) {
    SyntheticOptions options = optionsOf(Layout::kImu);
    options.lostShare = 0.25;
    const auto rows = rowsOf(options, 10000);
    for (const std::vector<double>& row : rows)
        ASSERT_NEAR(row[1], row[0] / 200.0, 1e-9);
    EXPECT_NEAR(rows.back()[0], 10000.0 / 0.75, 200.0);
}

TEST(SyntheticRecordingTest, JitterKeepsWithinItsLimit) {
    SyntheticOptions options = optionsOf(Layout::kImu);
    options.jitter = 0.5;
    double earliest = 0.0;
    double latest = 0.0;
    for (const std::vector<double>& row : rowsOf(options, 10000)) {
        const double deviation = row[1] - row[0] / 200.0;
        ASSERT_LE(std::abs(deviation), 0.5 + 1e-9);
        earliest = std::min(earliest, deviation);
        latest = std::max(latest, deviation);
    }
    EXPECT_LT(earliest, -0.49);
    EXPECT_GT(latest, 0.49);
}

TEST(SyntheticRecordingTest, StampsOfCountsAreNanosecondsSince1970) {
    SyntheticRecording recording(optionsOf(Layout::kCounts));
    for (std::uint64_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(recording.next());
        EXPECT_EQ(recording.row().getBits(1), 1580702706000000000U + i * 5000000);
    }
}

TEST(SyntheticRecordingTest, ButtonIsHeldForASecondEveryTen) {
    const auto rows = rowsOf(optionsOf(Layout::kKivra2), 4000);
    for (std::size_t i = 0; i < rows.size(); ++i)
        ASSERT_EQ(rows[i].back(), i % 2000 >= 1000 && i % 2000 < 1200 ? 1.0 : 0.0) << i;
}

}  // namespace
}  // namespace SensorFileTool
