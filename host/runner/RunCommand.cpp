#include "host/runner/RunCommand.hpp"

#include "host/runner/Console.hpp"
#include "host/runner/EndedRecorders.hpp"
#include "host/runner/ExitCode.hpp"
#include "host/runner/FlowBuilder.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/Progress.hpp"
#include "host/runner/RecordingLog.hpp"
#include "host/runner/RecordingWatch.hpp"
#include "host/runner/Recordings.hpp"
#include "host/runner/Script.hpp"
#include "host/runner/Session.hpp"
#include "host/runner/SpaceWatch.hpp"
#include "host/runner/StopConditions.hpp"
#include "host/runner/Summary.hpp"
#include "host/runner/WakeUp.hpp"

#include <algorithm>
#include <atomic>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

// Nobody tells of the end of a source: it is asked for this often.
constexpr nanoseconds kFinishPoll = std::chrono::milliseconds(20);
constexpr nanoseconds kSpacePeriod = std::chrono::milliseconds(500);
constexpr nanoseconds kProgressPeriodOnTerminal = std::chrono::milliseconds(200);
constexpr nanoseconds kProgressPeriodElsewhere = std::chrono::seconds(1);

/// Writes the problems and forgets them.
void tell(Problems& problems, Console& console) {
    if (!problems.getList().empty()) console.errorLines(problems.toText());
    problems.clear();
}

/// One run of a built flow.
class Run {
 public:
    Run(const FlowModel& model, const RunOptions& options, Core::Flow& flow, Console& console)
        : options_(options),
          flow_(flow),
          console_(console),
          interrupts_([this] { interrupt(); }),
          stops_(model.stop, options.limit, flow, [this] { wakeUp_.ring(); }),
          ended_(flow),
          recordings_(flow,
                      [this](RecordingWatch::Event event, const std::string& filter,
                             const std::string& path) { tellOfRecording(event, filter, path); }),
          script_(
              model.script, flow, [this](const std::string& text) { prepareAction(text); },
              [this](const RecordingLoss& loss) { tellLoss(loss); }) {}

    /// Runs the flow to its end, with the switches set by the builder.
    int run(FlowBuilder& builder, Problems& problems) {
        flow_.setPacing(options_.pacing);
        flow_.setErrorHandler([this](const std::string& filter, const std::string& text) {
            hasFilterFailed_ = true;
            console_.error(fmt::format("filter '{}': {}", filter, text));
        });
        builder.setSwitches();
        const bool isReady = !problems.hasErrors();
        if (isReady) runReady(problems);
        closeRecordings(
            flow_, [this](const RecordingLoss& loss) { tellLoss(loss); }, problems);
        if (isReady) tellEnd();
        const int code = decideExitCode(problems);
        tell(problems, console_);
        return code;
    }

 private:
    void runReady(Problems& problems) {
        start_ = Clock::now();
        flow_.start();
        loop(problems);
        flow_.stop();
        end_ = sinceStart();
    }

    void interrupt() {
        console_.info("interrupted: the run ends (once more: at once, with torn recordings)");
        isInterrupted_ = true;
        wakeUp_.ring();
    }

    void loop(Problems& problems) {
        while (!isInterrupted_) {
            const nanoseconds now = sinceStart();
            // The end comes first: an action at the very end of the time is not run any more.
            if (stops_.isMet(now)) return;
            script_.runDue(now, problems);
            if (problems.hasErrors()) return;
            ended_.letPass();
            const bool isScriptDone = !script_.getNextTime();
            if (stops_.getEndsWhenFinished() && isScriptDone && flow_.isFinished()) return;
            watchSpace(now);
            showProgress(now);
            wakeUp_.waitUntil(start_ + getNextTime(now));
        }
    }

    /// When the loop must look again at the latest, since the start.
    [[nodiscard]] nanoseconds getNextTime(nanoseconds now) const {
        nanoseconds next = now + kFinishPoll;
        if (const auto time = script_.getNextTime()) next = std::min(next, *time);
        if (const auto time = stops_.getEndTime()) next = std::min(next, *time);
        return next;
    }

    [[nodiscard]] nanoseconds sinceStart() const { return Clock::now() - start_; }

