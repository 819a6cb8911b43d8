#include "fuzz/FileHarness.hpp"

#include "fuzz/Harness.hpp"
#include "sensorfile/BlockSize.hpp"
#include "sensorfile/SectionFormat.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <array>
#include <cstring>
#include <locale>
#include <sstream>

#include <Poco/Exception.h>

namespace Fuzz {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;
using SensorFile::SensorFileWriter;

namespace {

class CommaPunctuation : public std::numpunct<char> {
 protected:
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

template <typename T>
void append(std::string& out, const T& value) {
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &value, sizeof(T));
    out.append(bytes.data(), bytes.size());
}

void appendText(std::string& out, const std::string& text) {
    append(out, text.size());
    out += text;
}

/// NaN is NaN, whatever its bits are: text does not keep them.
void appendNumber(std::string& out, double value) {
    append(out, value == value ? value : 0.5);
    append(out, value == value);
}
void appendNumber(std::string& out, int value) {
    append(out, value);
}

template <typename Matrix>
bool appendMatrix(std::string& out, const SensorFile::CalibDataBase& record) {
    const auto* data = dynamic_cast<const SensorFile::CalibData<Matrix>*>(&record);
    if (data == nullptr) return false;
    for (Eigen::Index i = 0; i < data->getMatrix().size(); ++i)
        appendNumber(out, data->getMatrix().data()[i]);
    return true;
}

void appendRecord(std::string& out, const SensorFile::CalibDataBase& record) {
    appendText(out, record.getName());
    append(out, record.rows());
    append(out, record.cols());
    append(out, record.typeCode());
    if (!appendMatrix<Eigen::MatrixXd>(out, record)) appendMatrix<Eigen::MatrixXi>(out, record);
}

/// A file that can be read whatever was refused before.
const std::string& goodFile(bool binary) {
    static const auto make = [](const std::string& name, bool isBinary) {
        SensorFileWriter writer;
        writer.open(scratchPath(name), configOf({SensorFile::kInt16}), isBinary, true);
        writer.write(-7);
        writer.close();
        return scratchPath(name);
    };
    static const std::array<std::string, 2> kPaths = {make("good.txt", false),
                                                      make("good.bin", true)};
    return kPaths[binary ? 1 : 0];
}

void requireGoodAsNew(SensorFileReader& reader, bool binary) {
    require(!reader.isOpen() && !reader.areHeadersValid(), "refused, but open");
    require(reader.isEof() && reader.valueCount() == 0, "refused, but within a file");
    require(bitsOf(reader.getConfig(), Parts::kAll) == bitsOf(SensorFileConfig(), Parts::kAll),
            "refused, but parts are kept");
    double value = 0;
    require(!reader.read(&value, 1), "refused, but read");
    reader.open(goodFile(binary), binary);
    require(reader.read(&value, 1) && !reader.isEof() && value == -7, "a good file is read badly");
    require(reader.read(&value, 1) && reader.isEof(), "a good file has no end");
    reader.close();
}

}  // namespace

unsigned Input::choice() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return first;
}

MemoryStream::MemoryStream(std::string_view bytes) : std::istream(nullptr) {
    char* const start = const_cast<char*>(bytes.data());
    setg(start, start, start + bytes.size());
    init(this);
    std::istream::imbue(std::locale::classic());
}

std::string_view MemoryStream::unread() const {
    return {gptr(), static_cast<std::size_t>(egptr() - gptr())};
}

void MemoryStream::skip(std::size_t count) {
    gbump(static_cast<int>(count));
}

ScratchFile::ScratchFile(const std::string& name)
    : path_(scratchPath(name)),
      out_(path_, std::ios::binary | std::ios::trunc),
      in_(path_, std::ios::binary) {}

void ScratchFile::put(std::string_view bytes) {
    out_.seekp(0);
    out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out_.flush();
    require(out_.good(), "the scratch file cannot be written");
    if (bytes.size() < size_) std::filesystem::resize_file(path_, bytes.size());
    size_ = bytes.size();
}

const std::string& ScratchFile::get() {
    bytes_.clear();
    in_.clear();
    in_.seekg(0);
    std::array<char, 4096> piece;
    while (in_.read(piece.data(), piece.size()) || in_.gcount() > 0)
        bytes_.append(piece.data(), static_cast<std::size_t>(in_.gcount()));
    return bytes_;
}

