#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// An output pin to be made, with the number of file columns that it carries.
struct OutputDescription {
    std::string name;
    std::size_t columnCount = 1;

    friend bool operator==(const OutputDescription&, const OutputDescription&) = default;
};

/// Groups columns into output pins by the common leading part of their names.
///
/// Two neighbours whose names share at least minLength leading characters begin a group; it takes
/// in the columns that follow as long as their names begin with the same part and are as long as
/// the first name. The pin is named by the common part, any other column makes a pin of its own.
/// A name met again adds to the earlier pin's count: THE COUNTS, TAKEN IN ORDER, THEN NO LONGER
/// MATCH THE COLUMNS OF THE PINS BETWEEN, which therefore get their neighbours' values.
/// @param columns  names in file order
/// @return the pins in order; the counts add up to the number of columns
[[nodiscard]] std::vector<OutputDescription> detectOutputs(const std::vector<std::string>& columns,
                                                           std::size_t minLength);
