#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/filters/BuiltinPlugin.hpp"
#include "tests/host/filters/Support.hpp"

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;

TEST(BuiltinPluginTest, PluginTellsOfItselfAndOffersTheFiltersInOrder) {
    const BuiltinPlugin plugin;
    EXPECT_EQ(plugin.getName(), "Quoril");
    EXPECT_EQ(plugin.getVersion(), "0.10.0");
    const PluginMetaData& data = plugin.getMetaData();
    EXPECT_EQ(data.name, "Quoril");
    EXPECT_EQ(data.version, "0.10.0");
    EXPECT_EQ(data.hostVersion, "0.10.0");
    EXPECT_FALSE(data.description.empty());
    EXPECT_FALSE(data.platform.empty());
    EXPECT_EQ(data.buildDate.size(), std::string("2000-01-01").size());
    std::vector<std::string> names;
    for (const auto& factory : plugin.getFilterFactories()) {
        names.emplace_back(factory->name());
        EXPECT_EQ(factory->getPluginName(), "Quoril");
        EXPECT_EQ(factory->getVersion().toString(), "0.10.0");
    }
    EXPECT_THAT(names, ElementsAre("FilterCsvSource", "FilterImuSimulator", "FilterMatrixSource",
                                   "FilterProbe"));
}

TEST(BuiltinPluginTest, InstallingIsDoneOnceHoweverOftenItIsCalled) {
    PluginManager& manager = FlowManager::instance().getPluginManager();
    installBuiltinPlugin();
    installBuiltinPlugin();
    EXPECT_EQ(manager.getFilterFactories().size(), 4U);

    manager.uninstallPlugin(*manager.getPlugins().front());
    EXPECT_EQ(manager.findFilterFactory("FilterProbe"), nullptr);
    installBuiltinPlugin();
    AbstractFilterFactory* factory = manager.findFilterFactory("FilterProbe");
    ASSERT_NE(factory, nullptr);
    Filter* probe = factory->create("mine");
    EXPECT_EQ(probe->getName(), "mine");
    EXPECT_STREQ(probe->getClassName(), "FilterProbe");
    factory->destroy(probe);
}

}  // namespace
}  // namespace Quoril::Core
