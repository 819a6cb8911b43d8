#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "host/filters/BuiltinPlugin.hpp"
#include "host/filters/FilterProbe.hpp"
#include "tests/host/filters/Support.hpp"

#include <chrono>
#include <mutex>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Quoril::Core {
namespace {

using namespace TestKit;

/// Built-in filters in a running host.
class BuiltinFlowTest : public ::testing::Test {
 protected:
    BuiltinFlowTest() {
        installBuiltinPlugin();
        flow_ = std::make_unique<Flow>();
        flow_->setErrorHandler([this](const std::string& filter, const std::string& text) {
            const std::lock_guard lock(mutex_);
            errors_.push_back(filter + ": " + text);
        });
    }

    Filter& add(const std::string& className, const std::string& name, const std::string& layout) {
        LayoutManager* manager = flow_->findLayout(layout);
        return flow_->addFilter(className, name, manager ? *manager : flow_->addLayout(layout));
    }

    Filter& addProbe(int pins, const std::string& layout) {
        Filter& probe = add("FilterProbe", "probe", layout);
        set(probe, "File Name", file_.path());
        set(probe, "Pins Number", pins);
        return probe;
    }

    void connect(Filter& from, const std::string& output, Filter& to, const std::string& input) {
        flow_->connect(*from.findOutputPin(output), *to.findInputPin(input),
                       BufferSettings{64, false});
    }

    template <class Condition>
    static void waitFor(Condition condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_TRUE(condition());
    }

    void start() {
        flow_->setPacing({Pacing::Mode::kMaximum, 1.0});
        flow_->start();
    }

    void runToEnd() {
        start();
        waitFor([this] { return flow_->isFinished(); });
        flow_->stop();
    }

    std::vector<nlohmann::json> readLines() {
        std::vector<nlohmann::json> lines;
        std::istringstream stream(file_.read());
        for (std::string line; std::getline(stream, line);)
            lines.push_back(nlohmann::json::parse(line));
        return lines;
    }

    std::mutex mutex_;
    std::vector<std::string> errors_;
    ScratchFile file_;
    std::unique_ptr<Flow> flow_;
};

TEST_F(BuiltinFlowTest, EveryRowOfAFileReachesTheProbe) {
    std::string content = "t,x\n";
    for (int i = 0; i < 5000; ++i)
        content += std::to_string(i) + ",0.1\n";
    const ScratchFile csv(content);
    for (const char* layout : {"main", "other"}) {
        flow_ = std::make_unique<Flow>();
        Filter& source = add("FilterCsvSource", "csv", "main");
        set(source, "File Name", csv.path());
        set(source, "Columns", "p=t,x");
        Filter& probe = addProbe(1, layout);
        connect(source, "p", probe, "input#1");
        runToEnd();
        const auto lines = readLines();
        ASSERT_EQ(lines.size(), 5000U) << layout;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i]["values"][0], static_cast<double>(i));
            EXPECT_EQ(lines[i]["values"][1], 0.1);
        }
    }
}

TEST_F(BuiltinFlowTest, BadRowIsToldAndEndsTheRun) {
    const ScratchFile csv("t,x\n1,2\n2,oops\n3,4\n");
    Filter& source = add("FilterCsvSource", "csv", "main");
    set(source, "File Name", csv.path());
    set(source, "Columns", "p=x");
    connect(source, "p", addProbe(1, "main"), "input#1");
    runToEnd();
    EXPECT_EQ(readLines().size(), 1U);
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_TRUE(errors_[0].starts_with("csv: ")) << errors_[0];
    EXPECT_TRUE(
        errors_[0].ends_with(csv.path() + ", line 3, column 2 ('x'): 'oops' is not a number"))
        << errors_[0];
}

TEST_F(BuiltinFlowTest, SimulatorAndMatrixRunToTheirEnds) {
    Filter& imu = add("FilterImuSimulator", "imu", "main");
    set(imu, "Count", 1000);
    Filter& matrix = add("FilterMatrixSource", "matrix", "main");
    set(matrix, "Matrix", "1 2; 3 4");
    Filter& probe = addProbe(3, "other");
    connect(imu, "acc", probe, "input#1");
    connect(imu, "accGain", probe, "input#2");
    connect(matrix, "matrix", probe, "input#3");
    runToEnd();
    std::vector<std::string> others;
    std::size_t samples = 0;
    for (const auto& line : readLines()) {
        if (line["pin"] == "input#1")
            ++samples;
        else
            others.push_back(line["values"].dump());
    }
    EXPECT_EQ(samples, 1000U);
    EXPECT_THAT(others, ::testing::UnorderedElementsAre("[1,0,0,0,1,0,0,0,1]", "[1,3,2,4]"));
}

TEST_F(BuiltinFlowTest, CommandAfterTheEndSendsAgain) {
    Filter& matrix = add("FilterMatrixSource", "matrix", "main");
    set(matrix, "Matrix", "5");
    connect(matrix, "matrix", addProbe(1, "main"), "input#1");
    start();
    waitFor([this] { return readLines().size() == 1; });
    trigger(matrix, "Send");
    waitFor([this] { return readLines().size() == 2; });
    flow_->stop();
}

}  // namespace
}  // namespace Quoril::Core
