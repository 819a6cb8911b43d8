#include "host/runner/FlowFile.hpp"

#include "host/runner/ConnectionQuotes.hpp"
#include "host/runner/FlowCheck.hpp"
#include "host/runner/FlowReader.hpp"
#include "host/runner/YamlTree.hpp"

#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

/// The bytes of the file; nothing, and told, if it cannot be read or is too large.
std::optional<std::string> readBytes(const std::string& path, Problems& problems) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string bytes(kLargestFile + 1, '\0');
    if (file) file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.is_open() || file.bad() || (file.fail() && !file.eof())) {
        problems.add({path, 0, 0},
                     fmt::format("cannot be read: {}", std::generic_category().message(errno)));
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > kLargestFile) {
        problems.add({path, 0, 0}, "is larger than 1 MiB, too large for a flow file");
        return std::nullopt;
    }
    return bytes;
}
}  // namespace

FlowModel parseFlow(const std::string& text, const std::string& path, const VariableLookup& lookUp,
                    Problems& problems) {
    FlowModel model;
    model.path = path;
    const std::optional<YamlNode> root = parseYaml(quoteConnections(text), path, lookUp, problems);
    if (!root) return model;
    FlowReader(model, problems).read(*root);
    checkNames(model, problems);
    return model;
}

FlowModel readFlowFile(const std::string& path, Problems& problems) {
    if (const auto bytes = readBytes(path, problems))
        return parseFlow(*bytes, path, lookUpEnvironment, problems);
    return {};
}

}  // namespace Quoril::Runner
