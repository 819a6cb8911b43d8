#include "filters/sensorfile/OutputNaming.hpp"

#include <algorithm>

namespace {

std::string commonLeadingPart(const std::string& a, const std::string& b) {
    const auto end = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    return {a.begin(), end};
}

// The pin that begins at a column: the column alone, or a group.
OutputDescription describeGroup(const std::vector<std::string>& columns, std::size_t first,
                                std::size_t minLength) {
    const std::string& name = columns[first];
    if (first + 1 == columns.size()) return {name, 1};
    const std::string part = commonLeadingPart(name, columns[first + 1]);
    if (part.empty() || part.size() < minLength) return {name, 1};
    std::size_t next = first + 2;
    while (next < columns.size() && columns[next].size() == name.size() &&
           columns[next].starts_with(part))
        ++next;
    return {part, next - first};
}

}  // namespace

std::vector<OutputDescription> detectOutputs(const std::vector<std::string>& columns,
                                             std::size_t minLength) {
    std::vector<OutputDescription> outputs;
    for (std::size_t first = 0; first < columns.size();) {
        const OutputDescription group = describeGroup(columns, first, minLength);
        first += group.columnCount;
        const auto earlier = std::find_if(
            outputs.begin(), outputs.end(),
            [&](const OutputDescription& output) { return output.name == group.name; });
        if (earlier == outputs.end())
            outputs.push_back(group);
        else
            earlier->columnCount += group.columnCount;
    }
    return outputs;
}
