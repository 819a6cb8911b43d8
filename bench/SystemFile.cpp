#include "bench/SystemFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <Poco/Exception.h>

namespace Bench {

SystemFile::SystemFile(const std::string& path, Mode mode)
    : descriptor_{mode == Mode::kCreate ? ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600)
                                        : ::open(path.c_str(), O_RDONLY)} {
    if (descriptor_ < 0) throw Poco::OpenFileException{path};
}

SystemFile::~SystemFile() {
    ::close(descriptor_);
}

void SystemFile::write(const void* bytes, std::size_t count) {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const auto written = ::write(descriptor_, next, count);
        if (written < 0) throw Poco::WriteFileException{};
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

std::size_t SystemFile::read(void* bytes, std::size_t count) {
    const auto taken = ::read(descriptor_, bytes, count);
    if (taken < 0) throw Poco::ReadFileException{};
    return static_cast<std::size_t>(taken);
}

}  // namespace Bench
