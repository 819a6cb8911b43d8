#pragma once

#include <memory>
#include <string>

namespace Fuzz {

/// Notices whether files of a folder are opened, made, moved or removed, by whomever. Without the
/// system's help it notices nothing.
class FolderWatch {
 public:
    /// Begins to watch.
    explicit FolderWatch(const std::string& folder);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Whether something happened since the last call.
    [[nodiscard]] bool wasTouched();

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Fuzz
