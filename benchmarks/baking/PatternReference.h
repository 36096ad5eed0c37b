#pragma once

#include <OpenImageIO/imagebuf.h>

#include "baking/PatternImage.h"

/// @file
/// The patterns as plain as their formulas: a loop over pixels, one function a kind. What ships must equal them in
/// every bit.
namespace vyr::MaterialTranslation::baking::reference
{

/// Fills the rows yBegin to yEnd of a float image of the pattern's size, with one channel for numbers and heights,
/// else three. Colours are plain ones.
void bakePatternRows(const Pattern& pattern, PatternPixels pixels, int yBegin, int yEnd,
                     OIIO::ImageBuf& image);

float srgbCode(float linear);
float srgbValue(float code);

} // namespace vyr::MaterialTranslation::baking::reference
