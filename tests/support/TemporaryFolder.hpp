#pragma once

#include "tests/support/TemporaryPath.hpp"

#include <fstream>
#include <iterator>
#include <string>

#include <Poco/File.h>

namespace Support {

/// A folder of its own that is removed with everything in it.
class TemporaryFolder {
 public:
    TemporaryFolder() : folder_(uniqueTemporaryPath()) { folder_.createDirectories(); }
    ~TemporaryFolder() { folder_.remove(/*recursive=*/true); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return folder_.path(); }
    [[nodiscard]] std::string file(const std::string& name) const { return path() + "/" + name; }

 private:
    Poco::File folder_;
};

/// The bytes of a file; empty when it cannot be read.
inline std::string readBytes(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace Support
