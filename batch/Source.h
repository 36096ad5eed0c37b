#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include <vyr/assetlib/Library.h>

namespace vyr::batch
{

/// The loaded files.
struct Source
{
    assetlib::Library library;
    std::vector<assetlib::LoadWarning> warnings;
    std::vector<std::string> files;
};

/// Loads asset library files together.
/// @throws LoadRefusal with all errors.
Source loadFiles(const std::vector<std::string>& files, const assetlib::LoadOptions& options = {});

/// How messages call a material or overlay: `material "mat-3" (GenericSchema)`.
std::string subjectOf(const assetlib::Material& material);
std::string subjectOf(const assetlib::Overlay& overlay);

/// "decal" or "thread".
std::string typeName(const assetlib::Overlay& overlay);

/// The images of an overlay, without empty paths.
std::vector<std::string> imagesOf(const assetlib::Overlay& overlay);

/// The identifiers of an asset and of all that are connected to it, however deep.
std::unordered_set<std::string> idsOf(const kelvor::platform::assets::IAssetInstance& asset);

/// Their image references, in the order of their properties, each once.
std::vector<std::string> imagesOf(const kelvor::platform::assets::IAssetInstance& asset);

} // namespace vyr::batch
