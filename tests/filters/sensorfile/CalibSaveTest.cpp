#include "framework/CommandProperty.hpp"
#include "tests/filters/sensorfile/CalibWriterFixture.hpp"
#include "tests/support/FileSizeLimit.hpp"

#include <cmath>
#include <limits>

#include <Poco/DateTime.h>

using Support::column;
using Support::expectThrow;
using Support::matrix;
using testing::ElementsAre;
using testing::IsEmpty;

class CalibSaveTest : public CalibWriterFixture {
 protected:
    // A third type, which files do not know, for a pin that has it chosen.
    void chooseUnknownType(const std::string& name) {
        auto& types = dynamic_cast<Quoril::Core::EnumProperty<std::string>&>(cal.property(name));
        types.setEntries({"DOUBLE", "INT32", "FLOAT"});
        types.set(2);
    }
};

TEST_F(CalibSaveTest, TextFileIsACalibrationSectionAndNothingElse) {
    const Support::FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, 5));
    makePins({"Gain", "Off"});
    cal.set("Binary", false);
    cal.choose("CalibColTypes#2", "INT32");
    cal.push("calibInput#1", matrix({{1.5, 2.0}, {-3.0, 4.0}}));
    cal.push("calibInput#2", matrix({{2.7, -2.7}}));
    save();
    EXPECT_EQ(Support::readBytes(file),
              "Calib id: \taf243246\t56fe1289\t9078bc29\t80360200\t\n"
              "Calib datetime:\t20/11/2026\t12:30:05\n"
              "Calib version:\t2\t\n"
              "Number of Calibration coefficient:\t2\t\n"
              "Gain\tdouble\t(2, 2)\t\n"
              "1.5\t2\t\n"
              "-3\t4\t\n"
              "Off\tint32\t(1, 2)\t\n"
              "2\t-2\t\n");
}

TEST_F(CalibSaveTest, BinaryFileIsACalibrationSectionAndNothingElse) {
    const Support::FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, 5));
    makePins({"Gain", "Off"});
    cal.choose("CalibColTypes#2", "INT32");
    cal.push("calibInput#1", matrix({{1.5, 2.0}, {-3.0, 4.0}}));
    cal.push("calibInput#2", matrix({{2.7, -2.7}}));
    save();
    const std::string zeros28(56, '0');
    EXPECT_EQ(Support::readBytes(file),
              Support::fromHex("af243246 56fe1289 9078bc29 8036 0200"
                               "0000000000000055"  // 32 + (4 + 3 + 4 x 8) + (3 + 3 + 2 x 4)
                               "140b1a 0c1e05 0002 0000000000000002"
                               "4761696e" +
                               zeros28 +
                               "09 02 02"
                               "3ff8000000000000 c008000000000000"
                               "4000000000000000 4010000000000000"
                               "4f666600" +
                               zeros28 + "07 01 02 00000002 fffffffe"));
}

TEST_F(CalibSaveTest, EachSaveWritesItsDate) {
    for (const int day : {3, 4}) {
        const Support::FixedClock clock(Poco::DateTime(2026, 1, day, 23, 59, 59));
        save();
        EXPECT_EQ(saved().getCalibTime(), Poco::DateTime(2026, 1, day, 23, 59, 59));
    }
}

TEST_F(CalibSaveTest, CalibrationVersionIs2WhateverThePropertyShows) {
    auto& shown = dynamic_cast<Quoril::Core::ValueProperty<int>&>(cal.property("Calib Version"));
    shown.setIsWritable(true);
    shown.set(7);
    save();
    EXPECT_EQ(saved().getCalibFormat(), 2);
    EXPECT_EQ(saved().getCalibVersion(), 0x0200);
}

TEST_F(CalibSaveTest, WithoutPinsTheFileHasNoRecords) {
    for (const bool binary : {true, false}) {
        cal.set("Binary", binary);
        save();
        EXPECT_THAT(savedNames(), IsEmpty()) << binary;
        EXPECT_TRUE(saved().isCalibOnly());
    }
}

