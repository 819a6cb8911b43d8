#pragma once

namespace Quoril::Core {
class Flow;
}

namespace Quoril::Runner {

struct FlowModel;
class Problems;

/// Tells of recordings into a file that another filter of the flow reads or writes, by whatever
/// name or link: they would destroy it while it is in use. Files that are written whole at some
/// moment, such as calibrations, may be read before.
void checkFileClashes(const FlowModel& model, const Core::Flow& flow, Problems& problems);

}  // namespace Quoril::Runner
