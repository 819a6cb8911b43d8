#pragma once

#include <vector>

namespace Quoril::Core {

class AbstractFilterFactory;

/// An owner of filters that gives them up when their factories go.
class FilterOwner {
 public:
    virtual ~FilterOwner() = default;
    /// Destroys all filters that one of the factories made.
    virtual void removeFiltersOf(const std::vector<AbstractFilterFactory*>& factories) = 0;
};

/// All owners of filters in the process.
///
/// Every operation enters the edit gate, under which no filter is made by anybody else.
class FlowRegistry {
 public:
    static FlowRegistry& instance();

    void add(FilterOwner& owner);
    void remove(FilterOwner& owner);
    void removeFiltersOf(const std::vector<AbstractFilterFactory*>& factories);

 private:
    std::vector<FilterOwner*> owners_;
};

}  // namespace Quoril::Core
