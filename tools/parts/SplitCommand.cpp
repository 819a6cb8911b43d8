#include "tools/parts/SplitCommand.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/parts/RecordingCopy.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <ostream>

#include <CLI/App.hpp>
#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// More are a mistake: a part of a single row, mostly.
constexpr std::uint64_t kMaxParts = 9999;
// Digits in the names of parts: more where there are more parts.
constexpr std::size_t kMinDigits = 3;

class SplitCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", inPath_, "A recording, or - for the standard input")->required();
        input_.define(app);
        app.add_option("--rows", rows_, "Rows of each part")
            ->type_name("N")
            ->check(CLI::PositiveNumber);
        app.add_option("--seconds", seconds_, "Seconds of each part, by the header's frequency")
            ->type_name("S")
            ->check(CLI::PositiveNumber);
        app.add_option("--parts", parts_, "Number of parts of the same size")
            ->type_name("N")
            ->check(CLI::PositiveNumber);
        app.add_option("-o,--output", outPath_,
                       "Name of the parts, which get a number in front of its ending: a.bin makes "
                       "a-001.bin, a-002.bin; IN if not given")
            ->type_name("NAME");
        defineForce(app, isForced_);
    }

    int run(Console& console) override {
        if (static_cast<int>(rows_ > 0) + static_cast<int>(seconds_ > 0.0) +
                static_cast<int>(parts_ > 0) !=
            1)
            throw UsageException("say how: one of --rows N, --seconds S, --parts N");
        if (outPath_.empty() && inPath_ == "-") throw UsageException("-o: name the parts");
        Recording recording(openInput(console, inPath_), input_.getEncoding());
        requireRows(recording);
        const RowCount count = countRows(recording);
        writeParts(console, recording, count.rows);
        if (count.rest.size == 0) return kExitDone;
        tellError(console, recording.getName() + ": " + count.rest.describe());
        return kExitProblems;
    }

 private:
    [[nodiscard]] std::uint64_t rowsOfPart(const Recording& recording, std::uint64_t rows) const {
        if (rows_ > 0) return rows_;
        if (parts_ > 0) return std::max<std::uint64_t>(1, (rows + parts_ - 1) / parts_);
        const double exact = std::round(seconds_ * recording.getConfig().getSampleFrequency());
        if (!(exact >= 1.0) || exact > 0x1p62)
            throw UsageException("--seconds: a part would have no rows at the file's frequency");
        return static_cast<std::uint64_t>(exact);
    }

    [[nodiscard]] std::string nameOf(std::uint64_t part, std::uint64_t partCount) const {
        const std::filesystem::path path = outPath_.empty() ? inPath_ : outPath_;
        const std::size_t digits = std::max(kMinDigits, fmt::format("{}", partCount).size());
        const std::string name = fmt::format("{}-{:0{}}{}", path.stem().string(), part, digits,
                                             path.extension().string());
        return (path.parent_path() / name).string();
    }

    /// What is there already is found before the first part is written.
    void writeParts(Console& console, Recording& recording, std::uint64_t rows) const {
        const std::uint64_t size = rowsOfPart(recording, rows);
        const std::uint64_t count = std::max<std::uint64_t>(1, (rows + size - 1) / size);
        if (count > kMaxParts)
            throw UsageException(
                fmt::format("{} parts are too many: at most {} are written", count, kMaxParts));
        for (std::uint64_t part = 0; part < count; ++part)
            OutputFile(console, nameOf(part + 1, count), isForced_);
        recording.getReader().rewind();
        for (std::uint64_t part = 0; part < count; ++part)
            writePart(console, recording, {part * size, std::min(rows, (part + 1) * size)},
                      nameOf(part + 1, count));
    }

    void writePart(Console& console, Recording& recording, const RowRange& range,
                   const std::string& name) const {
        OutputFile output(console, name, isForced_);
        output.fill([&](const std::string& path) {
            RecordingCopy copy(path, recording.getConfig(), recording.isBinary());
            copy.appendNext(recording, range.last - range.first);
            copy.finish();
        });
        console.output << fmt::format("{}: rows {} to {}\n", Texts::toVisible(name), range.first,
                                      range.last);
    }

    InputOptions input_;
    std::string inPath_;
    std::string outPath_;
    std::uint64_t rows_ = 0;
    double seconds_ = 0.0;
    std::uint64_t parts_ = 0;
    bool isForced_ = false;
};

}  // namespace

std::unique_ptr<Command> makeSplitCommand() {
    return std::make_unique<SplitCommand>();
}

}  // namespace SensorFileTool
