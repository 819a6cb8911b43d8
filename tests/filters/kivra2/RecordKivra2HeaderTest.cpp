#include "filters/common/CalibOutputs.hpp"
#include "tests/filters/kivra2/Kivra2RecordFixture.hpp"
#include "tests/support/TestTime.hpp"

#include <algorithm>

using Support::matrix;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

const std::vector<std::string> kPlainNames{"COUNT", "ACCX", "ACCY", "ACCZ",
                                           "MAGX",  "MAGY", "MAGZ", "INFO"};
const std::vector<std::string> kGyroNames{"COUNT", "ACCX", "ACCY", "ACCZ", "MAGX", "MAGY",
                                          "MAGZ",  "GYRX", "GYRY", "GYRZ", "INFO"};
const std::vector<std::string> kFourRecords{"AccGain", "AccOffset", "MagGain", "MagOffset"};
const std::vector<std::string> kSixRecords{"AccGain",   "AccOffset", "MagGain",
                                           "MagOffset", "GyrGain",   "GyrOffset"};

}  // namespace

class RecordKivra2HeaderTest : public Kivra2RecordFixture {
 protected:
    static Eigen::MatrixXd gain(double value) { return Eigen::MatrixXd::Constant(3, 3, value); }
    static Eigen::MatrixXd offset(double value) { return Eigen::MatrixXd::Constant(1, 3, value); }

    void pushAccMag(double value = 1.0) {
        rec.push("3aGain", gain(value));
        rec.push("3aOff", offset(value + 1.0));
        rec.push("3mGain", gain(value + 2.0));
        rec.push("3mOff", offset(value + 3.0));
    }
    void pushGyr(double value = 5.0) {
        rec.push("3gGain", gain(value));
        rec.push("3gOff", offset(value + 1.0));
    }
    void recordGyroFile() {
        rec.push("3g", line({10.0, 11.0, 12.0}));
        recordFile();
    }

    // The first coefficient of each record, in order.
    [[nodiscard]] std::vector<double> firstCoefficients() const {
        const SensorFile::SensorFileConfig config = header();
        std::vector<double> values;
        for (std::size_t i = 0; i < config.getCalibCount(); ++i)
            values.push_back(Filters::calibMatrix(config.getCalibData(i))(0, 0));
        return values;
    }
    [[nodiscard]] Eigen::MatrixXd coefficients(const std::string& name) const {
        const SensorFile::SensorFileConfig config = header();
        const int index = config.findCalibData(name);
        if (index < 0) return {};
        return Filters::calibMatrix(config.getCalibData(static_cast<std::size_t>(index)));
    }
};

TEST_F(RecordKivra2HeaderTest, ColumnsOfAUnitWithoutGyroscope) {
    recordFile();
    EXPECT_EQ(columnNames(), kPlainNames);
    EXPECT_THAT(columnTypes(), ElementsAre(13, 14, 14, 14, 14, 14, 14, 11));
}

TEST_F(RecordKivra2HeaderTest, ColumnsFollowTheGyroscopeThereAndBack) {
    rec.set("Save Gyro", true);
    rec.set("Save Gyro", true);
    recordGyroFile();
    EXPECT_EQ(columnNames(), kGyroNames);
    EXPECT_THAT(columnTypes(), ElementsAre(13, 14, 14, 14, 14, 14, 14, 14, 14, 14, 11));
    rec.set("Save Gyro", false);
    recordFile();
    EXPECT_EQ(columnNames(), kPlainNames);
    rec.set("Save Gyro", false);
    rec.set("Save Gyro", true);
    recordGyroFile();
    EXPECT_EQ(columnNames(), kGyroNames);
}

TEST_F(RecordKivra2HeaderTest, WithoutFrameNumberTheFrequencyIs0) {
    recordFile();
    EXPECT_EQ(header().getSampleFrequency(), 0.0);
}

