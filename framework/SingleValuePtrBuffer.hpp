#pragma once

namespace Quoril::Core {

/// Keeps a pointer to the newest sample, without a copy. THE PUSHED SAMPLE MUST OUTLIVE ITS READ,
/// which holds when writer and reader run on one thread in one chain of calls.
template <class Sample>
class SingleValuePtrBuffer {
 public:
    explicit SingleValuePtrBuffer(unsigned /*capacity*/ = 1) {}

    /// Keeps the pointer; false when an unread sample was lost for it.
    bool push(const Sample& sample) {
        sample_ = &sample;
        const bool wasConsumed = consumed_;
        consumed_ = false;
        return wasConsumed;
    }

    bool pop(const Sample*& sample) {
        if (consumed_) return false;
        consumed_ = true;
        sample = sample_;
        return true;
    }

    void clear() { consumed_ = true; }
    [[nodiscard]] unsigned capacity() const { return 1; }
    [[nodiscard]] bool isEmpty() const { return consumed_; }
    [[nodiscard]] unsigned size() const { return consumed_ ? 0 : 1; }

 private:
    const Sample* sample_ = nullptr;
    bool consumed_ = true;
};

}  // namespace Quoril::Core
