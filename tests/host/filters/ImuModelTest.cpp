#include "host/filters/ImuModel.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

ImuSettings quiet() {
    return {};
}

ImuSettings noisy() {
    ImuSettings settings;
    settings.acc.noiseDensity = 0.0012;
    settings.gyr.noiseDensity = 0.00012;
    settings.mag.noiseDensity = 0.04;
    return settings;
}

std::array<double, 9> valuesOf(const ImuFrame& f) {
    return {f.acc[0], f.acc[1], f.acc[2], f.gyr[0], f.gyr[1],
            f.gyr[2], f.mag[0], f.mag[1], f.mag[2]};
}

// FNV-1a over the bytes of a double, lowest first.
void hash(std::uint64_t& state, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (unsigned shift = 0; shift < 64; shift += 8)
        state = (state ^ ((bits >> shift) & 0xFFU)) * 0x100000001B3U;
}

// The expected numbers come from a second implementation, in another language.
TEST(ImuModelTest, FramesAreTheSameToTheBitEverywhere) {
    ImuModel model(noisy());
    std::uint64_t state = 0xCBF29CE484222325U;
    for (int i = 0; i < 2000; ++i) {
        const auto values = valuesOf(model.getFrame());
        if (i == 0) {
            EXPECT_EQ(values[2], 0x1.39a8fba232c2bp+3);
        }
        if (i == 1999) {
            EXPECT_EQ(values[6], 0x1.b72d73fc0b6eep-1);
        }
        for (const double value : values)
            hash(state, value);
        model.advance();
    }
    EXPECT_EQ(state, 0xB238C8F88518C50BU);
}

TEST(ImuModelTest, EqualSettingsGiveEqualFramesAndOtherSeedsOtherOnes) {
    ImuSettings other = noisy();
    other.seed = 2;
    ImuModel a(noisy());
    ImuModel b(noisy());
    ImuModel c(other);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(valuesOf(a.getFrame()), valuesOf(b.getFrame()));
        EXPECT_NE(valuesOf(a.getFrame()), valuesOf(c.getFrame()));
        a.advance();
        b.advance();
        c.advance();
    }
}

TEST(ImuModelTest, MotionIsThatOfATurningUnit) {
    constexpr double kRate = 10000.0;
    ImuSettings settings = quiet();
    settings.rate = kRate;
    ImuModel model(settings);
    std::vector<ImuFrame> frames;
    for (int i = 0; i < 30000; ++i) {
        frames.push_back(model.getFrame());
        model.advance();
    }
    for (std::size_t i = 1; i + 1 < frames.size(); i += 97) {
        const ImuVector& w = frames[i].gyr;
        const ImuVector& m = frames[i].mag;
        // A fixed direction, seen from the unit, turns against the unit.
        const ImuVector expected{m[1] * w[2] - m[2] * w[1], m[2] * w[0] - m[0] * w[2],
                                 m[0] * w[1] - m[1] * w[0]};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double slope = (frames[i + 1].mag[axis] - frames[i - 1].mag[axis]) * kRate / 2.0;
            EXPECT_NEAR(slope, expected[axis], 1e-3) << i;
        }
    }
}

TEST(ImuModelTest, GravityAndFieldKeepTheirStrength) {
    ImuModel model(quiet());
    double most = 0.0;
    for (int i = 0; i < 200000; ++i) {
        const ImuFrame f = model.getFrame();
        EXPECT_NEAR(std::hypot(f.mag[0], f.mag[1], f.mag[2]), std::hypot(20.0, 43.5), 1e-9);
        EXPECT_NEAR(std::hypot(f.acc[0], f.acc[1], f.acc[2]), 9.80665, 0.6 + 1e-9);
        most = std::max(most, std::hypot(f.gyr[0], f.gyr[1], f.gyr[2]));
        model.advance();
    }
    EXPECT_GT(most, 1.0);
    EXPECT_LT(most, 3.0);
}

TEST(ImuModelTest, UnitStartsLevelAndFacesNorth) {
    const ImuFrame f = ImuModel(quiet()).getFrame();
    EXPECT_EQ(f.acc, (ImuVector{0.0, 0.0, 9.80665}));
    EXPECT_EQ(f.mag, (ImuVector{20.0, 0.0, -43.5}));
}

TEST(ImuModelTest, LowRatesDoNotDisturbTheMotion) {
    for (const double rate : {0.1, 1.0, 3.8}) {
        ImuSettings settings = quiet();
        settings.rate = rate;
        ImuModel model(settings);
        for (int i = 0; i < 100; ++i)
            model.advance();
        const ImuFrame f = model.getFrame();
        const double t = 100.0 / rate;
        const double kTwoPi = 2.0 * std::acos(-1.0);
        const double pitch = 0.35 * std::sin(kTwoPi * 0.27 * t);
        const double lift = 9.80665 + 0.6 * std::sin(kTwoPi * 1.9 * t);
        EXPECT_NEAR(f.acc[0], -lift * std::sin(pitch), 1e-9) << rate;
    }
}

