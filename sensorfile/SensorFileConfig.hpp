#pragma once

#include "sensorfile/CalibData.hpp"
#include "sensorfile/CalibDataBase.hpp"
#include "sensorfile/Column.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <Eigen/Core>
#include <Poco/DateTime.h>

namespace SensorFile {

/// The description of one sensor file: columns, frequency, dates, versions, calibration records.
/// It writes and reads the openings of a file's sections; samples are the writer's and reader's.
/// Copies are deep and share nothing. One thread at a time uses an object.
class SensorFileConfig {
 public:
    using Column = SensorFile::Column;
    using CalibDataBase = SensorFile::CalibDataBase;
    template <typename Matrix>
    using CalibData = SensorFile::CalibData<Matrix>;

    /// What readSectionId() finds.
    static constexpr int kHeaderSection = 0;
    static constexpr int kCalibSection = 1;
    static constexpr int kDataSection = 2;
    static constexpr int kNoSection = 3;

    SensorFileConfig() = default;
    SensorFileConfig(const SensorFileConfig& other);
    SensorFileConfig& operator=(const SensorFileConfig& other);
    SensorFileConfig(SensorFileConfig&&) noexcept = default;
    SensorFileConfig& operator=(SensorFileConfig&&) noexcept = default;
    ~SensorFileConfig() = default;

    /// Rows per second in Hz, 200 by default.
    [[nodiscard]] double getSampleFrequency() const { return sampleFrequency_; }
    void setSampleFrequency(double hertz) { sampleFrequency_ = hertz; }

    /// Digits after the decimal point of float and double values in text, 5 by default.
    [[nodiscard]] int getDoublePrecision() const { return doublePrecision_; }
    void setDoublePrecision(int digits) { doublePrecision_ = digits; }

    /// The date of a configuration to which none was given; a writer puts the present time there.
    static Poco::DateTime zeroTime();

    /// UTC; zeroTime() until one is set.
    [[nodiscard]] const Poco::DateTime& getCreationTime() const { return creationTime_; }
    void setCreationTime(const Poco::DateTime& time) { creationTime_ = time; }
    [[nodiscard]] bool hasCreationTime() const { return creationTime_ != zeroTime(); }

    /// UTC; zeroTime() until one is set.
    [[nodiscard]] const Poco::DateTime& getCalibTime() const { return calibTime_; }
    void setCalibTime(const Poco::DateTime& time) { calibTime_ = time; }
    [[nodiscard]] bool hasCalibTime() const { return calibTime_ != zeroTime(); }

    /// The number after "Calib version:", 2 by default; not the section's version.
    [[nodiscard]] std::uint16_t getCalibFormat() const { return calibFormat_; }
    void setCalibFormat(std::uint16_t number) { calibFormat_ = number; }

    /// Section versions. 0x0100 writes the frequency as an integer.
    [[nodiscard]] std::uint16_t getHeaderVersion() const { return headerVersion_; }
    void setHeaderVersion(std::uint16_t version) { headerVersion_ = version; }
    /// 0x8101 and those below 0x0200 hold bare values in groups of twelve.
    [[nodiscard]] std::uint16_t getCalibVersion() const { return calibVersion_; }
    void setCalibVersion(std::uint16_t version) { calibVersion_ = version; }
    [[nodiscard]] std::uint16_t getDataVersion() const { return dataVersion_; }
    void setDataVersion(std::uint16_t version) { dataVersion_ = version; }

    /// A file that holds a calibration section and nothing else.
    [[nodiscard]] bool isCalibOnly() const { return isCalibOnly_; }
    void setCalibOnly(bool isCalibOnly) { isCalibOnly_ = isCalibOnly; }

    /// Byte order in which binary numbers are read; writing is always big-endian.
    [[nodiscard]] bool isBigEndian() const { return isBigEndian_; }
    void setBigEndian(bool isBigEndian) { isBigEndian_ = isBigEndian; }

    /// Bytes of the binary header section: 40 + 34 per column.
    [[nodiscard]] std::uint64_t getHeaderSize() const;
    /// The size that a binary calibration section states: 32, and per record its size(), or with
    /// bare values 8 a value. (size() counts a name's length although 32 bytes are written.)
    /// @throws Poco::DataException "Data format is not supported!" for a record of other elements
    [[nodiscard]] std::uint64_t getCalibSectionSize() const;

