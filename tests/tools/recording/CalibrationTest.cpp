#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/recording/Calibration.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

using namespace SensorFile;

const Eigen::MatrixXd kGain = (Eigen::Matrix3d() << 2, 1, 0, 0, 3, 0, 0, 0, 4).finished();
const Eigen::MatrixXd kOffset = Eigen::RowVector3d(1, 2, 3);

SensorFileConfig withAxes(const std::string& prefix) {
    return configOf({{"COUNT", kUInt64},
                     {prefix + "X", kInt16},
                     {prefix + "Y", kInt16},
                     {prefix + "Z", kFloat},
                     {"INFO", kUInt8}});
}

std::vector<double> apply(const SensorFileConfig& config, const std::vector<double>& values) {
    Calibration calibration(config);
    Row row(config);
    for (std::size_t i = 0; i < values.size(); ++i)
        row.isWide(i) ? row.setBits(i, static_cast<std::uint64_t>(values[i]))
                      : row.setValue(i, values[i]);
    const Row& calibrated = calibration.apply(row);
    return {calibrated.values().begin(), calibrated.values().end()};
}

TEST(CalibrationTest, TheOffsetIsTakenOffBeforeTheGain) {
    auto config = withAxes("ACC");
    config.addCalibData("AccGain", kGain);
    config.addCalibData("AccOffset", kOffset);
    EXPECT_EQ(apply(config, {9, 11, 22, 33, 5}), (std::vector<double>{9, 40, 60, 120, 5}));
}

TEST(CalibrationTest, AMissingRecordCountsAsIdentityOrZeros) {
    auto config = withAxes("ACC");
    config.addCalibData("AccGain", kGain);
    EXPECT_EQ(apply(config, {9, 10, 20, 30, 5}), (std::vector<double>{9, 40, 60, 120, 5}));
    config.clearCalibData();
    config.addCalibData("AccOffset", Eigen::MatrixXd(kOffset.transpose()));
    EXPECT_EQ(apply(config, {9, 10, 20, 30, 5}), (std::vector<double>{9, 9, 18, 27, 5}));
}

TEST(CalibrationTest, IntegerRecordsAreAppliedToo) {
    auto config = withAxes("GYR");
    config.addCalibData("GYROFFSET",
                        Eigen::MatrixXi((Eigen::MatrixXi(1, 3) << 1, 2, 3).finished()));
    EXPECT_EQ(apply(config, {0, 1, 1, 1, 0}), (std::vector<double>{0, 0, -1, -2, 0}));
}

TEST(CalibrationTest, CalibratedColumnsAreDoublesAndTheRecordsAreGone) {
    auto config = withAxes("ACC");
    config.setSampleFrequency(123.0);
    config.addCalibData("AccGain", kGain);
    const Calibration calibration(config);
    const SensorFileConfig& result = calibration.getConfig();
    const int types[] = {kUInt64, kDouble, kDouble, kDouble, kUInt8};
    ASSERT_EQ(result.getColumnCount(), std::size(types));
    for (std::size_t i = 0; i < std::size(types); ++i) {
        EXPECT_EQ(result.getColumn(i).getTypeCode(), types[i]);
        EXPECT_EQ(result.getColumn(i).getName(), config.getColumn(i).getName());
    }
    EXPECT_EQ(result.getCalibCount(), 0U);
    EXPECT_EQ(result.getSampleFrequency(), 123.0);
    EXPECT_EQ(calibration.getSensors(), std::vector<std::string>{"ACC"});
}

TEST(CalibrationTest, IntegersOf64BitsStayExact) {
    auto config = withAxes("ACC");
    config.addCalibData("AccGain", kGain);
    Calibration calibration(config);
    Row row(config);
    row.setBits(0, 9007199254740993U);
    EXPECT_EQ(calibration.apply(row).getBits(0), 9007199254740993U);
}

TEST(CalibrationTest, RecordsOfOtherShapesOrNamesAreNotApplied) {
    const auto refuse = [](const std::string& name, const Eigen::MatrixXd& matrix) {
        auto config = withAxes("ACC");
        config.addCalibData(name, matrix);
        EXPECT_THROW((Calibration(config)), Poco::DataException) << name;
    };
    refuse("AccGain", Eigen::MatrixXd::Identity(2, 2));
    refuse("AccGain", kOffset);
    refuse("AccOffset", kGain);
    refuse("AccOffset", Eigen::MatrixXd::Zero(1, 2));
    refuse("MagGain", kGain);
    refuse("Gain1", kGain);
}

TEST(CalibrationTest, AllThreeAxesAreNeeded) {
    auto config = configOf({{"ACCX", kInt16}, {"ACCY", kInt16}});
    config.addCalibData("AccGain", kGain);
    EXPECT_THROW((Calibration(config)), Poco::DataException);
}

}  // namespace
}  // namespace SensorFileTool
