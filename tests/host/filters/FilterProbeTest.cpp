#include "framework/OutputPin.hpp"
#include "host/filters/FilterProbe.hpp"
#include "host/filters/SampleLine.hpp"
#include "tests/host/filters/Support.hpp"

#include <algorithm>
#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using namespace TestKit;
using Matrix = Eigen::MatrixXd;

std::string lineOf(const Matrix& value, double time) {
    std::string text;
    appendSampleLine(text, "\"pin\":\"p\"", {value, time});
    return text;
}

TEST(SampleLineTest, SampleIsOneLineColumnByColumn) {
    EXPECT_EQ(lineOf((Matrix(2, 2) << 1, 2, 3, 4).finished(), 0.5),
              "{\"pin\":\"p\",\"time\":0.5,\"rows\":2,\"cols\":2,\"values\":[1,3,2,4]}\n");
    EXPECT_EQ(lineOf(Matrix(0, 3), -1),
              "{\"pin\":\"p\",\"time\":-1,\"rows\":0,\"cols\":3,\"values\":[]}\n");
}

TEST(SampleLineTest, NumbersHave17Digits) {
    EXPECT_EQ(lineOf((Matrix(1, 3) << 0.1, 1e100, -2.0 / 3.0).finished(), 1 / 200.0),
              "{\"pin\":\"p\",\"time\":0.0050000000000000001,\"rows\":1,\"cols\":3,\"values\":["
              "0.10000000000000001,1e+100,-0.66666666666666663]}\n");
}

TEST(SampleLineTest, NumbersThatJsonLacksAreStrings) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(lineOf((Matrix(1, 3) << kNan, kInf, -kInf).finished(), kNan),
              "{\"pin\":\"p\",\"time\":\"nan\",\"rows\":1,\"cols\":3,\"values\":[\"nan\",\"inf\","
              "\"-inf\"]}\n");
}

TEST(SampleLineTest, LinesAreJsonThatGivesEveryDoubleBack) {
    const Matrix value = (Matrix(1, 6) << 5e-324, std::numeric_limits<double>::max(), -0.0,
                          9007199254740993.0, 0.3, 1.0 / 3.0)
                             .finished();
    const auto json = nlohmann::json::parse(lineOf(value, 1e-7));
    ASSERT_EQ(json["values"].size(), 6U);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(json["values"][i].get<double>(), value.data()[i]) << i;
    EXPECT_EQ(json["time"].get<double>(), 1e-7);
}

TEST(SampleLineTest, StringsAreEscaped) {
    EXPECT_EQ(toJsonString("a\"b\\\n"), "\"a\\\"b\\\\\\n\"");
    EXPECT_EQ(toJsonString("\xFF"), "\"\xEF\xBF\xBD\"");
}

class FilterProbeTest : public ::testing::Test {
 protected:
    explicit FilterProbeTest(int pins = 2) {
        set(probe_, "Pins Number", pins);
        for (int i = 0; i < pins; ++i) {
            outputs_.push_back(std::make_unique<OutputPin<Matrix>>("out", nullptr));
            outputs_.back()->attach(*probe_.getInputPins()[static_cast<std::size_t>(i)], true);
        }
    }

    void send(std::size_t pin, double value, double time) {
        outputs_[pin]->getValue() = Matrix::Constant(1, 1, value);
        outputs_[pin]->push(time);
    }

    static std::string line(const std::string& pin, const std::string& value,
                            const std::string& time) {
        return "{\"pin\":\"" + pin + "\",\"time\":" + time + ",\"rows\":1,\"cols\":1,\"values\":[" +
               value + "]}\n";
    }

    ScratchFile file_;
    FilterProbe probe_{"probe"};
    std::vector<std::unique_ptr<OutputPin<Matrix>>> outputs_;
};

TEST_F(FilterProbeTest, PropertiesAndPinsOfAProbe) {
    FilterProbe fresh("fresh");
    EXPECT_THAT(fresh.getPropertyBag()->getNames(),
                ElementsAre("File Name", "Label", "Pins Number"));
    EXPECT_TRUE(fresh.getInputPins().empty());
    EXPECT_STREQ(fresh.getClassName(), "FilterProbe");
    set(fresh, "Pins Number", 64);
    ASSERT_EQ(fresh.getInputPins().size(), 64U);
    EXPECT_EQ(fresh.getInputPins().front()->getName(), "input#1");
    EXPECT_EQ(fresh.getInputPins().back()->getName(), "input#64");
    EXPECT_EQ(fresh.getInputPins().back()->getBuffer().size, 256U);
    set(fresh, "Pins Number", 1);
    EXPECT_EQ(fresh.getInputPins().size(), 1U);
    EXPECT_THROW(set(fresh, "Pins Number", 65), Poco::RangeException);
    EXPECT_THROW(set(fresh, "Pins Number", -1), Poco::RangeException);
}

