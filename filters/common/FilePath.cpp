#include "filters/common/FilePath.hpp"

#include <Poco/Exception.h>
#include <Poco/Path.h>

namespace Filters {

FilePath makeFilePath(const std::string& file) {
    Poco::Path path(file);
    path.makeAbsolute();
    return {path.toString(), !path.getFileName().empty()};
}

void openWriter(SensorFile::SensorFileWriter& writer, const std::string& file,
                const SensorFile::SensorFileConfig& config, bool binary, bool writeHeaders) {
    const FilePath path = makeFilePath(file);
    if (!path.hasFileName) throw Poco::IOException("File not found : " + path.text);
    try {
        writer.open(path.text, config, binary, writeHeaders);
    } catch (const Poco::IOException&) {
        // Told below, in the words that users know.
    }
    if (!writer.isOpen()) throw Poco::IOException("Problem while openning : " + path.text);
}

}  // namespace Filters