TEST(ImuModelTest, NoiseHasItsDensityAndBiasItsPlace) {
    ImuSettings settings = noisy();
    settings.acc.bias = {0.1, -0.2, 0.3};
    ImuSettings still = quiet();
    ImuModel measured(settings);
    ImuModel ideal(still);
    constexpr int kFrames = 50000;
    std::array<double, 9> sum{};
    std::array<double, 9> squares{};
    for (int i = 0; i < kFrames; ++i) {
        const auto a = valuesOf(measured.getFrame());
        const auto b = valuesOf(ideal.getFrame());
        for (std::size_t channel = 0; channel < 9; ++channel) {
            sum[channel] += a[channel] - b[channel];
            squares[channel] += (a[channel] - b[channel]) * (a[channel] - b[channel]);
        }
        measured.advance();
        ideal.advance();
    }
    const double densities[] = {0.0012, 0.00012, 0.04};
    for (std::size_t channel = 0; channel < 9; ++channel) {
        const double deviation = densities[channel / 3] * std::sqrt(100.0);
        const double mean = sum[channel] / kFrames;
        const double bias = channel < 3 ? settings.acc.bias[channel] : 0.0;
        EXPECT_NEAR(mean, bias, 6.0 * deviation / std::sqrt(kFrames)) << channel;
        const double spread = std::sqrt(squares[channel] / kFrames - mean * mean);
        EXPECT_NEAR(spread, deviation, 0.03 * deviation) << channel;
    }
}

TEST(ImuNoiseTest, NumbersAreNearlyNormalAndIndependent) {
    const ImuNoise noise(5);
    constexpr int kFrames = 100000;
    double inOne = 0;
    double inTwo = 0;
    double correlation = 0;
    double succession = 0;
    double before = 0;
    for (std::uint64_t frame = 0; frame < kFrames; ++frame) {
        const auto n = noise.getNormals(frame);
        inOne += std::abs(n[4]) < 1.0 ? 1.0 : 0.0;
        inTwo += std::abs(n[4]) < 2.0 ? 1.0 : 0.0;
        correlation += n[4] * n[5];
        succession += n[4] * before;
        before = n[4];
        EXPECT_LT(std::abs(n[8]), 4.9);
    }
    EXPECT_NEAR(inOne / kFrames, 0.6827, 0.02);
    EXPECT_NEAR(inTwo / kFrames, 0.9545, 0.01);
    EXPECT_NEAR(correlation / kFrames, 0.0, 0.02);
    EXPECT_NEAR(succession / kFrames, 0.0, 0.02);
}

TEST(ImuModelTest, DropOutsHaveTheirShareAndLeaveOtherFramesAlone) {
    ImuSettings settings = noisy();
    settings.dropOutProbability = 0.1;
    ImuModel lossy(settings);
    ImuModel whole(noisy());
    std::uint64_t lost = 0;
    constexpr std::uint64_t kFrames = 50000;
    EXPECT_EQ(lossy.getIndex(), 0U);
    while (lossy.getIndex() < kFrames) {
        lost += lossy.advance() - 1;
        while (whole.getIndex() < lossy.getIndex())
            whole.advance();
        ASSERT_EQ(valuesOf(lossy.getFrame()), valuesOf(whole.getFrame()));
    }
    EXPECT_NEAR(static_cast<double>(lost) / kFrames, 0.1, 0.01);
}

TEST(ImuModelTest, LostFramesAreTheSeedsOwn) {
    ImuSettings settings = noisy();
    settings.seed = 7;
    settings.dropOutProbability = 0.1;
    ImuModel model(settings);
    std::vector<std::uint64_t> lost;
    while (model.getIndex() < 60) {
        const std::uint64_t before = model.getIndex();
        model.advance();
        for (std::uint64_t i = before + 1; i < model.getIndex() && i < 60; ++i)
            lost.push_back(i);
    }
    EXPECT_EQ(lost, (std::vector<std::uint64_t>{12, 59}));
}

TEST(ImuModelTest, RawCountsAreWholeAndClipped) {
    ImuSettings settings = noisy();
    settings.isRaw = true;
    settings.acc.unitsPerCount = 0.01;
    settings.gyr.unitsPerCount = 1e-6;
    ImuModel raw(settings);
    settings.isRaw = false;
    ImuModel exact(settings);
    bool isClipped = false;
    for (int i = 0; i < 1000; ++i) {
        const ImuFrame counts = raw.getFrame();
        const ImuFrame values = exact.getFrame();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(counts.acc[axis], std::floor(counts.acc[axis]));
            EXPECT_NEAR(counts.acc[axis] * 0.01, values.acc[axis], 0.005 + 1e-9);
            EXPECT_LE(std::abs(counts.gyr[axis]), 32767.0);
            isClipped = isClipped || counts.gyr[axis] == 32767.0;
        }
        raw.advance();
        exact.advance();
    }
    EXPECT_TRUE(isClipped);
}

}  // namespace
}  // namespace Quoril::Core
