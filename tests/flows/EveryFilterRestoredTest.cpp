#include "host/PropertyStore.hpp"
#include "tests/flows/EveryFilterFixture.hpp"

// A filter of the same class that gets the saved properties of another one is like it, and at rest.

using Quoril::Core::Filter;
using testing::IsEmpty;
namespace PropertyStore = Quoril::Core::PropertyStore;

class EveryFilterRestoredTest : public EveryFilterFixture {
 protected:
    void expectRestored() {
        Filter& restored = flow.addFilter(GetParam(), "restored", layout);
        const auto problems = PropertyStore::restore(restored, PropertyStore::save(filter));
        for (const auto& problem : problems)
            ADD_FAILURE() << problem.name << ": " << problem.text;
        EXPECT_EQ(PropertyStore::save(restored), PropertyStore::save(filter));
        EXPECT_EQ(Harness(restored).propertyNames(), Harness(filter).propertyNames());
        EXPECT_EQ(Harness(restored).inputNames(), Harness(filter).inputNames());
        EXPECT_EQ(Harness(restored).outputNames(), Harness(filter).outputNames());
        for (const char* name : {"Record", "Replay", "Pause"}) {
            if (restored.getPropertyBag()->find(name) == nullptr) continue;
            EXPECT_FALSE(Harness(restored).get<bool>(name)) << name;
        }
        EXPECT_EQ(Harness(restored).lockedNames(), lockedAtRest);
    }

    Quoril::Core::LayoutManager& layout = flow.addLayout("main");
    Filter& filter = addFilter(layout);
    std::vector<std::string> lockedAtRest = Harness(filter).lockedNames();
};

TEST_P(EveryFilterRestoredTest, FreshFilterComesBack) {
    expectRestored();
}

TEST_P(EveryFilterRestoredTest, FilterThatIsSetUpComesBack) {
    prepare(filter);
    lockedAtRest = Harness(filter).lockedNames();
    expectRestored();
}

TEST_P(EveryFilterRestoredTest, WorkingFilterComesBackAtRest) {
    prepare(filter);
    lockedAtRest = Harness(filter).lockedNames();
    switchOn(filter);
    Harness(filter).step(2);
    expectRestored();
}

INSTANTIATE_FOR_EVERY_FILTER(EveryFilterRestoredTest);
