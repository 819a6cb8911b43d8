#include "host/runner/FlowModel.hpp"

#include <algorithm>

namespace Quoril::Runner {

const FilterEntry* FlowModel::findFilter(const std::string& name) const {
    const auto found = std::find_if(filters.begin(), filters.end(), [&](const FilterEntry& filter) {
        return filter.name.text == name;
    });
    return found == filters.end() ? nullptr : &*found;
}

FilterEntry* FlowModel::findFilter(const std::string& name) {
    return const_cast<FilterEntry*>(static_cast<const FlowModel*>(this)->findFilter(name));
}

std::vector<std::string> FlowModel::getFilterNames() const {
    std::vector<std::string> names;
    for (const FilterEntry& filter : filters)
        names.push_back(filter.name.text);
    return names;
}

const std::string& FlowModel::getDefaultLayout() const {
    for (const LayoutEntry& layout : layouts)
        if (layout.name.text == "main") return layout.name.text;
    return layouts.front().name.text;
}

const std::string& FlowModel::getLayoutOf(const FilterEntry& filter) const {
    return filter.layout ? filter.layout->text : getDefaultLayout();
}

}  // namespace Quoril::Runner
