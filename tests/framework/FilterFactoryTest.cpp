#include "framework/FilterFactory.hpp"

#include <string>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

int living = 0;

class Counted : public Filter {
 public:
    static constexpr const char* kClassName = "FilterCounted";

    explicit Counted(const std::string& name) : Filter(name, true) { ++living; }
    ~Counted() override { --living; }
    void process() override {}
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
};

class FilterFactoryTest : public testing::Test {
 public:
    FilterFactory<Counted> factory{"SensorFile", ComponentVersion("2.5.0")};
};

TEST_F(FilterFactoryTest, KnowsItsClassPluginAndVersion) {
    EXPECT_STREQ(factory.name(), "FilterCounted");
    EXPECT_EQ(factory.getPluginName(), "SensorFile");
    EXPECT_EQ(factory.getVersion().toString(), "2.5.0");
}

TEST_F(FilterFactoryTest, MakesAndDestroysFilters) {
    Filter* const filter = factory.create("recorder 1");
    EXPECT_EQ(filter->getName(), "recorder 1");
    EXPECT_STREQ(filter->getClassName(), "FilterCounted");
    EXPECT_TRUE(filter->getIsScheduled());
    EXPECT_EQ(living, 1);
    factory.destroy(filter);
    EXPECT_EQ(living, 0);
}

TEST_F(FilterFactoryTest, DestroyingNothingDoesNothing) {
    factory.destroy(nullptr);
    EXPECT_EQ(living, 0);
}

}  // namespace
}  // namespace Quoril::Core
