#pragma once

#include <filesystem>
#include <string>

namespace Bench {

/// A folder of its own in the system's folder for temporary files, gone with all that is in it when
/// the program ends.
class ScratchFolder {
 public:
    static const ScratchFolder& instance();

    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// The path of the file of this name in the folder.
    std::string file(const std::string& name) const;

 private:
    ScratchFolder();

    std::filesystem::path path_;
};

}  // namespace Bench
