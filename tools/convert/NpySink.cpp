#include "tools/convert/NpySink.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/convert/ExportNames.hpp"
#include "tools/convert/LittleEndianValue.hpp"

#include <algorithm>
#include <limits>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// The data begin on a multiple of this.
constexpr std::size_t kAlignment = 64;
constexpr std::size_t kDigitsOfCount = 20;

const char* letterOf(int type) {
    switch (type) {
        case SensorFile::kBool:
            return "|b";
        case SensorFile::kUChar:
        case SensorFile::kUInt8:
            return "|u";
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return "|i";
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
        case SensorFile::kUInt32:
        case SensorFile::kUInt64:
            return "<u";
        case SensorFile::kFloat:
        case SensorFile::kDouble:
            return "<f";
        default:
            return "<i";
    }
}

std::string quotePython(const std::string& name) {
    std::string quoted = "'";
    for (const char letter : name) {
        if (letter == '\'' || letter == '\\') quoted += '\\';
        quoted += letter;
    }
    return quoted + "'";
}

std::string describeFields(const SensorFile::SensorFileConfig& config) {
    std::vector<std::string> names = columnNames(config);
    std::transform(names.begin(), names.end(), names.begin(), plainName);
    names = uniqueNames(names);
    std::string fields = "[";
    for (std::size_t i = 0; i < names.size(); ++i)
        fields +=
            fmt::format("({}, '{}{}'), ", quotePython(names[i]),
                        letterOf(config.getColumn(i).getTypeCode()), config.getColumn(i).getSize());
    return fields + "]";
}

}  // namespace

NpySink::NpySink(const std::string& path, const SensorFile::SensorFileConfig& config)
    : file_(path), fields_(describeFields(config)) {
    if (config.getColumnCount() == 0)
        throw Poco::DataException("there are no columns to make an array of");
    std::size_t size = 0;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        size += config.getColumn(i).getSize();
    bytes_.resize(size);
    file_.append(makeHeader(0));
}

void NpySink::write(const Row& row) {
    char* out = bytes_.data();
    for (std::size_t i = 0; i < row.size(); ++i)
        out = putLittleEndian(out, row, i);
    file_.append({bytes_.data(), bytes_.size()});
    ++rowCount_;
}

void NpySink::finish() {
    file_.overwrite(0, makeHeader(rowCount_));
    file_.close();
}

/// Of the same length for any number of rows. Version 3 has its text in UTF-8, version 1 is known
/// to older readers and 2 holds more.
std::string NpySink::makeHeader(std::uint64_t rowCount) const {
    const bool isAscii = std::none_of(fields_.begin(), fields_.end(),
                                      [](char c) { return static_cast<unsigned char>(c) > 0x7f; });
    const std::string count = fmt::format("{},)", rowCount);
    std::string text = "{'descr': " + fields_ + ", 'fortran_order': False, 'shape': (" + count +
                       ", }" + std::string(kDigitsOfCount + 2 - count.size(), ' ');
    const bool isShort =
        text.size() + kAlignment <= std::numeric_limits<std::uint16_t>::max() && isAscii;
    const std::size_t start = isShort ? 10 : 12;
    text.append(kAlignment - 1 - (start + text.size()) % kAlignment, ' ');
    text += '\n';

    std::string header = "\x93NUMPY";
    header += static_cast<char>(isShort ? 1 : isAscii ? 2 : 3);
    header.resize(start);
    char* const out = header.data() + 8;
    if (isShort)
        putLittleEndian(out, static_cast<std::uint16_t>(text.size()));
    else
        putLittleEndian(out, static_cast<std::uint32_t>(text.size()));
    return header + text;
}

}  // namespace SensorFileTool
