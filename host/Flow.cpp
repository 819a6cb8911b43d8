#include "host/Flow.hpp"

#include "framework/AbstractFactory.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/Activity.hpp"
#include "host/EditGate.hpp"
#include "host/FlowRegistry.hpp"
#include "host/LayoutManager.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include <Poco/Exception.h>

namespace Quoril::Core {

namespace {

/// A filter that is fed by itself may go on for ever after its sources' end; this is the longest
/// that a stop waits for filters to work off what they hold.
constexpr std::chrono::seconds kLongestDrain{30};
/// How often filters that sleep in their calls are woken during a stop.
constexpr std::chrono::milliseconds kWakeInterval{10};

struct FilterEntry {
    Filter* filter;
    AbstractFilterFactory* factory;
};

void disconnectAll(Filter& filter) {
    for (AbstractInputPin* input : filter.getInputPins())
        if (AbstractOutputPin* writer = input->getOutputPin()) writer->detach(*input, false);
    for (AbstractOutputPin* output : filter.getOutputPins())
        for (AbstractInputPin* reader : output->getAttachedPins())
            output->detach(*reader, false);
}

std::string describe(const AbstractOutputPin& pin) {
    const std::string owner = pin.getManager() == nullptr ? "" : pin.getManager()->getName();
    return owner + "." + pin.getName();
}

/// Threads can be awaited only by one that holds nothing that they need.
void refuseWithinEdit(const std::string& what) {
    if (EditGate::isEntered() || EditGate::isLayoutThread())
        throw Poco::IllegalStateException(what + " from within an edit or a processing call");
}

/// Runs the operation with the locks of all layouts from that one on.
template <class Iterator, class Operation>
void whileAllRest(Iterator layout, Iterator end, const Operation& operation) {
    if (layout == end) {
        operation();
        return;
    }
    const Synchronizer::DisablerLocker lock(&(*layout)->getSynchronizer(), nullptr);
    whileAllRest(layout + 1, end, operation);
}

}  // namespace

struct Flow::Impl final : FilterOwner {
    explicit Impl(Clock& flowClock) : clock(flowClock) {}

    Clock& clock;
    const std::shared_ptr<Activity> activity = std::make_shared<Activity>();
    Pacing pacing;
    ErrorHandler errorHandler;

    // The lists change under the edit gate and this mutex; either is enough to read them.
    mutable std::mutex listMutex;
    std::vector<std::unique_ptr<LayoutManager>> layouts;
    std::vector<FilterEntry> filters;

    std::mutex runMutex;  ///< one start or stop at a time
    std::atomic<bool> isRunning{false};

    [[nodiscard]] std::vector<LayoutManager*> listLayouts() const {
        const std::lock_guard lock(listMutex);
        std::vector<LayoutManager*> list;
        for (const auto& layout : layouts)
            list.push_back(layout.get());
        return list;
    }

    [[nodiscard]] FilterEntry getEntry(const Filter& filter) const {
        const std::lock_guard lock(listMutex);
        for (const FilterEntry& entry : filters)
            if (entry.filter == &filter) return entry;
        throw Poco::NotFoundException("The filter is not in this flow");
    }

    void startLayout(LayoutManager& layout) {
        {
            const Synchronizer::DisablerLocker lock(&layout.getSynchronizer(), nullptr);
            layout.getScheduler().setErrorHandler(errorHandler);
        }
        layout.start(pacing);
    }

    void destroy(const FilterEntry& entry) {
        const EditGate gate;
        entry.filter->getManager()->whileAtRest(*entry.filter, [&] {
            LayoutManager& layout = *entry.filter->getManager();
            disconnectAll(*entry.filter);
            layout.getScheduler().getSchedule().remove(*entry.filter);
            {
                const std::lock_guard lock(listMutex);
                std::erase_if(filters, [&](const FilterEntry& other) {
                    return other.filter == entry.filter;
                });
            }
            // The filter's lock is its layout's, which this thread holds.
            entry.factory->destroy(entry.filter);
        });
    }

    void removeFiltersOf(const std::vector<AbstractFilterFactory*>& factories) override {
        const EditGate gate;
        const std::vector<FilterEntry> all = filters;
        for (const FilterEntry& entry : all)
            if (std::find(factories.begin(), factories.end(), entry.factory) != factories.end())
                destroy(entry);
    }

