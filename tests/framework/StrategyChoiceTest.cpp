#include "tests/framework/PinSupport.hpp"

#include <ostream>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::layout;
using FrameworkTest::Node;
using FrameworkTest::Output;
using FrameworkTest::Sample;

template <class Buffer>
const char* familyOf(const AbstractBufferStrategy<Sample>& strategy) {
    if (dynamic_cast<const SimpleBufferStrategy<Sample, Buffer>*>(&strategy)) return "Simple";
    if (dynamic_cast<const ThreadSafeBufferStrategy<Sample, Buffer>*>(&strategy))
        return "ThreadSafe";
    if (dynamic_cast<const SynchronizedBufferStrategy<Sample, Buffer>*>(&strategy))
        return "Synchronized";
    return nullptr;
}

/// Family and buffer of the pin's strategy, e.g. "Simple Fifo".
std::string strategyOf(const Input& input) {
    const auto& strategy = input.getStrategy();
    if (const char* family = familyOf<FifoBuffer<Sample>>(strategy))
        return std::string(family) + " Fifo";
    if (const char* family = familyOf<LifoBuffer<Sample>>(strategy))
        return std::string(family) + " Lifo";
    if (const char* family = familyOf<SingleValueBuffer<Sample>>(strategy))
        return std::string(family) + " Single";
    if (const char* family = familyOf<SingleValuePtrBuffer<Sample>>(strategy))
        return std::string(family) + " Pointer";
    return "unknown";
}

std::string familyOf(const Input& input) {
    const std::string strategy = strategyOf(input);
    return strategy.substr(0, strategy.find(' '));
}

// --- The family -----------------------------------------------------------------------------

constexpr int kNone = -1;

struct Choice {
    int outputLayout;
    int inputLayout;
    bool isDirect;
    bool isBlocking;
    const char* family;
};

void PrintTo(const Choice& choice, std::ostream* out) {
    *out << "layouts " << choice.outputLayout << " -> " << choice.inputLayout
         << (choice.isDirect ? ", direct" : "") << (choice.isBlocking ? ", blocking" : "");
}

class FamilyChoice : public testing::TestWithParam<Choice> {
 public:
    static LayoutManager* layoutOf(int number) {
        return number == kNone ? nullptr : layout(static_cast<std::size_t>(number));
    }
};

INSTANTIATE_TEST_SUITE_P(
    Table, FamilyChoice,
    testing::Values(
        Choice{0, 0, false, false, "Simple"}, Choice{0, 0, true, false, "Simple"},
        Choice{0, 0, false, true, "Simple"}, Choice{0, 0, true, true, "Simple"},
        Choice{kNone, kNone, true, false, "Simple"}, Choice{kNone, kNone, true, true, "Simple"},
        Choice{kNone, kNone, false, false, "ThreadSafe"},
        Choice{kNone, kNone, false, true, "ThreadSafe"}, Choice{0, 1, false, false, "ThreadSafe"},
        Choice{0, 1, true, false, "ThreadSafe"}, Choice{0, 1, false, true, "Synchronized"},
        Choice{0, 1, true, true, "Synchronized"}, Choice{kNone, 1, false, false, "ThreadSafe"},
        Choice{kNone, 1, false, true, "Synchronized"}, Choice{kNone, 1, true, true, "Synchronized"},
        Choice{0, kNone, false, false, "ThreadSafe"}, Choice{0, kNone, true, false, "ThreadSafe"},
        Choice{0, kNone, false, true, "ThreadSafe"}, Choice{0, kNone, true, true, "ThreadSafe"}));

TEST_P(FamilyChoice, FollowsLayoutsDirectConnectionAndBlocking) {
    const Choice& choice = GetParam();
    Node source("source");
    Node sink("sink");
    source.place(layoutOf(choice.outputLayout));
    sink.place(layoutOf(choice.inputLayout));
    {
        Output output("out", &source);
        Input input("in", &sink);
        input.setIsBlocking(choice.isBlocking);
        EXPECT_EQ(familyOf(input), "Simple") << "not attached";
        input.setOutputPin(&output, choice.isDirect);
        EXPECT_EQ(familyOf(input), choice.family);
        input.setOutputPin(nullptr, true);
        EXPECT_EQ(familyOf(input), "Simple") << "no longer attached";
    }
    source.place(nullptr);
    sink.place(nullptr);
}

