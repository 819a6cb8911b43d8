#pragma once

#include "framework/Export.hpp"

namespace Quoril::Core {

/// Holds the samples pushed to an input pin until its filter takes them.
template <class Sample>
class QUORIL_TEMPLATE_API AbstractBufferStrategy {
 public:
    virtual ~AbstractBufferStrategy() = default;
    /// Adds a sample. A full buffer never refuses it: it loses its oldest unread sample instead,
    /// and then the answer is false.
    virtual bool push(const Sample& sample) = 0;
    /// Takes a sample; false, and the pointer untouched, when there is none. The pointer stays
    /// valid until the next pop.
    virtual bool pop(const Sample*& sample) = 0;
    virtual void clear() = 0;
    [[nodiscard]] virtual unsigned capacity() const = 0;
    [[nodiscard]] virtual bool isEmpty() const = 0;
    /// Number of samples held.
    [[nodiscard]] virtual unsigned size() const = 0;
};

}  // namespace Quoril::Core
