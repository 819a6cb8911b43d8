#include "filters/kivra2/FilterKivra2CalibWriter.hpp"
#include "tests/filters/kivra2/Kivra2CalibBytes.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TestTime.hpp"

#include <limits>
#include <string>

#include <Poco/Environment.h>
#include <Poco/Exception.h>
#include <Poco/Path.h>
#include <gmock/gmock.h>

using Support::expectThrow;
using Support::matrix;
using Support::readBytes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Kivra2CalibWriterTest : public testing::Test {
 protected:
    /// Saves under a path and gives the bytes of the file.
    std::string save(const std::string& path) {
        cal.set("Save File", path);
        return readBytes(path);
    }
    std::string save() { return save(file); }

    /// The file of the fixture's clock and "Version" 0 with these matrices in front of defaults.
    static Kivra2CalibBytes head() {
        Kivra2CalibBytes bytes;
        bytes.date(5, 3, 17, 14, 7, 9).version(0);
        return bytes;
    }
    static std::string defaultFile() { return head().text() + Kivra2CalibBytes::defaultMatrices(); }

    [[nodiscard]] unsigned takenOf(const std::string& pin) const {
        return static_cast<unsigned>(cal.input(pin).getCounters().taken);
    }

    Support::FixedClock clock{Poco::DateTime(2017, 3, 5, 14, 7, 9)};
    Support::TemporaryFolder folder;
    const std::string file = folder.file("unit.cal");
    const Eigen::MatrixXd gain = matrix({{2, 0.5, 0}, {-1, 3, 7}, {0, 1e-3, 4}});
    const Eigen::MatrixXd offset = matrix({{11, -12, 13.5}});
    FilterKivra2CalibWriter filter{"cal"};
    Support::FilterHarness cal{filter};
};

TEST_F(Kivra2CalibWriterTest, PinsAndPropertiesStandInTheirOrder) {
    EXPECT_THAT(cal.inputNames(),
                ElementsAre("3aGain", "3aOff", "3mGain", "3mOff", "3gGain", "3gOff"));
    EXPECT_THAT(cal.outputNames(), IsEmpty());
    EXPECT_THAT(cal.propertyNames(), ElementsAre("Save File", "Version"));
    EXPECT_THAT(cal.lockedNames(), IsEmpty());
    EXPECT_EQ(cal.get<std::string>("Save File"), "");
    EXPECT_EQ(cal.get<short>("Version"), 0);
}

TEST_F(Kivra2CalibWriterTest, FileWithoutSamplesHoldsTheDateTheVersionAndDefaults) {
    cal.property("Version").setAny(short{3});
    const std::string bytes = save();
    EXPECT_EQ(bytes.substr(0, 8), std::string("\x05\x03\x11\x0E\x07\x09\x00\x03", 8));
    EXPECT_EQ(bytes.substr(8, 8), std::string("\x3F\xF0\0\0\0\0\0\0", 8));
    EXPECT_EQ(bytes.substr(16, 24), std::string(24, '\0'));
    EXPECT_EQ(bytes.substr(8), Kivra2CalibBytes::defaultMatrices());
    EXPECT_THAT(bytes, SizeIs(296));
}

TEST_F(Kivra2CalibWriterTest, EachMatrixLiesAtItsOffsetColumnByColumn) {
    Kivra2CalibBytes expected = head();
    int scale = 1;
    for (const char* unit : {"3a", "3m", "3g"}) {
        cal.push(std::string(unit) + "Gain", gain * scale);
        cal.push(std::string(unit) + "Off", offset * scale);
        expected.matrix(gain * scale).matrix(offset * scale);
        ++scale;
    }
    const std::string bytes = save();
    EXPECT_EQ(bytes, expected.text());
    // The second value of a gain is that of its second row.
    EXPECT_EQ(bytes.substr(16, 8), Kivra2CalibBytes().matrix(matrix({{-1}})).text());
    EXPECT_EQ(bytes.substr(272, 8), Kivra2CalibBytes().matrix(matrix({{33}})).text());
}

TEST_F(Kivra2CalibWriterTest, YearIsCountedFrom2000Modulo256) {
    const auto yearByte = [&](int year) {
        const Support::FixedClock then(Poco::DateTime(year, 3, 5));
        return static_cast<int>(static_cast<unsigned char>(save().at(2)));
    };
    EXPECT_EQ(yearByte(1999), 255);
    EXPECT_EQ(yearByte(2000), 0);
    EXPECT_EQ(yearByte(2207), 207);
    EXPECT_EQ(yearByte(2208), 208);
    EXPECT_EQ(yearByte(2255), 255);
    EXPECT_EQ(yearByte(2256), 0);
}

TEST_F(Kivra2CalibWriterTest, NegativeVersionIsWrittenAsUnsigned) {
    const auto versionBytes = [&](int version) {
        cal.property("Version").setAny(static_cast<short>(version));
        return save().substr(6, 2);
    };
    EXPECT_EQ(versionBytes(-1), "\xFF\xFF");
    EXPECT_EQ(versionBytes(-32768), std::string("\x80\0", 2));
    EXPECT_EQ(versionBytes(32767), "\x7F\xFF");
    EXPECT_EQ(versionBytes(0x0102), "\x01\x02");
}

TEST_F(Kivra2CalibWriterTest, SettingTheVersionOrBeingCalledWritesNothing) {
    cal.push("3aGain", gain);
    cal.property("Version").setAny(short{3});
    cal.step(3);
    EXPECT_EQ(takenOf("3aGain"), 0U);
    EXPECT_FALSE(Poco::File(file).exists());
}

