#pragma once

#include <optional>
#include <string>

#include <MaterialTranslation/Schemas.h>

#include "textures/Texture.h"

/// @file
/// The readers of the kinds of textures, and what they have in common. A reader gives nothing, and says
/// why, for a texture that cannot be used.
namespace vyr::MaterialTranslation::textures
{

using Reading = std::optional<TextureReading>;

Reading readBitmap(const TextureRequest& request);
Reading readLyrexBitmap(const TextureRequest& request);
Reading readLyrexMap(const TextureRequest& request);
Reading readBump(const TextureRequest& request);
Reading readNoise(const TextureRequest& request);

/// A procedural texture that is baked: its colours, their luminance, or as relief the heights that this is.
Reading readPattern(const TextureRequest& request);

/// The same made of the properties of the material, which is also the request's texture.
Reading readMadePattern(const TextureRequest& request, const MadePattern& made);

/// A node that reads a height map; "depth" in the unit that the asset states.
/// @param imageProperty names the image.
/// @param givenDepth replaces the asset's own depth; it borrows the unit of the image's size in the
///        world.
Reading readHeightMap(const TextureRequest& request, const char* imageProperty,
                      const std::optional<float>& givenDepth = {});

/// A node that reads a normal map.
/// @param givenScale replaces the asset's own scale; it has no unit.
Reading readNormalMap(const TextureRequest& request, const char* imageProperty,
                      const std::optional<float>& givenScale = {});

/// A node that reads a baked normal map: linear data. The file is set by the bake.
Texture bakedNormalMap();

/// The image that a property of the texture names, as the asset library resolves it. Warns when it
/// names none, when a document cannot hold the name, and when there is no such file.
/// @return empty when the texture has no usable image. A file that does not exist stays: the
///         document still says which image belongs there.
std::string readImage(const TextureRequest& request, const char* property);

/// The image itself, with the same warnings, or an empty text.
std::string usableImage(const std::string& image, const char* property, const Log& log);

/// Whether there is a file that an image can be taken from. A reference that the asset library leaves
/// relative counts as not found: what lies in the process's working folder is none of the material's.
bool isImageFile(const std::string& image);

/// What is missing places the image once, unscaled and unturned.
Placement readPlacement(const TextureRequest& request);

/// The size of the image on the surface alone.
Measured<assets::Vector2> readRealWorldScale(const TextureRequest& request);

/// A number and its unit.
/// @param unitType of the numbers that the input takes; empty where they have no unit.
Measured<float> readMeasured(const TextureRequest& request, const PropertyRow& row,
                             const char* unitType);

/// What a bitmap does with the values of its image.
Tone readTone(const TextureRequest& request);

} // namespace vyr::MaterialTranslation::textures
