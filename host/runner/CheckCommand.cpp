#include "host/runner/CheckCommand.hpp"

#include "host/runner/Console.hpp"
#include "host/runner/DotGraph.hpp"
#include "host/runner/FlowBuilder.hpp"
#include "host/runner/FlowFile.hpp"
#include "host/runner/Session.hpp"
#include "text/VisibleText.hpp"

#include <ostream>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
int tell(const Problems& problems, Console& console) {
    if (!problems.getList().empty()) console.errorLines(problems.toText());
    return problems.getExitCode();
}

std::string count(std::size_t number, const char* thing) {
    return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}
}  // namespace

int checkFlow(const FlowOptions& options, std::ostream& output, Console& console) {
    Problems problems;
    const FlowModel model = readModel(options, problems);
    Session session;
    FlowBuilder builder(model, session.flow, problems);
    prepareFlow(model, session, builder, problems);
    const int code = tell(problems, console);
    if (code == 0)
        output << fmt::format("{}: good, {}, {}\n", Texts::toVisible(options.path),
                              count(model.filters.size(), "filter"),
                              count(model.connections.size(), "connection"));
    return code;
}

int graphFlow(const std::string& path, std::ostream& output, Console& console) {
    Problems problems;
    const FlowModel model = readFlowFile(path, problems);
    const int code = tell(problems, console);
    if (code == 0) output << makeDotGraph(model);
    return code;
}

}  // namespace Quoril::Runner
