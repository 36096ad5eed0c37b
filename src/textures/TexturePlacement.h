#pragma once

#include <MaterialXCore/Document.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "assets/PropertyReaders.h"
#include "assets/Units.h"

namespace vyr::MaterialTranslation::textures
{

/// A number or pair of numbers of a texture asset with the unit that it declares; without one, both
/// names of the unit are empty.
template <class Value> struct Measured
{
    Value value{};
    assets::Unit unit;
};

/// How a texture asset places its image on the surface.
struct TexturePlacement
{
    /// Shift and size of the image on the surface.
    Measured<assets::Vector2> realWorldOffset;
    Measured<assets::Vector2> realWorldScale;
    /// Shift and scale in texture space.
    assets::Vector2 uvOffset{};
    assets::Vector2 uvScale{};
    bool repeatU = false;
    bool repeatV = false;
    Measured<float> rotation;
};

/// Reads the placement of a texture asset. What is missing places the image once, unscaled and
/// unturned.
/// @throws assets::PropertyError for a property of the wrong type.
TexturePlacement readTexturePlacement(const assets::AssetView& texture, const Log& log);

/// The size of the image on the surface alone.
Measured<assets::Vector2> readRealWorldScale(const assets::AssetView& texture, const Log& log);

/// A number of a texture asset and its unit.
/// @param unitType of the numbers that the input takes; empty where they have no unit.
Measured<float> readMeasured(const assets::AssetView& texture, const char* property, float fallback,
                             const char* unitType, const Log& log);

/// Adds the placement's inputs to a texture node, in the order in which documents have them.
void addPlacementInputs(const MaterialX::NodePtr& node, const TexturePlacement& placement);

/// Adds an input for a measured value.
MaterialX::InputPtr addMeasuredInput(const MaterialX::NodePtr& node, const char* name,
                                     const Measured<assets::Vector2>& measured);
MaterialX::InputPtr addMeasuredInput(const MaterialX::NodePtr& node, const char* name,
                                     const Measured<float>& measured);

} // namespace vyr::MaterialTranslation::textures