TEST(FamilyChoice, PinsWithoutAFilterCountAsWithoutALayout) {
    Output output("out", nullptr);
    Input input("in", nullptr);
    output.attach(input, /*skipNotification=*/false);
    EXPECT_EQ(familyOf(input), "Simple");
    output.detach(input, false);
    output.attach(input, /*skipNotification=*/true);
    EXPECT_EQ(familyOf(input), "ThreadSafe");
}

// --- The buffer -----------------------------------------------------------------------------

class BufferChoice : public testing::Test {
 public:
    ~BufferChoice() override {
        source.place(nullptr);
        sink.place(nullptr);
    }
    void connect(LayoutManager* outputLayout, LayoutManager* inputLayout) {
        source.place(outputLayout);
        sink.place(inputLayout);
        output.attach(input, false);
    }

    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};
};

TEST_F(BufferChoice, FollowsSizeAndOrderOnOneThread) {
    connect(layout(0), layout(0));
    input.setBuffer({1, false});
    EXPECT_EQ(strategyOf(input), "Simple Pointer");
    input.setBuffer({1, true});
    EXPECT_EQ(strategyOf(input), "Simple Pointer");
    input.setBuffer({2, false});
    EXPECT_EQ(strategyOf(input), "Simple Fifo");
    input.setBuffer({2, true});
    EXPECT_EQ(strategyOf(input), "Simple Lifo");
    EXPECT_EQ(input.getStrategy().capacity(), 2U);
}

TEST_F(BufferChoice, FollowsSizeAndOrderBetweenThreads) {
    connect(layout(0), layout(1));
    input.setBuffer({1, true});
    EXPECT_EQ(strategyOf(input), "ThreadSafe Single");
    input.setBuffer({256, false});
    EXPECT_EQ(strategyOf(input), "ThreadSafe Fifo");
    EXPECT_EQ(input.getStrategy().capacity(), 256U);
    input.setIsBlocking(true);
    EXPECT_EQ(strategyOf(input), "Synchronized Fifo");
    input.setBuffer({256, true});
    EXPECT_EQ(strategyOf(input), "Synchronized Lifo");
    input.setBuffer({1, false});
    EXPECT_EQ(strategyOf(input), "Synchronized Single");
    input.setIsBlocking(false);
    EXPECT_EQ(strategyOf(input), "ThreadSafe Single");
}

TEST_F(BufferChoice, SurvivesDetaching) {
    input.setBuffer({8, true});
    connect(layout(0), layout(1));
    EXPECT_EQ(strategyOf(input), "ThreadSafe Lifo");
    output.detach(input, false);
    EXPECT_EQ(strategyOf(input), "Simple Lifo");
    EXPECT_EQ(input.getStrategy().capacity(), 8U);
}

TEST_F(BufferChoice, OutputPinThatMovedRebuildsEveryAttachedPin) {
    Input own("own", &source);
    connect(layout(0), layout(0));
    output.attach(own, false);
    EXPECT_EQ(familyOf(input), "Simple");
    source.place(layout(1));
    output.managerChanged();
    EXPECT_EQ(familyOf(input), "ThreadSafe");
    EXPECT_EQ(familyOf(own), "Simple") << "a pin of the same filter moved with it";
}

TEST_F(BufferChoice, InputPinThatMovedRebuildsItself) {
    connect(layout(0), layout(0));
    FrameworkTest::write(output, 1);
    sink.place(layout(1));
    input.rebuildBufferStrategy();
    EXPECT_EQ(familyOf(input), "ThreadSafe");
    EXPECT_FALSE(input.fetch()) << "what waited is forgotten";
}

}  // namespace
}  // namespace Quoril::Core
