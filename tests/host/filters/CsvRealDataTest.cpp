#include "host/filters/FilterCsvSource.hpp"
#include "tests/host/filters/Support.hpp"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

namespace Quoril::Core {
namespace {

using namespace TestKit;

/// A recording: how to read it, what is in it, and a look-alike of it for machines without the
/// real file.
struct Recording {
    const char* name;
    const char* columns;  ///< one pin "p"
    const char* timeColumn;
    double scaleTime;
    unsigned rows;
    std::vector<double> firstRow;
    double firstTime;
    std::string (*makeLookAlike)(unsigned rows);
};

std::string repeat(unsigned rows, const std::function<std::string(unsigned)>& makeRow) {
    std::string content;
    for (unsigned row = 0; row < rows; ++row)
        content += makeRow(row);
    return content;
}

std::string likeAhrs(unsigned rows) {
    return "Time (s),Gyroscope X (deg/s),Gyroscope Y (deg/s),Gyroscope Z (deg/s),Accelerometer X "
           "(g),Accelerometer Y (g),Accelerometer Z (g),Magnetometer X (uT),Magnetometer Y "
           "(uT),Magnetometer Z (uT)\n" +
           repeat(rows, [](unsigned row) {
               const std::string time = row == 0 ? "0" : std::to_string(row * 0.01);
               return time + (row == 0 ? ",0.01644619" : ",5.35E-05") +
                      ",-0.1517251,0.1080897,0.001015204,-0.02045836,0.9970807,15.3017,0.4328527,"
                      "-41.06483\n";
           });
}

std::string likePhone(unsigned rows) {
    return repeat(rows, [](unsigned row) {
        return std::to_string(1018138549376479 + row * 2468000LL) +
               ",3,4.5457473,5.3169436,7.2760696\r\n";
    });
}

std::string likeCounters(unsigned rows) {
    return repeat(rows, [](unsigned row) {
        return std::to_string(1874368805293 + row * 9999000LL) +
               ",-0.049081136,3.6332011,9.434352,0,0,0\n";
    });
}

std::string likeRocketCounts(unsigned rows) {
    std::string content = "#### 0738.921837 autosave nr 1\n";
    content += repeat(rows, [](unsigned row) {
        const std::string marker = row % 10 == 9 ? "\n# autosave took 0.017516" : "";
        return std::to_string(row + 1) + "," + (row == 0 ? "1558680737.898025" : "1558680738.1") +
               ",\"[-1366, -471, 8203]\"" + marker + "\n";
    });
    content.pop_back();
    return content;
}

std::string likeRocketTwoRates(unsigned rows) {
    return "state_letter,timestamp,scaledAccelX,estPressureAlt,batch_number,update_timestamp_"
           "ns\r\n" +
           repeat(rows, [](unsigned row) {
               return std::string("S,1737839597083990000,") + (row % 3 == 0 ? "-1.03125," : ",") +
                      (row % 3 == 0 ? "," : "9.71,") + "1,1737839597100000001\r\n";
           });
}

std::string likeWalk(unsigned rows) {
    return "Time (s),Gyroscope X (deg/s),Accelerometer Z (g)\n" + repeat(rows, [](unsigned row) {
               return (row < 2 ? "0" : std::to_string(row * 0.0025)) + ",0.2509459,0.8569804\n";
           });
}

const std::vector<Recording>& recordings() {
    static const std::vector<Recording> all = {
        {"ahrs_9axis_xio.csv",
         "p=Gyroscope X (deg/s),Accelerometer Z (g),Magnetometer Z (uT)",
         "Time (s)",
         1.0,
         13514,
         {0.01644619, 0.9970807, -41.06483},
         0.0,
         likeAhrs},
        {"walk_6axis_xio.csv",
         "p=Gyroscope X (deg/s),Accelerometer Z (g)",
         "Time (s)",
         1.0,
         28132,
         {0.2509459, 0.8569804},
         0.0,
         likeWalk},
        {"phone_accel_400hz_oxford.csv",
         "p=#1,#2,#3,#4,#5",
         "#1",
         1e-9,
         77008,
         {1018138549376479.0, 3, 4.5457473, 5.3169436, 7.2760696},
         1018138549376479.0 * 1e-9,
         likePhone},
        {"phone_step_counters_oxford.csv",
         "p=2,3,4,5,6,7",
         "1",
         1e-9,
         19965,
         {-0.049081136, 3.6332011, 9.434352, 0, 0, 0},
         1874368805293.0 * 1e-9,
         likeCounters},
        {"rocket_raw_counts_srp.csv",
         "p=#1,#3[],#3[2]",
         "#2",
         1.0,
         10180,
         {1, -1366, -471, 8203, 8203},
         1558680737.898025,
         likeRocketCounts},
        {"rocket_two_rate_ncsu.csv",
         "p=timestamp,scaledAccelX,estPressureAlt,update_timestamp_ns",
         "timestamp",
         1e-9,
         4981,
         {},
         0.0,
         likeRocketTwoRates},
    };
    return all;
}

// Sends a whole file and checks its rows.
void replay(const Recording& recording, const std::string& path, unsigned rows) {
    FilterCsvSource source("csv");
    set(source, "File Name", path);
    set(source, "Columns", recording.columns);
    set(source, "Time Column", recording.timeColumn);
    set(source, "Scale Time", recording.scaleTime);
    Receiver receiver(source, "p");
    ASSERT_FALSE(source.isFinished()) << path;
    source.process();
    ASSERT_TRUE(receiver.next());
    if (!recording.firstRow.empty()) {
        const Eigen::MatrixXd& value = receiver.sample().value;
        EXPECT_EQ(std::vector<double>(value.data(), value.data() + value.size()),
                  recording.firstRow);
        EXPECT_EQ(receiver.sample().timeStamp, recording.firstTime);
    }
    while (!source.isFinished()) {
        source.process();
        ASSERT_TRUE(receiver.next());
    }
    EXPECT_EQ(get<unsigned>(source, "Rows"), rows) << path;
}

std::filesystem::path realDataFolder() {
    const char* folder = std::getenv("SENSORFILE_REAL_DATA");
    return folder != nullptr && std::filesystem::is_directory(folder) ? folder : "";
}

TEST(CsvRealDataTest, RecordingsAreReadToTheirLastRow) {
    const std::filesystem::path folder = realDataFolder();
    for (const Recording& recording : recordings()) {
        SCOPED_TRACE(recording.name);
        if (!folder.empty()) {
            replay(recording, (folder / recording.name).string(), recording.rows);
            continue;
        }
        const ScratchFile lookAlike(recording.makeLookAlike(1000));
        replay(recording, lookAlike.path(), 1000);
    }
}

TEST(CsvRealDataTest, LookAlikesAreReadToTheirLastRow) {
    for (const Recording& recording : recordings()) {
        SCOPED_TRACE(recording.name);
        const ScratchFile lookAlike(recording.makeLookAlike(777));
        replay(recording, lookAlike.path(), 777);
    }
}

// A pin for each column of a file's header that holds numbers, or blanks, in its first row.
std::string selectNumericColumns(const std::filesystem::path& path, bool hasHeader) {
    std::ifstream stream(path);
    std::string header;
    std::string row;
    if (hasHeader) std::getline(stream, header);
    while (std::getline(stream, row) && row.starts_with('#')) {
    }
    std::string columns = "p=";
    int position = 1;
    bool isList = false;
    std::string field;
    for (const char c : row + ',') {
        if (c == '"') isList = true;
        if (c != ',' || (isList && !field.ends_with("]\""))) {
            field += c;
            continue;
        }
        const bool isText = !field.empty() && std::isalpha(static_cast<unsigned char>(field[0]));
        if (!isText)
            columns +=
                (columns == "p=" ? "#" : ",#") + std::to_string(position) + (isList ? "[]" : "");
        ++position;
        field.clear();
        isList = false;
    }
    return columns;
}

TEST(CsvRealDataTest, EveryNumericColumnOfEveryRecordingIsRead) {
    const std::filesystem::path folder = realDataFolder();
    for (const Recording& recording : recordings()) {
        SCOPED_TRACE(recording.name);
        const ScratchFile lookAlike(recording.makeLookAlike(500));
        const std::filesystem::path path =
            folder.empty() ? std::filesystem::path(lookAlike.path()) : folder / recording.name;
        const bool hasHeader = std::isalpha(recording.columns[2]) != 0;
        FilterCsvSource source("csv");
        set(source, "File Name", path.string());
        set(source, "Columns", selectNumericColumns(path, hasHeader));
        while (!source.isFinished())
            source.process();
        EXPECT_EQ(get<unsigned>(source, "Rows"), folder.empty() ? 500U : recording.rows);
    }
}

TEST(CsvRealDataTest, NanosecondsAbove2To53AreRoundedToTheNearestDouble) {
    const std::filesystem::path folder = realDataFolder();
    const ScratchFile lookAlike(likeRocketTwoRates(10));
    const std::string path =
        folder.empty() ? lookAlike.path() : (folder / "rocket_two_rate_ncsu.csv").string();
    FilterCsvSource source("csv");
    set(source, "File Name", path);
    set(source, "Columns", "p=timestamp,scaledAccelX,estPressureAlt");
    Receiver receiver(source, "p");
    bool hasBlanks = false;
    while (!source.isFinished()) {
        source.process();
        ASSERT_TRUE(receiver.next());
        const Eigen::MatrixXd& row = receiver.sample().value;
        EXPECT_GT(row(0, 0), 1.7e18);
        hasBlanks = hasBlanks || std::isnan(row(1, 0)) != std::isnan(row(2, 0));
    }
    EXPECT_TRUE(hasBlanks);
}

}  // namespace
}  // namespace Quoril::Core
