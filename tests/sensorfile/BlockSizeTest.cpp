#include "sensorfile/BlockSize.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <cstdint>
#include <vector>

#include <rapidcheck/gtest.h>

// Wherever blocks end, files and rows are the same.

namespace SensorFile {
namespace {

/// The library's block size for the time of a test.
class BlocksOf {
 public:
    explicit BlocksOf(std::size_t bytes) : before_(BlockSize::replace(bytes)) {}
    BlocksOf(const BlocksOf&) = delete;
    BlocksOf& operator=(const BlocksOf&) = delete;
    ~BlocksOf() { BlockSize::replace(before_); }

 private:
    std::size_t before_;
};

using Rows = std::vector<std::vector<double>>;

const std::vector<int> kTypes = {kInt16, kUInt8, kDouble};

Rows rowsOf(const std::vector<std::int16_t>& numbers) {
    Rows rows;
    for (const std::int16_t number : numbers)
        rows.push_back({1.0 * number, 1.0 * (number & 0xff), number / 32.0});
    return rows;
}

std::string write(const Rows& rows, bool binary) {
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), configOfTypes(kTypes), binary, /*writeHeaders=*/true);
    for (const auto& row : rows)
        writer.writeRow(row);
    writer.close();
    return file.content();
}

Rows read(const std::string& content, bool binary) {
    const TemporaryFile file(content);
    SensorFileReader reader;
    reader.open(file.path(), binary);
    Rows rows;
    std::vector<double> row(kTypes.size());
    while (reader.readRow(row))
        rows.push_back(row);
    return rows;
}

TEST(BlockSizeTest, IsThatOfTheFileSystemsLargePieces) {
    EXPECT_EQ(BlockSize::current(), 256U * 1024U);
}

RC_GTEST_PROP(BlockSizeTest, ChangesNeitherFilesNorRows, (std::vector<std::int16_t> numbers)) {
    const bool binary = *rc::gen::arbitrary<bool>();
    const Rows rows = rowsOf(numbers);
    const std::string content = write(rows, binary);
    const BlocksOf small(*rc::gen::inRange<std::size_t>(1, 40));
    RC_ASSERT(write(rows, binary) == content);
    RC_ASSERT(read(content, binary) == rows);
}

}  // namespace
}  // namespace SensorFile
