#pragma once

#include "filters/common/InputPinMva.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Filters {

/// The pins of one kind of a filter, numbered from 1 in their names; they come and go at the end.
/// Change the list only while no processing call runs.
class InputPinList {
 public:
    /// What the pins of a list have in common.
    struct Kind {
        InputPinMva::Names prefixes;     ///< the number follows right after, e.g. "input#" 1
        std::vector<std::string> types;  ///< texts of the type properties
        Quoril::Core::BufferSettings buffer;
    };

    /// @param filter  owner of the pins; must outlive the list
    InputPinList(Quoril::Core::Filter& filter, Kind kind);

    /// Adds or removes pins one at a time, always the last one.
    void resize(std::size_t count);
    /// Makes the properties of all pins the last ones that users see, in the order of the pins.
    void show();
    void setIsWritable(bool isWritable);
    /// @throws Poco::IOException the property's name and " is empty!", for the first pin without
    ///         column names
    void requireNames() const;

    [[nodiscard]] std::size_t size() const { return pins_.size(); }
    [[nodiscard]] bool isEmpty() const { return pins_.empty(); }
    [[nodiscard]] InputPinMva& operator[](std::size_t index) { return *pins_[index]; }

 private:
    void append();

    Quoril::Core::Filter& filter_;
    const Kind kind_;
    std::vector<std::unique_ptr<InputPinMva>> pins_;
};

}  // namespace Filters
