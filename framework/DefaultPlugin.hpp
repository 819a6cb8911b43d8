#pragma once

#include "framework/AbstractFactory.hpp"
#include "framework/Plugin.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Quoril::Core {

/// A plug-in that brings filter factories. It owns them, from their adding on.
class QUORIL_CORE_API DefaultPlugin : public Plugin {
 public:
    DefaultPlugin(const std::string& name, const std::string& version);
    ~DefaultPlugin() override;

    /// Offers the factories to the host, in their order.
    void install() override;
    /// Withdraws them.
    void uninstall() override;
    [[nodiscard]] const PluginMetaData& getMetaData() const override;

    [[nodiscard]] const std::string& getVersion() const noexcept { return version_; }
    [[nodiscard]] const std::vector<std::unique_ptr<AbstractFilterFactory>>& getFilterFactories()
        const noexcept {
        return factories_;
    }

 protected:
    [[nodiscard]] PluginMetaData& metaData() noexcept { return metaData_; }
    void addFilterFactory(std::unique_ptr<AbstractFilterFactory> factory);

 private:
    const std::string version_;
    PluginMetaData metaData_;
    std::vector<std::unique_ptr<AbstractFilterFactory>> factories_;
};

}  // namespace Quoril::Core
