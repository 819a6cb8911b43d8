#pragma once

/// QUORIL_CORE_API marks what the host's library QuorilCore defines and modules use.
/// QUORIL_TEMPLATE_API marks templates whose type identity must agree between modules.
/// QUORIL_MODULE_EXPORT marks the entry points of a module.
#if defined(_WIN32)
#if defined(QUORIL_CORE_BUILD)
#define QUORIL_CORE_API __declspec(dllexport)
#else
#define QUORIL_CORE_API __declspec(dllimport)
#endif
#define QUORIL_TEMPLATE_API
#define QUORIL_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define QUORIL_CORE_API __attribute__((visibility("default")))
#define QUORIL_TEMPLATE_API __attribute__((visibility("default")))
#define QUORIL_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
