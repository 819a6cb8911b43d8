#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

/// What the harnesses of sensor files share.
namespace Fuzz {

/// An input whose first bytes are choices of the harness.
class Input {
 public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    /// The next byte; 0 when there are no more.
    unsigned choice();
    /// What no choice has taken.
    [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
    std::string_view rest_;
};

/// A stream over bytes in memory, in the classic locale.
class MemoryStream : private std::streambuf, public std::istream {
 public:
    explicit MemoryStream(std::string_view bytes);
    /// What has not been read.
    [[nodiscard]] std::string_view unread() const;
    void skip(std::size_t count);
};

/// A scratch file of changing content. It stays open, since opening is what costs most.
class ScratchFile {
 public:
    explicit ScratchFile(const std::string& name);
    [[nodiscard]] const std::string& getPath() const { return path_; }
    void put(std::string_view bytes);
    /// All its bytes, whoever wrote them.
    [[nodiscard]] const std::string& get();

 private:
    std::string path_;
    std::ofstream out_;
    std::ifstream in_;
    std::size_t size_ = 0;
    std::string bytes_;
};

/// Makes readers and writers exchange blocks of 32 bytes to 4 KiB with the system, so that small
/// files have many of them. The process's locale gets a comma for the point, which no file may
/// show.
void setUp(unsigned choice);

constexpr int kFirstType = 2;
constexpr int kTypeCount = 15;

/// A configuration of those column types, named "a", "b" ..., with dates.
SensorFile::SensorFileConfig configOf(const std::vector<int>& typeCodes);

enum class Section { kHeader, kCalib, kData };
/// One section, or all that a writer puts before the samples.
std::string sectionOf(const SensorFile::SensorFileConfig& config, bool binary, Section section);
std::string openingOf(const SensorFile::SensorFileConfig& config, bool binary);
/// The first 16 bytes of a binary section, or those of a little-endian file.
std::string binaryOpening(std::uint16_t id, std::uint16_t version, bool isBigEndian);

/// All that is in a configuration, to the bit; of dates and the order of bytes nothing when `parts`
/// says so.
enum class Parts { kAll, kColumnsAndRecords };
std::string bitsOf(const SensorFile::SensorFileConfig& config, Parts parts);

/// Reads sections from memory in the order in which files have them.
/// @return nothing if they are refused
std::optional<SensorFile::SensorFileConfig> parseSections(std::string_view bytes, bool binary);

/// Opens the file. If it is refused, by nothing but a Poco::DataException, the reader has to be as
/// good as new.
/// @return whether it is open
bool openOrRefuse(SensorFile::SensorFileReader& reader, const std::string& path, bool binary);

/// Opens a file of these bytes. Has to find what parseSections() finds, or to refuse it as well.
/// @return whether the reader is open
bool openAsParsed(SensorFile::SensorFileReader& reader, std::string_view bytes, bool binary);

}  // namespace Fuzz
