#include "tools/convert/Conversion.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/Progress.hpp"
#include "tools/convert/ConvertedConfig.hpp"
#include "tools/recording/ColumnChoice.hpp"
#include "tools/recording/ColumnTypes.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowReader.hpp"

#include <algorithm>
#include <ostream>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

using SensorFile::SensorFileConfig;

Conversion::Conversion(Console& console, Recording& recording, const ConversionRequest& request)
    : console_(console),
      recording_(recording),
      request_(request),
      range_(request.rows),
      changes_(request.isLossless) {
    if (recording.getConfig().isCalibOnly()) requireRows();
    planRows();
    plan_.format = request.format;
    plan_.encoding = recording.isBinary() ? "binary" : "text";
    if (request.precision) plan_.config.setDoublePrecision(*request.precision);
}

/// A file of calibrations has none.
void Conversion::requireRows() const {
    const bool areWanted = request_.hasRows || request_.isCalibrated || !request_.columns.empty() ||
                           !request_.types.empty() || isRowsOnly(request_.format);
    if (areWanted)
        throw Poco::DataException(recording_.getName() +
                                  ": a file of calibrations, which has no rows; binary, text, .h5 "
                                  "and .mat hold its records");
}

void Conversion::planRows() {
    if (request_.isCalibrated) calibration_.emplace(recording_.getConfig());
    const SensorFileConfig& source =
        calibration_ ? calibration_->getConfig() : recording_.getConfig();
    columns_ = chooseColumns(source, request_.columns);
    plan_.config = convertedConfig(source, columns_, changeTypes(source, request_.types));
}

int Conversion::run() {
    if (needRowCount(plan_.format)) countRows();
    OutputFile output(console_, request_.out, request_.isForced);
    try {
        make(output.getPath());
    } catch (const Poco::FileException& error) {
        throw Poco::IOException(output.withName(describeError(error)));
    } catch (const Poco::DataException& error) {
        throw Poco::DataException(recording_.getName() + ": " + error.message());
    }
    output.commit();
    return tellProblems();
}

/// The rows that are in the range; what is written to the recording from now on is left out.
void Conversion::countRows() {
    const RowCount count = SensorFileTool::countRows(recording_);
    recording_.getReader().rewind();
    if (count.rows < range_.last) rest_ = count.rest;
    range_.last = std::min(range_.last, count.rows);
    range_.first = std::min(range_.first, range_.last);
    plan_.rowCount = range_.last - range_.first;
}

void Conversion::make(const std::string& path) {
    plan_.path = path;
    const auto sink = makeExportSink(plan_);
    if (isSensorFile(plan_.format)) checkHeader(path);
    if (!recording_.getConfig().isCalibOnly()) copyRows(*sink);
    sink->finish();
}

/// The header is in the file already: what its readers will find can be seen.
void Conversion::checkHeader(const std::string& path) {
    SensorFile::SensorFileReader reader;
    try {
        reader.open(path, plan_.format == OutputFormat::kBinary);
    } catch (const Poco::DataException&) {
        throw Poco::DataException(
            "the names of its columns or records do not read back as they were written");
    }
    for (const HeaderChange& change : compareHeaders(plan_.config, reader.getConfig()))
        changes_.add(change.place, change.before, change.after, "");
}

/// If the rows end before the range does, what follows them is looked at.
void Conversion::copyRows(RowSink& sink) {
    const SensorFileConfig& source =
        calibration_ ? calibration_->getConfig() : recording_.getConfig();
    RowConversion conversion(
        source, columns_, plan_.config,
        {.isFromText = !recording_.isBinary(), .isToText = plan_.format == OutputFormat::kText},
        changes_);
    Progress progress(console_, recording_.getName(),
                      static_cast<std::uint64_t>(recording_.getSize()));
    RowReader rows(recording_);
    std::uint64_t row = skipToRow(range_.first, recording_, rows);
    std::int64_t end = recording_.getReader().position();
    if (row < range_.first && range_.first < range_.last) {
        rest_ = findRest(recording_);
        return;
    }
    for (; row < range_.last; ++row) {
        if (!rows.next()) {
            rest_ = findRest(recording_, row, end);
            return;
        }
        sink.write(
            conversion.apply(calibration_ ? calibration_->apply(rows.row()) : rows.row(), row));
        end = recording_.getReader().position();
        progress.show(static_cast<std::uint64_t>(end));
    }
}

int Conversion::tellProblems() {
    const std::size_t records = plan_.config.getCalibCount();
    // No error: who names such a format wants no more than rows.
    if (isRowsOnly(plan_.format) && records > 0)
        console_.errors << fmt::format(
            "{}: {} calibration {} left out, which the format cannot "
            "hold\n",
            Texts::toVisible(request_.out), records, records == 1 ? "record is" : "records are");
    bool hasProblem = false;
    if (changes_.getCount() > 0) {
        tellError(console_, recording_.getName() + ": " + changes_.describe());
        hasProblem = true;
    }
    if (rest_ && rest_->size > 0) {
        tellError(console_, recording_.getName() + ": " + rest_->describe());
        hasProblem = true;
    }
    return hasProblem ? kExitProblems : kExitDone;
}

}  // namespace SensorFileTool
