#pragma once

#include "tools/common/Console.hpp"
#include "tools/common/TemporaryFile.hpp"

#include <memory>
#include <string>

#include <Poco/Exception.h>

namespace SensorFileTool {

/// A file that appears whole or not at all: it is written under a temporary name and renamed by
/// commit(). Without it, or when the program is interrupted, nothing is left. "-" and what is no
/// regular file, as a pipe or a device, get the bytes when they are whole. Through a symbolic link
/// its target is made or replaced, and the link stays.
class OutputFile {
 public:
    /// @param name  a path, or "-" for the console's output
    /// @param canOverwrite  whether a file may be there already; it stays until commit()
    /// @throws Poco::ExistsException naming the path and the option that would overwrite it
    /// @throws Poco::FileException (or one derived) naming the path, if its folder is not there, it
    ///         is a folder or a socket itself, or the system does not take the name
    OutputFile(const Console& console, const std::string& name, bool canOverwrite);

    /// For messages: the name as the user gave it, or "standard output".
    [[nodiscard]] const std::string& getName() const { return name_; }
    /// Where to write: an empty file is there.
    [[nodiscard]] const std::string& getPath() const { return temporary_->getPath(); }
    /// A message of the library about the file, with the name in place of the temporary one.
    [[nodiscard]] std::string withName(std::string message) const;

    /// Calls write(path), which writes the file and closes it, and then commit().
    /// @throws what it throws; errors of the file tell its name, not the temporary one
    template <typename Function>
    void fill(Function write) {
        try {
            write(getPath());
        } catch (const Poco::FileException& error) {
            rethrowWithName(error);
        }
        commit();
    }

    /// Gives the file its name. Everything that wrote to it is closed.
    /// @throws Poco::FileException (or one derived) naming the path
    void commit();

 private:
    void lookAtTarget();
    [[noreturn]] void rethrowWithName(const Poco::FileException& error) const;
    void rename();
    void copyTo(std::ostream& target);

    Console console_;
    std::string name_;
    std::string target_;  ///< behind symbolic links; empty for the standard output
    bool canOverwrite_;
    bool isCopied_ = false;
    std::unique_ptr<TemporaryFile> temporary_;
};

}  // namespace SensorFileTool
