#include "host/filters/BuiltinPlugin.hpp"
#include "tests/flows/ModuleFixture.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <tuple>

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::TestFilter;
using Quoril::Core::waitFor;

namespace {

constexpr int kPrecision = 9;

/// A column of a CSV file, read in the plainest way.
struct Column {
    std::string reference;  ///< as the host's source names it
    std::vector<double> values;
    std::string type;
};

struct Table {
    bool hasHeader = false;
    std::vector<Column> columns;
};

// The fields of a line; the elements of a quoted list are fields of their own.
std::vector<std::string> splitLine(std::string line) {
    std::erase_if(line, [](char c) { return c == '\r' || c == '"' || c == '[' || c == ']'; });
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == ',')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

// The names by which the host's source knows the fields of a line: "#2", or "#3[0]" in a list.
std::vector<std::string> referencesOf(const std::string& line) {
    std::vector<std::string> references;
    int column = 1;
    int element = -1;  // below 0 outside of a list
    const auto add = [&] {
        std::string reference = "#" + std::to_string(column);
        if (element >= 0) reference += "[" + std::to_string(element++) + "]";
        references.push_back(reference);
    };
    for (const char c : line) {
        if (c == '[') element = 0;
        if (c == ',') {
            add();
            if (element < 0) ++column;
        } else if (c == ']') {
            add();
            return references;  // the lists of these files stand in the last column
        }
    }
    add();
    return references;
}

// Not a number for a blank field; false when the field is some other text.
bool toNumber(const std::string& field, double& number) {
    number = std::numeric_limits<double>::quiet_NaN();
    if (field.find_first_not_of(' ') == std::string::npos) return true;
    char* end = nullptr;
    number = std::strtod(field.c_str(), &end);
    return *end == '\0';
}

// The narrowest type that holds a column; every other column of fractions is a float.
std::string chooseType(const std::vector<double>& values, bool prefersFloat) {
    const bool isIntegral = std::all_of(values.begin(), values.end(), [](double value) {
        return std::trunc(value) == value && std::abs(value) < 9007199254740992.0;
    });
    if (!isIntegral) return prefersFloat ? "FLOAT" : "DOUBLE";
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    if (*low >= -32768 && *high <= 32767) return "INT16";
    if (*low >= -2147483648.0 && *high <= 2147483647.0) return "INT32";
    return "INT64";
}

Table readTable(const std::string& path) {
    Table table;
    std::ifstream stream(path, std::ios::binary);
    std::vector<bool> isNumeric;
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> fields = splitLine(line);
        double number = 0.0;
        if (table.columns.empty()) {
            for (const std::string& reference : referencesOf(line))
                table.columns.push_back({reference, {}, {}});
            isNumeric.assign(fields.size(), true);
            table.hasHeader = std::none_of(fields.begin(), fields.end(), [&](const auto& field) {
                return toNumber(field, number);
            });
            if (table.hasHeader) continue;
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (!toNumber(fields[i], number)) isNumeric.at(i) = false;
            table.columns.at(i).values.push_back(number);
        }
    }
    std::size_t index = 0;
    std::erase_if(table.columns, [&](const Column&) { return !isNumeric[index++]; });
    for (std::size_t i = 0; i < table.columns.size(); ++i)
        table.columns[i].type = chooseType(table.columns[i].values, i % 2 == 1);
    return table;
}

// What a value must be once it was written into a column and read back.
double stored(double value, const std::string& type, bool binary) {
    if (type == "FLOAT") value = static_cast<double>(static_cast<float>(value));
    if (binary || std::isnan(value) || type.starts_with("INT")) return value;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", kPrecision, value);
    return type == "FLOAT" ? static_cast<double>(std::strtof(text, nullptr))
                           : std::strtod(text, nullptr);
}

std::vector<std::string> realFiles() {
    std::vector<std::string> files;
    const char* folder = std::getenv("SENSORFILE_REAL_DATA");
    if (folder == nullptr) return files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".csv") files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

