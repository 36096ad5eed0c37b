#pragma once

#include <OpenImageIO/imagebuf.h>

#include <MaterialTranslation/Bakes.h>

/// @file
/// The bakes as plain as their formulas. What ships must equal them in every bit.
namespace vyr::MaterialTranslation::baking::reference
{

/// Fills the rows yBegin to yEnd of a three-channel float image of the size of `height`.
void bakeNormalRows(const OIIO::ImageBuf& height, float strengthX, float strengthY, int yBegin,
                    int yEnd, OIIO::ImageBuf& image);

/// @param periodX  Cells after which the noise repeats, for x not below 0; 0: never.
float noise4(float x, float y, float z, float w, int periodX = 0, int periodY = 0);

/// Fills the rows yBegin to yEnd of a float image; with three channels the colours, then both given, are blended.
/// The type is in lower case; size and levels are in their ranges. Width and height are those of the image.
void bakeNoiseRows(const NoiseBakeOptions& noise, int yBegin, int yEnd, OIIO::ImageBuf& image);

} // namespace vyr::MaterialTranslation::baking::reference
