#include "tools/common/OutputFile.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/OutputCheck.hpp"

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <Poco/File.h>
#include <Poco/StreamCopier.h>

namespace SensorFileTool {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopyBlock = std::size_t{256} * 1024;

/// What a file holds must not steer the terminal.
void copyVisibly(std::istream& source, std::ostream& target) {
    std::string line;
    while (std::getline(source, line) && target)
        target << Texts::toVisibleLines(line) << (source.eof() ? "" : "\n");
}

[[noreturn]] void refuseOverwriting(const std::string& name) {
    throw Poco::ExistsException(name + " is there already; --force overwrites it");
}

/// Where a file would be made through symbolic links that lead to nothing.
fs::path followLinks(fs::path path) {
    constexpr int kMostLinks = 40;  // as many as the system follows
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

/// @throws if no file can be put there
void requireFolder(const std::string& name, const fs::path& target) {
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::error_code error;
    if (!fs::is_directory(folder, error))
        throw Poco::PathNotFoundException(name + ": the folder '" + folder.string() +
                                          "' is not there");
}

}  // namespace

OutputFile::OutputFile(const Console& console, const std::string& name, bool canOverwrite)
    : console_(console), name_(name), target_(name), canOverwrite_(canOverwrite) {
    if (name == "-") {
        name_ = "standard output";
        target_.clear();
        isCopied_ = true;
    } else {
        lookAtTarget();
    }
    temporary_ = std::make_unique<TemporaryFile>(
        isCopied_ ? TemporaryFile::Place::kTemporaryFolder : TemporaryFile::Place::kBeside,
        target_);
}

void OutputFile::lookAtTarget() {
    if (name_.empty()) throw Poco::FileNotFoundException("''");
    std::error_code error;
    const fs::file_status status = fs::status(name_, error);
    if (!fs::status_known(status))  // a circle of links, a name that is too long
        throw Poco::CreateFileException(name_ + ": " + error.message());
    if (fs::is_directory(status)) throw Poco::WriteFileException(name_ + " is a folder");
    if (fs::is_socket(status)) throw Poco::WriteFileException(name_ + " is a socket");
    isCopied_ = fs::exists(status) && !fs::is_regular_file(status);
    if (isCopied_) return;
    // Also a link to nothing is there already: somebody else may have put it there.
    if (!canOverwrite_ && fs::exists(fs::symlink_status(name_, error))) refuseOverwriting(name_);
    target_ = followLinks(name_).string();
    requireFolder(name_, target_);
}

std::string OutputFile::withName(std::string message) const {
    const std::size_t found = message.find(getPath());
    if (found != std::string::npos) message.replace(found, getPath().size(), name_);
    return message;
}

void OutputFile::rethrowWithName(const Poco::FileException& error) const {
    const std::string message = withName(error.message());
    if (message == error.message()) error.rethrow();
    throw Poco::WriteFileException(message);
}

void OutputFile::commit() {
    if (!isCopied_) {
        rename();
    } else if (target_.empty()) {
        copyTo(console_.output);
        requireGood(console_.output);
    } else {
        std::ofstream device(target_, std::ios::binary);
        copyTo(device);
        device.close();
        if (!device) throw Poco::WriteFileException(name_);
    }
}

void OutputFile::rename() {
    std::error_code error;
    // It may have come after the first look.
    if (!canOverwrite_ && fs::exists(fs::symlink_status(target_, error))) refuseOverwriting(name_);
    const fs::file_status old = fs::status(target_, error);
    if (fs::exists(old)) fs::permissions(getPath(), old.permissions(), error);
    Poco::File(getPath()).renameTo(target_);
    temporary_->release();
}

void OutputFile::copyTo(std::ostream& target) {
    std::ifstream source(getPath(), std::ios::binary);
    if (!source) throw Poco::OpenFileException(getPath());
    if (target_.empty() && console_.isTerminal)
        copyVisibly(source, target);
    else
        Poco::StreamCopier::copyStream(source, target, kCopyBlock);
    target.flush();
}

}  // namespace SensorFileTool
