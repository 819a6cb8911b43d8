#include "tools/convert/OutputFormat.hpp"

#include <algorithm>
#include <map>

#include <Poco/Exception.h>
#include <Poco/Path.h>
#include <Poco/String.h>

namespace SensorFileTool {

namespace {

const std::map<std::string, OutputFormat>& formatsByName() {
    static const std::map<std::string, OutputFormat> kByName{
        {"binary", OutputFormat::kBinary},   {"text", OutputFormat::kText},
        {"csv", OutputFormat::kCsv},         {"tsv", OutputFormat::kTsv},
        {"jsonl", OutputFormat::kJsonLines}, {"npy", OutputFormat::kNpy},
        {"h5", OutputFormat::kHdf5},         {"mat", OutputFormat::kMat}};
    return kByName;
}

const std::map<std::string, std::string>& namesByEnding() {
    static const std::map<std::string, std::string> kNameByEnding{
        {"txt", "text"}, {"csv", "csv"}, {"tsv", "tsv"}, {"jsonl", "jsonl"}, {"ndjson", "jsonl"},
        {"npy", "npy"},  {"h5", "h5"},   {"hdf5", "h5"}, {"mat", "mat"}};
    return kNameByEnding;
}

}  // namespace

const std::vector<std::string>& listOutputFormats() {
    static const std::vector<std::string> kNames{"binary", "text", "csv", "tsv",
                                                 "jsonl",  "npy",  "h5",  "mat"};
    return kNames;
}

OutputFormat chooseOutputFormat(const std::string& name, const std::string& path) {
    if (!name.empty()) {
        const auto named = formatsByName().find(name);
        if (named == formatsByName().end()) throw Poco::NotFoundException(name);
        return named->second;
    }
    const auto found = namesByEnding().find(Poco::toLower(Poco::Path(path).getExtension()));
    return found == namesByEnding().end() ? OutputFormat::kBinary
                                          : formatsByName().at(found->second);
}

}  // namespace SensorFileTool
