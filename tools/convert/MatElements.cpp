#include "tools/convert/MatElements.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/convert/LittleEndianValue.hpp"

#include <algorithm>
#include <bit>

#include <Poco/UnicodeConverter.h>

namespace SensorFileTool::Mat {

namespace {

/// Types of stored data.
enum DataType : std::uint32_t {
    kInt8Data = 1,
    kUInt8Data = 2,
    kInt16Data = 3,
    kUInt16Data = 4,
    kInt32Data = 5,
    kUInt32Data = 6,
    kSingleData = 7,
    kDoubleData = 9,
    kInt64Data = 12,
    kUInt64Data = 13,
    kMatrixData = 14,
    kUtf16Data = 17,
};

/// Classes of variables.
enum ArrayClass : std::uint32_t {
    kCell = 1,
    kStruct = 2,
    kCharacters = 4,
    kDouble = 6,
    kSingle = 7,
    kInt8 = 8,
    kUInt8 = 9,
    kInt16 = 10,
    kUInt16 = 11,
    kInt32 = 12,
    kUInt32 = 13,
    kInt64 = 14,
    kUInt64 = 15,
};
constexpr std::uint32_t kLogicalFlag = 0x0200;

struct ColumnKind {
    std::uint32_t arrayClass;  ///< with flags
    std::uint32_t dataType;
};

constexpr std::uint64_t kAlignment = 8;
constexpr std::uint64_t kTagSize = 8;
constexpr std::size_t kFieldNameSize = 64;

constexpr std::uint64_t aligned(std::uint64_t size) {
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

ColumnKind kindOf(int typeCode) {
    switch (typeCode) {
        case SensorFile::kBool:
            return {kUInt8 | kLogicalFlag, kUInt8Data};
        case SensorFile::kUChar:
        case SensorFile::kUInt8:
            return {kUInt8, kUInt8Data};
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return {kInt8, kInt8Data};
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return {kUInt16, kUInt16Data};
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return {kInt16, kInt16Data};
        case SensorFile::kUInt32:
            return {kUInt32, kUInt32Data};
        case SensorFile::kInt32:
            return {kInt32, kInt32Data};
        case SensorFile::kUInt64:
            return {kUInt64, kUInt64Data};
        case SensorFile::kInt64:
            return {kInt64, kInt64Data};
        case SensorFile::kFloat:
            return {kSingle, kSingleData};
        default:
            return {kDouble, kDoubleData};
    }
}

template <typename T>
std::string bytesOf(T number) {
    std::string bytes(sizeof number, '\0');
    putLittleEndian(bytes.data(), number);
    return bytes;
}

std::string tag(std::uint32_t type, std::uint64_t size) {
    return bytesOf(type) + bytesOf(static_cast<std::uint32_t>(size));
}

std::string element(std::uint32_t type, std::string bytes) {
    const std::string head = tag(type, bytes.size());
    bytes.resize(static_cast<std::size_t>(aligned(bytes.size())));
    return head + bytes;
}

/// What every variable begins with.
std::string heading(std::uint32_t arrayClass, std::uint64_t rows, std::uint64_t cols,
                    const std::string& name) {
    return element(kUInt32Data, bytesOf(arrayClass) + bytesOf(std::uint32_t{0})) +
           element(kInt32Data, bytesOf(static_cast<std::uint32_t>(rows)) +
                                   bytesOf(static_cast<std::uint32_t>(cols))) +
           element(kInt8Data, name);
}

std::string variable(const std::string& content) {
    return tag(kMatrixData, content.size()) + content;
}

}  // namespace

std::string fileHeader() {
    constexpr std::size_t kTextSize = 116;
    constexpr std::size_t kUnusedSize = 8;
    constexpr std::uint16_t kVersion = 0x0100;
    std::string header = "MATLAB 5.0 MAT-file, written by sensorfile";
    header.resize(kTextSize, ' ');
    header.append(kUnusedSize, '\0');
    return header + bytesOf(kVersion) + "IM";
}

std::string number(const std::string& name, double value) {
    return matrix(name, Eigen::MatrixXd::Constant(1, 1, value), false);
}

std::string characters(const std::string& name, const std::string& text) {
    Poco::UTF16String units;
    Poco::UnicodeConverter::toUTF16(text, units);
    std::string bytes;
    for (const auto unit : units)
        bytes += bytesOf(static_cast<std::uint16_t>(unit));
    // MATLAB's own files have the first type; some readers take that for ASCII.
    const bool isAscii = units.size() == text.size();
    return variable(heading(kCharacters, units.empty() ? 0 : 1, units.size(), name) +
                    element(isAscii ? kUInt16Data : kUtf16Data, bytes));
}

std::string matrix(const std::string& name, const Eigen::MatrixXd& values, bool isInteger) {
    std::string bytes;
    for (Eigen::Index i = 0; i < values.size(); ++i) {
        const double value = values.data()[i];
        bytes += isInteger ? bytesOf(static_cast<std::uint32_t>(static_cast<std::int32_t>(value)))
                           : bytesOf(std::bit_cast<std::uint64_t>(value));
    }
    return variable(heading(isInteger ? kInt32 : kDouble, static_cast<std::uint64_t>(values.rows()),
                            static_cast<std::uint64_t>(values.cols()), name) +
                    element(isInteger ? kInt32Data : kDoubleData, bytes));
}

std::string cells(const std::string& name, std::size_t rows, std::size_t cols,
                  const std::vector<std::string>& members) {
    std::string content = heading(kCell, rows, cols, name);
    for (const std::string& member : members)
        content += member;
    return variable(content);
}

std::string structure(const std::string& name, const std::vector<std::string>& names,
                      const std::vector<std::string>& members) {
    // The length of names is a small element: type and size share a word.
    std::string content = heading(kStruct, 1, 1, name);
    content += bytesOf(static_cast<std::uint16_t>(kInt32Data)) + bytesOf(std::uint16_t{4}) +
               bytesOf(static_cast<std::uint32_t>(kFieldNameSize));
    std::string fields;
    for (std::string field : names) {
        field.resize(kFieldNameSize, '\0');
        fields += field;
    }
    content += element(kInt8Data, fields);
    for (const std::string& member : members)
        content += member;
    return variable(content);
}

ColumnFrame frameColumn(const std::string& name, int typeCode, std::uint64_t rowCount) {
    const ColumnKind kind = kindOf(typeCode);
    const std::uint64_t width = SensorFile::columnTypeSize(typeCode);
    ColumnFrame frame;
    frame.isTooLarge = rowCount > kMaxElementSize / width;
    if (frame.isTooLarge) return frame;
    frame.valueSize = rowCount * width;
    const std::string head = heading(kind.arrayClass, rowCount, 1, name);
    const std::uint64_t contentSize = head.size() + kTagSize + aligned(frame.valueSize);
    frame.isTooLarge = contentSize > kMaxElementSize;
    frame.head = tag(kMatrixData, contentSize) + head + tag(kind.dataType, frame.valueSize);
    frame.size = kTagSize + contentSize;
    return frame;
}

}  // namespace SensorFileTool::Mat
