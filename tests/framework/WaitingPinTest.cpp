// A reader that waits at a blocking pin gives up its synchronizer, so that edits get in: they may
// replace the very buffer that it waits in.

#include "tests/framework/PinSupport.hpp"

#include <latch>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::layout;
using FrameworkTest::Node;
using FrameworkTest::numberOf;
using FrameworkTest::Output;
using FrameworkTest::write;

class WaitingPinTest : public testing::Test {
 public:
    WaitingPinTest() {
        source.place(layout(0));
        sink.place(layout(1));
        input.setBuffer({4, false});
        input.setIsBlocking(true);
        output.attach(input, false);
        reader_ = std::thread([this] { read(); });
        isHolding_.wait();
        // The reader has said that it holds the lock: who gets it now knows that the reader waits.
        const Synchronizer::DisablerLocker readerWaits(sink.getSynchronizer(), nullptr);
    }
    ~WaitingPinTest() override {
        if (reader_.joinable()) reader_.join();
        source.place(nullptr);
        sink.place(nullptr);
    }
    /// The number that the reader fetched; nothing when there was none.
    std::optional<double> join() {
        reader_.join();
        return fetched_;
    }

    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};

 private:
    void read() {
        const Synchronizer::DisablerLocker lock(sink.getSynchronizer(), nullptr);
        isHolding_.count_down();
        if (input.fetch()) fetched_ = numberOf(*input.take());
    }

    std::optional<double> fetched_;
    std::latch isHolding_{1};
    std::thread reader_;
};

TEST_F(WaitingPinTest, PushEndsTheWait) {
    write(output, 1);
    EXPECT_EQ(join(), 1.0);
}

TEST_F(WaitingPinTest, AnotherBufferEndsTheWaitWithNothing) {
    input.setBuffer({8, true});
    EXPECT_EQ(join(), std::nullopt);
    write(output, 1);
    ASSERT_TRUE(input.fetch());
    EXPECT_EQ(numberOf(*input.take()), 1.0);
}

TEST_F(WaitingPinTest, DetachEndsTheWaitWithNothing) {
    output.detach(input, false);
    EXPECT_EQ(join(), std::nullopt);
    EXPECT_FALSE(input.fetch());
}

TEST_F(WaitingPinTest, ClearEndsTheWaitWithNothing) {
    input.clear();
    EXPECT_EQ(join(), std::nullopt);
}

TEST_F(WaitingPinTest, SampleThatIsForgottenWithItsBufferIsNotFetched) {
    {
        // The sample wakes the reader, which cannot go on before the buffer is another one.
        const Synchronizer::DisablerLocker edit(source.getSynchronizer(), sink.getSynchronizer());
        write(output, 1);
        input.setBuffer({8, false});
    }
    EXPECT_EQ(join(), std::nullopt);
    EXPECT_EQ(input.getWaitingCount(), 0U);
}

}  // namespace
}  // namespace Quoril::Core
