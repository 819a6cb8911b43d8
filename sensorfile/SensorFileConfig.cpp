#include "sensorfile/SensorFileConfig.hpp"

#include "sensorfile/BinarySectionReader.hpp"
#include "sensorfile/BinarySectionWriter.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/TextSectionReader.hpp"
#include "sensorfile/TextSectionWriter.hpp"

#include <istream>
#include <ostream>
#include <utility>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

void put(std::ostream& stream, const std::string& section) {
    stream.write(section.data(), static_cast<std::streamsize>(section.size()));
}

template <typename List>
void checkIndex(const List& list, std::size_t index) {
    if (index >= list.size()) throw Poco::InvalidArgumentException("Index out of range!");
}

}  // namespace

SensorFileConfig::SensorFileConfig(const SensorFileConfig& other)
    : isBigEndian_(other.isBigEndian_),
      isCalibOnly_(other.isCalibOnly_),
      calibTime_(other.calibTime_),
      calibFormat_(other.calibFormat_),
      sampleFrequency_(other.sampleFrequency_),
      doublePrecision_(other.doublePrecision_),
      headerVersion_(other.headerVersion_),
      calibVersion_(other.calibVersion_),
      dataVersion_(other.dataVersion_),
      creationTime_(other.creationTime_),
      columns_(other.columns_) {
    for (const auto& record : other.calibData_)
        calibData_.push_back(record->clone());
}

SensorFileConfig& SensorFileConfig::operator=(const SensorFileConfig& other) {
    if (this != &other) *this = SensorFileConfig(other);
    return *this;
}

Poco::DateTime SensorFileConfig::zeroTime() {
    return {0, 1, 1};
}

std::uint64_t SensorFileConfig::getHeaderSize() const {
    return kHeaderBaseSize + kColumnRecordSize * columns_.size();
}

std::uint64_t SensorFileConfig::getCalibSectionSize() const {
    std::uint64_t size = kCalibBaseSize;
    for (const auto& record : calibData_) {
        const std::uint64_t valueCount = std::uint64_t{record->rows()} * record->cols();
        size += isBareCalibVersion(calibVersion_) ? valueCount * sizeof(double) : record->size();
    }
    return size;
}

void SensorFileConfig::addColumn(const std::string& name, int typeCode) {
    columns_.emplace_back(name, typeCode);
}

void SensorFileConfig::addColumn(const std::string& name, const std::string& typeName) {
    addColumn(name, columnTypeFromName(typeName));
}

void SensorFileConfig::removeColumn(const std::string& name) {
    for (std::size_t index = 0; index < columns_.size(); ++index) {
        if (columns_[index].getName() != name) continue;
        columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(index));
    }
}

const SensorFileConfig::Column& SensorFileConfig::getColumn(std::size_t index) const {
    checkIndex(columns_, index);
    return columns_[index];
}

bool SensorFileConfig::findColumn(const std::string& name, std::size_t& index) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i].getName() != name) continue;
        index = i;
        return true;
    }
    return false;
}

void SensorFileConfig::addCalibData(std::unique_ptr<CalibDataBase> record) {
    if (record == nullptr) throw Poco::NullPointerException("No calibration record given!");
    calibData_.push_back(std::move(record));
}

const SensorFileConfig::CalibDataBase& SensorFileConfig::getCalibData(std::size_t index) const {
    checkIndex(calibData_, index);
    return *calibData_[index];
}

const std::string& SensorFileConfig::getCalibName(std::size_t index) const {
    return getCalibData(index).getName();
}

int SensorFileConfig::findCalibData(const std::string& name) const {
    for (std::size_t i = 0; i < calibData_.size(); ++i) {
        if (calibData_[i]->getName() == name) return static_cast<int>(i);
    }
    return -1;
}

void SensorFileConfig::writeHeaderSection(std::ostream& stream, bool binary) const {
    if (isCalibOnly_) return;
    put(stream, binary ? binaryHeaderSection(*this) : textHeaderSection(*this));
}

void SensorFileConfig::writeCalibSection(std::ostream& stream, bool binary) const {
    put(stream, binary ? binaryCalibSection(*this) : textCalibSection(*this));
}

void SensorFileConfig::writeDataSection(std::ostream& stream, bool binary) const {
    if (isCalibOnly_) return;
    put(stream, binary ? binaryDataSection(*this) : textDataSection(*this));
}

int SensorFileConfig::readSectionId(std::istream& stream, bool binary) {
    const SectionOpening opening = binary ? BinarySectionReader(stream, *this).readOpening()
                                          : TextSectionReader(stream, *this).readOpening();
    switch (opening.id) {
        case kHeaderId:
            headerVersion_ = opening.version;
            return kHeaderSection;
        case kCalibId:
            calibVersion_ = opening.version;
            return kCalibSection;
        case kDataId:
            dataVersion_ = opening.version;
            return kDataSection;
        default:
            return kNoSection;
    }
}

bool SensorFileConfig::readColumns(std::istream& stream, bool binary) {
    if (binary) return BinarySectionReader(stream, *this).readHeader();
    TextSectionReader(stream, *this).readHeader();
    return true;
}

bool SensorFileConfig::readCalibSection(std::istream& stream, bool binary) {
    if (binary) {
        BinarySectionReader(stream, *this).readCalib();
    } else {
        TextSectionReader(stream, *this).readCalib();
    }
    return true;
}

}  // namespace SensorFile
