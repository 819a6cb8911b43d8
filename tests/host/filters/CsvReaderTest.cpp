#include "host/filters/CsvReader.hpp"
#include "tests/host/filters/Support.hpp"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using TestKit::messageOf;
using TestKit::ScratchFile;

std::vector<std::string> linesOf(std::string_view content) {
    const ScratchFile file(content);
    CsvReader reader(file.path());
    std::vector<std::string> lines;
    while (reader.next())
        lines.emplace_back(reader.getLine());
    return lines;
}

TEST(CsvReaderTest, LineEndsOfBothKindsAndNoneAtTheEndAreTaken) {
    EXPECT_THAT(linesOf("a\nb\r\nc"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\r\n"), ElementsAre("a"));
    EXPECT_THAT(linesOf("a\r"), ElementsAre("a"));
}

TEST(CsvReaderTest, EmptyBlankAndMarkerLinesArePassedOver) {
    EXPECT_THAT(linesOf("# x\n\n  \t \r\n1\n  ## y\n2\n#"), ElementsAre("1", "2"));
    EXPECT_THAT(linesOf("#only\n"), ElementsAre());
}

TEST(CsvReaderTest, LinesAreNumberedAsInTheFile) {
    const ScratchFile file("# x\n\n1\n#\n2");
    CsvReader reader(file.path());
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getLineNumber(), 3U);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getLineNumber(), 5U);
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.next());
}

TEST(CsvReaderTest, ByteOrderMarkOfUtf8IsSkipped) {
    EXPECT_THAT(linesOf("\xEF\xBB\xBFt,x\n"), ElementsAre("t,x"));
}

TEST(CsvReaderTest, Utf16IsRefusedByName) {
    const ScratchFile file(std::string_view("\xFF\xFE\x31\x00", 4));
    EXPECT_EQ(messageOf<Poco::DataFormatException>([&] { const CsvReader reader(file.path()); }),
              "CSV file '" + file.path() + "' is UTF-16 text; save it as UTF-8");
}

TEST(CsvReaderTest, BytesZeroStandInTheLine) {
    EXPECT_THAT(linesOf(std::string_view("1\0002\n", 4)), ElementsAre(std::string("1\0002", 3)));
}

TEST(CsvReaderTest, LinesAcrossBlocksComeWhole) {
    std::string content;
    std::vector<std::string> expected;
    for (int i = 0; i < 60000; ++i) {
        expected.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i % 37), 'x'));
        content += expected.back() + (i % 3 == 0 ? "\r\n" : "\n");
    }
    ASSERT_GT(content.size(), 4U * 256U * 1024U);
    EXPECT_EQ(linesOf(content), expected);
}

TEST(CsvReaderTest, BlocksOfAnySizeGiveTheSameLines) {
    const ScratchFile file("\xEF\xBB\xBFtime,x\r\n\n# none\n1,2\n3");
    for (const std::size_t blockSize : {1U, 2U, 3U, 7U, 1000U}) {
        CsvReader reader(file.path(), blockSize);
        std::vector<std::string> lines;
        while (reader.next())
            lines.emplace_back(reader.getLine());
        EXPECT_THAT(lines, ElementsAre("time,x", "1,2", "3")) << blockSize;
    }
}

TEST(CsvReaderTest, LongestLineIsReadAndOneByteMoreIsRefused) {
    const std::string longest(CsvReader::kMaxLineLength, 'x');
    EXPECT_THAT(linesOf("1\n" + longest + "\n2"), ElementsAre("1", longest, "2"));
    EXPECT_THAT(linesOf(longest), ElementsAre(longest));

    for (const char* end : {"", "\n", "\n2\n"}) {
        const ScratchFile file("1\n" + longest + "x" + end);
        CsvReader reader(file.path());
        ASSERT_TRUE(reader.next());
        EXPECT_EQ(messageOf<Poco::DataFormatException>([&] { (void)reader.next(); }),
                  file.path() + ", line 2: the line is longer than 1048576 bytes");
    }
}

TEST(CsvReaderTest, HugeLineIsRefusedWithoutBeingRead) {
    const ScratchFile file;
    std::ofstream stream(file.path(), std::ios::binary);
    stream.seekp(100 * 1000 * 1000);
    stream << "\n1,2\n";
    stream.close();
    CsvReader reader(file.path());
    EXPECT_THROW((void)reader.next(), Poco::DataFormatException);
}

TEST(CsvReaderTest, FileThatCannotBeReadIsToldInOneSentence) {
    const ScratchFile missing;
    EXPECT_EQ(messageOf<Poco::IOException>([&] { const CsvReader reader(missing.path()); }),
              "CSV file '" + missing.path() + "' does not exist");
    const std::string folder = std::filesystem::temp_directory_path().string();
    EXPECT_EQ(messageOf<Poco::IOException>([&] { const CsvReader reader(folder); }),
              "'" + folder + "' is a folder, not a CSV file");
    const ScratchFile empty("");
    EXPECT_EQ(messageOf<Poco::IOException>([&] { const CsvReader reader(empty.path()); }),
              "CSV file '" + empty.path() + "' is empty");
}

// Opens, but its first page cannot be read, on systems that have it; elsewhere it is missing.
TEST(CsvReaderTest, FileThatFailsWhileReadIsAnIoError) {
    EXPECT_THAT(messageOf<Poco::IOException>([] { const CsvReader reader("/proc/self/mem"); }),
                HasSubstr("CSV file '/proc/self/mem' "));
}

}  // namespace
}  // namespace Quoril::Core
