#pragma once

#include "framework/Export.hpp"

#include <string>

namespace Quoril::Core {

/// A version such as "2.5.0".
class QUORIL_CORE_API ComponentVersion {
 public:
    /// @param text  numbers separated by dots; missing ones count as 0
    explicit ComponentVersion(const std::string& text);

    [[nodiscard]] const std::string& toString() const noexcept { return text_; }
    [[nodiscard]] int getMajor() const noexcept { return major_; }
    [[nodiscard]] int getMinor() const noexcept { return minor_; }
    [[nodiscard]] int getRevision() const noexcept { return revision_; }

 private:
    std::string text_;
    int major_ = 0;
    int minor_ = 0;
    int revision_ = 0;
};

}  // namespace Quoril::Core
