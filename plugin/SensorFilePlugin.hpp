#pragma once

#include "framework/DefaultPlugin.hpp"

/// Describes the module to the host and offers its filters.
class SensorFilePlugin final : public Quoril::Core::DefaultPlugin {
 public:
    static constexpr const char* kName = "SensorFile";
    static constexpr const char* kVersion = "2.5.0";
    /// The host framework version that the module is built for.
    static constexpr const char* kHostVersion = "0.10.0";

    SensorFilePlugin();
    ~SensorFilePlugin() override;

 private:
    template <class FilterClass>
    void addFilter();
};
