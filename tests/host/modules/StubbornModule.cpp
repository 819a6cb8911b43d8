#include "framework/Export.hpp"

#include <stdexcept>

QUORIL_MODULE_EXPORT void dllStartPlugin() {}
QUORIL_MODULE_EXPORT void dllStopPlugin() {
    throw std::runtime_error("I will not stop");
}
QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return "0.10.0";
}
