#include "tools/import/ImportPlan.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "tools/common/Progress.hpp"
#include "tools/recording/TypeOption.hpp"

#include <algorithm>
#include <filesystem>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using SensorFile::SensorFileConfig;

// Of files whose rows have no time.
constexpr double kUsualFrequency = 200.0;  // Hz

}  // namespace

ImportPlan::ImportPlan(const Console& console, const InputFile& input, const CsvDialect& dialect,
                       const ImportOptions& options)
    : options_(options), frequency_(options.frequency.value_or(kUsualFrequency)) {
    CsvTable table(input.getPath(), input.getName(), dialect);
    const bool needsDecimals = !options.isBinary && !options.precision;
    for (ImportColumn& column :
         chooseImportColumns(table.columns(), options.columns, options.renaming)) {
        const bool isScanned = needsDecimals || !column.typeCode;
        candidates_.push_back({std::move(column), ColumnGuess(needsDecimals), isScanned, ""});
    }
    findTimeColumn();
    if (isScanNeeded()) scan(console, input, table);
    refuseMixed(input, table);
    for (Candidate& candidate : candidates_) {
        decideType(candidate);
        if (candidate.column.typeCode) columns_.push_back(candidate.column);
        precision_ = std::max(precision_, candidate.guess.getDecimals());
    }
    precision_ = options.precision.value_or(std::min(precision_, SensorFile::kMaxPrecision));
    if (columns_.empty())
        throw Poco::DataFormatException(
            input.getName() + ": no column holds numbers: " + candidates_.front().column.name +
            ": " + candidates_.front().remark);
    measureFrequency();
}

void ImportPlan::findTimeColumn() {
    SensorFileConfig config;
    for (const Candidate& candidate : candidates_)
        config.addColumn(candidate.column.name, SensorFile::kDouble);
    std::optional<TimeColumn> time =
        chooseTimeColumn(config, options_.timeColumn, options_.timeUnit);
    if (!time || options_.frequency) return;
    stampCandidate_ = time->index;
    stamps_.emplace(*std::move(time));
}

bool ImportPlan::isScanNeeded() const {
    return stamps_ || std::any_of(candidates_.begin(), candidates_.end(),
                                  [](const Candidate& one) { return one.isScanned; });
}

void ImportPlan::scan(const Console& console, const InputFile& input, CsvTable& table) {
    const std::uint64_t size = std::filesystem::file_size(input.getPath());
    Progress progress(console, input.getName() + ": types", size);
    while (table.next()) {
        progress.show(table.reader().getPosition());
        if (!table.defect())
            scanRow(table);
        else if (!options_.skipsBad)
            table.fail(*table.defect());
    }
}

void ImportPlan::scanRow(const CsvTable& table) {
    hasRows_ = true;
    const std::vector<std::string_view>& cells = table.cells();
    const auto textOf = [&](const Candidate& candidate) {
        const std::string_view cell = cells[candidate.column.cell];
        return cell.empty() ? std::string_view(options_.blank) : cell;
    };
    for (Candidate& candidate : candidates_)
        if (candidate.isScanned && !candidate.guess.isSettled())
            candidate.guess.add(textOf(candidate), options_.csv.style, table.reader().line());
    if (stamps_) stamps_->add(textOf(candidates_[stampCandidate_]), options_.csv.style);
}

void ImportPlan::refuseMixed(const InputFile& input, const CsvTable& table) const {
    const Candidate* first = nullptr;
    for (const Candidate& candidate : candidates_) {
        const std::uint64_t line = candidate.guess.getTextLine();
        const bool isMixed = line > 0 && candidate.guess.hasNumber();
        if (isMixed && (first == nullptr || line < first->guess.getTextLine())) first = &candidate;
    }
    if (first == nullptr || options_.skipsBad) return;
    const CsvDefect defect{first->column.cell,
                           explainText(first->guess.getText(), options_.csv.style)};
    throw Poco::DataFormatException(fmt::format(
        "{}: line {}: {}", input.getName(), first->guess.getTextLine(), table.describe(defect)));
}

void ImportPlan::decideType(Candidate& candidate) const {
    if (candidate.column.typeCode) return;
    const ColumnGuess& guess = candidate.guess;
    const bool isAskedFor = !options_.columns.empty();
    if (guess.hasNumber() || !hasRows_ || isAskedFor) {
        candidate.column.typeCode = guess.getTypeCode();
        if (guess.isRounded()) candidate.remark = "whole numbers beyond 2^53 are rounded";
    } else if (guess.hasAny()) {
        candidate.remark = fmt::format("line {}: {}", guess.getTextLine(),
                                       explainText(guess.getText(), options_.csv.style));
    } else {
        candidate.remark = "always blank";
    }
}

void ImportPlan::measureFrequency() {
    if (options_.frequency) {
        frequencySource_ = "as told";
        return;
    }
    frequencySource_ = "since no column of time stamps is known";
    if (!stamps_) return;
    const ImportColumn& column = candidates_[stampCandidate_].column;
    const std::optional<double> measured =
        stamps_->measure(column.typeCode.value_or(SensorFile::kDouble), kUsualFrequency);
    frequency_ = measured.value_or(kUsualFrequency);
    frequencySource_ = measured
                           ? fmt::format("by the median step of {} in {}", quoteText(column.name),
                                         stamps_->getColumn().getUnit())
                           : fmt::format("since {} tells none", quoteText(column.name));
}

std::string ImportPlan::describe() const {
    std::size_t width = 0;
    for (const Candidate& candidate : candidates_)
        width = std::max(width, shortenText(candidate.column.name).size());
    std::string text;
    for (const Candidate& candidate : candidates_) {
        const std::optional<int> type = candidate.column.typeCode;
        text += fmt::format("  {:<{}}  {}", shortenText(candidate.column.name), width,
                            type ? upperTypeName(*type) : "left out");
        if (!candidate.remark.empty())
            text += (type ? " (" : ": ") + candidate.remark + (type ? ")" : "");
        text += '\n';
    }
    return text + fmt::format("  frequency {:.9g} Hz, {}\n", frequency_, frequencySource_);
}

}  // namespace SensorFileTool