    [[nodiscard]] std::size_t getColumnCount() const { return columns_.size(); }
    /// @throws Poco::DataException if the type is unknown; nothing is added then
    void addColumn(const std::string& name, int typeCode);
    void addColumn(const std::string& name, const std::string& typeName);
    /// Erases the columns of exactly this name; the walk goes on at the index after an erased one,
    /// so a match that directly follows an erased column stays.
    void removeColumn(const std::string& name);
    /// @throws Poco::InvalidArgumentException "Index out of range!"
    [[nodiscard]] const Column& getColumn(std::size_t index) const;
    /// The first column of exactly this name; index is left alone when there is none.
    [[nodiscard]] bool findColumn(const std::string& name, std::size_t& index) const;

    [[nodiscard]] std::size_t getCalibCount() const { return calibData_.size(); }
    /// @param matrix any Eigen expression of doubles or ints
    template <typename Derived>
    void addCalibData(const std::string& name, const Eigen::MatrixBase<Derived>& matrix);
    /// @throws Poco::NullPointerException if there is no record
    void addCalibData(std::unique_ptr<CalibDataBase> record);
    /// @throws Poco::InvalidArgumentException "Index out of range!"
    [[nodiscard]] const CalibDataBase& getCalibData(std::size_t index) const;
    [[nodiscard]] const std::string& getCalibName(std::size_t index) const;
    /// Index of the first record of exactly this name, -1 when there is none.
    [[nodiscard]] int findCalibData(const std::string& name) const;
    void clearCalibData() { calibData_.clear(); }

    /// Writes a section, or nothing of it in case of an error. Header and data write nothing when
    /// the file is calibration-only. Neither the stream's locale nor its format flags matter.
    /// @throws Poco::DataException "Data format is not supported!" for a record of other elements
    /// @throws Poco::RangeException if a count does not fit its binary field (65,535 columns, 255
    ///         matrix rows or columns)
    void writeHeaderSection(std::ostream& stream, bool binary) const;
    void writeCalibSection(std::ostream& stream, bool binary) const;
    void writeDataSection(std::ostream& stream, bool binary) const;

    /// Reads a section opening and keeps the version found there.
    /// @return kHeaderSection, kCalibSection, kDataSection, or kNoSection when not recognised
    int readSectionId(std::istream& stream, bool binary);
    /// Reads the rest of a header section.
    /// @return false when a binary column record has an impossible size
    /// @throws Poco::DataException if a type is unknown, or FormatException if the section cannot
    ///         be understood or ends early
    [[nodiscard]] bool readColumns(std::istream& stream, bool binary);
    /// Reads the rest of a calibration section and appends its records.
    /// @return true
    /// @throws Poco::DataException "Data type format is not supported!" for other elements, or
    ///         FormatException if the section cannot be understood or ends early
    bool readCalibSection(std::istream& stream, bool binary);

 private:
    bool isBigEndian_ = true;
    bool isCalibOnly_ = false;
    Poco::DateTime calibTime_ = zeroTime();
    std::uint16_t calibFormat_ = kDefaultCalibFormat;
    double sampleFrequency_ = kDefaultSampleFrequency;
    int doublePrecision_ = kDefaultDoublePrecision;
    std::uint16_t headerVersion_ = kDefaultHeaderVersion;
    std::uint16_t calibVersion_ = kDefaultCalibVersion;
    std::uint16_t dataVersion_ = kDefaultDataVersion;
    Poco::DateTime creationTime_ = zeroTime();
    std::vector<Column> columns_;
    std::vector<std::unique_ptr<CalibDataBase>> calibData_;
};

template <typename Derived>
void SensorFileConfig::addCalibData(const std::string& name,
                                    const Eigen::MatrixBase<Derived>& matrix) {
    using Element = typename Derived::Scalar;
    static_assert(std::is_same_v<Element, double> || std::is_same_v<Element, int>);
    using Matrix = Eigen::Matrix<Element, Eigen::Dynamic, Eigen::Dynamic>;
    addCalibData(std::make_unique<CalibData<Matrix>>(name, matrix));
}

}  // namespace SensorFile
