#include "framework/Plugin.hpp"

namespace Quoril::Core {

Plugin::Plugin(const std::string& name) : NamedObject(name) {}
Plugin::~Plugin() = default;

}  // namespace Quoril::Core
