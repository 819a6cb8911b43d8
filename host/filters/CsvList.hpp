#pragma once

#include "framework/Export.hpp"

#include <cstddef>
#include <optional>
#include <string_view>

namespace Quoril::Core {

/// The elements of a list in one field, "[x, y, z]". Commas or blanks stand between them; nothing
/// between two commas is a blank element.
class QUORIL_CORE_API CsvList {
 public:
    /// The list in the field, or nothing if the field is no list.
    /// @param field  MUST outlive the result
    [[nodiscard]] static std::optional<CsvList> of(std::string_view field);

    /// Goes to the next element; false when there is none.
    [[nodiscard]] bool next();

    /// The present element; empty for a blank one.
    [[nodiscard]] std::string_view getText() const noexcept { return text_; }

    /// Number of elements of a list that was not begun yet.
    [[nodiscard]] std::size_t count() const;

 private:
    explicit CsvList(std::string_view rest);

    std::string_view rest_;  ///< behind the present element and its comma, without blanks in front
    bool isAfterComma_ = false;
    std::string_view text_;
};

}  // namespace Quoril::Core
