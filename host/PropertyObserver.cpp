#include "framework/AbstractProperty.hpp"

namespace Quoril::Core {

PropertyObserver::~PropertyObserver() = default;

}  // namespace Quoril::Core
