#include "host/runner/Overrides.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

FlowModel makeModel() {
    FlowModel model;
    FilterEntry filter;
    filter.name.text = "rec";
    filter.properties = {{{"Binary", {}}, {"true", {}}}, {{"Freq", {}}, {"200", {}}}};
    model.filters.push_back(filter);
    return model;
}

std::string problemsOf(const std::vector<std::string>& settings) {
    FlowModel model = makeModel();
    Problems problems;
    applyOverrides(settings, model, problems);
    return problems.toText();
}

TEST(Overrides, TakeThePlaceOfTheFilesSetting) {
    FlowModel model = makeModel();
    Problems problems;
    applyOverrides({"rec.Binary=false"}, model, problems);
    ASSERT_EQ(model.filters[0].properties.size(), 2U);
    EXPECT_EQ(model.filters[0].properties[0].value.text, "false");
    EXPECT_EQ(model.filters[0].properties[0].value.place.toText(), "--set 'rec.Binary=false'");
}

TEST(Overrides, ComeLastIfTheFileSetsNothing) {
    FlowModel model = makeModel();
    Problems problems;
    applyOverrides({"rec.File Name=a=b.txt", "rec.File Name="}, model, problems);
    ASSERT_EQ(model.filters[0].properties.size(), 3U);
    EXPECT_EQ(model.filters[0].properties[2].name.text, "File Name");
    EXPECT_EQ(model.filters[0].properties[2].value.text, "");
}

TEST(Overrides, KeepEqualSignsOfTheValue) {
    EXPECT_EQ(parseSetting("Columns=a=x,y;b=z", {}).value.text, "a=x,y;b=z");
}

TEST(Overrides, AreRefusedWithTheCause) {
    EXPECT_EQ(problemsOf({"rec.Binary"}),
              "--set 'rec.Binary': 'rec.Binary' is not of the form NAME=VALUE\n");
    EXPECT_EQ(problemsOf({"Binary=1"}),
              "--set 'Binary=1': 'Binary' is not of the form filter.name\n");
    EXPECT_EQ(problemsOf({"rek.Binary=1"}),
              "--set 'rek.Binary=1': there is no filter 'rek'; did you mean 'rec'?\n");
}

TEST(Overrides, PluginsOfTheCommandLineComeFirst) {
    FlowModel model;
    model.plugins.push_back({{"file", {}}, "dir/"});
    addPlugins({"a", "b"}, model);
    ASSERT_EQ(model.plugins.size(), 3U);
    EXPECT_EQ(model.plugins[1].path.text, "b");
    EXPECT_EQ(model.plugins[1].baseFolder, "");
    EXPECT_EQ(model.plugins[2].path.text, "file");
}

}  // namespace
}  // namespace Quoril::Runner
