#include "host/runner/FlowPreparation.hpp"

#include "host/filters/BuiltinPlugin.hpp"
#include "host/runner/FlowBuilder.hpp"
#include "host/runner/FlowFile.hpp"
#include "host/runner/Overrides.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/PluginFinder.hpp"
#include "host/runner/Session.hpp"

namespace Quoril::Runner {

FlowModel readModel(const FlowOptions& options, Problems& problems) {
    FlowModel model = readFlowFile(options.path, problems);
    addPlugins(options.plugins, model);
    // Without a flow every setting would name an unknown filter.
    if (!problems.hasErrors()) applyOverrides(options.settings, model, problems);
    return model;
}

void prepareFlow(const FlowModel& model, Session& session, FlowBuilder& builder,
                 Problems& problems) {
    if (problems.hasErrors()) return;
    Core::installBuiltinPlugin();
    loadPlugins(model.plugins, getProgramFolder(), session.loader, problems);
    // Without a plug-in all of its classes would be told as unknown.
    if (!problems.hasErrors()) builder.build();
}

}  // namespace Quoril::Runner