TEST_F(FilterProbeTest, OneCallWritesAllThatWaits) {
    set(probe_, "File Name", file_.path());
    send(0, 1, 0.25);
    send(1, 10, 0.25);
    send(0, 2, 0.5);
    probe_.process();
    EXPECT_EQ(file_.read(), line("input#1", "1", "0.25") + line("input#1", "2", "0.5") +
                                line("input#2", "10", "0.25"));
    send(1, 0.1, 1);
    probe_.process();
    EXPECT_TRUE(file_.read().ends_with(line("input#2", "0.10000000000000001", "1")));
}

TEST_F(FilterProbeTest, FileIsMadeByTheFirstSampleOnly) {
    set(probe_, "File Name", file_.path());
    probe_.process();
    EXPECT_FALSE(std::filesystem::exists(file_.path()));
    file_.write("old");
    send(0, 1, 0);
    probe_.process();
    EXPECT_EQ(file_.read(), line("input#1", "1", "0"));
}

TEST_F(FilterProbeTest, AnotherNameOpensAnotherFile) {
    const ScratchFile second;
    set(probe_, "File Name", file_.path());
    send(0, 1, 0);
    probe_.process();
    set(probe_, "File Name", second.path());
    send(0, 2, 0);
    probe_.process();
    EXPECT_EQ(file_.read(), line("input#1", "1", "0"));
    EXPECT_EQ(second.read(), line("input#1", "2", "0"));
}

TEST_F(FilterProbeTest, LabelBeginsEveryLine) {
    set(probe_, "File Name", file_.path());
    set(probe_, "Label", "run \"7\"");
    send(1, 1, 0);
    probe_.process();
    EXPECT_EQ(file_.read(),
              "{\"label\":\"run \\\"7\\\"\",\"pin\":\"input#2\",\"time\":0,\"rows\":1,\"cols\":1,"
              "\"values\":[1]}\n");
}

TEST_F(FilterProbeTest, EmptyNameAndDashAreTheStandardOutput) {
    for (const char* name : {"", "-"}) {
        set(probe_, "File Name", name);
        ::testing::internal::CaptureStdout();
        send(0, 1, 0);
        probe_.process();
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), line("input#1", "1", "0"));
    }
}

TEST_F(FilterProbeTest, FileThatCannotBeOpenedIsToldOnceAndSamplesAreTaken) {
    const std::string folder = std::filesystem::temp_directory_path().string();
    set(probe_, "File Name", folder);
    send(0, 1, 0);
    EXPECT_EQ(messageOf<Poco::IOException>([&] { probe_.process(); }),
              "File '" + folder + "' cannot be opened for writing");
    send(0, 2, 0);
    EXPECT_NO_THROW(probe_.process());
    EXPECT_EQ(probe_.getInputPins()[0]->getWaitingCount(), 0U);

    set(probe_, "File Name", file_.path());
    send(0, 3, 0);
    probe_.process();
    EXPECT_EQ(file_.read(), line("input#1", "3", "0"));
}

// A device that is always full; elsewhere its folder is missing, and opening fails.
TEST_F(FilterProbeTest, FullDiskIsToldOnce) {
    set(probe_, "File Name", "/dev/full");
    send(0, 1, 0);
    EXPECT_THROW(probe_.process(), Poco::IOException);
    send(0, 2, 0);
    EXPECT_NO_THROW(probe_.process());
}

TEST_F(FilterProbeTest, LongDrainsAreWrittenWhole) {
    set(probe_, "File Name", file_.path());
    outputs_[0]->getValue() = Matrix::Constant(100, 10, 0.1);
    for (int i = 0; i < 200; ++i)
        outputs_[0]->push(i);
    probe_.process();
    const std::string written = file_.read();
    EXPECT_EQ(std::count(written.begin(), written.end(), '\n'), 200);
    EXPECT_GT(written.size(), 200U * 1000U * 19U);
}

}  // namespace
}  // namespace Quoril::Core
