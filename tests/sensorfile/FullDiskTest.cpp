#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <csignal>
#include <functional>
#include <sys/resource.h>

#include <Poco/Exception.h>

// Files that take no more bytes: the error names the path, the file keeps whole rows, and when
// there is space again nothing is missing in between.

namespace SensorFile {
namespace {

/// No file of this process grows beyond the limit while this lives: the system's writes become
/// short there and then fail.
class FileSizeLimit {
 public:
    explicit FileSizeLimit(std::size_t bytes) : handlerBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handlerBefore_);
    }

 private:
    rlimit before_{};
    void (*handlerBefore_)(int);
};

class FullDiskTest : public testing::TestWithParam<bool> {
 protected:
    void expectError(const std::function<void()>& action) {
        try {
            action();
            ADD_FAILURE() << "no error";
        } catch (const Poco::FileException& e) {
            EXPECT_NE(e.displayText().find(file.path()), std::string::npos) << e.displayText();
        }
    }
    /// Numbers of the rows in the file, which must count from 0.
    int rowsInFile() {
        SensorFileReader reader;
        reader.open(file.path(), GetParam());
        std::vector<double> row(3);
        int count = 0;
        for (; reader.readRow(row); ++count) {
            EXPECT_THAT(row, testing::ElementsAre(count, 0.125, 7)) << count;
        }
        return count;
    }
    void writeRow(int number) {
        const double row[] = {double(number), 0.125, 7};
        writer.writeRow(row);
    }

    const SensorFileConfig config = configOfTypes({6, 9, 11});
    const std::size_t openingSize = openingOf(config, GetParam()).size();
    FakeClock clock;
    TemporaryFile file;
    SensorFileWriter writer;
};

TEST_P(FullDiskTest, HeadersThatDoNotFitCloseTheWriter) {
    const FileSizeLimit limit(20);
    expectError([this] { writer.open(file.path(), config, GetParam(), true); });
    EXPECT_FALSE(writer.isOpen());
    EXPECT_EQ(writer.getConfig().getColumnCount(), 0U);
}

TEST_P(FullDiskTest, FlushTellsAndNothingIsMissingWhenThereIsSpaceAgain) {
    writer.open(file.path(), config, GetParam(), true);
    int number = 0;
    {
        const FileSizeLimit limit(openingSize + 30);
        bool isFull = false;
        for (; number < 20 && !isFull; ++number) {
            try {
                writeRow(number);
                if (GetParam()) writer.flush();
            } catch (const Poco::FileException&) {
                isFull = true;
            }
        }
        EXPECT_TRUE(isFull);
        EXPECT_EQ(file.content().size(), openingSize + 30);
    }
    for (; number < 30; ++number)
        writeRow(number);
    writer.close();
    EXPECT_EQ(rowsInFile(), 30);
}

TEST_P(FullDiskTest, CloseTellsAndCutsTheFileBackToItsLastWholeRow) {
    for (std::size_t space = 0; space < 45; ++space) {
        writer.open(file.path(), config, GetParam(), true);
        {
            const FileSizeLimit limit(openingSize + space);
            try {
                for (int i = 0; i < 10; ++i)
                    writeRow(i);
            } catch (const Poco::FileException&) {
                EXPECT_FALSE(GetParam());
            }
            expectError([this] { writer.close(); });
            EXPECT_FALSE(writer.isOpen());
        }
        const std::size_t rowSize = GetParam() ? 13 : std::string("0\t0.125\t7\t\n").size();
        EXPECT_EQ(file.content().size(), openingSize + space / rowSize * rowSize) << space;
        EXPECT_EQ(rowsInFile(), static_cast<int>(space / rowSize)) << space;
    }
}

TEST_P(FullDiskTest, MemoryStaysBoundedWhileRowsAreRefused) {
    writer.open(file.path(), config, GetParam(), true);
    const FileSizeLimit limit(openingSize + 5);
    int refused = 0;
    for (int i = 0; i < 100'000; ++i) {
        try {
            writeRow(i);
        } catch (const Poco::FileException&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 50'000);
    expectError([this] { writer.close(); });
    EXPECT_EQ(rowsInFile(), 0);
}

TEST_P(FullDiskTest, TheDestructorStaysQuiet) {
    const FileSizeLimit limit(openingSize + 5);
    SensorFileWriter inner;
    inner.open(file.path(), config, true, false);
    for (int i = 0; i < 100; ++i) {
        const double row[] = {1, 2, 3};
        inner.writeRow(row);
    }
}

TEST_P(FullDiskTest, AFullDeviceIsTold) {
    if (!std::filesystem::exists("/dev/full")) return;
    try {
        writer.open("/dev/full", config, GetParam(), true);
        ADD_FAILURE() << "no error";
    } catch (const Poco::FileException& e) {
        EXPECT_NE(e.displayText().find("/dev/full"), std::string::npos) << e.displayText();
    }
    EXPECT_FALSE(writer.isOpen());
}

TEST(FullDiskPrimitivesTest, TheyGoOnWhenThereIsSpaceAgain) {
    const SensorFileConfig config = configOfTypes({9});
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, true, true);
    {
        const FileSizeLimit limit(openingOf(config, true).size());
        writer.writeString("abc");
        EXPECT_THROW(writer.flush(), Poco::FileException);
    }
    writer.writeByte(7);
    writer.close();
    EXPECT_EQ(file.content(), openingOf(config, true) + bytes("03") + "abc" + bytes("07"));
}

TEST(FullDiskPrimitivesTest, ARefusedOneDoesNotSwallowTheNext) {
    const SensorFileConfig config = configOfTypes({9});
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, true, true);
    {
        const FileSizeLimit limit(openingOf(config, true).size());
        const auto fillMemory = [&writer] {
            for (int i = 0; i < 1'000'000; ++i)
                writer.writeByte(1);
        };
        EXPECT_THROW(fillMemory(), Poco::FileException);
    }
    writer.writeByte(7);
    writer.close();
    EXPECT_EQ(file.content().back(), '\7');
}

INSTANTIATE_TEST_SUITE_P(Encodings, FullDiskTest, testing::Bool(),
                         [](const auto& variant) { return variant.param ? "Binary" : "Text"; });

}  // namespace
}  // namespace SensorFile
