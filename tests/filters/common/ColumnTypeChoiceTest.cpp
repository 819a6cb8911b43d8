#include "filters/common/ColumnTypeChoice.hpp"
#include "sensorfile/ColumnType.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <gmock/gmock.h>

using Filters::columnTypeChoices;
using Filters::columnTypeCode;
using Support::expectThrow;
using testing::ElementsAre;

TEST(ColumnTypeChoiceTest, OffersFifteenTypesInTheOrderOfTheirCodes) {
    EXPECT_THAT(columnTypeChoices(), ElementsAre("UCHAR", "CHAR", "USHORT", "SHORT", "UINT32",
                                                 "INT32", "FLOAT", "DOUBLE", "BOOL", "UINT8",
                                                 "INT8", "UINT16", "INT16", "UINT64", "INT64"));
    EXPECT_EQ(columnTypeCode(0), SensorFile::kUChar);
    EXPECT_EQ(columnTypeCode(5), SensorFile::kInt32);
    EXPECT_EQ(columnTypeCode(7), SensorFile::kDouble);
    EXPECT_EQ(columnTypeCode(14), SensorFile::kInt64);
}

TEST(ColumnTypeChoiceTest, PositionPastTheLastIsRefused) {
    const std::string message = "Column type is not compatible with SensorFile format";
    expectThrow<Poco::DataException>(message, [] { (void)columnTypeCode(15); });
    expectThrow<Poco::DataException>(message, [] { (void)Filters::timeStampTypeCode(2); });
}

TEST(ColumnTypeChoiceTest, TimeStampIsDoubleOrUnsigned) {
    EXPECT_THAT(Filters::timeStampTypeChoices(), ElementsAre("DOUBLE", "UINT32"));
    EXPECT_EQ(Filters::timeStampTypeCode(0), SensorFile::kDouble);
    EXPECT_EQ(Filters::timeStampTypeCode(1), SensorFile::kUInt32);
}

TEST(ColumnTypeChoiceTest, CalibrationIsDoubleOrSigned) {
    EXPECT_THAT(Filters::calibTypeChoices(), ElementsAre("DOUBLE", "INT32"));
}