TEST_F(CalibSaveTest, SavingTwiceWithoutNewDataWritesTheSameMatrices) {
    const Support::FixedClock clock(Poco::DateTime(2026, 11, 20, 12, 30, 5));
    makePins({"a", "b"});
    cal.push("calibInput#1", matrix({{1.0, 2.0}}));
    cal.push("calibInput#2", column({3.0}));
    save();
    const std::string first = Support::readBytes(file);
    EXPECT_THAT(savedNames(), ElementsAre("a", "b"));
    Poco::File(file).remove();
    save();
    EXPECT_EQ(Support::readBytes(file), first);
}

TEST_F(CalibSaveTest, NewMatrixReplacesTheRememberedOneOfItsPinOnly) {
    makePins({"a", "b"});
    cal.push("calibInput#1", column({1.0}));
    cal.push("calibInput#2", column({2.0}));
    save();
    cal.push("calibInput#2", matrix({{5.0, 6.0}}));
    save();
    EXPECT_EQ(savedValue(0), column({1.0}));
    EXPECT_EQ(savedValue(1), matrix({{5.0, 6.0}}));
}

TEST_F(CalibSaveTest, PinThatNeverHadAMatrixIsLeftOutAndShiftsNothing) {
    makePins({"a", "b"});
    cal.connect("calibInput#1");
    cal.push("calibInput#2", column({2.0}));
    save();
    EXPECT_THAT(savedNames(), ElementsAre("b"));
    cal.push("calibInput#1", column({1.0}));
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a", "b"));
    EXPECT_EQ(savedValue(0), column({1.0}));
    EXPECT_EQ(savedValue(1), column({2.0}));
}

TEST_F(CalibSaveTest, UnconnectedPinIsLeftOutThoughItsMatrixIsRemembered) {
    makePins({"a", "b"});
    cal.push("calibInput#1", column({1.0}));
    cal.push("calibInput#2", column({2.0}));
    save();
    cal.disconnect("calibInput#1");
    save();
    EXPECT_THAT(savedNames(), ElementsAre("b"));
    cal.connect("calibInput#1");
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a", "b"));
    EXPECT_EQ(savedValue(0), column({1.0}));
}

TEST_F(CalibSaveTest, EmptyMatrixLeavesItsPinOutFromThenOn) {
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    save();
    cal.push("calibInput#1", Eigen::MatrixXd(0, 3));
    save();
    EXPECT_THAT(savedNames(), IsEmpty());
    save();
    EXPECT_THAT(savedNames(), IsEmpty());
}

TEST_F(CalibSaveTest, RemovedPinForgetsItsMatrix) {
    makePins({"a", "b"});
    cal.push("calibInput#1", column({1.0}));
    cal.push("calibInput#2", column({2.0}));
    save();
    makePins({"a"});
    makePins({"a", "b"});
    cal.disconnect("calibInput#2");
    cal.connect("calibInput#2");
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a"));
}

TEST_F(CalibSaveTest, NewestOfSeveralWaitingMatricesIsSaved) {
    makePins({"a"});
    for (const bool isLifo : {false, true}) {
        cal.input("calibInput#1").setBuffer({.size = 4, .isLifo = isLifo});
        for (const double value : {1.0, 2.0, 3.0})
            cal.push("calibInput#1", column({value}));
        save();
        EXPECT_EQ(savedValue(0), column({3.0})) << isLifo;
        save();
        EXPECT_EQ(savedValue(0), column({3.0})) << isLifo;
    }
}

TEST_F(CalibSaveTest, NewestOfAnOverflownBufferIsSaved) {
    makePins({"a"});
    for (const unsigned size : {1U, 2U}) {
        cal.input("calibInput#1").setBuffer({.size = size, .isLifo = false});
        for (const double value : {1.0, 2.0, 3.0, 4.0, 5.0})
            cal.push("calibInput#1", column({value}));
        save();
        EXPECT_EQ(savedValue(0), column({5.0})) << size;
    }
}

TEST_F(CalibSaveTest, ProcessingCallsLeaveMatricesOnThePins) {
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    cal.step(3);
    EXPECT_EQ(cal.input("calibInput#1").getCounters().taken, 0U);
    EXPECT_THAT(Support::readBytes(file), IsEmpty());
    save();
    EXPECT_EQ(savedValue(0), column({1.0}));
}

