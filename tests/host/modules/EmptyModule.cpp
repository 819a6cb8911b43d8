#include "framework/Export.hpp"

// A library, but no module: nobody starts it.
QUORIL_MODULE_EXPORT void dllStopPlugin() {}
