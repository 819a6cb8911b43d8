#include "sensorfile/Kivra2Layout.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <string>
#include <vector>

#include <Eigen/Core>
#include <gmock/gmock.h>

using SensorFile::SensorFileConfig;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Kivra2 = SensorFile::Kivra2;

namespace {

struct Columns {
    std::vector<std::string> names;
    std::vector<int> types;
};

Columns plainColumns() {
    return {{"COUNT", "ACCX", "ACCY", "ACCZ", "MAGX", "MAGY", "MAGZ", "INFO"},
            {13, 14, 14, 14, 14, 14, 14, 11}};
}
Columns gyroColumns() {
    return {
        {"COUNT", "ACCX", "ACCY", "ACCZ", "MAGX", "MAGY", "MAGZ", "GYRX", "GYRY", "GYRZ", "INFO"},
        {13, 14, 14, 14, 14, 14, 14, 14, 14, 14, 11}};
}
// The same columns as units of the first generation were recorded.
Columns old(Columns columns) {
    for (int& type : columns.types)
        type = type == 13 ? 4 : type == 14 ? 5 : 10;
    return columns;
}

SensorFileConfig makeConfig(const Columns& columns, int format = 2, int records = 0) {
    SensorFileConfig config;
    for (std::size_t i = 0; i < columns.names.size(); ++i)
        config.addColumn(columns.names[i], columns.types[i]);
    config.setCalibFormat(static_cast<std::uint16_t>(format));
    for (int i = 0; i < records; ++i)
        config.addCalibData("any", Eigen::MatrixXi(2, 2));
    return config;
}

bool isLayout(const Columns& columns, int format = 2, int records = 0) {
    return Kivra2::isLayout(makeConfig(columns, format, records));
}

std::vector<std::string> names(const SensorFileConfig& config) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        result.push_back(config.getColumn(i).getName());
    return result;
}

std::vector<int> types(const SensorFileConfig& config) {
    std::vector<int> result;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        result.push_back(config.getColumn(i).getTypeCode());
    return result;
}

}  // namespace

TEST(Kivra2LayoutTest, PlainColumnsAreEight) {
    SensorFileConfig config;
    Kivra2::addColumns(config);
    EXPECT_EQ(names(config), plainColumns().names);
    EXPECT_EQ(types(config), plainColumns().types);
    EXPECT_TRUE(Kivra2::isLayout(config));
    EXPECT_FALSE(Kivra2::hasGyro(config));
}

TEST(Kivra2LayoutTest, GyroscopeColumnsComeBeforeInfoAndGoAgain) {
    SensorFileConfig config;
    Kivra2::addColumns(config);
    Kivra2::addGyroColumns(config);
    EXPECT_EQ(names(config), gyroColumns().names);
    EXPECT_EQ(types(config), gyroColumns().types);
    EXPECT_TRUE(Kivra2::isLayout(config));
    EXPECT_TRUE(Kivra2::hasGyro(config));
    Kivra2::removeGyroColumns(config);
    EXPECT_EQ(names(config), plainColumns().names);
    EXPECT_EQ(types(config), plainColumns().types);
}

TEST(Kivra2LayoutTest, GyroscopeColumnsAreOnlyAddedToEight) {
    SensorFileConfig config = makeConfig(gyroColumns());
    Kivra2::addGyroColumns(config);
    EXPECT_EQ(names(config), gyroColumns().names);
    config = SensorFileConfig();
    Kivra2::addGyroColumns(config);
    EXPECT_THAT(names(config), IsEmpty());
}

TEST(Kivra2LayoutTest, EightColumnsLoseNone) {
    SensorFileConfig config;
    for (int i = 0; i < 8; ++i)
        config.addColumn("GYRX", 14);
    Kivra2::removeGyroColumns(config);
    EXPECT_EQ(config.getColumnCount(), 8U);
}

TEST(Kivra2LayoutTest, OtherNumbersOfColumnsAreRefused) {
    Columns columns;
    EXPECT_FALSE(isLayout(columns));
    while (columns.names.size() < 13) {
        const std::size_t i = columns.names.size();
        columns.names.push_back(i < 11 ? gyroColumns().names[i] : "MORE");
        columns.types.push_back(i < 11 ? gyroColumns().types[i] : 14);
        EXPECT_EQ(isLayout(columns), columns.names.size() == 11) << columns.names.size();
    }
    Columns nine = plainColumns();
    nine.names.insert(nine.names.end() - 1, "GYRX");
    nine.types.insert(nine.types.end() - 1, 14);
    EXPECT_FALSE(isLayout(nine));
}

TEST(Kivra2LayoutTest, RecordsAre0Or4Or6WhateverTheyHold) {
    for (int records = 0; records <= 8; ++records) {
        const bool isGood = records == 0 || records == 4 || records == 6;
        EXPECT_EQ(isLayout(plainColumns(), 2, records), isGood) << records;
        EXPECT_EQ(isLayout(gyroColumns(), 2, records), isGood) << records;
    }
}

TEST(Kivra2LayoutTest, EveryNameMatters) {
    for (const Columns& good : {plainColumns(), gyroColumns()})
        for (std::size_t i = 0; i < good.names.size(); ++i)
            for (const char* name : {"", "count", "OTHER", "INFO ", "COUNT2"}) {
                Columns columns = good;
                columns.names[i] = name;
                EXPECT_FALSE(isLayout(columns)) << i << name;
            }
}

TEST(Kivra2LayoutTest, OrderOfNamesMatters) {
    for (const Columns& good : {plainColumns(), gyroColumns()})
        for (std::size_t i = 0; i + 1 < good.names.size(); ++i) {
            Columns columns = good;
            std::swap(columns.names[i], columns.names[i + 1]);
            EXPECT_FALSE(isLayout(columns)) << i;
        }
}

TEST(Kivra2LayoutTest, EveryTypeMatters) {
    for (const int format : {1, 2})
        for (const Columns& present : {plainColumns(), gyroColumns()}) {
            const Columns good = format == 1 ? old(present) : present;
            for (std::size_t i = 0; i < good.types.size(); ++i)
                for (int type = 2; type <= 18; ++type) {
                    Columns columns = good;
                    columns.types[i] = type;
                    EXPECT_EQ(isLayout(columns, format), type == good.types[i])
                        << format << " " << i << " " << type;
                }
        }
}

TEST(Kivra2LayoutTest, GenerationIsToldByTheCalibrationFormat) {
    for (const Columns& columns : {plainColumns(), gyroColumns()}) {
        for (const int format : {0, 1}) {
            EXPECT_TRUE(isLayout(old(columns), format, 4)) << format;
            EXPECT_FALSE(isLayout(columns, format, 4)) << format;
        }
        for (const int format : {2, 3, 65535}) {
            EXPECT_TRUE(isLayout(columns, format, 6)) << format;
            EXPECT_FALSE(isLayout(old(columns), format, 6)) << format;
        }
    }
}
