#include "baking/NormalImage.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "baking/ImageRows.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

std::array<float, 2> pairAttribute(const OIIO::ImageSpec& spec, const char* name)
{
    std::array<float, 2> pair{};
    if (!spec.getattribute(name, OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 2), pair.data()))
        return {1.0f, 1.0f};
    return pair;
}

SlopeStrength slopeStrength(const NormalBakeOptions& options, int width, int height)
{
    const float amount = options.bumpAmount;
    if (amount == 0.0f)
        return {1.0f, 1.0f};
    return {static_cast<float>(width) * amount / options.realWorldScale[0] * options.bumpScale[0],
            static_cast<float>(height) * amount / options.realWorldScale[1] * options.bumpScale[1]};
}

/// Rows of channel 0: where they are when they are plain floats, else copied, the last three at hand.
class HeightReader
{
  public:
    explicit HeightReader(const OIIO::ImageBuf& image) : _image(image)
    {
        const OIIO::ImageSpec& spec = image.spec();
        const bool plain = image.localpixels() != nullptr && spec.format == OIIO::TypeFloat &&
                           image.pixel_stride() == static_cast<OIIO::stride_t>(sizeof(float));
        if (!plain)
            _copies.resize(_rows.size() * static_cast<std::size_t>(spec.width));
    }

    /// The row, valid until two other rows were asked for. Rows outside of the image are its border rows.
    const float* row(int y)
    {
        const OIIO::ImageSpec& spec = _image.spec();
        y = std::clamp(y, 0, spec.height - 1);
        if (_copies.empty())
            return static_cast<const float*>(_image.pixeladdr(spec.x, spec.y + y, spec.z));
        const auto slot = static_cast<std::size_t>(y) % _rows.size();
        float* copy = _copies.data() + slot * static_cast<std::size_t>(spec.width);
        if (_rows[slot] != y)
        {
            const OIIO::ROI roi(spec.x, spec.x + spec.width, spec.y + y, spec.y + y + 1, spec.z,
                                spec.z + 1, 0, 1);
            _image.get_pixels(roi, OIIO::TypeFloat, copy);
            _rows[slot] = y;
        }
        return copy;
    }

  private:
    const OIIO::ImageBuf& _image;
    std::vector<float> _copies;
    std::array<int, 3> _rows{-1, -1, -1};
};

} // namespace

OIIO::ImageBuf bakeNormals(const OIIO::ImageBuf& height, const NormalBakeOptions& options,
                           const KernelSet& set)
{
    const OIIO::ImageSpec& source = height.spec();
    OIIO::ImageSpec spec(source.width, source.height, 3, OIIO::TypeFloat);
    spec.attribute("oiio:ColorSpace", "Linear");
    OIIO::ImageBuf image = uninitializedImage("normal_image", spec);
    if (!image.initialized())
    {
        image.errorfmt("The height image has no pixels");
        return image;
    }
    forEachRowBlock(
        spec.width, spec.height, options.threads,
        [&](int yBegin, int yEnd)
        {
            // Here, where the floating-point environment is the default one.
            const SlopeStrength strength = slopeStrength(options, spec.width, spec.height);
            HeightReader reader(height);
            for (int y = yBegin; y < yEnd; ++y)
            {
                const HeightRows rows{reader.row(y - 1), reader.row(y), reader.row(y + 1)};
                set.normalRow(rows, static_cast<std::size_t>(spec.width), strength,
                              static_cast<float*>(image.pixeladdr(0, y)));
            }
        });
    return image;
}

OIIO::ImageBuf bakeNormalImage(const OIIO::ImageBuf& height, const OIIO::ImageSpec& parameters,
                               int threads)
{
    NormalBakeOptions options;
    options.bumpAmount = parameters.get_float_attribute("bump_amount", 0.0f);
    options.realWorldScale = pairAttribute(parameters, "real_world_scale");
    options.bumpScale = pairAttribute(parameters, "bump_scale");
    options.threads = threads;
    return bakeNormals(height, options);
}

} // namespace vyr::MaterialTranslation::baking
