#include "framework/NamedObject.hpp"

namespace Quoril::Core {

NamedObject::NamedObject(const std::string& name) : name_(name) {}
NamedObject::~NamedObject() = default;

}  // namespace Quoril::Core
