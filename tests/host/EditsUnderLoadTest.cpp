#include "framework/RangeProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "tests/host/FlowFixture.hpp"

#include <atomic>
#include <thread>

#include <Poco/Mutex.h>

namespace Quoril::Core {
namespace {

/// A recorder-like filter: its call and its handlers use one mutex, and both touch properties.
class EditedFilter final : public TestFilter {
 public:
    static constexpr const char* kClassName = "EditedFilter";
    explicit EditedFilter(const std::string& name) : TestFilter(name) {
        getPropertyBag()->registerProperty("Pins Number", pinCount);
        getPropertyBag()->registerProperty("Gain", gain);
        addOutput("output");
        pinCount.setRange(0, 8, 1);
        pinCount.attach(*this, &EditedFilter::onPinCount);
        onProcess = [this] { work(); };
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    void work() {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        sum.set(sum.get() + gain.get());
        passOne();
    }
    void onPinCount() {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        const auto count = static_cast<std::size_t>(pinCount.get());
        while (inputs.size() > count)
            inputs.pop_back();
        while (inputs.size() < count)
            addInput("input#" + std::to_string(inputs.size() + 1));
    }

    RangeProperty<int> pinCount{"Pins Number", getPropertyBag()};
    ValueProperty<double> gain{"Gain", getPropertyBag(), 1.0};
    ValueProperty<double> sum{"Sum", getPropertyBag(), 0.0};

 private:
    Poco::FastMutex mutex_;
};

class EditsUnderLoadTest : public FlowFixture {
 protected:
    EditsUnderLoadTest() {
        InstalledTestPlugin::manager().addFilterFactory(factory_);
        source_.rowCount = 1'000'000'000;
        source_.ownRate = 50000.0;
    }
    ~EditsUnderLoadTest() override {
        flow.stop();
        InstalledTestPlugin::manager().removeFilterFactory(factory_);
    }
    /// Runs an edit again and again on two threads, beside the running flow.
    template <class Edit>
    void editOnTwoThreads(Edit edit) {
        flow.start();
        ASSERT_TRUE(waitFor([&] { return look(source_, [&] { return source_.sentRows > 9; }); }));
        std::thread other([&] {
            for (int i = 0; i < 300; ++i)
                edit(1, i);
        });
        for (int i = 0; i < 300; ++i)
            edit(0, i);
        other.join();
        flow.stop();
    }

    FilterFactory<EditedFilter> factory_{"edited", ComponentVersion("1")};
    TestSource& source_ = add<TestSource>("source", "first");
};

TEST_F(EditsUnderLoadTest, PropertyEditsAndCallsThatUsePropertiesDoNotDeadlock) {
    auto& first = add<EditedFilter>("a", "first");
    auto& second = add<EditedFilter>("b", "second");
    first.pinCount.set(1);
    second.pinCount.set(1);
    connect(source_, first);
    connect(source_, second);
    editOnTwoThreads([&](int thread, int i) {
        EditedFilter& filter = (thread + i) % 2 == 0 ? first : second;
        filter.gain.set(i);
        std::string text;
        filter.sum.serialize(text);
    });
    EXPECT_GE(first.gain.get(), 298.0);  // the last edit of either thread
}

TEST_F(EditsUnderLoadTest, HandlersRemovePinsThatAreConnectedToOtherLayouts) {
    auto& first = add<EditedFilter>("a", "first");
    auto& second = add<EditedFilter>("b", "second");
    editOnTwoThreads([&](int thread, int i) {
        EditedFilter& own = thread == 0 ? first : second;
        EditedFilter& other = thread == 0 ? second : first;
        own.pinCount.set(1 + i % 3);
        {
            const Synchronizer::DisablerLocker edit(own.getSynchronizer(), other.getSynchronizer());
            if (own.inputs.front()->getOutputPin() == nullptr)
                other.outputs.front()->attach(*own.inputs.front(), false);
        }
        own.pinCount.set(0);
    });
    EXPECT_TRUE(first.inputs.empty());
}

TEST_F(EditsUnderLoadTest, ConnectionsAndBuffersChangeWhileSamplesCross) {
    auto& a = add<TestSink>("a", "second");
    auto& b = add<TestSink>("b", "second");
    editOnTwoThreads([&](int thread, int i) {
        TestSink& sink = thread == 0 ? a : b;
        connect(source_, sink);
        sink.inputs.front()->setBuffer({.size = 1U + static_cast<unsigned>(i % 4)});
        flow.disconnect(*source_.outputs.front(), *sink.inputs.front());
    });
}

TEST_F(EditsUnderLoadTest, FiltersComeAndGo) {
    layout("main");  // before two threads find it missing at once
    editOnTwoThreads([&](int thread, int i) {
        auto& sink = add<TestSink>("sink" + std::to_string(thread), i % 2 == 0 ? "first" : "main");
        connect(source_, sink);
        EXPECT_FALSE(flow.getPinReports().empty());
        flow.removeFilter(sink);
    });
    EXPECT_EQ(flow.getFilters().size(), 1U);
}

TEST_F(EditsUnderLoadTest, CommandsPushWhileTheLayoutRuns) {
    auto& sender = add<TestFilter>("sender", "first");
    sender.addOutput("output");
    auto& sink = add<TestSink>("sink", "first");
    auto& far = add<TestSink>("far", "second");
    connect(sender, sink);
    connect(sender, far);
    editOnTwoThreads([&](int /*thread*/, int i) {
        const Synchronizer::DisablerLocker edit(sender.getSynchronizer(), nullptr);
        sender.pushAll(i);
    });
    const auto isWhole = [](const TestSink& reader) {
        const PinCounters counters = reader.inputs.front()->getCounters();
        return counters.pushed == 600 && counters.taken + counters.overwritten == 600;
    };
    EXPECT_TRUE(isWhole(sink));
    EXPECT_TRUE(isWhole(far));
}

}  // namespace
}  // namespace Quoril::Core
