#pragma once

#include "framework/TimeStampedData.hpp"

#include <Eigen/Core>

namespace FrameworkTest {

using Sample = Quoril::Core::TimeStampedData<Eigen::MatrixXd>;

/// A sample whose values and time stamp tell its number.
inline Sample sample(double number, Eigen::Index rows = 3, Eigen::Index columns = 1) {
    return {Eigen::MatrixXd::Constant(rows, columns, number), number};
}

/// The number that a sample was made of; fails when its parts do not belong together.
inline double numberOf(const Sample& made) {
    const double number = made.timeStamp;
    return (made.value.array() == number).all() ? number : -1.0;
}

}  // namespace FrameworkTest
