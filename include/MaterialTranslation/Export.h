#pragma once

/// @file
/// Visibility of the library's exported symbols.
///
/// The library's own build defines `VYR_MTLX_BUILDING`. Programs that compile the sources into
/// themselves instead of linking to the shared library define `VYR_MTLX_STATIC`.

#if defined(VYR_MTLX_STATIC)
#define VYR_MTLX_API
#elif defined(_WIN32)
#if defined(VYR_MTLX_BUILDING)
#define VYR_MTLX_API __declspec(dllexport)
#else
#define VYR_MTLX_API __declspec(dllimport)
#endif
#else
#define VYR_MTLX_API __attribute__((visibility("default")))
#endif
