#include "sensorfile/TextSectionWriter.hpp"

#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/ValueCast.hpp"

#include <iomanip>
#include <locale>
#include <sstream>

#include <Poco/DateTime.h>
#include <Poco/Exception.h>

namespace SensorFile {
namespace {

std::ostringstream makeStream() {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(15);
    return out;
}

void putOpening(std::ostream& out, const char* label, std::uint16_t id, std::uint16_t version) {
    out << label << '\t' << std::hex;
    for (const std::uint32_t word : kSectionMagic)
        out << word << '\t';
    out << id << std::setfill('0') << std::setw(4) << version << "\t\n" << std::dec;
}

void putTwoDigits(std::ostream& out, int number) {
    out << std::setfill('0') << std::setw(2) << number;
}

void putDate(std::ostream& out, const Poco::DateTime& date) {
    putTwoDigits(out, date.day());
    out << '/';
    putTwoDigits(out, date.month());
    out << '/' << date.year() << '\t';
    putTwoDigits(out, date.hour());
    out << ':';
    putTwoDigits(out, date.minute());
    out << ':';
    putTwoDigits(out, date.second());
    out << '\n';
}

template <typename Matrix>
void putMatrix(std::ostream& out, const Matrix& matrix) {
    for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
        for (Eigen::Index col = 0; col < matrix.cols(); ++col)
            out << matrix(row, col) << '\t';
        out << '\n';
    }
}

void putValues(std::ostream& out, const CalibDataBase& record) {
    if (const auto* doubles = dynamic_cast<const CalibData<Eigen::MatrixXd>*>(&record)) {
        putMatrix(out, doubles->getMatrix());
    } else if (const auto* ints = dynamic_cast<const CalibData<Eigen::MatrixXi>*>(&record)) {
        putMatrix(out, ints->getMatrix());
    } else {
        throw Poco::DataException("Data format is not supported!");
    }
}

void putNamedRecords(std::ostream& out, const SensorFileConfig& config) {
    out << "Number of Calibration coefficient:\t" << config.getCalibCount() << "\t\n";
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        const CalibDataBase& record = config.getCalibData(i);
        out << record.getName() << '\t' << record.typeName() << "\t(" << record.rows() << ", "
            << record.cols() << ")\t\n";
        putValues(out, record);
    }
}

void putBareValues(std::ostream& out, const SensorFileConfig& config) {
    const std::uint64_t valueCount =
        (config.getCalibSectionSize() - kCalibBaseSize) / sizeof(double);
    out << "Number of Calibration data:\t" << valueCount << "\t\n";
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        putValues(out, config.getCalibData(i));
    }
}

}  // namespace

std::string textHeaderSection(const SensorFileConfig& config) {
    auto out = makeStream();
    putOpening(out, "Header id: ", kHeaderId, config.getHeaderVersion());
    putDate(out, config.getCreationTime());
    out << "Sample frequency:\t";
    if (config.getHeaderVersion() == kIntegerFrequencyVersion) {
        out << (lowBits(config.getSampleFrequency() + 0.5) & 0xffff);
    } else {
        out << config.getSampleFrequency();
    }
    out << " (Hz)\n" << config.getColumnCount() << " column(s):\t";
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const auto& column = config.getColumn(i);
        out << column.getName() << '\t' << column.getTypeName() << "\t(" << column.getSize()
            << ") \t";
    }
    out << '\n';
    return out.str();
}

std::string textCalibSection(const SensorFileConfig& config) {
    auto out = makeStream();
    putOpening(out, config.isCalibOnly() ? "Calib id: " : "\nCalib id: ", kCalibId,
               config.getCalibVersion());
    out << "Calib datetime:\t";
    putDate(out, config.getCalibTime());
    out << "Calib version:\t" << config.getCalibFormat() << "\t\n";
    if (isBareCalibVersion(config.getCalibVersion())) {
        putBareValues(out, config);
    } else {
        putNamedRecords(out, config);
    }
    return out.str();
}

std::string textDataSection(const SensorFileConfig& config) {
    auto out = makeStream();
    out << '\n';
    putOpening(out, "Data id: ", kDataId, config.getDataVersion());
    return out.str();
}

}  // namespace SensorFile
