#include "framework/EnumProperty.hpp"

namespace Quoril::Core {

EnumEntriesObserver::~EnumEntriesObserver() = default;

}  // namespace Quoril::Core
