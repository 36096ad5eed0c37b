#pragma once

#include <filesystem>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/BrowserImage.h>
#include <MaterialTranslation/Export.h>

#include "bakes/MaterialBakes.h"

/// @file
/// What the library of the bakes gives to the converter's. The bakes lie in a library of their own because loading
/// the image library takes longer than most conversions: the converter's library opens it at the first bake.
namespace vyr::MaterialTranslation::bakes
{

/// Types of C++ go through these functions, memory is taken in one library and freed in the other: both must come from
/// one build, which the stamp sees to. No exception comes out of them.
struct BakeLibrary
{
    /// VYR_MTLX_BAKES_STAMP of its build. It stays the first member, so that libraries of any two builds can compare
    /// it.
    const char* stamp;
    decltype(&bakes::bakeForMaterial) bakeForMaterial;
    decltype(&MaterialTranslation::bakeNormalMapFile) bakeNormalMapFile;
    decltype(&MaterialTranslation::bakeNoiseFile) bakeNoiseFile;
    decltype(&MaterialTranslation::browserImage) browserImage;
};

} // namespace vyr::MaterialTranslation::bakes

/// The one function that the library of the bakes exports.
extern "C" VYR_MTLX_API const vyr::MaterialTranslation::bakes::BakeLibrary* vyrMtlxBakeLibrary();