TEST_F(RecordKivra2HeaderTest, FrequencyIsTheThirdElementOfTheFirstFrameNumber) {
    start();
    for (const double hertz : {100.0, 200.0}) {
        pushPlain();
        rec.push("FrameNumber", line({70000.0, 0.0, hertz}));
        rec.step();
    }
    stop();
    EXPECT_EQ(header().getSampleFrequency(), 100.0);
    EXPECT_EQ(rows().size(), 2U);
    EXPECT_EQ(rows().at(0).at(0), 4464.0);
}

TEST_F(RecordKivra2HeaderTest, FrameNumberOfAnyShapeWithThreeElementsHasAFrequency) {
    rec.push("FrameNumber", Support::column({1.0, 0.0, 50.0}));
    recordFile();
    EXPECT_EQ(header().getSampleFrequency(), 50.0);
}

TEST_F(RecordKivra2HeaderTest, FrameNumberOfOtherSizeHasNoFrequency) {
    for (const Row& number : {Row{1.0, 100.0}, Row{1.0, 2.0, 100.0, 4.0}}) {
        rec.push("FrameNumber", line(number));
        recordFile();
        EXPECT_EQ(header().getSampleFrequency(), 0.0) << number.size();
        EXPECT_EQ(rows().at(0).at(0), 1.0);
    }
}

TEST_F(RecordKivra2HeaderTest, FrequencyOfTheLastRecordingIsForgotten) {
    rec.push("FrameNumber", line({1.0, 0.0, 100.0}));
    recordFile();
    rec.disconnect("FrameNumber");
    recordFile();
    EXPECT_EQ(header().getSampleFrequency(), 0.0);
}

TEST_F(RecordKivra2HeaderTest, CarriesThePresentTimeAndCalibrationFormat2) {
    const Support::FixedClock clock(Poco::DateTime(2021, 3, 4, 5, 6, 7));
    recordFile();
    EXPECT_EQ(header().getCreationTime(), Poco::DateTime(2021, 3, 4, 5, 6, 7));
    EXPECT_EQ(header().getCalibTime(), Poco::DateTime(2021, 3, 4, 5, 6, 7));
    EXPECT_EQ(header().getCalibFormat(), 2);
    const Support::FixedClock later(Poco::DateTime(2021, 3, 4, 5, 6, 8));
    recordFile();
    EXPECT_EQ(header().getCreationTime(), Poco::DateTime(2021, 3, 4, 5, 6, 8));
    EXPECT_EQ(header().getCalibTime(), Poco::DateTime(2021, 3, 4, 5, 6, 8));
}

TEST_F(RecordKivra2HeaderTest, PrecisionChangesNothing) {
    const Support::FixedClock clock(Poco::DateTime(2021, 3, 4, 5, 6, 7));
    pushAccMag(0.123456789);
    recordFile();
    const std::string bytes = Support::readBytes(file);
    rec.set("Double Precision", 0);
    recordFile();
    EXPECT_EQ(Support::readBytes(file), bytes);
}

TEST_F(RecordKivra2HeaderTest, FourMatricesBecomeFourRecords) {
    rec.push("3aGain", matrix({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.5}}));
    rec.push("3aOff", matrix({{1.0, 2.0, 3.0}}));
    rec.push("3mGain", matrix({{9.0, 8.0, 7.0}, {6.0, 5.0, 4.0}, {3.0, 2.0, 0.1}}));
    rec.push("3mOff", matrix({{-1.0, -2.0, -3.0}}));
    recordFile();
    ASSERT_EQ(recordNames(), kFourRecords);
    EXPECT_EQ(coefficients("AccGain"), matrix({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.5}}));
    EXPECT_EQ(coefficients("AccOffset"), matrix({{1.0, 2.0, 3.0}}));
    EXPECT_EQ(coefficients("MagGain"), matrix({{9.0, 8.0, 7.0}, {6.0, 5.0, 4.0}, {3.0, 2.0, 0.1}}));
    EXPECT_EQ(coefficients("MagOffset"), matrix({{-1.0, -2.0, -3.0}}));
}

TEST_F(RecordKivra2HeaderTest, NoCalibrationPinsGiveNoRecords) {
    recordFile();
    EXPECT_THAT(recordNames(), IsEmpty());
}

