#include "framework/PluginManager.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "tests/host/TestFilters.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

PluginManager& manager() {
    return FlowManager::instance().getPluginManager();
}

std::vector<std::string> classNamesOf(const std::string& plugin) {
    std::vector<std::string> names;
    for (const AbstractFilterFactory* factory : manager().getFilterFactories())
        if (factory->getPluginName() == plugin) names.emplace_back(factory->name());
    return names;
}

TEST(PluginManagerTest, FactoriesAreListedInOrderOfRegistration) {
    const InstalledTestPlugin installed;
    EXPECT_THAT(manager().getPlugins(), Contains(&installed.plugin));
    EXPECT_THAT(classNamesOf("Test"),
                ElementsAre("TestFilter", "TestSource", "TestPass", "TestSink"));
    EXPECT_STREQ(manager().findFilterFactory("TestSink")->name(), "TestSink");
    EXPECT_EQ(manager().findFilterFactory("TestSink")->getVersion().toString(), "1.0.0");
    EXPECT_EQ(manager().findFilterFactory("Nothing"), nullptr);
}

TEST(PluginManagerTest, MetaDataStartWithNameAndVersion) {
    const TestPlugin plugin("Mine");
    EXPECT_EQ(plugin.getMetaData().name, "Mine");
    EXPECT_EQ(plugin.getMetaData().version, "1.0.0");
}

TEST(PluginManagerTest, UninstalledPluginLeavesNothing) {
    TestPlugin plugin;
    manager().installPlugin(plugin);
    manager().uninstallPlugin(plugin);
    EXPECT_THAT(manager().getPlugins(), Not(Contains(&plugin)));
    EXPECT_TRUE(classNamesOf("Test").empty());
}

TEST(PluginManagerTest, PluginThatFailsToUninstallIsWithdrawnAllTheSame) {
    class Failing final : public DefaultPlugin {
     public:
        Failing() : DefaultPlugin("Failing", "1") {
            addFilterFactory(
                std::make_unique<FilterFactory<TestSink>>(getName(), ComponentVersion("1")));
        }
        void uninstall() override { throw Poco::IOException("no"); }
    } plugin;
    manager().installPlugin(plugin);
    EXPECT_THROW(manager().uninstallPlugin(plugin), Poco::IOException);
    EXPECT_THAT(manager().getPlugins(), Not(Contains(&plugin)));
    EXPECT_EQ(manager().findFilterFactory("TestSink"), nullptr);
    manager().uninstallPlugin(plugin);
}

TEST(PluginManagerTest, UnknownPluginIsIgnoredAtUninstall) {
    TestPlugin plugin;
    manager().uninstallPlugin(plugin);
    manager().installPlugin(plugin);
    manager().uninstallPlugin(plugin);
    manager().uninstallPlugin(plugin);
}

TEST(PluginManagerTest, TakenNameIsRefused) {
    const InstalledTestPlugin installed;
    TestPlugin second;
    EXPECT_THROW(manager().installPlugin(second), Poco::ExistsException);
    EXPECT_THAT(manager().getPlugins(), Not(Contains(&second)));
    EXPECT_EQ(classNamesOf("Test").size(), 4U);
}

TEST(PluginManagerTest, TakenFilterClassLeavesThePluginUninstalled) {
    const InstalledTestPlugin installed;
    TestPlugin second("Second");
    EXPECT_THROW(manager().installPlugin(second), Poco::ExistsException);
    EXPECT_TRUE(classNamesOf("Second").empty());
    EXPECT_THAT(manager().getPlugins(), Not(Contains(&second)));
    manager().uninstallPlugin(second);
    EXPECT_EQ(classNamesOf("Test").size(), 4U);
}

TEST(PluginManagerTest, DestroyedPluginIsUninstalledByItself) {
    {
        TestPlugin plugin;
        manager().installPlugin(plugin);
    }
    EXPECT_EQ(manager().findFilterFactory("TestSink"), nullptr);
}

TEST(PluginManagerTest, FactoryWithoutAPluginComesAndGoes) {
    FilterFactory<TestSink> factory("nobody", ComponentVersion("1"));
    manager().addFilterFactory(factory);
    EXPECT_EQ(manager().findFilterFactory("TestSink"), &factory);
    manager().removeFilterFactory(factory);
    EXPECT_EQ(manager().findFilterFactory("TestSink"), nullptr);
}

TEST(PluginManagerTest, FactoryIgnoresNullAtDestroy) {
    FilterFactory<TestSink> factory("nobody", ComponentVersion("1"));
    factory.destroy(nullptr);
}

TEST(PluginManagerTest, UninstallDestroysThePluginsFiltersInRunningFlows) {
    auto installed = std::make_unique<InstalledTestPlugin>();
    Flow flow;
    LayoutManager& first = flow.addLayout("first");
    LayoutManager& second = flow.addLayout("second");
    auto& source = dynamic_cast<TestSource&>(flow.addFilter("TestSource", "source", first));
    source.rowCount = 1'000'000'000;
    auto& sink = dynamic_cast<TestSink&>(flow.addFilter("TestSink", "sink", second));
    flow.connect(*source.outputs.front(), *sink.inputs.front());
    flow.start();
    installed.reset();
    EXPECT_TRUE(flow.getFilters().empty());
    flow.stop();
}

TEST(PluginManagerTest, UninstallLeavesFiltersOfOthersAlone) {
    Flow flow;
    FilterFactory<TestSink> factory("nobody", ComponentVersion("1"));
    manager().addFilterFactory(factory);
    Filter& kept = flow.addFilter("TestSink", "kept", flow.addLayout("main"));
    TestPlugin plugin;
    EXPECT_THROW(manager().installPlugin(plugin), Poco::ExistsException);
    manager().uninstallPlugin(plugin);
    EXPECT_THAT(flow.getFilters(), ElementsAre(&kept));
    manager().removeFilterFactory(factory);
    EXPECT_TRUE(flow.getFilters().empty());
}

}  // namespace
}  // namespace Quoril::Core
