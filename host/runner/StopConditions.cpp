#include "host/runner/StopConditions.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/runner/PropertyText.hpp"

#include <algorithm>
#include <mutex>

#include <Poco/Exception.h>

namespace Quoril::Runner {

/// Observes the properties of one condition.
class StopConditions::ValuesCondition final : public Core::PropertyObserver {
 public:
    ValuesCondition(const std::vector<ValueCondition>& entries, Core::Flow& flow,
                    std::function<void()> onChange)
        : flow_(flow), onChange_(std::move(onChange)) {
        for (const ValueCondition& entry : entries) {
            Core::AbstractProperty* property = find(entry.property);
            if (property == nullptr) throw Poco::NotFoundException(entry.property.member);
            watched_.push_back({entry.property, entry.value.text, property, false});
            property->addObserver(*this);
        }
        for (const Watched& watched : watched_)
            ValuesCondition::valueChanged(*watched.property);
    }

    ~ValuesCondition() override {
        // A filter may have destroyed a property of a pin that it removed.
        for (const Watched& watched : watched_)
            if (find(watched.name) == watched.property) watched.property->removeObserver(*this);
    }
    ValuesCondition(const ValuesCondition&) = delete;
    ValuesCondition& operator=(const ValuesCondition&) = delete;

    [[nodiscard]] bool isMet() const {
        const std::lock_guard lock(mutex_);
        return isMet_;
    }

    void valueChanged(const Core::AbstractProperty& property) override {
        for (Watched& watched : watched_)
            if (watched.property == &property) note(watched, hasValue(property, watched.value));
    }
    void attributeChanged(const Core::AbstractProperty& /*property*/) override {}

 private:
    struct Watched {
        MemberName name;
        std::string value;
        Core::AbstractProperty* property;
        bool holds;
    };

    void note(Watched& watched, bool holds) {
        {
            const std::lock_guard lock(mutex_);
            watched.holds = holds;
            ++notes_;
            // The first round only finds out how the values are.
            if (notes_ < watched_.size()) return;
            const bool doAllHold = std::all_of(watched_.begin(), watched_.end(),
                                               [](const Watched& each) { return each.holds; });
            if (!doAllHold) wasOther_ = true;
            if (!doAllHold || !wasOther_) return;
            isMet_ = true;
        }
        onChange_();
    }

    [[nodiscard]] Core::AbstractProperty* find(const MemberName& name) const {
        Core::Filter* filter = flow_.findFilter(name.filter);
        return filter == nullptr ? nullptr : filter->getPropertyBag()->find(name.member);
    }

    Core::Flow& flow_;
    std::function<void()> onChange_;
    std::vector<Watched> watched_;
    mutable std::mutex mutex_;
    std::size_t notes_ = 0;
    bool wasOther_ = false;
    bool isMet_ = false;
};

StopConditions::StopConditions(const std::vector<StopEntry>& entries,
                               std::optional<std::chrono::nanoseconds> limit, Core::Flow& flow,
                               const std::function<void()>& onChange)
    : endsWhenFinished_(entries.empty()) {
    if (limit) shorten(*limit);
    for (const StopEntry& entry : entries) {
        if (entry.after) shorten(*entry.after);
        if (entry.isWhenFinished) endsWhenFinished_ = true;
        if (!entry.when.empty())
            conditions_.push_back(std::make_unique<ValuesCondition>(entry.when, flow, onChange));
    }
}

StopConditions::~StopConditions() = default;

bool StopConditions::isMet(std::chrono::nanoseconds sinceStart) const {
    if (endTime_ && sinceStart >= *endTime_) return true;
    return std::any_of(conditions_.begin(), conditions_.end(),
                       [](const auto& condition) { return condition->isMet(); });
}

void StopConditions::shorten(std::chrono::nanoseconds time) {
    endTime_ = endTime_ ? std::min(*endTime_, time) : time;
}

}  // namespace Quoril::Runner
