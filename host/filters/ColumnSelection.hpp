#pragma once

#include "framework/Export.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace Quoril::Core {

/// A column of a table, as a user names it.
struct ColumnReference {
    /// Which numbers of the column's fields are meant.
    enum class Part {
        kNumber,      ///< the field is one number
        kElement,     ///< one element of a list
        kAllElements  ///< all elements of a list
    };

    std::string text;          ///< as it was typed; a header may hold exactly this name
    std::string name;          ///< empty if the column is given by its position
    std::size_t position = 0;  ///< from 1; 0 if the column is given by its name
    Part part = Part::kNumber;
    std::size_t element = 0;  ///< from 0, for Part::kElement
};

/// An output pin and the columns that it sends, in their order.
struct PinColumns {
    std::string pin;
    std::vector<ColumnReference> columns;
};

/// Reads which columns form which pins: "acc=ax,ay,az;t=time".
///
/// Blanks around names are ignored. A column is its name in the header, or "#3" or "3" for the
/// third one; "#3[0]" or "name[0]" is the first element of a list "[x, y, z]", "#3[]" all its
/// elements. Names that hold any of = , ; or a quote, that look like a number, or that begin with
/// '#' stand in quotes, in which two quotes are one: "x,y". A ';' at the end is ignored. An empty
/// text gives no pins.
/// @throws Poco::DataFormatException that names the text, the place in it and the cause
[[nodiscard]] QUORIL_CORE_API std::vector<PinColumns> parseColumnSelection(const std::string& text);

/// Reads one column, which may be an element of a list but not all of them.
/// @throws Poco::DataFormatException as parseColumnSelection
[[nodiscard]] QUORIL_CORE_API ColumnReference parseColumnReference(const std::string& text);

}  // namespace Quoril::Core