TEST_F(RecordKivra2HeaderTest, LaterRecordingsReuseTheMatricesAndNeverDoubleThem) {
    pushAccMag(1.0);
    for (int i = 0; i < 3; ++i) {
        recordFile();
        EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0)) << i;
    }
    pushAccMag(10.0);
    recordFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(10.0, 11.0, 12.0, 13.0));
}

TEST_F(RecordKivra2HeaderTest, MatrixOfAWrongShapeLeavesAllFourOutAndTheOldOnesKnown) {
    const std::vector<std::pair<const char*, Eigen::MatrixXd>> wrong{
        {"3aGain", Eigen::MatrixXd::Zero(3, 2)}, {"3aGain", Eigen::MatrixXd::Zero(4, 3)},
        {"3mGain", Eigen::MatrixXd::Zero(2, 3)}, {"3mGain", Eigen::MatrixXd::Zero(9, 1)},
        {"3aOff", Eigen::MatrixXd::Zero(3, 1)},  {"3mOff", Eigen::MatrixXd::Zero(1, 2)},
        {"3aGain", Eigen::MatrixXd()},
    };
    pushAccMag(1.0);
    recordFile();
    for (const auto& [pin, value] : wrong) {
        pushAccMag(10.0);
        rec.push(pin, value);
        recordFile();
        EXPECT_THAT(recordNames(), IsEmpty()) << pin;
        EXPECT_EQ(rows().size(), 1U) << pin;
        recordFile();
        EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0)) << pin;
    }
}

TEST_F(RecordKivra2HeaderTest, OtherSidesOfTheOffsetsAreFree) {
    pushAccMag();
    rec.push("3aOff", Eigen::MatrixXd::Constant(1, 5, 20.0));
    rec.push("3mOff", Eigen::MatrixXd::Constant(2, 3, 30.0));
    recordFile();
    ASSERT_EQ(recordNames(), kFourRecords);
    EXPECT_EQ(coefficients("AccOffset"), Eigen::MatrixXd::Constant(1, 5, 20.0));
    EXPECT_EQ(coefficients("MagOffset"), Eigen::MatrixXd::Constant(2, 3, 30.0));
}

TEST_F(RecordKivra2HeaderTest, EmptyOffsetsOfTheRightSideAreWrittenButNotReused) {
    pushAccMag();
    rec.push("3aOff", Eigen::MatrixXd(1, 0));
    recordFile();
    EXPECT_EQ(recordNames(), kFourRecords);
    recordFile();
    EXPECT_THAT(recordNames(), IsEmpty());
}

TEST_F(RecordKivra2HeaderTest, AccelerometerAloneGivesNoRecordAndForgetsTheOthers) {
    pushAccMag();
    recordFile();
    rec.disconnect("3mGain");
    rec.disconnect("3mOff");
    rec.push("3aGain", gain(10.0));
    rec.push("3aOff", offset(10.0));
    recordFile();
    EXPECT_THAT(recordNames(), IsEmpty());
    rec.connect("3mGain");
    rec.connect("3mOff");
    recordFile();
    EXPECT_THAT(recordNames(), IsEmpty());
}

TEST_F(RecordKivra2HeaderTest, EveryUnconnectedPinForgetsItsMatrix) {
    for (const char* pin : {"3aGain", "3aOff", "3mGain", "3mOff"}) {
        pushAccMag();
        recordFile();
        rec.disconnect(pin);
        recordFile();
        EXPECT_THAT(recordNames(), IsEmpty()) << pin;
        rec.connect(pin);
        recordFile();
        EXPECT_THAT(recordNames(), IsEmpty()) << pin;
    }
}

TEST_F(RecordKivra2HeaderTest, ThreeFreshMatricesWaitForTheFourth) {
    pushAccMag(1.0);
    recordFile();
    rec.push("3aGain", gain(10.0));
    rec.push("3aOff", offset(11.0));
    rec.push("3mGain", gain(12.0));
    recordFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0));
    rec.push("3mOff", offset(13.0));
    recordFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(10.0, 11.0, 12.0, 13.0));
}