TEST_F(CalibSaveTest, DoublesAreKeptToTheBit) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    makePins({"a"});
    cal.push("calibInput#1", matrix({{0.1, -0.0, 5e-324, 1.7976931348623157e308, nan}}));
    save();
    const Eigen::MatrixXd value = savedValue(0);
    EXPECT_EQ(value.leftCols(4), matrix({{0.1, -0.0, 5e-324, 1.7976931348623157e308}}));
    EXPECT_TRUE(std::signbit(value(1)));
    EXPECT_TRUE(std::isnan(value(4)));
}

TEST_F(CalibSaveTest, IntegersAreTruncatedTowardZero) {
    makePins({"a"});
    cal.choose("CalibColTypes#1", "INT32");
    cal.push("calibInput#1", matrix({{2.7, -2.7, 0.9, -0.9, 2147483647.5, -2147483648.5}}));
    for (const bool binary : {true, false}) {
        cal.set("Binary", binary);
        save();
        EXPECT_THAT(Support::calibTypes(saved()), ElementsAre("int32"));
        EXPECT_EQ(savedValue(0), matrix({{2.0, -2.0, 0.0, 0.0, 2147483647.0, -2147483648.0}}));
    }
}

TEST_F(CalibSaveTest, IntegersOutOfRangeBecomeTheNearestAndNaNBecomes0) {
    const double infinity = std::numeric_limits<double>::infinity();
    makePins({"a"});
    cal.choose("CalibColTypes#1", "INT32");
    cal.push("calibInput#1", matrix({{4e9, -4e9, 1e300, infinity, -infinity, std::nan("")}}));
    save();
    EXPECT_EQ(
        savedValue(0),
        matrix({{2147483647.0, -2147483648.0, 2147483647.0, 2147483647.0, -2147483648.0, 0.0}}));
}

TEST_F(CalibSaveTest, TypeOfThePresentIsTakenForRememberedMatrices) {
    makePins({"a"});
    cal.push("calibInput#1", column({2.7}));
    cal.choose("CalibColTypes#1", "INT32");
    save();
    EXPECT_EQ(savedValue(0), column({2.0}));
    cal.choose("CalibColTypes#1", "DOUBLE");
    cal.set("CalibColNames#1", "b");
    save();
    EXPECT_EQ(savedValue(0), column({2.7}));
    EXPECT_THAT(savedNames(), ElementsAre("b"));
}

TEST_F(CalibSaveTest, UnknownTypeIsRefusedBeforeTheFileIsTouched) {
    makePins({"a", "b"});
    cal.push("calibInput#1", column({1.0}));
    cal.push("calibInput#2", column({2.0}));
    chooseUnknownType("CalibColTypes#2");
    expectThrow<Poco::DataException>("Calib type is not compatible with Calibration file format",
                                     [&] { save(); });
    EXPECT_FALSE(Poco::File(file).exists());
    Support::writeBytes(file, "old");
    expectThrow<Poco::DataException>("Calib type is not compatible with Calibration file format",
                                     [&] { save(); });
    EXPECT_EQ(Support::readBytes(file), "old");
    cal.choose("CalibColTypes#2", "INT32");
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a", "b"));
}

TEST_F(CalibSaveTest, PathIsTestedBeforeTheTypes) {
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    chooseUnknownType("CalibColTypes#1");
    cal.set("File Name", folder.path() + "/");
    expectThrow<Poco::IOException>("File not found : " + folder.path() + "/",
                                   [&] { cal.trigger("Save"); });
    cal.set("File Name", folder.file("missing/a.sf"));
    expectThrow<Poco::DataException>("Calib type is not compatible with Calibration file format",
                                     [&] { cal.trigger("Save"); });
}

TEST_F(CalibSaveTest, TypeOfAPinThatIsLeftOutDoesNotMatter) {
    makePins({"a", "b", "c"});
    for (const char* name : {"CalibColTypes#1", "CalibColTypes#2", "CalibColTypes#3"})
        chooseUnknownType(name);
    cal.connect("calibInput#2");
    cal.push("calibInput#3", Eigen::MatrixXd());
    save();
    EXPECT_THAT(savedNames(), IsEmpty());
}

