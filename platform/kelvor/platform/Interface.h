#pragma once

/// @file
/// Marks the classes of the platform that cross the boundary between a host and the converter.
///
/// The converter finds out the kind of a value by a dynamic cast on objects that the host made, so
/// both sides must see one set of run-time types even when they hide their symbols by default.

#if defined(_WIN32)
#define KELVOR_PLATFORM_INTERFACE
#else
#define KELVOR_PLATFORM_INTERFACE __attribute__((visibility("default")))
#endif

/// Marks the one function that the host defines and the converter calls. On Windows a library cannot
/// leave a symbol undefined: there the host's asset library exports it, and whoever builds the
/// converter names that library's import library.
#if defined(_WIN32) && defined(VYR_MTLX_BUILDING)
#define KELVOR_PLATFORM_HOST_DEFINED __declspec(dllimport)
#elif defined(_WIN32)
#define KELVOR_PLATFORM_HOST_DEFINED
#else
#define KELVOR_PLATFORM_HOST_DEFINED __attribute__((visibility("default")))
#endif
