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
    static constexpr float cells = 32.0f;

    explicit Speckle(const Values& values)
        : size(values.number(rowOf(rows, "speckle_Size"))),
          amount(values.number(rowOf(rows, "speckle_Amount"))),
          variation(values.number(rowOf(rows, "speckle_Variation"))),
          soften(values.number(rowOf(rows, "speckle_Soften"))),
          seed(static_cast<std::uint32_t>(values.integer(rowOf(rows, "speckle_Seed"))) * 8U)
    {
    }

    std::array<float, 2> period() const { return {cells * size, cells * size}; }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        const auto x = M::mul(p.x, cells);
        const auto y = M::mul(p.y, cells);
        const auto column = M::floor(x);
        const auto row = M::floor(y);
        const auto inX = M::sub(x, column);
        const auto inY = M::sub(y, row);
        const auto pixel = M::all(cells * (p.sizeX < p.sizeY ? p.sizeY : p.sizeX));
        auto inside = M::all(0.0f);
        // A spot reaches at most into the cells around its own.
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
            {
                const auto toX = static_cast<float>(dx);
                const auto toY = static_cast<float>(dy);
                const auto cellX = M::modulo(M::add(column, toX), cells);
                const auto cellY = M::modulo(M::add(row, toY), cells);
                const auto aside = M::sub(M::add(M::random(cellX, cellY, seed), toX), inX);
                const auto above = M::sub(M::add(M::random(cellX, cellY, seed + 1U), toY), inY);
                const auto distance =
                    L::squareRoot(M::add(M::mul(aside, aside), M::mul(above, above)));
                const auto smaller = M::mul(M::random(cellX, cellY, seed + 2U), variation);
                const auto radius = M::mul(M::sub(1.0f, smaller), 0.5f);
                const auto edge = M::max(M::mul(radius, soften), pixel);
                const auto spot = M::clamp01(M::add(M::div(M::sub(radius, distance), edge), 0.5f));
                const auto there = M::random(cellX, cellY, seed + 3U);
                inside = M::max(inside, M::less(there, amount, spot, M::all(0.0f)));
            }
        return {inside};
    }

    float size;
    float amount;
    float variation;
    float soften;
    std::uint32_t seed;
};

} // namespace vyr::MaterialTranslation::bakes
