#pragma once

#include <Eigen/Core>

namespace Quoril::Core {

/// A value with the time at which it was taken.
template <class T>
struct TimeStampedData {
    T value{};
    /// Seconds; the source decides what 0 is.
    double timeStamp = 0.0;
};

/// Copies a sample; what the target allocated is reused where it fits.
template <class T>
void copySample(TimeStampedData<T>& target, const TimeStampedData<T>& source) {
    target = source;
}

/// The way to a matrix of another size. It stays out of line so that copySample, for which it is
/// the exception, needs no stack frame.
[[gnu::noinline]] inline void copyToOtherSize(Eigen::MatrixXd& target,
                                              const Eigen::MatrixXd& source) {
    target = source;
}

inline void copySample(TimeStampedData<Eigen::MatrixXd>& target,
                       const TimeStampedData<Eigen::MatrixXd>& source) {
    target.timeStamp = source.timeStamp;
    if (target.value.rows() != source.value.rows() || target.value.cols() != source.value.cols()) {
        copyToOtherSize(target.value, source.value);
        return;
    }
    const double* from = source.value.data();
    double* to = target.value.data();
    const Eigen::Index count = source.value.size();
    // Two by two: compilers unroll a plain loop for long runs, and the matrices of sensors, of
    // three values or so, pay for the decisions that this takes.
    Eigen::Index i = 0;
    for (; i + 1 < count; i += 2) {
        const double first = from[i];
        const double second = from[i + 1];
        to[i] = first;
        to[i + 1] = second;
    }
    if (i < count) to[i] = from[i];
}

}  // namespace Quoril::Core
