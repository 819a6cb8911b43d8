#include "filters/common/FilePath.hpp"

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>

namespace Filters {

FilePath makeFilePath(const std::string& file) {
    Poco::Path path(file);
    path.makeAbsolute();
    return {path.toString(), !path.getFileName().empty()};
}

std::string requireFileName(const std::string& file) {
    const FilePath path = makeFilePath(file);
    if (!path.hasFileName) throw Poco::IOException("File not found : " + path.text);
    return path.text;
}

std::string requireFile(const std::string& file) {
    std::string path = requireFileName(file);
    const Poco::File found(path);
    if (!found.exists() || found.isDirectory()) throw Poco::IOException("File not found : " + path);
    return path;
}

void openReader(SensorFile::SensorFileReader& reader, const std::string& file, bool binary) {
    const FilePath path = makeFilePath(file);
    reader.close();
    try {
        if (path.hasFileName) reader.open(path.text, binary);
    } catch (const Poco::IOException&) {
        // Told below, in the words that users know.
    }
    if (!reader.isOpen()) throw Poco::IOException(kInvalidFile);
}

void openWriter(SensorFile::SensorFileWriter& writer, const std::string& file,
                const SensorFile::SensorFileConfig& config, bool binary, bool writeHeaders) {
    const std::string path = requireFileName(file);
    try {
        writer.open(path, config, binary, writeHeaders);
    } catch (const Poco::IOException&) {
        // Told below, in the words that users know.
    }
    if (!writer.isOpen()) throw Poco::IOException("Problem while openning : " + path);
}

}  // namespace Filters
