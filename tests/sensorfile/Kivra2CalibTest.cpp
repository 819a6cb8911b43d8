#include "sensorfile/Kivra2Calib.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>
#include <rapidcheck/gtest.h>

namespace SensorFile {
namespace {

using Extent = Kivra2Calib::Extent;

/// The matrices of a calibration in the order of the file.
template <class Calib>
auto matricesOf(Calib& calib) {
    return std::array{&calib.accGain,   &calib.accOffset, &calib.magGain,
                      &calib.magOffset, &calib.gyrGain,   &calib.gyrOffset};
}

/// The file of a calibration, by a plain big-endian writer.
std::string expectedBytes(const Kivra2Calib& calib) {
    std::ostringstream stream;
    Poco::BinaryWriter writer(stream, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
    for (const std::uint8_t byte : {calib.date.day, calib.date.month, calib.date.year,
                                    calib.date.hour, calib.date.minute, calib.date.second})
        writer << byte;
    writer << calib.version;
    for (const Eigen::MatrixXd* matrix : matricesOf(calib))
        for (Eigen::Index c = 0; c < matrix->cols(); ++c)
            for (Eigen::Index r = 0; r < matrix->rows(); ++r)
                writer << (*matrix)(r, c);
    return stream.str();
}

std::string dateBytes(const Poco::DateTime& time) {
    const Kivra2Calib::Date date(time);
    return hexOf(std::string{static_cast<char>(date.day), static_cast<char>(date.month),
                             static_cast<char>(date.year), static_cast<char>(date.hour),
                             static_cast<char>(date.minute), static_cast<char>(date.second)});
}

/// Matrices of which no two values are equal.
Kivra2Calib numberedCalib() {
    Kivra2Calib calib;
    calib.date = Kivra2Calib::Date(Poco::DateTime(2017, 3, 5, 14, 7, 9));
    calib.version = 3;
    double next = 0.125;
    for (Eigen::MatrixXd* matrix : matricesOf(calib))
        for (Eigen::Index i = 0; i < matrix->size(); ++i)
            matrix->data()[i] = next++;
    return calib;
}

void expectSameMatrices(const Kivra2Calib& calib, const Kivra2Calib& expected) {
    for (std::size_t i = 0; i < matricesOf(calib).size(); ++i)
        EXPECT_EQ(*matricesOf(calib)[i], *matricesOf(expected)[i]) << "matrix " << i;
}

template <class Action>
void expectFileError(const std::string& path, const Action& action) {
    try {
        action();
        ADD_FAILURE() << "no error";
    } catch (const Poco::FileException& error) {
        EXPECT_NE(error.displayText().find(path), std::string::npos) << error.displayText();
    }
}

}  // namespace

TEST(Kivra2CalibTest, FreshOneHasIdentityGainsAndZeroOffsets) {
    const TemporaryFile file;
    Kivra2Calib().save(file.path());
    std::string matrices;
    for (int i = 0; i < 3; ++i)
        matrices += bytes("3ff0000000000000") + std::string(24, '\0') + bytes("3ff0000000000000") +
                    std::string(24, '\0') + bytes("3ff0000000000000") + std::string(24, '\0');
    EXPECT_EQ(hexOf(file.content()), hexOf(std::string(8, '\0') + matrices));
    EXPECT_EQ(file.content().size(), Kivra2Calib::kFileSize);
}

TEST(Kivra2CalibTest, DateIsOneByteAField) {
    EXPECT_EQ(dateBytes({2017, 3, 5, 14, 7, 9}), hexOf(bytes("0503110e0709")));
    EXPECT_EQ(dateBytes({2020, 2, 29, 0, 0, 0, 999}), hexOf(bytes("1d0214000000")));
    EXPECT_EQ(dateBytes({2199, 12, 31, 23, 59, 59}), hexOf(bytes("1f0cc7173b3b")));
}

TEST(Kivra2CalibTest, YearIsOneByteCountedFrom2000) {
    for (int year = 1900; year < 2600; ++year)
        EXPECT_EQ(int{Kivra2Calib::Date(Poco::DateTime(year, 1, 1)).year}, (year + 48) % 256);
}

TEST(Kivra2CalibTest, FileIsWrittenFieldByField) {
    const TemporaryFile file;
    numberedCalib().save(file.path());
    EXPECT_EQ(hexOf(file.content()), hexOf(expectedBytes(numberedCalib())));
    EXPECT_EQ(hexOf(file.content().substr(0, 16)),
              hexOf(bytes("0503110e07090003 3fc0000000000000")));
}

RC_GTEST_PROP(Kivra2CalibTest, AnyShapesAreWrittenColumnByColumn, ()) {
    Kivra2Calib calib = numberedCalib();
    calib.version = *rc::gen::arbitrary<std::uint16_t>();
    for (Eigen::MatrixXd* matrix : matricesOf(calib)) {
        matrix->resize(*rc::gen::inRange(0, 6), *rc::gen::inRange(0, 6));
        for (Eigen::Index i = 0; i < matrix->size(); ++i)
            matrix->data()[i] = *rc::gen::arbitrary<double>();
    }
    const TemporaryFile file(std::string(3000, 'x'));
    calib.save(file.path());
    RC_ASSERT(file.content() == expectedBytes(calib));
}

RC_GTEST_PROP(Kivra2CalibTest, WhatIsSavedIsLoaded, ()) {
    Kivra2Calib calib = numberedCalib();
    calib.version = *rc::gen::arbitrary<std::uint16_t>();
    for (Eigen::MatrixXd* matrix : matricesOf(calib))
        for (Eigen::Index i = 0; i < matrix->size(); ++i)
            matrix->data()[i] = *rc::gen::arbitrary<double>();
    const TemporaryFile file;
    calib.save(file.path());
    Kivra2Calib loaded;
    RC_ASSERT(loaded.load(file.path()) == Extent::kWhole);
    RC_ASSERT(expectedBytes(loaded) == expectedBytes(calib));
}

TEST(Kivra2CalibTest, NonFiniteValuesKeepTheirBits) {
    Kivra2Calib calib = numberedCalib();
    calib.accOffset << std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::quiet_NaN(), -0.0;
    const TemporaryFile file;
    calib.save(file.path());
    Kivra2Calib loaded;
    loaded.load(file.path());
    EXPECT_EQ(hexOf(expectedBytes(loaded)), hexOf(expectedBytes(calib)));
}

TEST(Kivra2CalibTest, TornFileGivesWhatIsWhole) {
    const std::string whole = expectedBytes(numberedCalib());
    const TemporaryFile file;
    for (std::size_t size = 0; size <= whole.size() + 1; ++size) {
        SCOPED_TRACE(size);
        file.setContent((whole + "x").substr(0, size));
        Kivra2Calib calib;
        calib.version = 255;
        const Extent extent = calib.load(file.path());
        EXPECT_EQ(extent, size >= 296 ? Extent::kWhole
                          : size >= 8 ? Extent::kVersion
                          : size >= 6 ? Extent::kDate
                                      : Extent::kNothing);
        EXPECT_EQ(int{calib.date.day}, size >= 6 ? 5 : 0);
        EXPECT_EQ(int{calib.date.second}, size >= 6 ? 9 : 0);
        EXPECT_EQ(calib.version, size >= 8 ? 3 : 255);
        expectSameMatrices(calib, size >= 296 ? numberedCalib() : Kivra2Calib());
    }
}

TEST(Kivra2CalibTest, MatricesOfOtherShapesTakeAsManyValuesAsTheyHold) {
    Kivra2Calib calib = numberedCalib();
    calib.accGain.resize(2, 4);
    calib.magOffset.resize(0, 3);
    calib.accGain.setConstant(0.5);
    const TemporaryFile file(expectedBytes(calib));
    Kivra2Calib loaded;
    loaded.accGain.resize(2, 4);
    loaded.magOffset.resize(0, 3);
    EXPECT_EQ(loaded.load(file.path()), Extent::kWhole);
    expectSameMatrices(loaded, calib);
}

TEST(Kivra2CalibTest, FilesThatCannotBeOpenedAreNamed) {
    const TemporaryFile missing;
    expectFileError(missing.path(), [&] { Kivra2Calib().load(missing.path()); });
    const std::string path = missing.path() + "/unit.cal";
    expectFileError(path, [&] { Kivra2Calib().save(path); });
    EXPECT_FALSE(std::filesystem::exists(missing.path()));
}

TEST(Kivra2CalibTest, FolderGivesNothing) {
    const TemporaryFile folder;
    std::filesystem::create_directory(folder.path());
    Kivra2Calib calib = numberedCalib();
    EXPECT_EQ(calib.load(folder.path()), Extent::kNothing);
    expectSameMatrices(calib, numberedCalib());
    expectFileError(folder.path(), [&] { calib.save(folder.path()); });
}

TEST(Kivra2CalibTest, FullDeviceIsTold) {
    if (!std::filesystem::exists("/dev/full")) return;
    expectFileError("/dev/full", [] { Kivra2Calib().save("/dev/full"); });
}

}  // namespace SensorFile
