#include "framework/Export.hpp"

#include <cstdlib>

// A module for an older framework must be asked for its version before anything of it runs.
QUORIL_MODULE_EXPORT void dllStartPlugin() {
    std::abort();
}
QUORIL_MODULE_EXPORT void dllStopPlugin() {
    std::abort();
}
QUORIL_MODULE_EXPORT const char* dllGetQuorilVersion() {
    return "0.9.0";
}
