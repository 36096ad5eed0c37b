#pragma once

#include <string>
#include <vector>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/ThreadInfo.h>
#include <vyr/assetlib/Overlays.h>

namespace vyr::cli
{

/// "decal" or "thread".
std::string typeName(const assetlib::Overlay& overlay);

/// The images of an overlay, without empty paths.
std::vector<std::string> texturePathsOf(const assetlib::Overlay& overlay);

/// The converter's records of what a file asked for.
MaterialTranslation::DecalInfo toInfo(const assetlib::Decal& decal);
MaterialTranslation::ThreadInfo toInfo(const assetlib::Thread& thread);

} // namespace vyr::cli
