#pragma once

#include <vector>

#include <MaterialTranslation/Bakes.h>

#include "bakes/Patterns.h"
#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{

/// Of linear Rec.709.
constexpr float luminance(float red, float green, float blue)
{
    return 0.2126f * red + 0.7152f * green + 0.0722f * blue;
}

/// An image that stands in for one of a pattern's colours, ready to be looked up where the pattern's pixels lie.
class SampledImage
{
  public:
    /// @param parent    The pattern.
    /// @param isNumber  One channel, the luminance of the values as they are stored, in place of linear colours.
    /// @throws BakeError when it cannot be read.
    SampledImage(const ColorImage& image, const Pattern& parent, bool isNumber,
                 const BakeSettings& settings, const KernelSet& set);

    /// The values at places of the pattern: between pixels blended, smaller than pixels averaged.
    /// @param colors  For each channel `count` values; all three are written.
    void sample(const float* x, float y, int count, float (*colors)[noiseColumns]) const;

  private:
    struct Level
    {
        int width;
        int height;
        std::vector<float> pixels; ///< three channels
    };

    void read(const ColorImage& image, bool isNumber, const BakeSettings& settings,
              const KernelSet& set);
    void place(const ImagePlacement& own, const Pattern& parent);
    /// Each pixel becomes the mean of those that it covers. Neither width nor height may be larger than before.
    void shrink(int width, int height);

    Level _level{};
    bool _repeats[2]{};
    /// Of the image's coordinates: u = _u[0] x + _u[1] y + _u[2].
    float _u[3]{};
    float _v[3]{};
};

} // namespace vyr::MaterialTranslation::baking
