// Edits and processing calls run on different threads: whatever reads or writes a property waits
// for who holds its synchronizer.

#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/framework/LockSupport.hpp"
#include "tests/framework/TestSupport.hpp"

#include <memory>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;

class PropertyLockTest : public testing::Test {
 public:
    template <class Operation>
    void expectWaits(Operation operation) {
        EXPECT_TRUE(FrameworkTest::waitsFor(*owner.getPropertySynchronizer(), operation));
    }
    /// The operations that every property has.
    void expectEachWaits(AbstractProperty& property) {
        CountingObserver observer;
        expectWaits([&] { (void)property.getIsWritable(); });
        expectWaits([&] { attachPlain(property); });
        expectWaits([&] { property.addObserver(observer); });
        expectWaits([&] { property.removeObserver(observer); });
    }
    /// And those of a property with a value.
    template <class T>
    void expectEachValueOperationWaits(ValueProperty<T>& property, const std::string& text) {
        expectEachWaits(property);
        std::string written;
        expectWaits([&] { property.set(T()); });
        expectWaits([&] { property.setAny(Poco::Any(T())); });
        expectWaits([&] { (void)property.get(); });
        expectWaits([&] { property.serialize(written); });
        expectWaits([&] { property.deSerialize(text); });
        expectWaits([&] { property.setIsWritable(true); });
        expectWaits([&] { (void)property.getIsPersistent(); });
        expectWaits([&] { property.setIsPersistent(true); });
    }
    // Here, since a test's own class is not the one that the handlers belong to.
    void attachPlain(AbstractProperty& property) { property.attach(*this, &PropertyLockTest::run); }
    void attachTyped(ValueProperty<int>& property) {
        property.attach(*this, &PropertyLockTest::see);
    }
    void run() {}
    void see(const int& /*value*/) {}

    BagOwner owner;
    PropertyBag* bag = owner.getPropertyBag();
};

TEST_F(PropertyLockTest, OfAValue) {
    ValueProperty<int> property("Count", bag);
    expectEachValueOperationWaits(property, "1");
    expectWaits([&] { attachTyped(property); });
}

TEST_F(PropertyLockTest, OfARange) {
    RangeProperty<int> property("Pins Number", bag);
    expectEachValueOperationWaits(property, "1");
    expectWaits([&] { property.setRange(0, 1, 0); });
}

TEST_F(PropertyLockTest, OfAnEnumeration) {
    EnumProperty<std::string> property("ColTypes", bag);
    expectEachValueOperationWaits(property, "0");
    expectWaits([&] { property.setEntries({"DOUBLE"}); });
    expectWaits([&] { property.entriesChanged(); });
    expectWaits([&] { property.setEntriesObserver(nullptr); });
}

TEST_F(PropertyLockTest, OfAFileName) {
    FileNameProperty property("File Name", bag);
    expectEachValueOperationWaits(property, "imu.sns");
    expectWaits([&] { (void)property.get(); });
    expectWaits([&] { property.setExpandVariables(true); });
    expectWaits([&] { property.setFilter("*.sns"); });
    expectWaits([&] { property.setHints(true, false, false); });
}

TEST_F(PropertyLockTest, OfACommand) {
    CommandProperty command("Reload File", bag);
    expectEachWaits(command);
    expectWaits([&] { command.trigger(); });
    expectWaits([&] { command.setAny(Poco::Any(1)); });
    expectWaits([&] { command.setIsWritable(true); });
}

}  // namespace
}  // namespace Quoril::Core
