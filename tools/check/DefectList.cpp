#include "tools/check/DefectList.hpp"

#include <algorithm>

namespace SensorFileTool {

void DefectList::sort() {
    std::stable_sort(kept_.begin(), kept_.end(), [](const Defect& one, const Defect& other) {
        return one.place.offset < other.place.offset;
    });
}

std::uint64_t DefectList::count(Severity severity) const {
    std::uint64_t sum = 0;
    for (const DefectCode code : listCodes())
        if (kindOf(code).severity == severity) sum += count(code);
    return sum;
}

std::uint64_t DefectList::countKept(DefectCode code) const {
    return static_cast<std::uint64_t>(std::count_if(
        kept_.begin(), kept_.end(), [code](const Defect& defect) { return defect.code == code; }));
}

std::uint64_t DefectList::countStructure() const {
    std::uint64_t sum = 0;
    for (const DefectCode code : listCodes())
        if (kindOf(code).isStructure && kindOf(code).severity != Severity::kNote)
            sum += count(code);
    return sum;
}

std::vector<DefectCode> DefectList::listCodes() const {
    std::vector<DefectCode> codes;
    for (std::size_t i = 0; i < counts_.size(); ++i)
        if (counts_[i] != 0) codes.push_back(static_cast<DefectCode>(i));
    return codes;
}

}  // namespace SensorFileTool
