#pragma once

#include "framework/Export.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace Quoril::Core {

class Filter;
class FilterTask;

/// The filters of a layout in the order of their connections: writers before readers, filters that
/// do not depend on each other (or form a cycle) in the order of their adding.
///
/// The order is found anew when the topology changed. Used under the layout's lock.
class QUORIL_CORE_API Schedule {
 public:
    Schedule();
    ~Schedule();
    Schedule(const Schedule&) = delete;
    Schedule& operator=(const Schedule&) = delete;

    void add(Filter& filter);
    void remove(const Filter& filter);
    [[nodiscard]] FilterTask* find(const Filter& filter) const;

    /// True when pins or connections changed since the last refresh: the tasks' pins may be gone.
    [[nodiscard]] bool isStale() const noexcept;
    void refresh();

    /// As of the last refresh.
    [[nodiscard]] const std::vector<FilterTask*>& getOrder() const noexcept { return order_; }

 private:
    void sort();
    [[nodiscard]] bool areWritersPlaced(const FilterTask& task) const;
    [[nodiscard]] bool isPlaced(const Filter& filter) const;
    void extendRoomOfSources();

    std::vector<std::unique_ptr<FilterTask>> tasks_;
    std::vector<FilterTask*> order_;
    std::uint64_t version_ = 0;
};

}  // namespace Quoril::Core
