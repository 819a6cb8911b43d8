#pragma once

#include "tools/common/Console.hpp"
#include "tools/common/TemporaryFile.hpp"

#include <iosfwd>
#include <memory>
#include <string>

namespace SensorFileTool {

/// A file to be read. What is no regular file, as a pipe, is copied into a temporary file first,
/// since files are looked at more than once.
class InputFile {
 public:
    /// @throws Poco::FileException (or one derived) naming the path, if nothing, a folder or a
    ///         socket is there or what is no regular file cannot be copied
    explicit InputFile(const std::string& path);
    /// @throws Poco::FileException (or one derived) if it cannot be copied
    explicit InputFile(std::istream& standardInput);

    /// For messages: the path as the user named it, or "standard input".
    [[nodiscard]] const std::string& getName() const { return name_; }
    /// Of the bytes.
    [[nodiscard]] const std::string& getPath() const { return path_; }
    /// A message of the library about the file, with the name in place of the path.
    [[nodiscard]] std::string withName(std::string message) const;

 private:
    void copy(std::istream& source);

    std::string name_;
    std::string path_;
    std::unique_ptr<TemporaryFile> copy_;
};

/// What the user named: a path, or "-" for the console's input.
/// @throws as InputFile
[[nodiscard]] InputFile openInput(const Console& console, const std::string& name);

}  // namespace SensorFileTool
