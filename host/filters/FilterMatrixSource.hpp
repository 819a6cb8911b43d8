#pragma once

#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/OutputPin.hpp"
#include "framework/StringProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "host/PacedSource.hpp"

#include <optional>
#include <string>

#include <Eigen/Core>

namespace Quoril::Core {

/// Sends a matrix that the user types: once at the filter's first call, and again on a command.
///
/// Output pin: "matrix", of the size that was typed.
///
/// | property     | kind    | default | meaning                                                   |
/// |--------------|---------|---------|-----------------------------------------------------------|
/// | "Matrix"     | text    | ""      | row by row: "1 0 0; 0 1 0; 0 0 1"; empty: nothing is sent |
/// | "Time Stamp" | double  | 0.0     | of the sample, seconds                                    |
/// | "Send"       | command |         | sends the matrix at the next call                         |
///
/// A changed matrix is sent by "Send" only. Call under the filter's synchronizer, as the host does.
class QUORIL_CORE_API FilterMatrixSource final : public Filter, public PacedSource {
 public:
    static constexpr const char* kClassName = "FilterMatrixSource";
    static constexpr const char* kMatrixPin = "matrix";
    static constexpr const char* kMatrix = "Matrix";
    static constexpr const char* kTimeStamp = "Time Stamp";
    static constexpr const char* kSend = "Send";

    explicit FilterMatrixSource(const std::string& name);
    ~FilterMatrixSource() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
    [[nodiscard]] std::optional<double> getNextDueTime() const override { return std::nullopt; }
    [[nodiscard]] bool isFinished() const override;

 private:
    void onMatrix(const std::string& text);
    void onSend();

    OutputPin<Eigen::MatrixXd> pin_;
    StringProperty matrix_;
    ValueProperty<double> timeStamp_;
    CommandProperty send_;
    bool isSendDue_ = true;
};

}  // namespace Quoril::Core
