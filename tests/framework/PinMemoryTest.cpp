// What pins do when memory runs out: a change is made whole or not at all.

#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "tests/framework/PinSupport.hpp"

#include <memory>
#include <new>
#include <vector>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::layout;
using FrameworkTest::Node;
using testing::ElementsAre;
using testing::IsEmpty;

/// A value that cannot be made while there is no memory. Buffers of more than one thread or of
/// more than one sample make some at their construction.
struct Costly {
    static bool isMemoryOut;

    Costly() {
        if (isMemoryOut) throw std::bad_alloc();
    }
    int number = 0;
};
bool Costly::isMemoryOut = false;

using CostlyInput = InputPin<Costly>;
using CostlyOutput = OutputPin<Costly>;

class PinMemoryTest : public testing::Test {
 public:
    PinMemoryTest() {
        // Two layouts, so that every buffer has samples of its own.
        source.place(layout(0));
        sink.place(layout(1));
        input->setBuffer({4, false});
    }
    ~PinMemoryTest() override {
        Costly::isMemoryOut = false;
        source.place(nullptr);
        sink.place(nullptr);
    }

    void write(int number) {
        output->getValue().number = number;
        output->push(0.0);
    }
    std::vector<int> readAll() {
        std::vector<int> numbers;
        while (input->fetch())
            numbers.push_back(input->take()->value.number);
        return numbers;
    }
    [[nodiscard]] bool isThreadSafe() const {
        using Sample = CostlyInput::Sample;
        return dynamic_cast<const ThreadSafeBufferStrategy<Sample, FifoBuffer<Sample>>*>(
                   &input->getStrategy()) != nullptr;
    }

    Node source{"source"};
    Node sink{"sink"};
    std::unique_ptr<CostlyOutput> output = std::make_unique<CostlyOutput>("out", &source);
    std::unique_ptr<CostlyInput> input = std::make_unique<CostlyInput>("in", &sink);
};

TEST_F(PinMemoryTest, BufferThatCannotBeMadeLeavesTheOldOneWithItsSamples) {
    output->attach(*input, false);
    write(1);
    write(2);
    ASSERT_TRUE(input->fetch());
    Costly::isMemoryOut = true;
    EXPECT_THROW(input->setBuffer({256, true}), std::bad_alloc);
    EXPECT_EQ(input->getBuffer().size, 4U);
    EXPECT_FALSE(input->getBuffer().isLifo);
    EXPECT_EQ(input->getStrategy().capacity(), 4U);
    write(3);
    EXPECT_THAT(readAll(), ElementsAre(1, 2, 3));
}

TEST_F(PinMemoryTest, BlockingThatCannotBeSetLeavesTheOldBuffer) {
    output->attach(*input, false);
    write(1);
    Costly::isMemoryOut = true;
    EXPECT_THROW(input->setIsBlocking(true), std::bad_alloc);
    EXPECT_FALSE(input->getIsBlocking());
    EXPECT_TRUE(isThreadSafe());
    EXPECT_THAT(readAll(), ElementsAre(1));
}

TEST_F(PinMemoryTest, RebuildThatFailsLeavesTheOldBuffer) {
    output->attach(*input, false);
    write(1);
    Costly::isMemoryOut = true;
    EXPECT_THROW(input->rebuildBufferStrategy(), std::bad_alloc);
    EXPECT_THAT(readAll(), ElementsAre(1));
}

TEST_F(PinMemoryTest, AttachThatFailsConnectsNeitherSide) {
    for (const bool skipNotification : {false, true}) {
        Costly::isMemoryOut = true;
        EXPECT_THROW(output->attach(*input, skipNotification), std::bad_alloc);
        EXPECT_EQ(input->getOutputPin(), nullptr);
        EXPECT_TRUE(input->getIsDirect());
        EXPECT_THAT(output->getAttachedPins(), IsEmpty());
        Costly::isMemoryOut = false;
        output->attach(*input, skipNotification);
        write(1);
        EXPECT_THAT(readAll(), ElementsAre(1));
        output->detach(*input, false);
    }
}

TEST_F(PinMemoryTest, DetachNeverFails) {
    output->attach(*input, false);
    write(1);
    Costly::isMemoryOut = true;
    output->detach(*input, false);
    EXPECT_EQ(input->getOutputPin(), nullptr);
    EXPECT_TRUE(input->getIsDirect());
    EXPECT_THAT(output->getAttachedPins(), IsEmpty());
    EXPECT_THAT(readAll(), IsEmpty());
}

TEST_F(PinMemoryTest, ConnectedPinsCanBeDestroyed) {
    output->attach(*input, false);
    write(1);
    Costly::isMemoryOut = true;
    output.reset();
    EXPECT_EQ(input->getOutputPin(), nullptr);
    EXPECT_THAT(readAll(), IsEmpty());
    input.reset();
    EXPECT_THAT(sink.getInputPins(), IsEmpty());
}

TEST_F(PinMemoryTest, PinThatCannotBeMadeIsNotListed) {
    Costly::isMemoryOut = true;
    EXPECT_THROW(CostlyInput("second", &sink), std::bad_alloc);
    EXPECT_THROW(CostlyOutput("second", &source), std::bad_alloc);
    EXPECT_THAT(sink.getInputPins(), ElementsAre(input.get()));
    EXPECT_THAT(source.getOutputPins(), ElementsAre(output.get()));
}

}  // namespace
}  // namespace Quoril::Core
