#include "tools/convert/MatSink.hpp"

#include "tools/convert/ExportNames.hpp"
#include "tools/convert/MatElements.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <algorithm>

#include <Poco/DateTimeFormatter.h>
#include <Poco/Exception.h>

namespace SensorFileTool {

using SensorFile::SensorFileConfig;

namespace {

constexpr std::size_t kMaxName = 63;

const std::vector<std::string>& otherNames() {
    static const std::vector<std::string> kOtherNames{"frequency", "created", "columns",
                                                      "calibration", "calibration_created"};
    return kOtherNames;
}

std::vector<std::string> matlabNames(std::vector<std::string> names,
                                     const std::vector<std::string>& taken) {
    std::transform(names.begin(), names.end(), names.begin(), matlabName);
    return uniqueNames(names, taken, kMaxName);
}

std::string timeVariable(const std::string& name, const Poco::DateTime& time) {
    return Mat::characters(name, Poco::DateTimeFormatter::format(time, "%Y-%m-%dT%H:%M:%SZ"));
}

std::string columnsVariable(const SensorFileConfig& config, const std::vector<std::string>& names) {
    std::vector<std::string> cells;
    cells.reserve(3 * names.size());
    for (const std::string& name : names)
        cells.push_back(Mat::characters("", name));
    for (const std::string& name : columnNames(config))
        cells.push_back(Mat::characters("", plainName(name)));
    for (std::size_t i = 0; i < names.size(); ++i)
        cells.push_back(Mat::characters("", config.getColumn(i).getTypeName()));
    return Mat::cells("columns", names.size(), 3, cells);
}

std::string calibrationVariables(const SensorFileConfig& config) {
    std::vector<std::string> names;
    std::vector<std::string> members;
    for (const CalibRecord& record : listRecords(config)) {
        names.push_back(record.name);
        members.push_back(Mat::matrix("", record.matrix, record.type == "int32"));
    }
    return timeVariable("calibration_created", config.getCalibTime()) +
           Mat::structure("calibration", matlabNames(names, {}), members);
}

}  // namespace

MatSink::MatSink(const std::string& path, const SensorFileConfig& config, std::uint64_t rowCount)
    : file_(path), block_(config), rowsLeft_(rowCount) {
    file_.append(Mat::fileHeader());
    if (!config.isCalibOnly()) {
        file_.append(Mat::number("frequency", config.getSampleFrequency()));
        file_.append(timeVariable("created", config.getCreationTime()));
        file_.append(columnsVariable(config, matlabNames(columnNames(config), otherNames())));
    }
    if (config.getCalibCount() > 0) file_.append(calibrationVariables(config));
    placeColumns(config, rowCount);
}

void MatSink::placeColumns(const SensorFileConfig& config, std::uint64_t rowCount) {
    const std::vector<std::string> names = matlabNames(columnNames(config), otherNames());
    std::uint64_t offset = file_.getSize();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Mat::ColumnFrame frame =
            Mat::frameColumn(names[i], config.getColumn(i).getTypeCode(), rowCount);
        if (frame.isTooLarge)
            throw Poco::DataException("column " + config.getColumn(i).getName() +
                                      " is larger than the 2 GB that a variable of a .mat file "
                                      "can have; .h5 holds any size, --rows takes a part");
        file_.overwrite(offset, frame.head);
        ends_.push_back(offset + frame.head.size());
        offset += frame.size;
        // Fills up the last bytes behind the values.
        if (frame.size > frame.head.size() + frame.valueSize)
            file_.overwrite(offset - 1, std::string(1, '\0'));
    }
}

void MatSink::write(const Row& row) {
    if (rowsLeft_ == 0) throw Poco::DataException("there are more rows than before");
    --rowsLeft_;
    block_.add(row);
    if (block_.isFull()) flush();
}

void MatSink::finish() {
    flush();
    if (rowsLeft_ > 0) throw Poco::DataException("there are fewer rows than before");
    file_.close();
}

void MatSink::flush() {
    for (std::size_t i = 0; i < ends_.size(); ++i) {
        file_.overwrite(ends_[i], block_.getBytes(i));
        ends_[i] += block_.getBytes(i).size();
    }
    block_.clear();
}

}  // namespace SensorFileTool
