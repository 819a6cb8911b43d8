// Writing and reading sensor files: the library's ways beside the limit and the plain way. Every
// benchmark does the whole work once an iteration, from opening the file to closing it, and checks
// afterwards that it did it right.

#include "bench/Limit.hpp"
#include "bench/PlainWay.hpp"
#include "bench/ScratchFolder.hpp"
#include "bench/Workload.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "sensorfile/TextRowCodec.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <type_traits>

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>
#include <Poco/FileStream.h>
#include <benchmark/benchmark.h>

namespace Bench {
namespace {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;
using SensorFile::SensorFileWriter;

constexpr bool kBinary = true;
constexpr bool kText = false;

SensorFileConfig binaryConfig() {
    SensorFileConfig config;
    config.addColumn("COUNT", "uint16");
    for (std::size_t column = 1; column + 1 < kBinaryColumns; ++column) {
        config.addColumn("AXIS" + std::to_string(column), "int16");
    }
    config.addColumn("INFO", "uint8");
    return config;
}

SensorFileConfig textConfig() {
    SensorFileConfig config;
    config.setDoublePrecision(kTextDecimals);
    for (const char* name : {"TIME", "ACCX", "ACCY", "ACCZ", "GYRX", "GYRY", "GYRZ"}) {
        config.addColumn(name, "double");
    }
    return config;
}

// ---- Whole works, each from an absent file to a closed one ----

void libraryWriteRows(const std::string& path) {
    const auto& rows = binaryRows();
    SensorFileWriter writer;
    writer.open(path, binaryConfig(), kBinary, true);
    for (std::size_t i = 0; i < kBinaryRows; ++i)
        writer.writeRow(rows[i % kCycle]);
    writer.close();
}

void libraryWriteValues(const std::string& path) {
    const auto& rows = binaryRows();
    SensorFileWriter writer;
    writer.open(path, binaryConfig(), kBinary, true);
    for (std::size_t i = 0; i < kBinaryRows; ++i) {
        for (const double value : rows[i % kCycle])
            writer.write(value);
    }
    writer.close();
}

void plainWriteRows(const std::string& path) {
    const auto& rows = binaryRows();
    Poco::FileOutputStream file{path};
    Poco::BinaryWriter writer{file, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER};
    for (std::size_t i = 0; i < kBinaryRows; ++i)
        plainWriteRow(writer, rows[i % kCycle]);
}

void libraryWriteText(const std::string& path) {
    const auto& rows = textRows();
    SensorFileWriter writer;
    writer.open(path, textConfig(), kText, true);
    for (std::size_t i = 0; i < kTextRows; ++i)
        writer.writeRow(rows[i % kCycle]);
    writer.close();
}

/// The library's text without its hand-over of every row: rows collected into blocks.
void libraryWriteTextUnflushed(const std::string& path) {
    const auto& rows = textRows();
    const SensorFile::TextRowCodec codec{textConfig()};
    BlockWriter out{path, kTextColumns * (codec.maxValueSize() + 1) + 1};
    for (std::size_t i = 0; i < kTextRows; ++i) {
        char* end = out.reserve();
        for (std::size_t column = 0; column < kTextColumns; ++column) {
            end = codec.format(column, rows[i % kCycle][column], end);
            *end++ = '\t';
        }
        *end++ = '\n';
        out.commit(static_cast<std::size_t>(end - out.reserve()));
    }
}

void plainWriteText(const std::string& path) {
    const auto& rows = textRows();
    Poco::FileOutputStream file{path};
    PlainTextRows text;
    for (std::size_t i = 0; i < kTextRows; ++i)
        text.write(file, rows[i % kCycle]);
}

/// The caller's use of a row, which keeps the compiler from dropping what is not read.
template <typename Row>
void use(Row& row) {
    benchmark::DoNotOptimize(row);
    benchmark::ClobberMemory();
}

template <typename Row>
std::size_t libraryReadRows(const std::string& path, Row& row) {
    SensorFileReader reader;
    reader.open(path, std::is_same_v<Row, BinaryRow>);
    std::size_t rows = 0;
    for (; reader.readRow(row); ++rows)
        use(row);
    return rows;
}

template <typename Row>
std::size_t libraryReadValues(const std::string& path, Row& row) {
    SensorFileReader reader;
    reader.open(path, std::is_same_v<Row, BinaryRow>);
    std::size_t rows = 0;
    while (reader.read(row.data(), row.size()) && !reader.isEof()) {
        use(row);
        ++rows;
    }
    return rows;
}

std::size_t plainReadRows(const std::string& path, BinaryRow& row) {
    Poco::FileInputStream file{path};
    Poco::BinaryReader reader{file, Poco::BinaryReader::BIG_ENDIAN_BYTE_ORDER};
    std::size_t rows = 0;
    for (plainReadRow(reader, row); !file.eof(); plainReadRow(reader, row)) {
        use(row);
        ++rows;
    }
    return rows;
}

std::size_t plainReadText(const std::string& path, TextRow& row) {
    Poco::FileInputStream file{path};
    std::size_t rows = 0;
    for (plainReadTextRow(file, row); file; plainReadTextRow(file, row)) {
        use(row);
        ++rows;
    }
    return rows;
}

// ---- Checks ----

std::string contentOf(const std::string& path) {
    std::ifstream file{path, std::ios::binary | std::ios::ate};
    std::string content(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

/// The samples that a correct file ends with, as the limit writes them.
std::string samplesOf(void (*limit)(const std::string&)) {
    const std::string path = ScratchFolder::instance().file("reference");
    limit(path);
    return contentOf(path);
}

using Write = void (*)(const std::string& path);

void measureWrite(benchmark::State& state, Write write, std::size_t rows,
                  const std::string& samples) {
    const std::string path = ScratchFolder::instance().file("written");
    for ([[maybe_unused]] auto _ : state)
        write(path);
    state.SetItemsProcessed(static_cast<std::int64_t>(rows));
    if (!contentOf(path).ends_with(samples)) state.SkipWithError("wrong bytes written");
    std::filesystem::remove(path);
}

template <typename Row>
using Read = std::size_t (*)(const std::string& path, Row& row);

template <typename Row>
void measureRead(benchmark::State& state, Read<Row> read, const std::string& path,
                 std::size_t rows) {
    Row row{};
    std::size_t rowsRead = 0;
    for ([[maybe_unused]] auto _ : state)
        rowsRead = read(path, row);
    state.SetItemsProcessed(static_cast<std::int64_t>(rows));
    if (rowsRead != rows) state.SkipWithError("wrong count of rows read");
}

// ---- Registration: work / way ----

void binaryWrite(benchmark::State& state, Write write) {
    static const std::string samples = samplesOf(limitWriteRows);
    measureWrite(state, write, kBinaryRows, samples);
}

void textWrite(benchmark::State& state, Write write) {
    static const std::string samples = samplesOf(limitWriteLines);
    measureWrite(state, write, kTextRows, samples);
}

std::string written(const std::string& name, Write write) {
    std::string path = ScratchFolder::instance().file(name);
    write(path);
    return path;
}

/// With a header for the library, bare samples for the others.
void binaryRead(benchmark::State& state, Write write, Read<BinaryRow> read) {
    const std::string path = written("to_read", write);
    measureRead(state, read, path, kBinaryRows);
    std::filesystem::remove(path);
}

void textRead(benchmark::State& state, Write write, Read<TextRow> read) {
    const std::string path = written("to_read", write);
    measureRead(state, read, path, kTextRows);
    std::filesystem::remove(path);
}

BENCHMARK_CAPTURE(binaryWrite, limit, limitWriteRows)->Iterations(1);
BENCHMARK_CAPTURE(binaryWrite, row, libraryWriteRows)->Iterations(1);
BENCHMARK_CAPTURE(binaryWrite, values, libraryWriteValues)->Iterations(1);
BENCHMARK_CAPTURE(binaryWrite, plain, plainWriteRows)->Iterations(1);

BENCHMARK_CAPTURE(binaryRead, limit, limitWriteRows, limitReadRows)->Iterations(1);
BENCHMARK_CAPTURE(binaryRead, row, libraryWriteRows, libraryReadRows)->Iterations(1);
BENCHMARK_CAPTURE(binaryRead, values, libraryWriteRows, libraryReadValues)->Iterations(1);
BENCHMARK_CAPTURE(binaryRead, plain, limitWriteRows, plainReadRows)->Iterations(1);

BENCHMARK_CAPTURE(textWrite, limit, limitWriteLines)->Iterations(1);
BENCHMARK_CAPTURE(textWrite, limit_flushed, limitWriteLinesFlushed)->Iterations(1);
BENCHMARK_CAPTURE(textWrite, flushed, libraryWriteText)->Iterations(1);
BENCHMARK_CAPTURE(textWrite, unflushed, libraryWriteTextUnflushed)->Iterations(1);
BENCHMARK_CAPTURE(textWrite, plain, plainWriteText)->Iterations(1);

BENCHMARK_CAPTURE(textRead, row, libraryWriteText, libraryReadRows)->Iterations(1);
BENCHMARK_CAPTURE(textRead, values, libraryWriteText, libraryReadValues)->Iterations(1);
BENCHMARK_CAPTURE(textRead, plain, limitWriteLines, plainReadText)->Iterations(1);

}  // namespace
}  // namespace Bench
