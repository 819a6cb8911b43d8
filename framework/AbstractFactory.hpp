#pragma once

#include "framework/ComponentVersion.hpp"
#include "framework/Export.hpp"

#include <string>

namespace Quoril::Core {

class Filter;

/// Makes and destroys objects of one class, which the host knows by name.
template <class T>
class QUORIL_TEMPLATE_API AbstractFactory {
 public:
    AbstractFactory() = default;
    virtual ~AbstractFactory() = default;
    AbstractFactory(const AbstractFactory&) = delete;
    AbstractFactory& operator=(const AbstractFactory&) = delete;

    /// Destroys an object that create() made; null is ignored.
    virtual void destroy(T* object) = 0;
    /// Name of the class.
    [[nodiscard]] virtual const char* name() const = 0;
    /// A new object with that instance name; the caller gives it back to destroy().
    [[nodiscard]] virtual T* create(const std::string& instanceName) = 0;
};

/// A factory of filters, with the plug-in that provides it.
class QUORIL_CORE_API AbstractFilterFactory : public AbstractFactory<Filter> {
 public:
    AbstractFilterFactory(const std::string& pluginName, const ComponentVersion& version);
    ~AbstractFilterFactory() override;

    [[nodiscard]] const std::string& getPluginName() const noexcept { return pluginName_; }
    [[nodiscard]] const ComponentVersion& getVersion() const noexcept { return version_; }

 private:
    const std::string pluginName_;
    const ComponentVersion version_;
};

}  // namespace Quoril::Core