TEST_F(Kivra2CalibWriterTest, SamplesAreNotRememberedBetweenSaves) {
    cal.push("3aGain", gain);
    cal.push("3gOff", offset);
    EXPECT_EQ(save(), head()
                          .matrix(gain)
                          .defaultOffset()
                          .defaultGain()
                          .defaultOffset()
                          .defaultGain()
                          .matrix(offset)
                          .text());
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, NewestOfManySamplesIsSaved) {
    cal.push("3aGain", -gain);
    cal.push("3aGain", gain);
    EXPECT_EQ(save().substr(8, 72), Kivra2CalibBytes().matrix(gain).text());
}

TEST_F(Kivra2CalibWriterTest, LongerBufferGivesOneSampleASave) {
    cal.input("3aGain").setBuffer({.size = 4, .isLifo = false});
    cal.push("3aGain", gain);
    cal.push("3aGain", 2 * gain);
    EXPECT_EQ(save().substr(8, 72), Kivra2CalibBytes().matrix(gain).text());
    EXPECT_EQ(save().substr(8, 72), Kivra2CalibBytes().matrix(2 * gain).text());
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, ConnectedPinWithoutSampleGivesTheDefault) {
    for (const std::string& pin : cal.inputNames())
        cal.connect(pin);
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, DisconnectedPinGivesTheDefault) {
    cal.connect("3mGain");
    cal.disconnect("3mGain");
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, OddShapesAreWrittenAsTheyAre) {
    const Eigen::MatrixXd row = matrix({{1, 2, 3, 4}});
    const Eigen::MatrixXd large = Eigen::MatrixXd::Random(300, 300);
    cal.push("3aGain", Eigen::MatrixXd());
    cal.push("3aOff", row);
    cal.push("3mGain", Eigen::MatrixXd::Zero(0, 5));
    cal.push("3mOff", large);
    cal.push("3gOff", row.transpose());
    const std::string bytes = save();
    EXPECT_THAT(bytes, SizeIs(8 + 8 * (4 + 90000 + 9 + 4)));
    EXPECT_TRUE(bytes == head().matrix(row).matrix(large).defaultGain().matrix(row).text());
}

TEST_F(Kivra2CalibWriterTest, NonFiniteValuesKeepTheirBits) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    cal.push("3aOff", matrix({{nan, -infinity, -0.0}}));
    EXPECT_EQ(save().substr(80, 24),
              Kivra2CalibBytes().matrix(matrix({{nan, -infinity, -0.0}})).text());
}

TEST_F(Kivra2CalibWriterTest, EmptyNameLeavesTheSamplesWaiting) {
    cal.push("3aGain", gain);
    cal.set("Save File", "");
    EXPECT_EQ(takenOf("3aGain"), 0U);
    EXPECT_EQ(save().substr(8, 72), Kivra2CalibBytes().matrix(gain).text());
}

TEST_F(Kivra2CalibWriterTest, RefusedPathTakesTheSamplesAllTheSame) {
    for (const std::string& pin : cal.inputNames())
        cal.push(pin, gain);
    const std::string path = folder.path() + "/";
    expectThrow<Poco::IOException>("File not found : " + path, [&] { cal.set("Save File", path); });
    EXPECT_EQ(cal.get<std::string>("Save File"), "");
    for (const std::string& pin : cal.inputNames())
        EXPECT_EQ(takenOf(pin), 1U) << pin;
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, RefusedRelativePathIsToldInFull) {
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current() + "nowhere/",
                                   [&] { cal.set("Save File", "nowhere/"); });
}

TEST_F(Kivra2CalibWriterTest, PathThatCannotBeOpenedIsAFileErrorAndTakesTheSamples) {
    save();
    for (const std::string& path : {folder.file("missing/unit.cal"), folder.path()}) {
        cal.push("3aGain", gain);
        try {
            cal.set("Save File", path);
            ADD_FAILURE() << path << " was opened";
        } catch (const Poco::FileException& error) {
            EXPECT_THAT(error.displayText(), testing::HasSubstr(path));
        }
        EXPECT_EQ(cal.get<std::string>("Save File"), file);
    }
    EXPECT_EQ(takenOf("3aGain"), 2U);
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, LongerFileOfBeforeIsReplaced) {
    Support::writeBytes(file, std::string(1000, 'x'));
    EXPECT_EQ(save(), defaultFile());
}

TEST_F(Kivra2CalibWriterTest, VariablesInThePathAreExpandedAndKept) {
    Poco::Environment::set("KIVRA2_CALIB_FOLDER", folder.path());
    cal.set("Save File", "${KIVRA2_CALIB_FOLDER}/unit.cal");
    EXPECT_EQ(readBytes(file), defaultFile());
    EXPECT_EQ(cal.get<std::string>("Save File"), "${KIVRA2_CALIB_FOLDER}/unit.cal");
}

TEST_F(Kivra2CalibWriterTest, FullDiskIsToldAndTheNextSaveIsWhole) {
    cal.set("Save File", folder.file("before.cal"));
    for (const int space : {0, 7, 8, 100, 295}) {
        {
            const Support::FileSizeLimit limit(static_cast<rlim_t>(space));
            EXPECT_THROW(cal.set("Save File", file), Poco::IOException) << space;
        }
        EXPECT_EQ(cal.get<std::string>("Save File"), folder.file("before.cal"));
        EXPECT_LE(readBytes(file).size(), static_cast<std::size_t>(space));
    }
    EXPECT_EQ(save(), defaultFile());
}
