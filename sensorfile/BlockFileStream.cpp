#include "sensorfile/BlockFileStream.hpp"

#include <ios>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

/// The device operations are open to classes derived from the stream buffer.
class Device : public Poco::FileStreamBuf {
 public:
    static int write(Poco::FileStreamBuf& buffer, const char* data, std::size_t size) {
        return (buffer.*&Device::writeToDevice)(data, static_cast<std::streamsize>(size));
    }
    static int read(Poco::FileStreamBuf& buffer, char* data, std::size_t size) {
        return (buffer.*&Device::readFromDevice)(data, static_cast<std::streamsize>(size));
    }
};

}  // namespace

std::size_t BlockOutputStream::writeSome(const char* data, std::size_t size) {
    int written = 0;
    try {
        written = Device::write(_buf, data, size);
    } catch (const Poco::FileException&) {
        throw;
    } catch (const Poco::IOException& error) {
        // POCO's error of a broken disk is none of a file.
        throw Poco::WriteFileException(error.message(), error.code());
    }
    if (written <= 0) throw Poco::WriteFileException("no data accepted");
    return static_cast<std::size_t>(written);
}

std::size_t BlockInputStream::readSome(char* data, std::size_t size) {
    const int count = Device::read(_buf, data, size);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace SensorFile
