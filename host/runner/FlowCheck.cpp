#include "host/runner/FlowCheck.hpp"

#include "host/runner/Names.hpp"

#include <map>
#include <set>
#include <string_view>

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
// Comparing two names takes time by the product of their lengths. This much is done in a fraction
// of a second; thousands of unknown names, each compared with thousands of known ones, take more.
constexpr std::size_t kMostCompared = std::size_t{20} * 1000 * 1000;

class NameChecker {
 public:
    NameChecker(const FlowModel& model, Problems& problems)
        : model_(model),
          problems_(problems),
          filterNames_(model.getFilterNames()),
          knownFilters_(filterNames_.begin(), filterNames_.end()) {}

    void check() {
        checkLayouts();
        checkFilters();
        // Without any filter each name would be told as unknown.
        if (model_.filters.empty()) return;
        for (const ConnectionEntry& connection : model_.connections)
            checkConnection(connection);
        for (const ScriptEntry& action : model_.script)
            checkFilterOf(action.target);
        for (const StopEntry& stop : model_.stop)
            for (const ValueCondition& condition : stop.when)
                checkFilterOf(condition.property);
    }

 private:
    using Places = std::map<std::string, Place>;

    /// Notes the name; tells when it is known already.
    void addName(Places& names, const std::string& name, const Place& place,
                 const std::string& what) {
        const auto [first, isNew] = names.emplace(name, place);
        if (!isNew)
            problems_.add(place, fmt::format("{} '{}' stands twice (first in line {})", what, name,
                                             first->second.line));
    }

    void checkLayouts() {
        for (const LayoutEntry& layout : model_.layouts)
            addName(layouts_, layout.name.text, layout.name.place, "layout");
    }

    void checkFilters() {
        Places filters;
        for (const FilterEntry& filter : model_.filters) {
            addName(filters, filter.name.text, filter.name.place, "filter");
            if (filter.layout && !layouts_.contains(filter.layout->text))
                problems_.add(filter.layout->place,
                              fmt::format("there is no layout '{}'{}", filter.layout->text,
                                          suggest(filter.layout->text, getLayoutNames())));
        }
    }

    void checkConnection(const ConnectionEntry& connection) {
        // Both are looked at, so that both mistakes are told.
        const bool isFromKnown = checkFilterOf(connection.from);
        const bool isToKnown = checkFilterOf(connection.to);
        if (!isFromKnown || !isToKnown) return;
        addName(inputs_, connection.to.filter + "." + connection.to.member, connection.to.place,
                "a connection to");
    }

    bool checkFilterOf(const MemberName& name) {
        if (knownFilters_.contains(name.filter)) return true;
        problems_.add(name.place, fmt::format("there is no filter '{}'{}", name.filter,
                                              suggest(name.filter, filterNames_)));
        return false;
    }

    /// As suggestName(); nothing once that has taken too long.
    [[nodiscard]] std::string suggest(const std::string& wrong,
                                      const std::vector<std::string>& names) {
        if (compared_ > kMostCompared) return {};
        for (const std::string& name : names)
            compared_ += wrong.size() * name.size();
        return suggestName(wrong, names);
    }

    [[nodiscard]] std::vector<std::string> getLayoutNames() const {
        std::vector<std::string> names;
        for (const LayoutEntry& layout : model_.layouts)
            names.push_back(layout.name.text);
        return names;
    }

    const FlowModel& model_;
    Problems& problems_;
    const std::vector<std::string> filterNames_;
    const std::set<std::string_view> knownFilters_;
    std::size_t compared_ = 0;
    Places layouts_;
    Places inputs_;
};
}  // namespace

void checkNames(const FlowModel& model, Problems& problems) {
    NameChecker(model, problems).check();
}

}  // namespace Quoril::Runner
