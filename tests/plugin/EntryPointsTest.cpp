#include "framework/DefaultPlugin.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"

#include <dlfcn.h>
#include <string>
#include <vector>

#include <Poco/Exception.h>
#include <Poco/Path.h>
#include <gmock/gmock.h>

using Quoril::Core::AbstractFilterFactory;
using Quoril::Core::DefaultPlugin;
using Quoril::Core::PluginManager;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

PluginManager& manager() {
    return Quoril::Core::FlowManager::instance().getPluginManager();
}

/// The module's file, loaded for the scope, with the functions that a host finds in it.
class Module {
 public:
    Module() : handle_(dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) throw Poco::LibraryLoadException(dlerror());
        start = find<void()>("dllStartPlugin");
        stop = find<void()>("dllStopPlugin");
        version = find<const char*()>("dllGetQuorilVersion");
    }
    ~Module() {
        stop();
        dlclose(handle_);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    static bool isLoaded() {
        void* handle = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
        if (handle != nullptr) dlclose(handle);
        return handle != nullptr;
    }

    void (*start)() = nullptr;
    void (*stop)() = nullptr;
    const char* (*version)() = nullptr;

 private:
    template <class Function>
    Function* find(const char* name) {
        void* symbol = dlsym(handle_, name);
        if (symbol == nullptr) throw Poco::NotFoundException(name);
        return reinterpret_cast<Function*>(symbol);
    }

    void* handle_;
};

std::vector<std::string> factoryNames() {
    std::vector<std::string> names;
    for (const AbstractFilterFactory* factory : manager().getFilterFactories())
        names.emplace_back(factory->name());
    return names;
}

/// A plug-in that has taken the module's name.
class Namesake : public DefaultPlugin {
 public:
    Namesake() : DefaultPlugin("SensorFile", "1.0") { manager().installPlugin(*this); }
    ~Namesake() override { manager().uninstallPlugin(*this); }
};

}  // namespace

TEST(EntryPointsTest, TellsTheHostVersionBeforeAnyStart) {
    const Module module;
    EXPECT_STREQ(module.version(), "0.10.0");
    EXPECT_THAT(manager().getPlugins(), IsEmpty());
}

TEST(EntryPointsTest, ModuleFileIsNamedAfterItsVersion) {
    EXPECT_EQ(Poco::Path(MODULE_FILE).getBaseName(), "QuorilPluginSensorFile-2.5.0");
}

TEST(EntryPointsTest, StartingTwiceInstallsOnePluginAndOneStopRemovesIt) {
    const Module module;
    module.start();
    ASSERT_THAT(manager().getPlugins(), SizeIs(1));
    const Quoril::Core::Plugin* plugin = manager().getPlugins().front();
    module.start();
    EXPECT_THAT(manager().getPlugins(), ElementsAre(plugin));
    module.stop();
    EXPECT_THAT(manager().getPlugins(), IsEmpty());
    EXPECT_THAT(factoryNames(), IsEmpty());
}

TEST(EntryPointsTest, StopWithoutAStartDoesNothing) {
    const Module module;
    module.stop();
    module.start();
    module.stop();
    module.stop();
    EXPECT_THAT(manager().getPlugins(), IsEmpty());
}

TEST(EntryPointsTest, StartAfterAStopInstallsAFreshPlugin) {
    const Module module;
    module.start();
    module.stop();
    module.start();
    EXPECT_THAT(manager().getPlugins(), SizeIs(1));
    EXPECT_THAT(factoryNames(), testing::Not(IsEmpty()));
}

TEST(EntryPointsTest, PluginDescribesItself) {
    const Module module;
    module.start();
    const auto& plugin = dynamic_cast<const DefaultPlugin&>(*manager().getPlugins().at(0));
    EXPECT_EQ(plugin.getName(), "SensorFile");
    EXPECT_EQ(plugin.getVersion(), "2.5.0");
    const Quoril::Core::PluginMetaData& data = plugin.getMetaData();
    EXPECT_EQ(data.version, "2.5.0");
    EXPECT_EQ(data.hostVersion, "0.10.0");
    EXPECT_EQ(data.name, "SensorFile");
    EXPECT_EQ(data.description, "This is the plugin that wraps SensorFile elements.");
    EXPECT_EQ(data.platform, "win32");
    EXPECT_EQ(data.buildDate, "Tue 05/23/2017");
}

TEST(EntryPointsTest, FiltersAreListedInTheOrderOfTheirRegistration) {
    const Module module;
    module.start();
    EXPECT_THAT(factoryNames(),
                ElementsAre("FilterRecordKivra2Format", "FilterRecordSensorFile",
                            "FilterReplayKivra2Format", "FilterReplaySensorFile",
                            "FilterKivra2CalibReader", "FilterKivra2CalibWriter",
                            "FilterCalibSensorFileReader", "FilterCalibSensorFileWriter"));
}

TEST(EntryPointsTest, FactoriesTellTheirPluginAndItsVersion) {
    const Module module;
    module.start();
    for (const AbstractFilterFactory* factory : manager().getFilterFactories()) {
        EXPECT_EQ(factory->getPluginName(), "SensorFile");
        EXPECT_EQ(factory->getVersion().toString(), "2.5.0");
    }
}

TEST(EntryPointsTest, FactoriesMakeFiltersOfTheirClassAndDestroyThem) {
    const Module module;
    module.start();
    for (AbstractFilterFactory* factory : manager().getFilterFactories()) {
        Quoril::Core::Filter* filter = factory->create("my instance");
        EXPECT_STREQ(filter->getClassName(), factory->name());
        EXPECT_EQ(filter->getName(), "my instance");
        factory->destroy(filter);
    }
}

TEST(EntryPointsTest, DestroyingNoFilterIsIgnored) {
    const Module module;
    module.start();
    for (AbstractFilterFactory* factory : manager().getFilterFactories())
        factory->destroy(nullptr);
}

TEST(EntryPointsTest, RefusedPluginStaysUntilTheStop) {
    const Module module;
    {
        const Namesake namesake;
        EXPECT_THROW(module.start(), Poco::ExistsException);
        EXPECT_THAT(manager().getPlugins(), ElementsAre(&namesake));
        // The refused plug-in is kept, so that this start finds it and does nothing.
        module.start();
        EXPECT_THAT(factoryNames(), IsEmpty());
        module.stop();
        EXPECT_THAT(manager().getPlugins(), ElementsAre(&namesake));
    }
    module.start();
    EXPECT_THAT(manager().getPlugins(), SizeIs(1));
    EXPECT_THAT(factoryNames(), SizeIs(8));
}

TEST(EntryPointsTest, ModuleCanBeUnloadedAndLoadedAgain) {
    for (int i = 0; i < 10; ++i) {
        {
            const Module module;
            module.start();
            AbstractFilterFactory* factory = manager().findFilterFactory("FilterReplaySensorFile");
            ASSERT_NE(factory, nullptr);
            factory->destroy(factory->create("player"));
        }
        EXPECT_FALSE(Module::isLoaded());
        EXPECT_THAT(manager().getPlugins(), IsEmpty());
    }
}
