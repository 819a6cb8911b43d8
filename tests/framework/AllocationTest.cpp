#include "tests/framework/PinSupport.hpp"
#include "tests/support/AllocationCount.hpp"

#include <cstddef>
#include <new>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::layout;
using FrameworkTest::Node;
using FrameworkTest::Output;
using FrameworkTest::sample;

/// Number of allocations that the work makes.
template <class Work>
std::size_t allocationsOf(Work work) {
    const Support::AllocationCount allocations;
    work();
    return allocations.get();
}

TEST(Allocation, IsCountedByThisProgram) {
    EXPECT_GT(allocationsOf([] { ::operator delete(::operator new(8)); }), 0U);
    EXPECT_GT(allocationsOf([] { const Eigen::MatrixXd matrix(3, 1); }), 0U);
    EXPECT_EQ(allocationsOf([] {}), 0U);
}

struct Way {
    const char* name;
    bool isOneLayout;
    bool isBlocking;
    BufferSettings buffer;
};

class WarmPin : public testing::TestWithParam<Way> {
 public:
    WarmPin() {
        source.place(layout(0));
        sink.place(layout(GetParam().isOneLayout ? 0 : 1));
        input.setIsBlocking(GetParam().isBlocking);
        input.setBuffer(GetParam().buffer);
        output.attach(input, false);
    }
    ~WarmPin() override {
        source.place(nullptr);
        sink.place(nullptr);
    }

    /// Writes a burst, then reads all of it, and so on.
    void run(int bursts, int burst) {
        for (int i = 0; i < bursts; ++i) {
            for (int j = 0; j < burst; ++j) {
                output.getValue().setConstant(i + j);
                output.push(i + j);
            }
            while (input.getWaitingCount() > 0 && input.fetch())
                sum += input.take()->value(0);
        }
    }

    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};
    double sum = 0;
};

INSTANTIATE_TEST_SUITE_P(Ways, WarmPin,
                         testing::Values(Way{"SimplePointer", true, false, {1, false}},
                                         Way{"SimpleFifo", true, false, {64, false}},
                                         Way{"SimpleLifo", true, false, {64, true}},
                                         Way{"ThreadSafeSingle", false, false, {1, false}},
                                         Way{"ThreadSafeFifo", false, false, {64, false}},
                                         Way{"ThreadSafeLifo", false, false, {64, true}},
                                         Way{"SynchronizedSingle", false, true, {1, false}},
                                         Way{"SynchronizedFifo", false, true, {64, false}},
                                         Way{"SynchronizedLifo", false, true, {64, true}}),
                         [](const auto& way) { return way.param.name; });

TEST_P(WarmPin, HandsSamplesOverWithoutAllocating) {
    output.getValue() = sample(0).value;
    // Bursts longer than the buffer: the overwriting of samples is warm too.
    run(/*bursts=*/3, /*burst=*/70);
    EXPECT_EQ(allocationsOf([&] { run(/*bursts=*/50, /*burst=*/1); }), 0U);
    EXPECT_EQ(allocationsOf([&] { run(/*bursts=*/20, /*burst=*/70); }), 0U);
    EXPECT_GT(sum, 0.0);
}

}  // namespace
}  // namespace Quoril::Core
