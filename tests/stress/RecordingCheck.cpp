#include "tests/stress/RecordingCheck.hpp"

#include "sensorfile/SensorFileReader.hpp"
#include "tests/stress/Failure.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <filesystem>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Stress {

namespace {

[[noreturn]] void failAt(const ClosedRecording& recording, const std::string& what) {
    fail(fmt::format("recording '{}' of '{}' ({}): {}", recording.file, recording.filter,
                     recording.isBinary ? "binary" : "text", what));
}

void checkRow(const ClosedRecording& recording, std::uint64_t number,
              const std::vector<double>& row, const std::vector<double>& before) {
    for (const auto& [begin, end] : recording.equalColumns) {
        for (std::size_t i = begin + 1; i < end; ++i)
            if (row[i] != row[begin])
                failAt(recording, fmt::format("row {}: column {} is {}, column {} is {}", number,
                                              begin, row[begin], i, row[i]));
        if (recording.areNumbersGrowing && number > 0 && row[begin] <= before[begin])
            failAt(recording, fmt::format("row {}: column {} is {} after {}", number, begin,
                                          row[begin], before[begin]));
    }
}

std::uint64_t readRows(const ClosedRecording& recording, SensorFile::SensorFileReader& reader) {
    std::vector<double> row(reader.getConfig().getColumnCount());
    std::vector<double> before = row;
    std::uint64_t count = 0;
    for (; reader.readRow(row); ++count) {
        checkRow(recording, count, row, before);
        before.swap(row);
    }
    return count;
}

/// The last row must be whole: readers leave a torn one out without a word.
void checkEnd(const ClosedRecording& recording, std::uint64_t sampleBytes, std::uint64_t rowCount) {
    if (!recording.isBinary) {
        const std::string bytes = Support::readBytes(recording.file);
        if (bytes.back() != '\n') failAt(recording, "the last row is torn");
    } else if (rowCount == 0 ? sampleBytes != 0 : sampleBytes % rowCount != 0) {
        failAt(recording,
               fmt::format("{} bytes of samples are not {} whole rows", sampleBytes, rowCount));
    }
}

/// Opens the file, which has a header.
void open(const ClosedRecording& recording, SensorFile::SensorFileReader& reader) {
    try {
        reader.open(recording.file, recording.isBinary);
    } catch (const Poco::Exception& error) {
        failAt(recording, error.displayText());
    }
}

std::uint64_t countSampleBytes(const ClosedRecording& recording,
                               const SensorFile::SensorFileReader& reader) {
    return std::filesystem::file_size(recording.file) -
           static_cast<std::uint64_t>(reader.position());
}

std::uint64_t countRows(const ClosedRecording& recording) {
    // The header is written with the first call.
    if (std::filesystem::file_size(recording.file) == 0) return 0;
    SensorFile::SensorFileReader reader;
    open(recording, reader);
    const std::uint64_t sampleBytes = countSampleBytes(recording, reader);
    const std::uint64_t rowCount = readRows(recording, reader);
    if (reader.getConfig().getColumnCount() > 0) checkEnd(recording, sampleBytes, rowCount);
    return rowCount;
}

}  // namespace

std::uint64_t checkRecording(const ClosedRecording& recording) {
    if (!recording.areRowsReadable) return 0;
    const std::uint64_t count = countRows(recording);
    if (count < recording.fewestRows || count > recording.mostRows)
        failAt(recording, fmt::format("{} rows, but {} to {} were taken", count,
                                      recording.fewestRows, recording.mostRows));
    return count;
}

std::uint64_t countSampleBytes(const ClosedRecording& recording) {
    SensorFile::SensorFileReader reader;
    open(recording, reader);
    return countSampleBytes(recording, reader);
}

}  // namespace Stress