    void showProgress(nanoseconds now) {
        if (!options_.showsProgress || now < nextProgress_) return;
        console_.progress(progress_.makeLine(now, flow_.getPinReports()));
        nextProgress_ =
            now + (console_.getIsTerminal() ? kProgressPeriodOnTerminal : kProgressPeriodElsewhere);
    }

    void watchSpace(nanoseconds now) {
        if (now < nextSpace_) return;
        nextSpace_ = now + kSpacePeriod;
        for (const std::string& warning : space_.look(now, recordings_.look()))
            console_.error(warning);
    }

    /// Called on any thread.
    void tellOfRecording(RecordingWatch::Event event, const std::string& filter,
                         const std::string& path) {
        switch (event) {
            case RecordingWatch::Event::kEnded:
                tellEnded(filter, path);
                ended_.add(filter);
                break;
            case RecordingWatch::Event::kRemoved:
                hasLostRecording_ = true;
                console_.error(fmt::format(
                    "filter '{}': the file '{}' was removed while it was recorded: it is lost",
                    filter, path));
                break;
            case RecordingWatch::Event::kMoved:
                console_.error(fmt::format(
                    "warning: filter '{}': the file '{}' was moved while it was recorded: the "
                    "recording stays in it",
                    filter, path));
                break;
        }
    }

    void tellEnded(const std::string& filter, const std::string& path) {
        const auto cause = log_.take(filter);
        (cause && !cause->isOfFile ? hasFilterFailed_ : hasLostRecording_) = true;
        console_.error(fmt::format("filter '{}': the recording to '{}' ended by itself: {}", filter,
                                   path, cause ? cause->text : "the file cannot take more"));
    }

    void tellLoss(const RecordingLoss& loss) {
        hasLostRecording_ = true;
        console_.error(fmt::format("filter '{}': the end of the recording to '{}' is lost: {}",
                                   loss.filter, loss.path, loss.cause));
    }

    void tellEnd() {
        const std::vector<Core::PinReport> reports = flow_.getPinReports();
        if (options_.showsProgress) console_.progress(progress_.makeLine(end_, reports));
        console_.endProgress();
        console_.infoLines(makeSummary(reports));
    }

    void prepareAction(const std::string& text) {
        ended_.giveBack();
        console_.detail(
            fmt::format("{:.3f} s: {}", std::chrono::duration<double>(sinceStart()).count(), text));
    }

    int decideExitCode(const Problems& problems) {
        if (problems.hasErrors() || hasFilterFailed_) return kExitFailed;
        // Rather than of an interrupt, after which recordings are complete.
        if (hasLostRecording_) return kExitLost;
        if (isInterrupted_) return kExitInterrupted;
        const std::uint64_t lost = countLost(flow_.getPinReports());
        if (lost == 0) return kExitDone;
        console_.error(fmt::format("{} samples were lost in full buffers", lost));
        return kExitLost;
    }

    const RunOptions& options_;
    Core::Flow& flow_;
    Console& console_;
    WakeUp wakeUp_;
    std::atomic<bool> isInterrupted_{false};
    std::atomic<bool> hasFilterFailed_{false};
    std::atomic<bool> hasLostRecording_{false};
    InterruptWatch interrupts_;
    StopConditions stops_;
    RecordingLog log_;
    EndedRecorders ended_;
    RecordingWatch recordings_;
    SpaceWatch space_;
    Script script_;
    Progress progress_;
    Clock::time_point start_;
    nanoseconds nextSpace_{0};
    nanoseconds nextProgress_{0};
    nanoseconds end_{0};
};

void tellPlugins(const Session& session, Console& console) {
    for (const std::string& path : session.loader.getPaths())
        console.detail("plug-in " + path);
}
}  // namespace

int runFlow(const RunOptions& options, Console& console) {
    Problems problems;
    const FlowModel model = readModel(options.flow, problems);
    Session session;
    FlowBuilder builder(model, session.flow, problems);
    prepareFlow(model, session, builder, problems);
    const int code = problems.getExitCode();
    tell(problems, console);
    if (code != kExitDone) return code;
    tellPlugins(session, console);
    return Run(model, options, session.flow, console).run(builder, problems);
}

}  // namespace Quoril::Runner
