#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Round spots of many sizes, one at most in each cell of a grid of 32 x 32.
struct Speckle
{
    static constexpr const char* schema = "SpeckleSchema";
    static constexpr const char* meaning = "round spots strewn over a ground";
    static constexpr PropertyRow rows[] = {
        {.name = "speckle_Color1",
         .kind = PropertyKind::Color,
         .meaning = "of the ground",
         .fallback = {0.6f, 0.6f, 0.6f},
         .takesTexture = true},
        {.name = "speckle_Color2",
         .kind = PropertyKind::Color,
         .meaning = "of the spots",
         .fallback = {0.05f, 0.05f, 0.05f},
         .takesTexture = true},
        {.name = "speckle_Size",
         .kind = PropertyKind::Scalar,
         .meaning = "width of the largest spots, and mean distance between spots; the image is 32 "
                    "of them wide",
         .fallback = {0.01f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "speckle_Amount",
         .kind = PropertyKind::Scalar,
         .meaning = "share of the places that have a spot",
         .fallback = {0.7f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "speckle_Variation",
         .kind = PropertyKind::Scalar,
         .meaning = "how much smaller than the largest the smallest spot is",
         .fallback = {0.8f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "speckle_Soften",
         .kind = PropertyKind::Scalar,
         .meaning = "share of a spot over which it fades out",
         .fallback = {0.1f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "speckle_Seed",
         .kind = PropertyKind::Integer,
         .meaning = "another number strews other spots",
         .least = 0.0f,
         .most = 1000000.0f},
    };
    static constexpr std::array colors{rowOf(rows, "speckle_Color1"),
                                       rowOf(rows, "speckle_Color2")};
    static constexpr int cells = 32;

    struct Spot
    {
        float x; ///< in cells, within its own
        float y;
        float radius; ///< 0: there is none
    };

    explicit Speckle(const Values& values)
        : size(values.number(rowOf(rows, "speckle_Size"))),
          soften(values.number(rowOf(rows, "speckle_Soften")))
    {
        const float amount = values.number(rowOf(rows, "speckle_Amount"));
        const float variation = values.number(rowOf(rows, "speckle_Variation"));
        Lots lots(values.integer(rowOf(rows, "speckle_Seed")));
        for (auto& row : spots)
            for (Spot& spot : row)
            {
                spot.x = lots.next();
                spot.y = lots.next();
                spot.radius = 0.5f * (1.0f - variation * lots.next());
                if (!(lots.next() < amount))
                    spot.radius = 0.0f;
            }
    }

    std::array<float, 2> period() const
    {
        return {static_cast<float>(cells) * size, static_cast<float>(cells) * size};
    }

    /// A spot reaches at most as far as a cell is wide: most are told by the row alone to reach none of the pixels.
    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        constexpr auto count = static_cast<float>(cells);
        const auto x = M::mul(p.x, count);
        const float y = p.rowY * count;
        const float pixel = count * (p.sizeX < p.sizeY ? p.sizeY : p.sizeX);
        const int firstColumn = static_cast<int>(p.firstX * count) - 1;
        const int lastColumn = static_cast<int>(p.lastX * count) + 1;
        const int row = static_cast<int>(y);
        auto inside = M::all(0.0f);
        for (int r = row - 1; r <= row + 1; ++r)
            for (int c = firstColumn; c <= lastColumn; ++c)
            {
                const Spot& spot = spots[(r + cells) % cells][(c + cells) % cells];
                const float above = static_cast<float>(r) + spot.y - y;
                const float soft = spot.radius * soften < pixel ? pixel : spot.radius * soften;
                const float edge = soft < 1.0f ? soft : 1.0f;
                constexpr float margin = 0.001f;
                const float reach = spot.radius + 0.5f * edge + margin;
                const float left = static_cast<float>(c) + spot.x;
                if (spot.radius == 0.0f || above > reach || above < -reach ||
                    left + reach < p.firstX * count || left - reach > p.lastX * count)
                    continue;
                const auto aside = M::sub(left, x);
                const auto distance = L::squareRoot(M::add(M::mul(aside, aside), above * above));
                const auto way = M::div(M::sub(spot.radius, distance), M::all(edge));
                inside = M::max(inside, M::clamp01(M::add(way, 0.5f)));
            }
        return {inside};
    }

    float size;
    float soften;
    Spot spots[cells][cells];
};

} // namespace vyr::MaterialTranslation::bakes
