#include "sensorfile/ColumnType.hpp"
#include "tools/import/CellReader.hpp"
#include "tools/recording/TypeOption.hpp"
#include "tools/recording/ValueText.hpp"

#include <bit>
#include <cstdint>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using namespace SensorFile;

/// The value that a cell has in a column of a type, as text; or what is wrong with it.
std::string read(int typeCode, std::string_view cell, const std::string& blank = "",
                 bool hasDecimalComma = false) {
    SensorFileConfig config;
    config.addColumn("x", typeCode);
    Row row(config);
    const CellReader reader({{0, "x", typeCode}}, {hasDecimalComma}, blank);
    const std::optional<CsvDefect> defect = reader.read({cell}, row);
    if (defect) return defect->cause;
    return valueText(row, 0);
}

TEST(CellReaderTest, IntegersFitUpToTheLimitsOfTheirTypes) {
    struct Limits {
        int type;
        const char* name;
        const char* below;
        const char* smallest;
        const char* largest;
        const char* above;
    };
    for (const Limits& limits : std::vector<Limits>{
             {kInt8, "INT8", "-129", "-128", "127", "128"},
             {kChar, "CHAR", "-129", "-128", "127", "128"},
             {kUInt8, "UINT8", "-1", "0", "255", "256"},
             {kUChar, "UCHAR", "-1", "0", "255", "256"},
             {kInt16, "INT16", "-32769", "-32768", "32767", "32768"},
             {kShort, "SHORT", "-32769", "-32768", "32767", "32768"},
             {kUInt16, "UINT16", "-1", "0", "65535", "65536"},
             {kUShort, "USHORT", "-1", "0", "65535", "65536"},
             {kInt32, "INT32", "-2147483649", "-2147483648", "2147483647", "2147483648"},
             {kUInt32, "UINT32", "-1", "0", "4294967295", "4294967296"},
             {kInt64, "INT64", "-9223372036854775809", "-9223372036854775808",
              "9223372036854775807", "9223372036854775808"},
             {kUInt64, "UINT64", "-1", "0", "18446744073709551615", "18446744073709551616"},
             {kBool, "BOOL", "-1", "0", "1", "2"}}) {
        const auto misfit = [&](const char* text) {
            return "'" + std::string(text) + "' does not fit " + limits.name;
        };
        EXPECT_EQ(read(limits.type, limits.below), misfit(limits.below));
        EXPECT_EQ(read(limits.type, limits.smallest), limits.smallest);
        EXPECT_EQ(read(limits.type, limits.largest), limits.largest);
        EXPECT_EQ(read(limits.type, limits.above), misfit(limits.above));
    }
}

TEST(CellReaderTest, WholeNumbersMayBeWrittenOtherwise) {
    EXPECT_EQ(read(kInt16, "3.0"), "3");
    EXPECT_EQ(read(kInt16, "-1.5e1"), "-15");
    EXPECT_EQ(read(kUInt64, "9007199254740992.0"), "9007199254740992");
    EXPECT_EQ(read(kInt8, "-0"), "0");
    EXPECT_EQ(read(kInt8, "true"), "1");
    EXPECT_EQ(read(kBool, "FALSE"), "0");
    EXPECT_EQ(read(kBool, "1.0"), "1");
}

TEST(CellReaderTest, WhatAnIntegerWouldLoseIsRefused) {
    for (const char* cell : {"1.5", "nan", "-inf", "1e300", "9007199254740993.5"})
        EXPECT_EQ(read(kInt64, cell), "'" + std::string(cell) + "' does not fit INT64");
}

TEST(CellReaderTest, DoublesAndFloatsAreReadAsWritten) {
    EXPECT_EQ(read(kDouble, "0.1"), "0.1");
    EXPECT_EQ(read(kDouble, "5.35E-05"), "5.35e-05");
    EXPECT_EQ(read(kDouble, "-Inf"), "-inf");
    EXPECT_EQ(read(kFloat, "0.1"), "0.1");
    EXPECT_EQ(read(kFloat, "NaN"), "nan");
    EXPECT_EQ(read(kFloat, "1e39"), "'1e39' does not fit FLOAT");
    EXPECT_EQ(read(kDouble, "1e309"), "'1e309' does not fit DOUBLE");
    EXPECT_EQ(read(kDouble, "1,25", "", true), "1.25");
}

TEST(CellReaderTest, BlanksAreNanWhereTheTypeHasOne) {
    EXPECT_EQ(read(kDouble, ""), "nan");
    EXPECT_EQ(read(kFloat, ""), "nan");
    EXPECT_EQ(read(kInt16, ""), "blank, and INT16 has no nan; --blank says what to put there");
}

TEST(CellReaderTest, BlanksAreWhatTheUserPutsThere) {
    EXPECT_EQ(read(kInt16, "", "-1"), "-1");
    EXPECT_EQ(read(kDouble, "", "0"), "0");
    EXPECT_EQ(read(kUInt8, "", "-1"), "'-1' does not fit UINT8");
}

TEST(CellReaderTest, TextIsNoNumberInAnyColumn) {
    for (int type = kUChar; type <= kInt64; ++type) {
        EXPECT_EQ(read(type, "1.2.3"), "'1.2.3' is no number");
        EXPECT_EQ(read(type, "1,5"), "'1,5' is no number; with --decimal-comma it would be one");
    }
}

TEST(CellReaderTest, FirstBadCellIsNamed) {
    SensorFileConfig config;
    config.addColumn("x", kInt8);
    config.addColumn("y", kInt8);
    Row row(config);
    const CellReader reader({{2, "x", kInt8}, {0, "y", kInt8}}, {}, "");
    EXPECT_EQ(reader.read({"bad", "?", "1"}, row)->column, 0U);
    EXPECT_EQ(reader.read({"bad", "?", "worse"}, row)->column, 2U);
    ASSERT_FALSE(reader.read({"4", "?", "3"}, row));
    EXPECT_EQ(row.getValue(0), 3.0);
    EXPECT_EQ(row.getValue(1), 4.0);
}

RC_GTEST_PROP(CellReaderTest, WhatIsWrittenIsReadBackExactly, (std::uint64_t bits)) {
    for (const int type : {kFloat, kDouble, kBool, kUInt64, kInt64}) {
        SensorFileConfig config;
        config.addColumn("x", type);
        Row row(config);
        if (row.isWide(0)) {
            row.setBits(0, bits);
        } else if (type == kDouble) {
            row.setValue(0, std::bit_cast<double>(bits));
        } else if (type == kFloat) {
            row.setValue(
                0, static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits))));
        } else {
            row.setValue(0, static_cast<double>(bits & 1));
        }
        const std::string text = valueText(row, 0);
        RC_ASSERT(read(type, text) == text);
    }
}

}  // namespace
}  // namespace SensorFileTool
