#include "host/Clock.hpp"
#include "host/LayoutManager.hpp"
#include "tests/framework/PinSupport.hpp"

#include <chrono>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::Node;
using FrameworkTest::Output;
using FrameworkTest::readAll;
using FrameworkTest::Sample;
using FrameworkTest::write;
using testing::ElementsAre;
using testing::IsEmpty;

/// Two connected filters and two layouts of the host that are never started.
class PinLayoutTest : public testing::Test {
 public:
    PinLayoutTest() {
        input.setBuffer({4, false});
        output.attach(input, false);
    }
    ~PinLayoutTest() override {
        for (Node* node : {&source, &sink})
            if (LayoutManager* manager = node->getManager())
                manager->whileAtRest(*node, [&] { manager->release(*node); });
    }

    [[nodiscard]] bool isSimple() const {
        return dynamic_cast<const SimpleBufferStrategy<Sample, FifoBuffer<Sample>>*>(
                   &input.getStrategy()) != nullptr;
    }
    [[nodiscard]] bool isThreadSafe() const {
        return dynamic_cast<const ThreadSafeBufferStrategy<Sample, FifoBuffer<Sample>>*>(
                   &input.getStrategy()) != nullptr;
    }
    static void move(LayoutManager& from, Node& node, LayoutManager& to) {
        from.whileAtRest(node, [&] { from.release(node); });
        to.adopt(node);
    }

    LayoutManager first{"first", std::chrono::nanoseconds(0), Clock::steady(), nullptr};
    LayoutManager second{"second", std::chrono::nanoseconds(0), Clock::steady(), nullptr};
    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};
};

TEST_F(PinLayoutTest, WithoutLayoutsTheConnectionIsDirectAndUnlocked) {
    EXPECT_TRUE(input.getIsDirect());
    EXPECT_TRUE(isSimple());
}

TEST_F(PinLayoutTest, WriterThatGetsALayoutRebuildsTheBuffer) {
    write(output, 1);
    first.adopt(source);
    EXPECT_TRUE(isThreadSafe());
    EXPECT_THAT(readAll(input), IsEmpty());
}

TEST_F(PinLayoutTest, ReaderThatGetsALayoutRebuildsTheBuffer) {
    write(output, 1);
    first.adopt(sink);
    EXPECT_TRUE(isThreadSafe());
    EXPECT_THAT(readAll(input), IsEmpty());
}

TEST_F(PinLayoutTest, OneLayoutNeedsNoLock) {
    first.adopt(source);
    first.adopt(sink);
    EXPECT_TRUE(isSimple());
    write(output, 2);
    EXPECT_THAT(readAll(input), ElementsAre(2));
}

TEST_F(PinLayoutTest, WriterThatMovesAwayRebuildsTheBuffer) {
    first.adopt(source);
    first.adopt(sink);
    move(first, source, second);
    EXPECT_TRUE(isThreadSafe());
    move(second, source, first);
    EXPECT_TRUE(isSimple());
}

TEST_F(PinLayoutTest, ReaderThatMovesAwayRebuildsTheBuffer) {
    first.adopt(source);
    first.adopt(sink);
    move(first, sink, second);
    EXPECT_TRUE(isThreadSafe());
    move(second, sink, first);
    EXPECT_TRUE(isSimple());
}

TEST_F(PinLayoutTest, FiltersOfOneLayoutShareItsLock) {
    first.adopt(source);
    first.adopt(sink);
    const Synchronizer::DisablerLocker lock(source.getSynchronizer(), nullptr);
    EXPECT_TRUE(sink.getSynchronizer()->isHeldByThisThread());
    EXPECT_TRUE(first.getSynchronizer().isHeldByThisThread());
    EXPECT_FALSE(second.getSynchronizer().isHeldByThisThread());
}

}  // namespace
}  // namespace Quoril::Core
