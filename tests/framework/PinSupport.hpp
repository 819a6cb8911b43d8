#pragma once

#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "tests/framework/SampleSupport.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace FrameworkTest {

using Input = Quoril::Core::InputPin<Eigen::MatrixXd>;
using Output = Quoril::Core::OutputPin<Eigen::MatrixXd>;

/// A filter that does nothing; its pins stand beside it.
class Node : public Quoril::Core::Filter {
 public:
    explicit Node(const std::string& name) : Filter(name, true) {}
    void process() override {}
    [[nodiscard]] const char* getClassName() const override { return "Node"; }

    /// Puts the filter under a layout without its pins being told.
    void place(Quoril::Core::LayoutManager* layout) { storeManager(layout); }
};

/// Stands for a layout: pins compare layouts and never look into them, so an address is enough.
inline Quoril::Core::LayoutManager* layout(std::size_t number) {
    static std::array<std::max_align_t, 3> places{};
    return reinterpret_cast<Quoril::Core::LayoutManager*>(&places.at(number));
}

/// Writes one number as a sample.
inline void write(Output& output, double number) {
    output.getValue() = sample(number).value;
    output.push(number);
}

/// Reads everything that waits.
inline std::vector<double> readAll(Input& input) {
    std::vector<double> numbers;
    while (input.fetch())
        numbers.push_back(numberOf(*input.take()));
    return numbers;
}

}  // namespace FrameworkTest
