#include "tools/common/OutputFile.hpp"

#include "tools/common/OutputCheck.hpp"

#include <filesystem>
#include <fstream>
#include <system_error>

#include <Poco/File.h>
#include <Poco/StreamCopier.h>

namespace SensorFileTool {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopyBlock = std::size_t{256} * 1024;

[[noreturn]] void refuseOverwriting(const std::string& name) {
    throw Poco::ExistsException(name + " is there already; --force overwrites it");
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
    std::error_code error;
    const fs::file_status status = fs::status(name, error);
    if (name == "-") {
        name_ = "standard output";
        target_.clear();
        isCopied_ = true;
    } else if (fs::is_directory(status)) {
        throw Poco::WriteFileException(name + " is a folder");
    } else if (fs::is_regular_file(status)) {
        if (!canOverwrite) refuseOverwriting(name);
        target_ = fs::canonical(name).string();
    } else if (fs::exists(status)) {
        isCopied_ = true;
    } else {
        if (name.empty()) throw Poco::FileNotFoundException("''");
        requireFolder(name, name);
    }
    temporary_ = std::make_unique<TemporaryFile>(
        isCopied_ ? TemporaryFile::Place::kTemporaryFolder : TemporaryFile::Place::kBeside,
        target_);
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
    const fs::file_status old = fs::status(target_, error);
    if (fs::exists(old)) {
        // It may have come after the first look.
        if (!canOverwrite_) refuseOverwriting(name_);
        fs::permissions(getPath(), old.permissions(), error);
    }
    Poco::File(getPath()).renameTo(target_);
    temporary_->release();
}

void OutputFile::copyTo(std::ostream& target) {
    std::ifstream source(getPath(), std::ios::binary);
    if (!source) throw Poco::OpenFileException(getPath());
    Poco::StreamCopier::copyStream(source, target, kCopyBlock);
    target.flush();
}

}  // namespace SensorFileTool
