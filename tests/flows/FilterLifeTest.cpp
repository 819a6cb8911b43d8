#include "tests/flows/EveryFilterFixture.hpp"

#include <algorithm>
#include <functional>

// Filters come, work, move and go in any order, with threads running or not.

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::LayoutManager;
using Quoril::Core::Synchronizer;
using Quoril::Core::TestFilter;
using Quoril::Core::TestSource;

class FilterLifeTest : public EveryFilterFixture {
 protected:
    /// Connects every pin that the filter has by now to filters of the layout.
    static void connectAll(Flow& some, Filter& filter, LayoutManager& layout) {
        auto& source =
            dynamic_cast<TestSource&>(some.addFilter(TestSource::kClassName, "source", layout));
        auto& sink =
            dynamic_cast<TestFilter&>(some.addFilter(TestFilter::kClassName, "sink", layout));
        makePins(filter, source, sink);
        std::size_t next = 1;
        for (auto* input : filter.getInputPins())
            some.connect(*source.outputs.at(next++), *input);
        next = 0;
        for (auto* output : filter.getOutputPins())
            some.connect(*output, *sink.inputs.at(next++));
    }

    /// The layout may be running.
    static void makePins(const Filter& filter, TestSource& source, TestFilter& sink) {
        const Synchronizer::DisablerLocker lock(source.getSynchronizer(), sink.getSynchronizer());
        source.rowCount = 20;
        for (const auto* input : filter.getInputPins())
            source.addOutput("to " + input->getName());
        for (const auto* output : filter.getOutputPins())
            sink.addInput("from " + output->getName());
    }
};

TEST_P(FilterLifeTest, EveryOrderOfEventsEndsWell) {
    std::array events{0, 1, 2, 3, 4};
    int turn = 0;
    do {
        const auto own = std::make_unique<Flow>();
        LayoutManager& first = own->addLayout("first");
        LayoutManager& second = own->addLayout("second");
        Filter& filter = own->addFilter(GetParam(), "filter", first);
        const std::array<std::function<void()>, 5> happen{
            [&] { own->start(); },
            [&] { own->moveFilter(filter, second); },
            [&] { connectAll(*own, filter, first); },
            [&] {
                prepare(filter);
                switchOn(filter);
            },
            [&] { own->stop(); },
        };
        for (const int event : events)
            happen[static_cast<std::size_t>(event)]();
        // The filter goes first, the flow goes, or the module.
        if (++turn % 3 == 0) own->removeFilter(filter);
        if (turn % 3 == 1) {
            loader.unload(MODULE_FILE);
            EXPECT_EQ(own->findFilter("filter"), nullptr);
            loader.load(MODULE_FILE);
        }
    } while (std::next_permutation(events.begin(), events.end()));
    EXPECT_EQ(turn, 120);
}

TEST_P(FilterLifeTest, SwitchesWorkAgainAndAgainBesideOrBetweenLayouts) {
    for (const bool isBeside : {true, false}) {
        Flow own;
        LayoutManager& first = own.addLayout("first");
        LayoutManager& second = own.addLayout("second");
        Filter& filter = own.addFilter(GetParam(), "filter", first);
        prepare(filter);
        connectAll(own, filter, isBeside ? first : second);
        own.start();
        for (int i = 0; i < 20; ++i) {
            switchOn(filter);
            switchOff(filter);
        }
        own.stop();
        EXPECT_EQ(own.getErrorCount(filter), 0U);
    }
}

TEST_P(FilterLifeTest, FilterWithoutAFlowLivesToo) {
    auto* factory =
        Quoril::Core::FlowManager::instance().getPluginManager().findFilterFactory(GetParam());
    Filter* filter = factory->create("alone");
    prepare(*filter);
    switchOn(*filter);
    Harness(*filter).step(3);
    factory->destroy(filter);
}

INSTANTIATE_FOR_EVERY_FILTER(FilterLifeTest);