    void drain() const {
        const std::vector<LayoutManager*> all = listLayouts();
        for (LayoutManager* layout : all)
            layout->requestDrain();
        const auto limit = std::chrono::steady_clock::now() + kLongestDrain;
        while (!activity->waitForRest(kWakeInterval) && std::chrono::steady_clock::now() < limit)
            for (LayoutManager* layout : all)
                layout->wakeSleeper();
    }
};

Flow::Flow() : Flow(Clock::steady()) {}

Flow::Flow(Clock& clock) : impl_(std::make_unique<Impl>(clock)) {
    FlowRegistry::instance().add(*impl_);
}

// NOLINTNEXTLINE(bugprone-exception-escape): nothing can go on beside filters half destroyed
Flow::~Flow() {
    stop();
    FlowRegistry::instance().remove(*impl_);
    while (!impl_->filters.empty())
        impl_->destroy(impl_->filters.back());
}

LayoutManager& Flow::addLayout(const std::string& name, std::chrono::nanoseconds period) {
    refuseWithinEdit("A layout cannot be added");
    const std::lock_guard run(impl_->runMutex);
    if (findLayout(name) != nullptr)
        throw Poco::ExistsException("Layout '" + name + "' is in the flow already");
    auto layout = std::make_unique<LayoutManager>(name, period, impl_->clock, impl_->activity);
    LayoutManager& added = *layout;
    {
        const std::lock_guard lock(impl_->listMutex);
        impl_->layouts.push_back(std::move(layout));
    }
    if (impl_->isRunning) impl_->startLayout(added);
    return added;
}

LayoutManager* Flow::findLayout(const std::string& name) const {
    for (LayoutManager* layout : impl_->listLayouts())
        if (layout->getName() == name) return layout;
    return nullptr;
}

Filter& Flow::addFilter(const std::string& className, const std::string& name,
                        LayoutManager& layout) {
    const EditGate gate;
    AbstractFilterFactory* factory =
        FlowManager::instance().getPluginManager().findFilterFactory(className);
    if (factory == nullptr)
        throw Poco::NotFoundException("No plug-in offers filter class '" + className + "'");
    if (findFilter(name) != nullptr)
        throw Poco::ExistsException("Filter '" + name + "' is in the flow already");
    const auto destroy = [factory](Filter* filter) { factory->destroy(filter); };
    std::unique_ptr<Filter, decltype(destroy)> filter(factory->create(name), destroy);
    layout.adopt(*filter);
    const std::lock_guard lock(impl_->listMutex);
    impl_->filters.push_back({filter.get(), factory});
    return *filter.release();
}

void Flow::removeFilter(Filter& filter) {
    impl_->destroy(impl_->getEntry(filter));
}

void Flow::moveFilter(Filter& filter, LayoutManager& layout) {
    const EditGate gate;
    LayoutManager& from = *impl_->getEntry(filter).filter->getManager();
    if (&from == &layout) return;
    // The other layouts of the flow look at where their neighbours run, so all of them rest.
    from.whileAtRest(filter, [&] {
        const std::vector<LayoutManager*> all = impl_->listLayouts();
        whileAllRest(all.begin(), all.end(), [&] {
            from.release(filter);
            layout.adopt(filter);
        });
    });
}

Filter* Flow::findFilter(const std::string& name) const {
    const std::lock_guard lock(impl_->listMutex);
    for (const FilterEntry& entry : impl_->filters)
        if (entry.filter->getName() == name) return entry.filter;
    return nullptr;
}

std::vector<Filter*> Flow::getFilters() const {
    const std::lock_guard lock(impl_->listMutex);
    std::vector<Filter*> list;
    for (const FilterEntry& entry : impl_->filters)
        list.push_back(entry.filter);
    return list;
}

void Flow::connect(AbstractOutputPin& output, AbstractInputPin& input,
                   const std::optional<BufferSettings>& settings) {
    const EditGate gate;
    if (settings) input.setBuffer(*settings);
    output.attach(input, /*skipNotification=*/false);
}

void Flow::disconnect(AbstractOutputPin& output, AbstractInputPin& input) {
    output.detach(input, /*onlyIfSynchronous=*/false);
}

void Flow::setPacing(const Pacing& pacing) {
    impl_->pacing = pacing;
}

void Flow::start() {
    refuseWithinEdit("A flow cannot be started");
    const std::lock_guard run(impl_->runMutex);
    if (impl_->isRunning) return;
    impl_->isRunning = true;
    for (LayoutManager* layout : impl_->listLayouts())
        impl_->startLayout(*layout);
}

void Flow::stop(bool drain) {
    refuseWithinEdit("A flow cannot be stopped");
    const std::lock_guard run(impl_->runMutex);
    if (!impl_->isRunning) return;
    if (drain) impl_->drain();
    for (LayoutManager* layout : impl_->listLayouts())
        layout->requestStop();
    for (LayoutManager* layout : impl_->listLayouts())
        layout->join();
    impl_->isRunning = false;
}

bool Flow::isRunning() const {
    return impl_->isRunning;
}

bool Flow::isFinished() const {
    bool hasSource = false;
    for (LayoutManager* layout : impl_->listLayouts()) {
        const SourceState state = layout->getScheduler().getSourceState();
        if (state == SourceState::kUnfinished) return false;
        if (state == SourceState::kFinished) hasSource = true;
    }
    // Last, so that what the sources sent at their end still counts as movement.
    return hasSource && impl_->activity->isAtRest();
}

void Flow::wake() {
    for (LayoutManager* layout : impl_->listLayouts())
        layout->getSignal().setByEdit();
}

std::vector<PinReport> Flow::getPinReports() const {
    const EditGate gate;
    std::vector<PinReport> reports;
    for (Filter* filter : getFilters()) {
        const Synchronizer::DisablerLocker lock(filter->getSynchronizer(), nullptr);
        for (const AbstractInputPin* pin : filter->getInputPins()) {
            if (pin->getOutputPin() == nullptr) continue;
            reports.push_back({.filter = filter->getName(),
                               .pin = pin->getName(),
                               .source = describe(*pin->getOutputPin()),
                               .counters = pin->getCounters(),
                               .waiting = pin->getWaitingCount(),
                               .bufferSize = pin->getBuffer().size});
        }
    }
    return reports;
}

std::uint64_t Flow::getErrorCount(const Filter& filter) const {
    const EditGate gate;
    LayoutManager& layout = *impl_->getEntry(filter).filter->getManager();
    const Synchronizer::DisablerLocker lock(&layout.getSynchronizer(), nullptr);
    const FilterTask* task = layout.getScheduler().getSchedule().find(filter);
    return task == nullptr ? 0 : task->getErrorCount();
}

void Flow::setErrorHandler(std::function<void(const std::string&, const std::string&)> handler) {
    impl_->errorHandler = std::move(handler);
}

}  // namespace Quoril::Core
