#pragma once

#include <cstdint>
#include <string>

namespace SensorFileTool {

/// Counts the values that are not what they were, and keeps the first for the user.
class ChangeLog {
 public:
    /// @param areForbidden  the first one is an error
    explicit ChangeLog(bool areForbidden) : areForbidden_(areForbidden) {}

    /// @param place  e.g. "row 3, column TIME"
    /// @param before  the value, and what it is afterwards
    /// @param advice  how the change can be avoided; may be empty
    /// @throws Poco::DataException telling all of them, if changes are forbidden
    void add(const std::string& place, const std::string& before, const std::string& after,
             const std::string& advice);
    /// Where the first one has been told already: no text need be made.
    [[nodiscard]] bool isFirstKnown() const { return count_ > 0; }
    void addFurther() { ++count_; }

    [[nodiscard]] std::uint64_t getCount() const { return count_; }
    /// A sentence for the user.
    [[nodiscard]] std::string describe() const;

 private:
    bool areForbidden_;
    std::uint64_t count_ = 0;
    std::string first_;
    std::string advice_;
};

}  // namespace SensorFileTool
