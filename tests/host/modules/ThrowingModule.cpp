#include "framework/Export.hpp"

#include <cstdlib>
#include <stdexcept>

namespace {

/// Of this module alone: whoever keeps one crashes once the module is gone.
class ModuleError final : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

}  // namespace

QUORIL_MODULE_EXPORT void dllStartPlugin() {
    throw ModuleError("the sensor is not there");
}
QUORIL_MODULE_EXPORT void dllStopPlugin() {
    throw ModuleError("nothing to stop");
}
QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return "0.10.0";
}
