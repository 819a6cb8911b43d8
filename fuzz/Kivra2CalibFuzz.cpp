/// Reads hostile calibration files of Kivra2 units into matrices of any shape.
///
/// Beyond "no crash": the length alone tells how far a file is read, each part is what a plain look
/// at the bytes gives, what was not read is left alone, and saving gives the same bytes again.

#include "fuzz/FileHarness.hpp"
#include "fuzz/Harness.hpp"
#include "sensorfile/Kivra2Calib.hpp"

#include <array>
#include <bit>

namespace {

using SensorFile::Kivra2Calib;
using Extent = Kivra2Calib::Extent;

constexpr std::size_t kDateSize = 6;
constexpr std::size_t kHeadSize = 8;

auto matricesOf(Kivra2Calib& calib) {
    return std::array{&calib.accGain,   &calib.accOffset, &calib.magGain,
                      &calib.magOffset, &calib.gyrGain,   &calib.gyrOffset};
}

/// The usual shapes, or any of up to 7 x 7; all values are -1.
Kivra2Calib prepare(Fuzz::Input& input) {
    Kivra2Calib calib;
    calib.version = 0xabcd;
    calib.date.month = 0xef;
    const bool areShapesOdd = input.choice() % 4 == 3;
    for (Eigen::MatrixXd* const matrix : matricesOf(calib)) {
        if (areShapesOdd) {
            const unsigned shape = input.choice();
            matrix->resize(shape & 7, shape >> 3 & 7);
        }
        matrix->setConstant(-1);
    }
    return calib;
}

std::uint64_t bitsAt(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint64_t bits = 0;
    for (const char byte : bytes.substr(offset, size))
        bits = bits << 8 | static_cast<unsigned char>(byte);
    return bits;
}

std::string dateOf(const Kivra2Calib& calib) {
    const Kivra2Calib::Date& date = calib.date;
    std::string bytes;
    for (const std::uint8_t byte :
         {date.day, date.month, date.year, date.hour, date.minute, date.second})
        bytes.push_back(static_cast<char>(byte));
    return bytes;
}

Extent extentOf(std::string_view file, std::size_t wholeSize) {
    if (file.size() < kDateSize) return Extent::kNothing;
    if (file.size() < kHeadSize) return Extent::kDate;
    return file.size() < wholeSize ? Extent::kVersion : Extent::kWhole;
}

void lookAtParts(Kivra2Calib& calib, const Kivra2Calib& before, std::string_view file,
                 Extent extent) {
    const bool hasDate = extent != Extent::kNothing;
    Fuzz::require(dateOf(calib) == (hasDate ? file.substr(0, kDateSize) : dateOf(before)),
                  "another date");
    const bool hasVersion = hasDate && extent != Extent::kDate;
    Fuzz::require(calib.version == (hasVersion ? bitsAt(file, kDateSize, 2) : before.version),
                  "another version");
    std::size_t offset = kHeadSize;
    for (const Eigen::MatrixXd* const matrix : matricesOf(calib)) {
        for (Eigen::Index i = 0; i < matrix->size(); ++i, offset += 8) {
            const double expected =
                extent == Extent::kWhole ? std::bit_cast<double>(bitsAt(file, offset, 8)) : -1.0;
            Fuzz::require(Fuzz::isSame(matrix->data()[i], expected), "another element");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const Kivra2Calib before = prepare(input);
    Kivra2Calib calib = before;
    static Fuzz::ScratchFile file("input");
    file.put(input.rest());
    std::size_t wholeSize = kHeadSize;
    for (const Eigen::MatrixXd* const matrix : matricesOf(calib))
        wholeSize += 8 * static_cast<std::size_t>(matrix->size());
    const Extent extent = calib.load(file.getPath());
    Fuzz::require(extent == extentOf(input.rest(), wholeSize), "read to another extent");
    lookAtParts(calib, before, input.rest(), extent);
    if (extent != Extent::kWhole) return 0;
    static Fuzz::ScratchFile copy("copy");
    calib.save(copy.getPath());
    Fuzz::require(copy.get() == input.rest().substr(0, wholeSize), "saved otherwise");
    return 0;
}