TEST_F(RecordKivra2HeaderTest, MatricesThatComeAfterTheHeaderAreForTheNextRecording) {
    start();
    recordPlain();
    pushAccMag(10.0);
    recordPlain();
    stop();
    EXPECT_THAT(recordNames(), IsEmpty());
    recordFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(10.0, 11.0, 12.0, 13.0));
}

TEST_F(RecordKivra2HeaderTest, GyroscopeAddsTwoRecords) {
    rec.set("Save Gyro", true);
    pushAccMag(1.0);
    pushGyr(5.0);
    recordGyroFile();
    EXPECT_EQ(recordNames(), kSixRecords);
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
    recordGyroFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
}

TEST_F(RecordKivra2HeaderTest, GyroscopeRecordsDoNotNeedTheOthers) {
    rec.set("Save Gyro", true);
    pushGyr(5.0);
    recordGyroFile();
    EXPECT_THAT(recordNames(), ElementsAre("GyrGain", "GyrOffset"));
    // From memory they do.
    recordGyroFile();
    EXPECT_THAT(recordNames(), IsEmpty());
}

TEST_F(RecordKivra2HeaderTest, GyroscopeMatrixOfAWrongShapeLeavesItsPairOut) {
    const std::vector<std::pair<const char*, Eigen::MatrixXd>> wrong{
        {"3gGain", Eigen::MatrixXd::Zero(3, 4)}, {"3gGain", Eigen::MatrixXd::Zero(1, 9)},
        {"3gOff", Eigen::MatrixXd::Zero(3, 1)},  {"3gOff", Eigen::MatrixXd::Zero(1, 4)},
        {"3gOff", Eigen::MatrixXd::Zero(2, 3)},
    };
    rec.set("Save Gyro", true);
    pushAccMag(1.0);
    pushGyr(5.0);
    recordGyroFile();
    for (const auto& [pin, value] : wrong) {
        pushGyr(50.0);
        rec.push(pin, value);
        recordGyroFile();
        EXPECT_EQ(recordNames(), kFourRecords) << pin;
        recordGyroFile();
        EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0)) << pin;
    }
}

TEST_F(RecordKivra2HeaderTest, UnconnectedGyroscopePinForgetsItsMatrix) {
    rec.set("Save Gyro", true);
    for (const char* pin : {"3gGain", "3gOff"}) {
        pushAccMag(1.0);
        pushGyr(5.0);
        recordGyroFile();
        rec.disconnect(pin);
        recordGyroFile();
        EXPECT_EQ(recordNames(), kFourRecords) << pin;
        rec.connect(pin);
        recordGyroFile();
        EXPECT_EQ(recordNames(), kFourRecords) << pin;
    }
}

TEST_F(RecordKivra2HeaderTest, OneFreshGyroscopeMatrixWaitsForTheOther) {
    rec.set("Save Gyro", true);
    pushAccMag(1.0);
    pushGyr(5.0);
    recordGyroFile();
    rec.push("3gGain", gain(50.0));
    recordGyroFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
    rec.push("3gOff", offset(51.0));
    recordGyroFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 50.0, 51.0));
}

TEST_F(RecordKivra2HeaderTest, GyroscopeMatricesOutliveARecordingWithoutThem) {
    rec.set("Save Gyro", true);
    pushAccMag(1.0);
    pushGyr(5.0);
    recordGyroFile();
    rec.set("Save Gyro", false);
    recordFile();
    EXPECT_EQ(recordNames(), kFourRecords);
    rec.set("Save Gyro", true);
    rec.connect("3gGain");
    rec.connect("3gOff");
    recordGyroFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
}

TEST_F(RecordKivra2HeaderTest, HeaderThatCannotBeWrittenIsTriedAnewWithoutDoubledRecords) {
    // 256 rows do not fit the byte that holds their number: the recording ends.
    pushAccMag(1.0);
    rec.push("3mOff", Eigen::MatrixXd::Zero(256, 3));
    start();
    recordPlain();
    EXPECT_FALSE(isRecording());
    EXPECT_EQ(Support::readBytes(file), "");
    pushAccMag(10.0);
    recordFile();
    EXPECT_THAT(firstCoefficients(), ElementsAre(10.0, 11.0, 12.0, 13.0));
}
