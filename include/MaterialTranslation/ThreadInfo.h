#pragma once

#include <array>
#include <memory>

#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/TextureInfo.h>

namespace vyr::MaterialTranslation
{

/// What a thread material is built from: metal whose thread is drawn and not modelled. A copy shares what the pointers point to; a move leaves
/// the source's pointers empty.
struct VYR_MTLX_API ThreadInfo
{
    ThreadInfo();
    ThreadInfo(const ThreadInfo& other);
    ThreadInfo(ThreadInfo&& other) noexcept;
    ThreadInfo& operator=(const ThreadInfo& other);
    ThreadInfo& operator=(ThreadInfo&& other) noexcept;
    ~ThreadInfo();

    /// Image of the thread, sRGB, which repeats; without it, or without its path, nothing is built.
    std::shared_ptr<TextureInfo> threadTexture;
    /// Tangent-space normal map of the thread, linear, which repeats; may be empty.
    std::shared_ptr<TextureInfo> normalTexture;
    /// How the image meets `baseMaterialColor`. False: it shades the colour, both are multiplied. True: it
    /// covers the colour as far as its alpha says; without a colour, its alpha is the thread's opacity.
    bool flag = false;
    /// Colour of the metal under the thread: red, green, blue, linear Rec.709; the fourth number is not
    /// used. Without it the image alone gives the colour.
    std::shared_ptr<std::array<float, 4>> baseMaterialColor;
    /// Planes that clip the thread at its start and end; may be empty. Of a plane a, b, c, d the side
    /// a x + b y + c z + d >= 0 is kept, the plane included. x, y, z are the coordinates of the object that
    /// wears the material, in its own space and **in their unit**: in a model of metres a plane at 30 mm has
    /// the d 0.03. The numbers may be of any length; NaN, infinite numbers, and a normal (a, b, c) of zero
    /// count as no plane.
    std::shared_ptr<std::array<float, 4>> startClippingPlane;
    std::shared_ptr<std::array<float, 4>> endClippingPlane;
};

} // namespace vyr::MaterialTranslation
