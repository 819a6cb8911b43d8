#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "host/PluginLoader.hpp"
#include "tests/host/TestFilters.hpp"
#include "tests/support/TemporaryPath.hpp"

#include <filesystem>
#include <fstream>

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string modulePath(const std::string& kind) {
    return std::string(QUORIL_TEST_MODULE_FOLDER) + "/HostTest" + kind + "Module.module";
}

std::string refusalOf(const std::string& path) {
    PluginLoader loader;
    try {
        loader.load(path);
    } catch (const Poco::LibraryLoadException& error) {
        EXPECT_TRUE(loader.getPaths().empty());
        return error.message();
    }
    return "loaded";
}

/// Whether the system maps the file into this process.
bool isInMemory(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    const std::string name = std::filesystem::path(path).filename();
    for (std::string line; std::getline(maps, line);)
        if (line.find(name) != std::string::npos) return true;
    return false;
}

bool isOffered() {
    return FlowManager::instance().getPluginManager().findFilterFactory("FilterOfModule") !=
           nullptr;
}

TEST(PluginLoaderTest, LoadedModuleOffersItsFilters) {
    PluginLoader loader;
    loader.load(modulePath("Good"));
    EXPECT_TRUE(isOffered());
    EXPECT_THAT(loader.getPaths(), ElementsAre(modulePath("Good")));
}

TEST(PluginLoaderTest, UnloadedModuleIsGoneFromMemory) {
    PluginLoader loader;
    loader.load(modulePath("Good"));
    EXPECT_TRUE(isInMemory(modulePath("Good")));
    loader.unload(modulePath("Good"));
    EXPECT_FALSE(isOffered());
    EXPECT_FALSE(isInMemory(modulePath("Good")));
    EXPECT_TRUE(loader.getPaths().empty());
}

TEST(PluginLoaderTest, ModuleCanBeLoadedAgain) {
    PluginLoader loader;
    for (int i = 0; i < 3; ++i) {
        loader.load(modulePath("Good"));
        EXPECT_TRUE(isOffered());
        loader.unload(modulePath("Good"));
    }
}

TEST(PluginLoaderTest, SameFileByAnotherPathIsLeftAlone) {
    PluginLoader loader;
    loader.load(modulePath("Good"));
    const std::string other = std::string(QUORIL_TEST_MODULE_FOLDER) + "/../" +
                              std::filesystem::path(QUORIL_TEST_MODULE_FOLDER).filename().string() +
                              "/HostTestGoodModule.module";
    loader.load(other);
    EXPECT_THAT(loader.getPaths(), ElementsAre(modulePath("Good")));
    loader.unload(other);
    EXPECT_FALSE(isOffered());
}

TEST(PluginLoaderTest, DestructionUnloads) {
    {
        PluginLoader loader;
        loader.load(modulePath("Good"));
    }
    EXPECT_FALSE(isOffered());
    EXPECT_FALSE(isInMemory(modulePath("Good")));
}

TEST(PluginLoaderTest, UnloadDestroysTheModulesFiltersInARunningFlow) {
    const InstalledTestPlugin installed;
    PluginLoader loader;
    loader.load(modulePath("Good"));
    Flow flow;
    LayoutManager& layout = flow.addLayout("main");
    auto& source = dynamic_cast<TestSource&>(flow.addFilter("TestSource", "source", layout));
    source.rowCount = 1'000'000'000;
    Filter& filter = flow.addFilter("FilterOfModule", "doubler", layout);
    auto& sink = dynamic_cast<TestSink&>(flow.addFilter("TestSink", "sink", layout));
    flow.connect(*source.outputs.front(), *filter.findInputPin("input"));
    flow.connect(*filter.findOutputPin("output"), *sink.inputs.front());
    flow.start();
    ASSERT_TRUE(waitFor([&] {
        const Synchronizer::DisablerLocker lock(sink.getSynchronizer(), nullptr);
        return sink.received.size() > 3;
    }));
    loader.unload(modulePath("Good"));
    EXPECT_FALSE(isInMemory(modulePath("Good")));
    flow.stop();
    EXPECT_THAT(flow.getFilters(), ElementsAre(&source, &sink));
    EXPECT_EQ(sink.received[3], 6.0);
}

TEST(PluginLoaderTest, MissingFileIsNamed) {
    EXPECT_EQ(refusalOf("/nowhere/module.so"),
              "Cannot load module '/nowhere/module.so': there is no such file");
}

TEST(PluginLoaderTest, FolderIsRefused) {
    const std::string folder = QUORIL_TEST_MODULE_FOLDER;
    EXPECT_EQ(refusalOf(folder), "Cannot load module '" + folder + "': it is a folder");
    EXPECT_EQ(refusalOf("/dev/null"), "Cannot load module '/dev/null': it is no regular file");
}

TEST(PluginLoaderTest, FileThatIsNoLibraryIsRefusedWithTheSystemsReason) {
    const std::string path = ::Support::uniqueTemporaryPath();
    std::ofstream(path) << "This is no library.";
    const std::string refusal = refusalOf(path);
    EXPECT_THAT(refusal, StartsWith("Cannot load module '" + path +
                                    "': it is no library that can be loaded ("));
    std::filesystem::remove(path);
}

TEST(PluginLoaderTest, LibraryWithoutEntryPointsIsRefused) {
    const std::string path = modulePath("Empty");
    EXPECT_EQ(refusalOf(path),
              "Cannot load module '" + path + "': it has no entry point 'dllStartPlugin'");
    EXPECT_FALSE(isInMemory(path));
}

TEST(PluginLoaderTest, ModuleForAnotherVersionIsRefusedBeforeItsStart) {
    const std::string path = modulePath("Old");
    EXPECT_EQ(refusalOf(path), "Cannot load module '" + path +
                                   "': it was built for version '0.9.0' of the framework, this "
                                   "host is version '0.10.0'");
    EXPECT_FALSE(isInMemory(path));
}

TEST(PluginLoaderTest, ErrorAtTheStartIsToldAndTheModuleUnloaded) {
    const std::string path = modulePath("Throwing");
    EXPECT_EQ(refusalOf(path), "Cannot load module '" + path +
                                   "': its plug-in did not start (the sensor is not there)");
    EXPECT_FALSE(isInMemory(path));
}

TEST(PluginLoaderTest, ModuleThatRefusesToStopIsUnloadedAllTheSame) {
    PluginLoader loader;
    loader.load(modulePath("Stubborn"));
    loader.unload(modulePath("Stubborn"));
    EXPECT_FALSE(isInMemory(modulePath("Stubborn")));
}

TEST(PluginLoaderTest, WhatAModuleLeavesInstalledIsTakenOutBeforeItsCodeGoes) {
    PluginManager& manager = FlowManager::instance().getPluginManager();
    const InstalledTestPlugin installed;
    PluginLoader loader;
    loader.load(modulePath("Stubborn"));
    Flow flow;
    flow.addFilter("StubbornFilter", "filter", flow.addLayout("main"));
    loader.unload(modulePath("Stubborn"));
    EXPECT_TRUE(flow.getFilters().empty());
    EXPECT_EQ(manager.findFilterFactory("StubbornFilter"), nullptr);
    EXPECT_THAT(manager.getPlugins(), ElementsAre(&installed.plugin));
}

TEST(PluginLoaderTest, UnloadOfAnUnknownModuleIsAnError) {
    PluginLoader loader;
    EXPECT_THROW(loader.unload("/nowhere/module.so"), Poco::NotFoundException);
}

}  // namespace
}  // namespace Quoril::Core
