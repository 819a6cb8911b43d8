#include "tests/flows/EveryFilterFixture.hpp"

#include <limits>

// Matrices that no sensor sends: calls let nothing out, and the filter works on afterwards.

using Quoril::Core::Filter;

namespace {

std::vector<Eigen::MatrixXd> oddMatrices() {
    using Limits = std::numeric_limits<double>;
    std::vector<Eigen::MatrixXd> matrices{Eigen::MatrixXd(), Eigen::MatrixXd(0, 5),
                                          Eigen::MatrixXd(5, 0), Eigen::MatrixXd::Ones(300, 300),
                                          Eigen::MatrixXd::Ones(1, 256)};
    for (const double value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300,
                               -1e300, Limits::denorm_min(), -0.0, 9.3e18, -2147483649.0}) {
        matrices.emplace_back(Eigen::MatrixXd::Constant(1, 1, value));
        matrices.emplace_back(Eigen::MatrixXd::Constant(1, 3, value));
        matrices.emplace_back(Eigen::MatrixXd::Constant(3, 3, value));
    }
    return matrices;
}

Eigen::MatrixXd usualMatrix(const std::string& pin) {
    if (pin.find("Gain") != std::string::npos) return Eigen::MatrixXd::Identity(3, 3);
    if (pin.front() == '3' || pin == "FrameNumber") return Eigen::MatrixXd::Ones(1, 3);
    return Eigen::MatrixXd::Ones(1, 1);
}

}  // namespace

class OddMatricesTest : public EveryFilterFixture {
 protected:
    void SetUp() override { prepare(filter); }

    /// One sample on every pin, the odd one on one of them.
    void pushAll(const std::string& oddPin, const Eigen::MatrixXd& odd) {
        for (const std::string& pin : harness.inputNames())
            harness.push(pin, pin == oddPin ? odd : usualMatrix(pin), 0.5);
    }

    /// Switches the filter on, lets it work off an odd sample, and usual ones before and after.
    void work(const std::string& pin, const Eigen::MatrixXd& odd, bool isOddFirst) {
        EXPECT_NO_THROW(harness.step());
        if (isOddFirst) pushAll(pin, odd);
        accepts([&] { switchOn(filter); });
        if (!isOddFirst) pushAll("", {});
        EXPECT_NO_THROW(harness.step());
        pushAll(pin, odd);
        EXPECT_NO_THROW(harness.step());
        pushAll("", {});
        EXPECT_NO_THROW(harness.step(3));
        accepts([&] { switchOff(filter); });
    }

    void workWithEverything() {
        for (const std::string& pin : harness.inputNames())
            for (const Eigen::MatrixXd& odd : oddMatrices())
                for (const bool isOddFirst : {false, true}) {
                    SCOPED_TRACE(pin + ", " + std::to_string(odd.rows()) + " x " +
                                 std::to_string(odd.cols()) + " of " +
                                 (odd.size() > 0 ? std::to_string(odd(0, 0)) : "nothing"));
                    work(pin, odd, isOddFirst);
                }
        for (const std::string& pin : harness.inputNames())
            harness.input(pin).clear();
        pushAll("", {});
        EXPECT_TRUE(accepts([&] { switchOn(filter); }));
        EXPECT_NO_THROW(harness.step());
        EXPECT_TRUE(accepts([&] { switchOff(filter); }));
    }

    Filter& filter = addFilter(flow.addLayout("main"));
    Harness harness{filter};
};

TEST_P(OddMatricesTest, AreWorkedOff) {
    if (filter.getPropertyBag()->find("Binary") != nullptr) harness.set("Binary", true);
    workWithEverything();
}

TEST_P(OddMatricesTest, AreWorkedOffIntoText) {
    if (filter.getPropertyBag()->find("Binary") == nullptr) return;
    harness.set("Binary", false);
    workWithEverything();
}

INSTANTIATE_TEST_SUITE_P(Filters, OddMatricesTest,
                         testing::Values("FilterRecordKivra2Format", "FilterRecordSensorFile",
                                         "FilterKivra2CalibWriter", "FilterCalibSensorFileWriter"),
                         [](const auto& variant) { return std::string(variant.param); });
