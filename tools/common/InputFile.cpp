#include "tools/common/InputFile.hpp"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <istream>

#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/StreamCopier.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kCopyBlock = std::size_t{256} * 1024;

}  // namespace

InputFile::InputFile(const std::string& path) : name_(path), path_(path) {
    namespace fs = std::filesystem;
    if (path.empty()) throw Poco::FileNotFoundException("''");
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) throw Poco::FileNotFoundException(path);
    if (error) throw Poco::OpenFileException(path + ": " + error.message());
    if (fs::is_directory(status)) throw Poco::ReadFileException(path + " is a folder");
    if (fs::is_socket(status)) throw Poco::ReadFileException(path + " is a socket");
    if (fs::is_regular_file(status)) return;
    Poco::FileInputStream pipe(path, std::ios::in);
    copy(pipe);
}

InputFile::InputFile(std::istream& standardInput) : name_("standard input") {
    copy(standardInput);
}

InputFile openInput(const Console& console, const std::string& name) {
    return name == "-" ? InputFile(console.input) : InputFile(name);
}

void InputFile::copy(std::istream& source) {
    copy_ = std::make_unique<TemporaryFile>(TemporaryFile::Place::kTemporaryFolder);
    path_ = copy_->getPath();
    std::ofstream target(path_, std::ios::binary | std::ios::trunc);
    Poco::StreamCopier::copyStream(source, target, kCopyBlock);
    target.close();
    if (!target)
        throw Poco::WriteFileException(path_ + ": the copy of " + name_ + " cannot be written");
    if (source.bad()) throw Poco::ReadFileException(name_);
}

std::string InputFile::withName(std::string message) const {
    const std::size_t found = message.find(path_);
    if (path_ != name_ && found != std::string::npos) message.replace(found, path_.size(), name_);
    return message;
}

}  // namespace SensorFileTool