TEST_F(CalibSaveTest, MatricesOfASaveThatFailedAreRemembered) {
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    cal.set("File Name", folder.file("missing/a.sf"));
    expectThrow<Poco::IOException>("Problem while openning : " + folder.file("missing/a.sf"),
                                   [&] { cal.trigger("Save"); });
    save();
    EXPECT_EQ(savedValue(0), column({1.0}));
}

TEST_F(CalibSaveTest, LongerFileOfBeforeIsReplacedWhole) {
    Support::writeBytes(file, std::string(100'000, 'x'));
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    save();
    EXPECT_EQ(Support::readBytes(file).size(), 40U + 35U + 8U);
}

TEST_F(CalibSaveTest, EncodingIsThatOfTheMomentOfSaving) {
    makePins({"a"});
    cal.push("calibInput#1", column({1.0}));
    save();
    const std::string binary = Support::readBytes(file);
    cal.set("Binary", false);
    EXPECT_EQ(Support::readBytes(file), binary);
    save();
    EXPECT_EQ(Support::readBytes(file).substr(0, 10), "Calib id: ");
}

TEST_F(CalibSaveTest, NamesAreTakenWhole) {
    makePins({"a b; c,d", "", " e "});
    for (const char* pin : {"calibInput#1", "calibInput#2", "calibInput#3"})
        cal.push(pin, column({1.0}));
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a b; c,d", "", " e "));
}

TEST_F(CalibSaveTest, TextKeepsBlanksWithinNamesAndLosesThoseBefore) {
    makePins({"a b c", " d", "e "});
    for (const char* pin : {"calibInput#1", "calibInput#2", "calibInput#3"})
        cal.push(pin, column({1.0}));
    cal.set("Binary", false);
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a b c", "d", "e "));
}

TEST_F(CalibSaveTest, EmptyNameMakesATextFileThatCannotBeRead) {
    makePins({""});
    cal.push("calibInput#1", column({1.0}));
    cal.set("Binary", false);
    save();
    expectThrow<Poco::DataException>("Data type format is not supported!", [&] { (void)saved(); });
}

TEST_F(CalibSaveTest, SameNameTwiceMakesTwoRecords) {
    makePins({"a", "a"});
    cal.push("calibInput#1", column({1.0}));
    cal.push("calibInput#2", column({2.0}));
    save();
    EXPECT_THAT(savedNames(), ElementsAre("a", "a"));
    EXPECT_EQ(savedValue(1), column({2.0}));
}

TEST_F(CalibSaveTest, BinaryKeeps32CharactersOfAName) {
    makePins({std::string(40, 'n')});
    cal.push("calibInput#1", column({1.0}));
    save();
    EXPECT_THAT(savedNames(), ElementsAre(std::string(32, 'n')));
    cal.set("Binary", false);
    save();
    EXPECT_THAT(savedNames(), ElementsAre(std::string(40, 'n')));
}

TEST_F(CalibSaveTest, DiskThatIsFullIsTold) {
    makePins({"a"});
    for (const bool binary : {true, false}) {
        cal.set("Binary", binary);
        // One that fits into a block of memory, and one that does not.
        for (const Eigen::Index size : {2, 200}) {
            cal.push("calibInput#1", Eigen::MatrixXd::Constant(size, size, 1.0 / 3.0));
            const Support::FileSizeLimit limit(20);
            expectThrow<Poco::IOException>("Problem while openning : " + file, [&] { save(); });
        }
        save();
        EXPECT_EQ(savedValue(0).rows(), 200);
    }
}

TEST_F(CalibSaveTest, MatrixTooLargeForABinaryRecordIsRefusedBeforeTheFileIsTouched) {
    Support::writeBytes(file, "old");
    makePins({"a"});
    cal.push("calibInput#1", Eigen::MatrixXd::Zero(256, 1));
    expectThrow<Poco::RangeException>("Calibration matrix is too large for a binary file!",
                                      [&] { save(); });
    EXPECT_EQ(Support::readBytes(file), "old");
    cal.set("Binary", false);
    save();
    EXPECT_EQ(savedValue(0).rows(), 256);
    cal.set("Binary", true);
    cal.push("calibInput#1", Eigen::MatrixXd::Ones(255, 1));
    save();
    EXPECT_EQ(savedValue(0), Eigen::MatrixXd::Ones(255, 1));
}