void setUp(unsigned choice) {
    static const std::locale kComma(std::locale::classic(), new CommaPunctuation);
    [[maybe_unused]] static const std::locale kBefore = std::locale::global(kComma);
    constexpr std::array<std::size_t, 4> kSizes = {4096, 32, 100, 512};
    SensorFile::BlockSize::replace(kSizes[choice % kSizes.size()]);
}

SensorFileConfig configOf(const std::vector<int>& typeCodes) {
    SensorFileConfig config;
    config.setCreationTime({2017, 5, 23, 10, 4, 31});
    config.setCalibTime({2016, 12, 1, 8, 0, 9});
    for (const int code : typeCodes) {
        config.addColumn(std::string(1, static_cast<char>('a' + config.getColumnCount() % 26)),
                         code);
    }
    return config;
}

std::string sectionOf(const SensorFileConfig& config, bool binary, Section section) {
    std::ostringstream out;
    if (section == Section::kHeader) config.writeHeaderSection(out, binary);
    if (section == Section::kCalib) config.writeCalibSection(out, binary);
    if (section == Section::kData) config.writeDataSection(out, binary);
    return std::move(out).str();
}

std::string openingOf(const SensorFileConfig& config, bool binary) {
    return sectionOf(config, binary, Section::kHeader) +
           sectionOf(config, binary, Section::kCalib) + sectionOf(config, binary, Section::kData);
}

std::string binaryOpening(std::uint16_t id, std::uint16_t version, bool isBigEndian) {
    std::string out;
    const auto put = [&](std::uint32_t number, unsigned size) {
        for (unsigned i = 0; i < size; ++i)
            out.push_back(static_cast<char>(number >> 8 * (isBigEndian ? size - 1 - i : i)));
    };
    for (const std::uint32_t word : SensorFile::kSectionMagic)
        put(word, 4);
    put(id, 2);
    put(version, 2);
    return out;
}

std::string bitsOf(const SensorFileConfig& config, Parts parts) {
    std::string out;
    if (parts == Parts::kAll) {
        append(out, config.getCreationTime().timestamp().epochMicroseconds());
        append(out, config.getCalibTime().timestamp().epochMicroseconds());
        append(out, config.isBigEndian());
        append(out, config.getHeaderVersion());
        append(out, config.getCalibVersion());
        append(out, config.getDataVersion());
        append(out, config.getCalibFormat());
        append(out, config.isCalibOnly());
        appendNumber(out, config.getSampleFrequency());
    }
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        appendText(out, config.getColumn(i).getName());
        append(out, config.getColumn(i).getTypeCode());
    }
    append(out, '\n');
    for (std::size_t i = 0; i < config.getCalibCount(); ++i)
        appendRecord(out, config.getCalibData(i));
    return out;
}

std::optional<SensorFileConfig> parseSections(std::string_view bytes, bool binary) {
    MemoryStream stream(bytes);
    SensorFileConfig config;
    try {
        int section = config.readSectionId(stream, binary);
        if (section == SensorFileConfig::kHeaderSection) {
            if (!config.readColumns(stream, binary)) return {};
            section = config.readSectionId(stream, binary);
            if (section == SensorFileConfig::kCalibSection) {
                config.readCalibSection(stream, binary);
                section = config.readSectionId(stream, binary);
            }
            if (section != SensorFileConfig::kDataSection) return {};
        } else if (section == SensorFileConfig::kCalibSection) {
            config.readCalibSection(stream, binary);
            config.setCalibOnly(true);
            if (config.readSectionId(stream, binary) != SensorFileConfig::kNoSection) return {};
        } else {
            return {};
        }
    } catch (const Poco::DataException&) {
        return {};
    }
    return config;
}

bool openOrRefuse(SensorFileReader& reader, const std::string& path, bool binary) {
    try {
        reader.open(path, binary);
        return true;
    } catch (const Poco::DataException&) {
        requireGoodAsNew(reader, binary);
        return false;
    }
}

bool openAsParsed(SensorFileReader& reader, std::string_view bytes, bool binary) {
    static ScratchFile file("input");
    file.put(bytes);
    const auto parsed = parseSections(bytes, binary);
    const bool isOpen = openOrRefuse(reader, file.getPath(), binary);
    require(isOpen == parsed.has_value(), "refused from a file or from memory alone");
    if (!isOpen) return false;
    require(bitsOf(reader.getConfig(), Parts::kAll) == bitsOf(*parsed, Parts::kAll),
            "otherwise from a file than from memory");
    return true;
}

}  // namespace Fuzz
