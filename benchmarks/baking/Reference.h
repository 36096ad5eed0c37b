#pragma once

#include <OpenImageIO/imagebuf.h>

/// @file
/// The bakes as plain as their formulas. What ships must equal them in every bit.
namespace vyr::MaterialTranslation::baking::reference
{
/// Fills the rows yBegin to yEnd of a three-channel float image of the size of `height`.
void bakeNormalRows(const OIIO::ImageBuf& height, float strengthX, float strengthY, int yBegin,
                    int yEnd, OIIO::ImageBuf& image);

struct Noise
{
    const char* type = "noise_regular";
    float size = 1.0F;
    float phase = 0.0F;
    float levels = 1.0F;
    float thresholdLow = 0.0F;
    float thresholdHigh = 0.0F;
    float color1[3] = {0.0F, 0.0F, 0.0F};
    float color2[3] = {1.0F, 1.0F, 1.0F};
};

float noise4(float x, float y, float z, float w);

/// Fills the rows yBegin to yEnd of a float image; with three channels the colours are blended.
void bakeNoiseRows(const Noise& noise, int yBegin, int yEnd, OIIO::ImageBuf& image);
} // namespace vyr::MaterialTranslation::baking::reference
