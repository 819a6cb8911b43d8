#include "tools/recording/Recording.hpp"

#include "tools/common/FileKind.hpp"

#include <utility>

#include <Poco/Exception.h>
#include <Poco/File.h>

namespace SensorFileTool {

namespace {

void open(SensorFile::SensorFileReader& reader, const InputFile& input, bool binary) {
    try {
        reader.open(input.getPath(), binary);
    } catch (const Poco::DataException& error) {
        const std::string message = input.withName(error.message());
        if (error.nested() == nullptr) throw Poco::DataException(message);
        throw Poco::DataException(message, *error.nested());
    }
}

}  // namespace

bool findEncoding(const InputFile& input, EncodingChoice binary) {
    if (binary) return *binary;
    switch (detectKind(input)) {
        case FileKind::kBinary:
            return true;
        case FileKind::kText:
            return false;
        case FileKind::kKivra2Calib:
            throw Poco::DataException(
                input.getName() + ": no sensor file; by its size it is a Kivra2 calibration file");
        case FileKind::kUnknown:
            break;
    }
    throw Poco::DataException(input.getName() +
                              ": no sensor file: it begins with none of their openings");
}

Recording::Recording(InputFile input, EncodingChoice binary) : input_(std::move(input)) {
    open(reader_, input_, findEncoding(input_, binary));
    config_ = reader_.getConfig();
    size_ = static_cast<std::int64_t>(Poco::File(input_.getPath()).getSize());
    reader_.rewind();  // a file of calibrations was searched for a section behind its own
    dataStart_ = reader_.position();
    for (std::size_t i = 0; i < config_.getColumnCount(); ++i)
        rowSize_ += config_.getColumn(i).getSize();
}

void requireRows(const Recording& recording) {
    if (recording.getConfig().isCalibOnly())
        throw Poco::DataException(recording.getName() +
                                  ": a file of calibrations, which has no rows");
}

}  // namespace SensorFileTool
