#pragma once

#include <filesystem>

#include <MaterialTranslation/BrowserImage.h>

namespace vyr::MaterialTranslation::baking
{

/// See MaterialTranslation::browserImage.
BrowserImage browserImage(const std::filesystem::path& source, int largest,
                          const BakeSettings& settings);

} // namespace vyr::MaterialTranslation::baking
