#pragma once

#include "framework/Synchronizer.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"
#include "tests/host/TestFilters.hpp"

#include <gtest/gtest.h>

namespace Quoril::Core {

/// A flow of test filters.
class FlowFixture : public ::testing::Test {
 protected:
    explicit FlowFixture(Clock& clock = Clock::steady()) : flow(clock) {}

    LayoutManager& layout(const std::string& name) {
        LayoutManager* found = flow.findLayout(name);
        return found == nullptr ? flow.addLayout(name) : *found;
    }
    template <class T>
    T& add(const std::string& name, const std::string& layoutName = "main") {
        return dynamic_cast<T&>(flow.addFilter(T::kClassName, name, layout(layoutName)));
    }
    void connect(TestFilter& writer, TestFilter& reader) {
        flow.connect(*writer.outputs.front(), *reader.inputs.front());
    }
    /// Reads something of a filter while it is at rest.
    template <class Read>
    static auto look(Filter& filter, Read read) {
        const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
        return read();
    }
    bool waitUntilFinished() {
        return waitFor([this] { return flow.isFinished(); });
    }
    static std::vector<double> numbers(int count) {
        std::vector<double> list;
        for (int i = 0; i < count; ++i)
            list.push_back(i);
        return list;
    }

    InstalledTestPlugin installed;
    Flow flow;
};

}  // namespace Quoril::Core
