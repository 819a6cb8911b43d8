#include "filters/common/FilePath.hpp"

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>

namespace Filters {

FilePath makeFilePath(const std::string& file) {
    // Where folders are parted by '/', there are no drives, but POCO takes "take1:/x" for a path of
    // one, and "~/x" once more for the home folder, when variables have been expanded already.
    const bool isRelative =
        Poco::Path::separator() == '/' && !file.empty() && !file.starts_with('/');
    Poco::Path path(isRelative ? Poco::Path::current() + file : file);
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
