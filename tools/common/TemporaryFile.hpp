#pragma once

#include <string>

namespace SensorFileTool {

/// A new, empty file that is gone when the program ends, whatever ends it, unless it was released.
class TemporaryFile {
 public:
    /// Which folder it is in.
    enum class Place {
        kTemporaryFolder,  ///< the system's; nobody else may read the file
        kBeside,           ///< that of another file, so that it can be renamed to that
    };

    /// @param other  the other file, for kBeside
    /// @throws Poco::CreateFileException naming the path (of the other file) and the cause
    explicit TemporaryFile(Place place, const std::string& other = {});
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string& getPath() const { return path_; }
    /// The file stays.
    void release();

 private:
    std::string path_;
    bool isReleased_ = false;
};

}  // namespace SensorFileTool
