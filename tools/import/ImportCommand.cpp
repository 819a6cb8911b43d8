#include "tools/import/ImportCommand.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/DateText.hpp"
#include "tools/common/EncodingOption.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/Progress.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/import/CellReader.hpp"
#include "tools/import/CsvMatrix.hpp"
#include "tools/import/ImportPlan.hpp"
#include "tools/recording/SensorFileSink.hpp"

#include <cctype>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <CLI/App.hpp>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using SensorFile::SensorFileConfig;

// Binary files have room for so many bytes of a name.
constexpr std::size_t kMaxName = 32;
constexpr int kMaxPrecision = 20;

const std::map<std::string, char>& separatorsByName() {
    static const std::map<std::string, char> kSeparators{
        {"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}, {"blanks", kCsvBlanks}};
    return kSeparators;
}

char parseSeparator(const std::string& text, bool hasDecimalComma) {
    const auto found = separatorsByName().find(text);
    const bool isCharacter = text.size() == 1;
    char separator = '\0';
    if (found != separatorsByName().end())
        separator = found->second;
    else if (isCharacter)
        separator = text[0];
    const bool isPossible = separator > 0 && separator != '"' && separator != '#' &&
                            std::string("+-.").find(separator) == std::string::npos &&
                            !std::isalnum(static_cast<unsigned char>(separator)) &&
                            separator != '\n' && separator != '\r';
    if (!isPossible)
        throw UsageException("--separator: '" + text +
                             "' is not comma, semicolon, tab, blanks or a character");
    if (separator == ',' && hasDecimalComma)
        throw UsageException("--decimal-comma: the comma separates fields already");
    return separator;
}

/// As much of a name as a binary file holds; no character of UTF-8 is cut in two.
std::string cutName(const std::string& name) {
    constexpr unsigned kContinuationMask = 0xc0;
    constexpr unsigned kContinuation = 0x80;
    if (name.size() <= kMaxName) return name;
    std::size_t size = kMaxName;
    while (size > 0 &&
           (static_cast<unsigned char>(name[size]) & kContinuationMask) == kContinuation)
        --size;
    return name.substr(0, size);
}

/// Rows that were read and how.
struct ImportCount {
    std::uint64_t rows = 0;
    std::uint64_t badRows = 0;
    std::string firstBad;
    std::uint64_t comments = 0;
};

class ImportCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("IN", inputName_, "A CSV file, or - for the standard input")->required();
        app.add_option("OUT", outputName_, "The recording to write, or - for the standard output")
            ->required();
        defineCsv(app);
        defineColumns(app);
        defineRecording(app);
    }

    int run(Console& console) override {
        const ImportOptions options = getOptions();
        OutputFile output(console, outputName_, isForced_);
        const InputFile input = openInput(console, inputName_);
        const CsvDialect dialect = detectDialect(input.getPath(), input.getName(), options.csv);
        const ImportPlan plan(console, input, dialect, options);
        console.errors << fmt::format("{}: separated by {}, {}\n",
                                      Texts::toVisible(input.getName()),
                                      describeSeparator(dialect.separator),
                                      dialect.hasHeader
                                          ? fmt::format("names in line {}", dialect.sample[0].line)
                                          : "no names")
                       << plan.describe();
        const SensorFileConfig config = makeConfig(console, plan, options);
        CsvTable table(input.getPath(), input.getName(), dialect);
        const CellReader cells(plan.columns(), options.csv.style, options.blank);
        ImportCount count;
        output.fill([&](const std::string& path) {
            Progress progress(console, input.getName(),
                              std::filesystem::file_size(input.getPath()));
            SensorFileSink sink(path, config, options.isBinary);
            count = convert(table, cells, Row(config), sink, progress);
        });
        return tell(console, input, output, count);
    }

 private:
    void defineCsv(CLI::App& app) {
        app.add_option("--separator", separator_,
                       "What separates fields: comma, semicolon, tab, blanks or a character; "
                       "found out if not given")
            ->type_name("NAME");
        CLI::Option* const header =
            app.add_flag("--header", hasHeader_, "The first line holds names");
        app.add_flag("--no-header", hasNoHeader_, "The first line holds numbers")->excludes(header);
        app.add_flag("--decimal-comma", hasDecimalComma_, "Numbers are written as in 1,5");
        app.add_option("--blank", blank_,
                       "What a blank field stands for; nan if not given, and its column is DOUBLE")
            ->type_name("NUMBER");
        app.add_flag("--skip-bad", skipsBad_,
                     "Leave out bad rows and go on; the exit code is 3 then");
    }

    void defineColumns(CLI::App& app) {
        app.add_option("--columns", columns_,
                       "The columns to take, in this order, by name or position, with their types "
                       "if those are not to be found out, as in time=DOUBLE,ax=FLOAT")
            ->type_name("NAME[=TYPE],...")
            ->check([](const std::string& text) {
                return text.empty() ? std::string("no column is named") : std::string();
            });
        app.add_option("--rename", renaming_, "Names of columns in the recording")
            ->type_name("NAME=NEW,...");
        app.add_option("--time", time_,
                       "The column of time stamps by which the frequency is measured; by itself "
                       "one with a name such as TIME or timestamp_ns")
            ->type_name("NAME");
        app.add_option("--time-unit", timeUnit_, "Its unit, if its name or steps do not tell")
            ->type_name("s|ms|us|ns")
            ->check(CLI::IsMember({"s", "ms", "us", "ns"}));
    }

    void defineRecording(CLI::App& app) {
        frequencyOption_ =
            app.add_option("--frequency", frequency_, "Rows per second, if not measured")
                ->type_name("HZ");
        app.add_option("--calib", calibs_,
                       "A calibration record to add: its name, and a CSV file of numbers alone")
            ->type_name("NAME=FILE")
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        encoding_.define(app);
        precisionOption_ =
            app.add_option("--precision", precision_,
                           "Digits behind the point in text; by itself as many as IN has")
                ->type_name("DIGITS")
                ->check(CLI::Range(0, kMaxPrecision));
        app.add_option("--creation-time", creationTime_,
                       "The recording's date, UTC; if not given, the present time")
            ->type_name("2017-05-23T10:04:31Z");
        defineForce(app, isForced_);
    }

    [[nodiscard]] ImportOptions getOptions() const {
        ImportOptions options;
        options.csv.style.hasDecimalComma = hasDecimalComma_;
        if (!separator_.empty())
            options.csv.separator = parseSeparator(separator_, hasDecimalComma_);
        if (hasHeader_ || hasNoHeader_) options.csv.hasHeader = hasHeader_;
        options.columns = columns_;
        options.renaming = renaming_;
        options.blank = blank_;
        options.timeColumn = time_;
        options.timeUnit = timeUnit_;
        if (frequencyOption_->count() > 0) options.frequency = frequency_;
        if (precisionOption_->count() > 0) options.precision = precision_;
        options.isBinary = encoding_.isBinary(outputName_);
        options.skipsBad = skipsBad_;
        double number = 0.0;
        if (!blank_.empty() && !readDouble(blank_, options.csv.style, number))
            throw UsageException("--blank: '" + blank_ + "' is no number");
        if (options.frequency &&
            !(frequency_ > 0.0 && frequency_ <= std::numeric_limits<double>::max()))
            throw UsageException("--frequency: it must be more than 0");
        return options;
    }

    [[nodiscard]] SensorFileConfig makeConfig(const Console& console, const ImportPlan& plan,
                                              const ImportOptions& options) const {
        SensorFileConfig config;
        config.setSampleFrequency(plan.getFrequency());
        config.setDoublePrecision(plan.getPrecision());
        if (!creationTime_.empty()) {
            config.setCreationTime(parseDate("--creation-time", creationTime_));
            config.setCalibTime(config.getCreationTime());
        }
        std::set<std::string> names;
        for (const ImportColumn& column : plan.columns()) {
            const std::string name = options.isBinary ? cutName(column.name) : column.name;
            config.addColumn(name, *column.typeCode);
            if (name != column.name)
                console.errors << fmt::format(
                    "{}: the name {} is cut to '{}', as long as names are in binary files\n",
                    Texts::toVisible(outputName_), quoteText(column.name), Texts::toVisible(name));
            if (!names.insert(name).second)
                console.errors << fmt::format("{}: several columns are named {}\n",
                                              Texts::toVisible(outputName_), quoteText(name));
        }
        addRecords(config);
        return config;
    }

    void addRecords(SensorFileConfig& config) const {
        for (const std::string& calib : calibs_) {
            const std::size_t at = calib.find('=');
            const std::string name = calib.substr(0, at);
            if (at == std::string::npos || name.empty() || name.size() > kMaxName ||
                name.find_first_of(" \t\r\n") != std::string::npos)
                throw UsageException("--calib: '" + calib +
                                     "' is not NAME=FILE with a name of up to 32 characters "
                                     "without blanks");
            if (config.findCalibData(name) >= 0)
                throw UsageException("--calib: '" + name + "' is named twice");
            config.addCalibData(name, readCsvMatrix(calib.substr(at + 1)));
        }
    }

    [[nodiscard]] ImportCount convert(CsvTable& table, const CellReader& cells, Row row,
                                      RowSink& sink, Progress& progress) const {
        ImportCount count;
        while (table.next()) {
            progress.show(table.reader().getPosition());
            std::optional<CsvDefect> defect = table.defect();
            if (!defect) defect = cells.read(table.cells(), row);
            if (!defect) {
                sink.write(row);
                ++count.rows;
                continue;
            }
            if (!skipsBad_) table.fail(*defect);
            if (count.badRows++ == 0)
                count.firstBad =
                    fmt::format("line {}: {}", table.reader().line(), table.describe(*defect));
        }
        sink.finish();
        count.comments = table.reader().getCommentCount();
        return count;
    }

    static int tell(const Console& console, const InputFile& input, const OutputFile& output,
                    const ImportCount& count) {
        if (count.comments > 0)
            console.errors << fmt::format("{}: {} line(s) that begin with # left out\n",
                                          Texts::toVisible(input.getName()), count.comments);
        console.errors << fmt::format("{}: {} row(s)\n", Texts::toVisible(output.getName()),
                                      count.rows);
        if (count.badRows == 0) return kExitDone;
        tellError(console, fmt::format("{}: {} bad row(s) left out, the first: {}", input.getName(),
                                       count.badRows, count.firstBad));
        return kExitProblems;
    }

    std::string inputName_;
    std::string outputName_;
    std::string separator_;
    bool hasHeader_ = false;
    bool hasNoHeader_ = false;
    bool hasDecimalComma_ = false;
    std::string blank_;
    bool skipsBad_ = false;
    std::string columns_;
    std::string renaming_;
    std::string time_;
    std::string timeUnit_;
    double frequency_ = 0.0;
    std::vector<std::string> calibs_;
    EncodingOption encoding_;
    int precision_ = 0;
    std::string creationTime_;
    bool isForced_ = false;
    const CLI::Option* frequencyOption_ = nullptr;
    const CLI::Option* precisionOption_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeImportCommand() {
    return std::make_unique<ImportCommand>();
}

}  // namespace SensorFileTool
