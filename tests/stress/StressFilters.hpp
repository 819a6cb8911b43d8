#pragma once

#include "framework/DefaultPlugin.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/OutputPin.hpp"
#include "host/PacedSource.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <Eigen/Core>

namespace Stress {

class Beat;

using MatrixInput = Quoril::Core::InputPin<Eigen::MatrixXd>;
using MatrixOutput = Quoril::Core::OutputPin<Eigen::MatrixXd>;

/// Sends 8000 rows a second. All elements of row n are n, from 0 on, so that torn, doubled and
/// exchanged samples show.
class NumberSource final : public Quoril::Core::Filter, public Quoril::Core::PacedSource {
 public:
    static constexpr const char* kClassName = "StressNumberSource";
    static constexpr double kRate = 8000.0;

    explicit NumberSource(const std::string& name);
    ~NumberSource() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
    [[nodiscard]] std::optional<double> getNextDueTime() const override;
    [[nodiscard]] bool isFinished() const override { return false; }

 private:
    MatrixOutput one_;    ///< 1 x 1
    MatrixOutput three_;  ///< 3 x 1
    MatrixOutput row_;    ///< 1 x 3
    std::uint64_t next_ = 0;
};

/// Has no pins; gives a sign of life of its layout's thread in each round.
class Pulse final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "StressPulse";

    explicit Pulse(const std::string& name);
    ~Pulse() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

    /// Under the filter's synchronizer.
    void setBeat(Beat& beat) { beat_ = &beat; }

 private:
    Beat* beat_ = nullptr;
};

/// Passes a sample of "input" on to "output" in each call; the only filter here whose pin may wait.
class Passer final : public Quoril::Core::Filter {
 public:
    static constexpr const char* kClassName = "StressPasser";
    static constexpr const char* kInputPin = "input";

    explicit Passer(const std::string& name);
    ~Passer() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }

 private:
    MatrixInput input_;
    MatrixOutput output_;
};

class StressPlugin final : public Quoril::Core::DefaultPlugin {
 public:
    StressPlugin();
    ~StressPlugin() override;
};

}  // namespace Stress
