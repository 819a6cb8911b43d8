#include "sensorfile/Kivra2Calib.hpp"

#include <utility>

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>

namespace SensorFile {

namespace {

constexpr int kYearShift = 48;

void writeMatrix(Poco::BinaryWriter& writer, const Eigen::MatrixXd& matrix) {
    for (const double value : matrix.reshaped())
        writer << value;
}

void readMatrix(Poco::BinaryReader& reader, Eigen::MatrixXd& matrix) {
    for (double& value : matrix.reshaped())
        reader >> value;
}

}  // namespace

Kivra2Calib::Date::Date(const Poco::DateTime& time)
    : day(static_cast<std::uint8_t>(time.day())),
      month(static_cast<std::uint8_t>(time.month())),
      year(static_cast<std::uint8_t>((time.year() + kYearShift) % 256)),
      hour(static_cast<std::uint8_t>(time.hour())),
      minute(static_cast<std::uint8_t>(time.minute())),
      second(static_cast<std::uint8_t>(time.second())) {}

void Kivra2Calib::save(const std::string& path) const {
    Poco::FileOutputStream stream(path, std::ios::out | std::ios::trunc);
    write(stream);
    stream.flush();
    if (!stream.good()) throw Poco::WriteFileException(path);
    stream.close();
}

void Kivra2Calib::write(std::ostream& stream) const {
    Poco::BinaryWriter writer(stream, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
    writer << date.day << date.month << date.year << date.hour << date.minute << date.second;
    writer << version;
    for (const auto* matrix : {&accGain, &accOffset, &magGain, &magOffset, &gyrGain, &gyrOffset})
        writeMatrix(writer, *matrix);
}

Kivra2Calib::Extent Kivra2Calib::load(const std::string& path) {
    Poco::FileInputStream stream(path, std::ios::in);
    return read(stream);
}

// The stream is looked at after each part: a reader leaves wrong values behind at the file's end.
Kivra2Calib::Extent Kivra2Calib::read(std::istream& stream) {
    Poco::BinaryReader reader(stream, Poco::BinaryReader::BIG_ENDIAN_BYTE_ORDER);
    Kivra2Calib found = *this;
    Date& day = found.date;
    reader >> day.day >> day.month >> day.year >> day.hour >> day.minute >> day.second;
    if (!stream.good()) return Extent::kNothing;
    date = day;
    reader >> found.version;
    if (!stream.good()) return Extent::kDate;
    version = found.version;
    for (auto* matrix : {&found.accGain, &found.accOffset, &found.magGain, &found.magOffset,
                         &found.gyrGain, &found.gyrOffset})
        readMatrix(reader, *matrix);
    if (!stream.good()) return Extent::kVersion;
    *this = std::move(found);
    return Extent::kWhole;
}

}  // namespace SensorFile
