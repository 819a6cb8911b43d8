#include "host/filters/FilterCsvSource.hpp"
#include "host/filters/FilterImuSimulator.hpp"
#include "tests/host/filters/Support.hpp"
#include "tests/support/AllocationCount.hpp"

namespace Quoril::Core {
namespace {

using namespace TestKit;

TEST(SourceAllocationTest, CsvRowsAllocateNothingOnceWarm) {
    std::string content = "t,ax,\"a y\",list,note\n";
    for (int i = 0; i < 20000; ++i)
        content += std::to_string(i) + ",-1.25e-3, ,\"[1, 2, 3]\",\"x, y\"\r\n";
    const ScratchFile file(content);
    FilterCsvSource source("csv");
    set(source, "File Name", file.path());
    set(source, "Columns", "acc=ax,a y;l=list[]");
    set(source, "Time Column", "t");
    Receiver receiver(source, "acc", 4);
    for (int i = 0; i < 10; ++i) {
        source.process();
        (void)receiver.next();
    }
    const Support::AllocationCount allocations;
    for (int i = 0; i < 19000; ++i) {
        source.process();
        (void)receiver.next();
    }
    // The count of rows is shown every 1000 rows, which may allocate.
    EXPECT_LT(allocations.get(), 19U * 10U);
    EXPECT_FALSE(source.isFinished());
}

TEST(SourceAllocationTest, SimulatedFramesAllocateNothingOnceWarm) {
    FilterImuSimulator imu("imu");
    Receiver receiver(imu, "acc", 4);
    for (int i = 0; i < 10; ++i) {
        imu.process();
        (void)receiver.next();
    }
    const Support::AllocationCount allocations;
    for (int i = 0; i < 10000; ++i) {
        imu.process();
        (void)receiver.next();
    }
    EXPECT_EQ(allocations.get(), 0U);
}

}  // namespace
}  // namespace Quoril::Core
