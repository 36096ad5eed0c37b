#pragma once

#include <array>
#include <memory>

#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/TextureInfo.h>

namespace vyr::MaterialTranslation
{

/// What a thread material is built from. A copy shares what the pointers point to; a move leaves
/// the source's pointers empty.
struct VYR_MTLX_API ThreadInfo
{
    ThreadInfo();
    ThreadInfo(const ThreadInfo& other);
    ThreadInfo(ThreadInfo&& other) noexcept;
    ThreadInfo& operator=(const ThreadInfo& other);
    ThreadInfo& operator=(ThreadInfo&& other) noexcept;
    ~ThreadInfo();

    /// Image of the thread; without it nothing is built.
    std::shared_ptr<TextureInfo> threadTexture;
    /// Normal map of the thread; may be empty.
    std::shared_ptr<TextureInfo> normalTexture;
    /// Parameter of the thread builder.
    bool flag = false;
    /// Colour of the material under the thread: red, green, blue, alpha, linear Rec.709; may be
    /// empty.
    std::shared_ptr<std::array<float, 4>> baseMaterialColor;
    /// Planes that clip the thread at its start and end: a, b, c, d of a x + b y + c z + d = 0; may
    /// be empty.
    std::shared_ptr<std::array<float, 4>> startClippingPlane;
    std::shared_ptr<std::array<float, 4>> endClippingPlane;
};

} // namespace vyr::MaterialTranslation
