#pragma once

#include "framework/DefaultPlugin.hpp"
#include "framework/Filter.hpp"
#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "framework/PluginManager.hpp"
#include "host/Clock.hpp"
#include "host/PacedSource.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Quoril::Core {

using MatrixInput = InputPin<Eigen::MatrixXd>;
using MatrixOutput = OutputPin<Eigen::MatrixXd>;

/// Does in its call what the test says, and reports the call to a list of names.
class TestFilter : public Filter {
 public:
    static constexpr const char* kClassName = "TestFilter";
    explicit TestFilter(const std::string& name) : Filter(name, true) {}

    void process() override {
        ++calls;
        if (callLog != nullptr) callLog->push_back(getName());
        if (onProcess) onProcess();
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    MatrixInput& addInput(const std::string& name, const BufferSettings& buffer = {.size = 64}) {
        inputs.push_back(std::make_unique<MatrixInput>(name, this));
        inputs.back()->setBuffer(buffer);
        return *inputs.back();
    }
    MatrixOutput& addOutput(const std::string& name) {
        outputs.push_back(std::make_unique<MatrixOutput>(name, this));
        return *outputs.back();
    }

    /// Pushes a 1 x 1 matrix on every output.
    void pushAll(double value) {
        for (const auto& output : outputs)
            push(*output, value, value);
    }
    static void push(MatrixOutput& output, double value, double timeStamp) {
        output.getValue().setConstant(1, 1, value);
        output.push(timeStamp);
    }
    /// Takes one sample; not a number when there is none.
    static double takeOne(MatrixInput& input) {
        return input.fetch() ? input.take()->value(0, 0) : std::nan("");
    }
    /// Takes one sample of every input that has one and passes it on.
    void passOne() {
        for (const auto& input : inputs)
            if (input->fetch()) {
                const double value = input->take()->value(0, 0);
                received.push_back(value);
                pushAll(value);
            }
    }

    std::function<void()> onProcess;
    std::vector<std::string>* callLog = nullptr;
    int calls = 0;
    std::vector<double> received;
    std::vector<std::unique_ptr<MatrixInput>> inputs;
    std::vector<std::unique_ptr<MatrixOutput>> outputs;
};

/// Sends 0, 1, 2, ... with time stamps by its rate, a given number of rows.
class TestSource final : public TestFilter, public PacedSource {
 public:
    static constexpr const char* kClassName = "TestSource";
    explicit TestSource(const std::string& name) : TestFilter(name) {
        addOutput("output");
        onProcess = [this] { sendRow(); };
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    [[nodiscard]] std::optional<double> getNextDueTime() const override {
        if (ownRate <= 0.0) return std::nullopt;
        return sentRows / ownRate;
    }
    [[nodiscard]] bool isFinished() const override { return sentRows >= rowCount; }

    void sendRow() {
        if (isFinished()) return;
        if (clock != nullptr) sentAt.push_back(clock->now());
        const int row = sentRows++;
        for (const auto& output : outputs)
            push(*output, row, stampOf ? stampOf(row) : row / stampRate);
    }

    int rowCount = 0;
    int sentRows = 0;
    double ownRate = 0.0;      ///< rows per second; 0: as fast as the graph takes them
    double stampRate = 100.0;  ///< rows per second of the time stamps
    std::function<double(int)> stampOf;
    Clock* clock = nullptr;
    std::vector<Clock::Instant> sentAt;
};

/// Passes every sample on, one per call.
class TestPass final : public TestFilter {
 public:
    static constexpr const char* kClassName = "TestPass";
    explicit TestPass(const std::string& name) : TestFilter(name) {
        addInput("input");
        addOutput("output");
        onProcess = [this] { passOne(); };
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
};

/// Keeps what it gets, one sample of each input per call.
class TestSink final : public TestFilter {
 public:
    static constexpr const char* kClassName = "TestSink";
    explicit TestSink(const std::string& name) : TestFilter(name) {
        addInput("input");
        onProcess = [this] { passOne(); };
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
};

class TestPlugin final : public DefaultPlugin {
 public:
    explicit TestPlugin(const std::string& name = "Test") : DefaultPlugin(name, "1.0.0") {
        offer<TestFilter>();
        offer<TestSource>();
        offer<TestPass>();
        offer<TestSink>();
    }

 private:
    template <class T>
    void offer() {
        addFilterFactory(
            std::make_unique<FilterFactory<T>>(getName(), ComponentVersion(getVersion())));
    }
};

/// Installs the test filters for its lifetime.
class InstalledTestPlugin {
 public:
    InstalledTestPlugin() { manager().installPlugin(plugin); }
    ~InstalledTestPlugin() { manager().uninstallPlugin(plugin); }
    InstalledTestPlugin(const InstalledTestPlugin&) = delete;
    InstalledTestPlugin& operator=(const InstalledTestPlugin&) = delete;

    static PluginManager& manager() { return FlowManager::instance().getPluginManager(); }

    TestPlugin plugin;
};

/// Waits for a condition that other threads bring about; false if they do not.
template <class Condition>
bool waitFor(Condition condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace Quoril::Core
