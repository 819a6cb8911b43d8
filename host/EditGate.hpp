#pragma once

#include "framework/Export.hpp"

namespace Quoril::Core {

/// Lets one editing thread at a time through, for its scope; recursive and fair.
///
/// Whoever may need the locks of several layouts one after the other enters first, so that two
/// edits never wait for each other's locks. Layout threads hold their own lock alone and pass
/// freely.
class QUORIL_CORE_API EditGate {
 public:
    EditGate() { enter(); }
    ~EditGate() { leave(); }
    EditGate(const EditGate&) = delete;
    EditGate& operator=(const EditGate&) = delete;

    static void enter();
    static void leave() noexcept;

    /// Declares the calling thread a layout's, or no longer.
    static void setIsLayoutThread(bool isLayoutThread) noexcept;
    [[nodiscard]] static bool isLayoutThread() noexcept;

    /// True while the calling thread is within an edit.
    [[nodiscard]] static bool isEntered() noexcept;

    /// Leaves as often as the thread has entered, and gives that number for reenter().
    static unsigned leaveWholly() noexcept;
    static void reenter(unsigned depth);
};

}  // namespace Quoril::Core
