#pragma once

#include <cstddef>
#include <string>

/// The system's own file calls, without any buffer: what no library on top can beat. The only place
/// of the benchmarks that calls the system.
namespace Bench {

class SystemFile {
 public:
    enum class Mode { kCreate, kRead };

    /// Throws Poco::FileException when the system refuses, as the other functions do.
    SystemFile(const std::string& path, Mode mode);
    ~SystemFile();
    SystemFile(const SystemFile&) = delete;
    SystemFile& operator=(const SystemFile&) = delete;

    /// write(2) until all bytes are taken.
    void write(const void* bytes, std::size_t count);
    /// One read(2) of at most count bytes; 0 at the end of the file.
    std::size_t read(void* bytes, std::size_t count);

 private:
    int descriptor_;
};

}  // namespace Bench
