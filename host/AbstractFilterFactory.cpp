#include "framework/AbstractFactory.hpp"

namespace Quoril::Core {

AbstractFilterFactory::AbstractFilterFactory(const std::string& pluginName,
                                             const ComponentVersion& version)
    : pluginName_(pluginName), version_(version) {}
AbstractFilterFactory::~AbstractFilterFactory() = default;

}  // namespace Quoril::Core
