// The host: how long a sample and an edit take to get through, what an idle flow costs, how true
// the pace is, and what handing a sample over costs.
//
// QUORIL_BENCH_FULL=1 measures the pace over 60 seconds instead of 2.

#include "framework/DefaultPlugin.hpp"
#include "framework/Filter.hpp"
#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "framework/PluginManager.hpp"
#include "framework/ValueProperty.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "host/PacedSource.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <Eigen/Core>
#include <Poco/Mutex.h>
#include <benchmark/benchmark.h>

namespace Bench {
namespace {

using namespace Quoril::Core;
using Sample = TimeStampedData<Eigen::MatrixXd>;
using SteadyClock = std::chrono::steady_clock;

constexpr double kSampleRate = 819.0;

double secondsOf(SteadyClock::time_point time) {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

/// Sends 3 x 1 matrices whose time stamps are the times of their sending.
class BenchSource final : public Filter, public PacedSource {
 public:
    static constexpr const char* kClassName = "BenchSource";
    explicit BenchSource(const std::string& name) : Filter(name, true) {
        getPropertyBag()->registerProperty("Gain", gain);
        output.getValue().setZero(3, 1);
    }
    void process() override {
        if (isFinished() || isSilent) return;
        output.getValue()(0) = gain.get() * static_cast<double>(sentRows);
        ++sentRows;
        output.push(takesTime ? secondsOf(SteadyClock::now()) : 0.0);
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
    [[nodiscard]] std::optional<double> getNextDueTime() const override {
        if (rate <= 0.0) return std::nullopt;
        return static_cast<double>(sentRows) / rate;
    }
    [[nodiscard]] bool isFinished() const override { return sentRows >= rowCount; }

    ValueProperty<double> gain{"Gain", getPropertyBag(), 1.0};
    OutputPin<Eigen::MatrixXd> output{"output", this};
    std::int64_t rowCount = 0;
    std::int64_t sentRows = 0;
    double rate = 0.0;
    bool takesTime = true;
    bool isSilent = false;
};

/// Takes samples and notes how old they are.
class BenchSink final : public Filter {
 public:
    static constexpr const char* kClassName = "BenchSink";
    explicit BenchSink(const std::string& name) : Filter(name, true) {}
    void process() override {
        while (input.fetch()) {
            const Sample* sample = input.take();
            if (notesAges) ages.push_back(secondsOf(SteadyClock::now()) - sample->timeStamp);
            ++takenRows;
        }
    }
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    InputPin<Eigen::MatrixXd> input{"input", this};
    bool notesAges = false;
    std::vector<double> ages;
    std::int64_t takenRows = 0;
};

class BenchPlugin final : public DefaultPlugin {
 public:
    BenchPlugin() : DefaultPlugin("Bench", "1.0.0") {
        const ComponentVersion version(getVersion());
        addFilterFactory(std::make_unique<FilterFactory<BenchSource>>(getName(), version));
        addFilterFactory(std::make_unique<FilterFactory<BenchSink>>(getName(), version));
        FlowManager::instance().getPluginManager().installPlugin(*this);
    }
};

/// A source and a sink, in one layout or two.
struct BenchFlow {
    explicit BenchFlow(int layoutCount) {
        LayoutManager& first = flow.addLayout("first");
        LayoutManager& second = layoutCount > 1 ? flow.addLayout("second") : first;
        source = dynamic_cast<BenchSource*>(&flow.addFilter("BenchSource", "source", first));
        sink = dynamic_cast<BenchSink*>(&flow.addFilter("BenchSink", "sink", second));
        flow.connect(source->output, sink->input, BufferSettings{.size = 256});
    }
    void runToEnd() {
        flow.start();
        while (!flow.isFinished())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        flow.stop();
    }

    BenchPlugin plugin;
    Flow flow;
    BenchSource* source;
    BenchSink* sink;
};

double median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Median time of a sample from one layout to the other.
void sampleLatency(benchmark::State& state) {
    for (auto _ : state) {
        BenchFlow bench(2);
        bench.source->rate = kSampleRate;
        bench.source->rowCount = 400;
        bench.sink->notesAges = true;
        bench.runToEnd();
        state.SetIterationTime(median(bench.sink->ages));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(sampleLatency)->Name("host/sample_latency")->UseManualTime()->Iterations(1);

/// Median and longest time of an edit while a source sends.
void editLatency(benchmark::State& state) {
    double longest = 0.0;
    for (auto _ : state) {
        BenchFlow bench(1);
        bench.source->rate = kSampleRate;
        bench.source->rowCount = 1'000'000'000;
        bench.flow.start();
        std::vector<double> times;
        for (int i = 0; i < 200; ++i) {
            std::this_thread::sleep_for(std::chrono::microseconds(1700));
            const auto start = SteadyClock::now();
            bench.source->gain.set(i);
            times.push_back(std::chrono::duration<double>(SteadyClock::now() - start).count());
        }
        bench.flow.stop();
        longest = std::max(longest, *std::max_element(times.begin(), times.end()));
        state.SetIterationTime(median(times));
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["longest_us"] = longest * 1e6;
}
BENCHMARK(editLatency)->Name("host/edit_latency")->UseManualTime()->Iterations(1);

/// Processor time of two layouts whose source is due once a second (0), or sends nothing and cannot
/// say when it will, so that it is asked every millisecond (1).
void idleFlow(benchmark::State& state) {
    constexpr double kSeconds = 2.0;
    double share = 0.0;
    for (auto _ : state) {
        BenchFlow bench(2);
        bench.source->isSilent = state.range(0) == 1;
        bench.source->rate = bench.source->isSilent ? 0.0 : 1.0;
        bench.source->rowCount = 1'000'000;
        bench.flow.start();
        const std::clock_t start = std::clock();
        std::this_thread::sleep_for(std::chrono::duration<double>(kSeconds));
        const double used = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        bench.flow.stop(/*drain=*/false);
        share = used / kSeconds;
        state.SetIterationTime(used);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["percent_of_a_core"] = share * 100.0;
}
BENCHMARK(idleFlow)->Name("host/idle_flow")->Arg(0)->Arg(1)->UseManualTime()->Iterations(1);

/// How far from its nominal time a run at 819 Hz ends.
void pacing(benchmark::State& state) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this program changes the environment
    const double seconds = std::getenv("QUORIL_BENCH_FULL") != nullptr ? 60.0 : 2.0;
    double error = 0.0;
    for (auto _ : state) {
        BenchFlow bench(1);
        bench.source->rate = kSampleRate;
        bench.source->rowCount = std::llround(seconds * kSampleRate) + 1;
        const auto start = SteadyClock::now();
        bench.runToEnd();
        const double took = std::chrono::duration<double>(SteadyClock::now() - start).count();
        error = (took - seconds) / seconds;
        state.SetIterationTime(took);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["error_percent"] = error * 100.0;
}
BENCHMARK(pacing)->Name("host/pacing_819Hz")->UseManualTime()->Iterations(1);

/// Rows from a source to a sink at the maximum pace.
void throughput(benchmark::State& state) {
    constexpr std::int64_t kRows = 200'000;
    for (auto _ : state) {
        BenchFlow bench(static_cast<int>(state.range(0)));
        bench.source->takesTime = false;
        bench.source->rowCount = kRows;
        bench.flow.setPacing({.mode = Pacing::Mode::kMaximum});
        bench.runToEnd();
        if (bench.sink->takenRows != kRows) state.SkipWithError("rows were lost");
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(throughput)->Name("host/maximum_pace")->Arg(1)->Arg(2)->MeasureProcessCPUTime();

Sample makeSample() {
    return {.value = Eigen::MatrixXd::Constant(3, 1, 1.5), .timeStamp = 0.25};
}

/// One sample through a FIFO of 64 on one thread, as a pin hands it over.
void handOverPin(benchmark::State& state) {
    OutputPin<Eigen::MatrixXd> output("output", nullptr);
    InputPin<Eigen::MatrixXd> input("input", nullptr);
    input.setBuffer({.size = 64});
    output.attach(input, /*skipNotification=*/false);
    output.getValue() = makeSample().value;
    for (auto _ : state) {
        output.push(0.25);
        input.fetch();
        benchmark::DoNotOptimize(input.take()->value.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(handOverPin)->Name("handOver/pin");

/// The same through the buffer alone.
void handOverBuffer(benchmark::State& state) {
    const auto buffer = makeBufferStrategy<Sample>(BufferFamily::kSimple, {.size = 64}, nullptr);
    const Sample sample = makeSample();
    for (auto _ : state) {
        buffer->push(sample);
        const Sample* taken = nullptr;
        buffer->pop(taken);
        benchmark::DoNotOptimize(taken->value.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(handOverBuffer)->Name("handOver/buffer");

/// Two assignments into slots of the right size: what a ring that copies in and out must do.
void handOverAssignments(benchmark::State& state) {
    std::vector<Sample> ring(64, makeSample());
    Sample read = makeSample();
    const Sample sample = makeSample();
    std::size_t slot = 0;
    for (auto _ : state) {
        ring[slot].value = sample.value;
        ring[slot].timeStamp = sample.timeStamp;
        benchmark::DoNotOptimize(ring[slot].value.data());
        read.value = ring[slot].value;
        read.timeStamp = ring[slot].timeStamp;
        benchmark::DoNotOptimize(read.value.data());
        slot = (slot + 1) % ring.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(handOverAssignments)->Name("handOver/assignments");

constexpr int kCrossings = 10'000;

/// Sends through push and takes through pop, on two threads, until every sample arrived. Neither
/// runs ahead of the other by more than the buffer holds.
template <class Push, class Pop>
void crossThreads(Push push, Pop pop) {
    std::atomic<int> taken{0};
    std::thread writer([&] {
        for (int sent = 0; sent < kCrossings; ++sent) {
            while (sent - taken.load(std::memory_order_acquire) >= 64)
                std::this_thread::yield();
            push();
        }
    });
    while (taken < kCrossings)
        if (pop()) taken.fetch_add(1, std::memory_order_release);
    writer.join();
}

void crossingThreadSafe(benchmark::State& state) {
    const auto buffer =
        makeBufferStrategy<Sample>(BufferFamily::kThreadSafe, {.size = 64}, nullptr);
    const Sample sample = makeSample();
    for (auto _ : state) {
        crossThreads([&] { buffer->push(sample); },
                     [&] {
                         const Sample* taken = nullptr;
                         return buffer->pop(taken);
                     });
    }
    state.SetItemsProcessed(state.iterations() * kCrossings);
}
BENCHMARK(crossingThreadSafe)->Name("crossing/thread_safe")->UseRealTime();

void crossingDeque(benchmark::State& state) {
    Poco::FastMutex mutex;
    std::deque<Sample> queue;
    const Sample sample = makeSample();
    Sample read;
    for (auto _ : state) {
        crossThreads(
            [&] {
                const Poco::FastMutex::ScopedLock lock(mutex);
                queue.push_back(sample);
            },
            [&] {
                const Poco::FastMutex::ScopedLock lock(mutex);
                if (queue.empty()) return false;
                read = queue.front();
                queue.pop_front();
                return true;
            });
    }
    state.SetItemsProcessed(state.iterations() * kCrossings);
}
BENCHMARK(crossingDeque)->Name("crossing/deque")->UseRealTime();

}  // namespace
}  // namespace Bench