/// Runs over the CSV files of the folder that SENSORFILE_REAL_DATA names; without it there is none.
class RealDataTest : public ModuleFixture,
                     public testing::WithParamInterface<std::tuple<std::string, bool>> {
 protected:
    RealDataTest() { Quoril::Core::installBuiltinPlugin(); }

    void record() {
        // One pin for each type; the columns of a file stand in the order of the pins.
        std::map<std::string, std::string> columnsOfType;
        std::map<std::string, std::string> namesOfType;
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            const Column& column = table.columns[i];
            columnsOfType[column.type] += "," + column.reference;
            namesOfType[column.type] += "c" + std::to_string(i) + " ";
        }
        std::string selection;
        for (const auto& [type, columns] : columnsOfType)
            selection += type + "=" + columns.substr(1) + ";";

        Flow flow;
        Filter& source = flow.addFilter("FilterCsvSource", "source", flow.addLayout("first"));
        Filter& recorder = addRecorder(flow, flow.addLayout("second"));
        Harness csv(source);
        csv.choose("Header", table.hasHeader ? "Yes" : "No");
        csv.set("Columns", selection);
        csv.set("File Name", std::get<0>(GetParam()));
        Harness rec(recorder);
        rec.set("Double Precision", kPrecision);
        rec.set("Pins Number", static_cast<int>(columnsOfType.size()));
        int pin = 0;
        for (const auto& [type, names] : namesOfType) {
            const std::string number = std::to_string(++pin);
            rec.set("ColNames#" + number, names);
            rec.choose("ColTypes#" + number, type);
            flow.connect(*source.findOutputPin(type), rec.input("input#" + number));
        }
        startRecording(recorder, file, isBinary());
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
        flow.stop();
        rec.set("Record", false);
        EXPECT_EQ(flow.getErrorCount(source), 0U);
    }

    // The values of each column, in the table's order.
    std::vector<std::vector<double>> replay() {
        std::vector<std::vector<double>> values(table.columns.size());
        Flow flow;
        Filter& player = addPlayer(flow, flow.addLayout("first"));
        auto& sink = dynamic_cast<TestFilter&>(
            flow.addFilter(TestFilter::kClassName, "sink", flow.addLayout("second")));
        Harness(player).set("MinSize AutoDetectName", 30);
        loadPlayer(player, file, isBinary());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string name = "c" + std::to_string(i);
            flow.connect(*player.findOutputPin(name), sink.addInput(name));
        }
        sink.onProcess = [&] {
            for (std::size_t i = 0; i < values.size(); ++i)
                if (sink.inputs[i]->fetch())
                    values[i].push_back(sink.inputs[i]->take()->value(0, 0));
        };
        Harness(player).set("Replay", true);
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitUntilReplayed(player));
        flow.stop();
        expectNothingLost(flow);
        return values;
    }

    [[nodiscard]] bool isBinary() const { return std::get<1>(GetParam()); }

    Table table = readTable(std::get<0>(GetParam()));
    std::string file = folder.file("recorded.sf");
};

TEST_P(RealDataTest, EveryValueComesBackAsItsColumnsTypeAllows) {
    ASSERT_FALSE(table.columns.empty());
    record();
    const auto replayed = replay();
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        ASSERT_EQ(replayed[i].size(), column.values.size()) << column.reference;
        for (std::size_t row = 0; row < column.values.size(); ++row) {
            const double expected = stored(column.values[row], column.type, isBinary());
            const bool isSame = replayed[i][row] == expected ||
                                (std::isnan(replayed[i][row]) && std::isnan(expected));
            ASSERT_TRUE(isSame) << column.reference << " (" << column.type << "), row " << row
                                << ": " << replayed[i][row] << " instead of " << expected;
        }
    }
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealDataTest);
INSTANTIATE_TEST_SUITE_P(Files, RealDataTest,
                         testing::Combine(testing::ValuesIn(realFiles()), testing::Bool()),
                         [](const auto& test) {
                             return std::filesystem::path(std::get<0>(test.param)).stem().string() +
                                    (std::get<1>(test.param) ? "_binary" : "_text");
                         });
