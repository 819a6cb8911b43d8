#include "tools/Recording.hpp"

#include "tools/FileKind.hpp"

#include <Poco/Exception.h>
#include <Poco/File.h>

namespace SensorFileTool {

namespace {

/// Folders are refused however the encoding is found.
bool findEncoding(const std::string& path, EncodingChoice binary) {
    const FileKind kind = detectKind(path);
    if (binary) return *binary;
    switch (kind) {
        case FileKind::kBinary:
            return true;
        case FileKind::kText:
            return false;
        case FileKind::kKivra2Calib:
            throw Poco::DataException(
                path + ": no sensor file; by its size it is a Kivra2 calibration file");
        case FileKind::kUnknown:
            break;
    }
    throw Poco::DataException(path + ": no sensor file: it begins with none of their openings");
}

}  // namespace

Recording::Recording(const std::string& path, EncodingChoice binary) : path_(path) {
    reader_.open(path, findEncoding(path, binary));
    config_ = reader_.getConfig();
    size_ = static_cast<std::int64_t>(Poco::File(path).getSize());
    reader_.rewind();  // a file of calibrations was searched for a section behind its own
    dataStart_ = reader_.position();
    for (std::size_t i = 0; i < config_.getColumnCount(); ++i)
        rowSize_ += config_.getColumn(i).getSize();
}

}  // namespace SensorFileTool
