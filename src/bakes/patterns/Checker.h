#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Squares of two colours by turns; the image holds two by two of them.
struct Checker
{
    static constexpr const char* schema = "CheckerSchema";
    static constexpr const char* meaning = "squares of two colours by turns";
    static constexpr PropertyRow rows[] = {
        {.name = "checker_Color1",
         .kind = PropertyKind::Color,
         .meaning = "of the square at the lower left corner, and of every other one",
         .fallback = {1.0f, 1.0f, 1.0f},
         .takesTexture = true},
        {.name = "checker_Color2",
         .kind = PropertyKind::Color,
         .meaning = "of the squares between",
         .takesTexture = true},
        {.name = "checker_Size",
         .kind = PropertyKind::Scalar,
         .meaning = "edge of a square",
         .fallback = {0.1f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "checker_Soften",
         .kind = PropertyKind::Scalar,
         .meaning = "share of a square over which the colours blend",
         .least = 0.0f,
         .most = 1.0f},
    };
    static constexpr std::array colors{rowOf(rows, "checker_Color1"),
                                       rowOf(rows, "checker_Color2")};

    explicit Checker(const Values& values)
        : size(values.number(rowOf(rows, "checker_Size"))),
          soften(values.number(rowOf(rows, "checker_Soften")))
    {
    }

    std::array<float, 2> period() const { return {2.0f * size, 2.0f * size}; }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        // 1 in one square, -1 in the next one, and a slope over at least a pixel between them.
        const auto wave = [&](typename L::Floats x, float pixel)
        {
            const auto inside =
                M::sub(0.5f, M::mul(M::abs(M::sub(M::fraction(M::add(x, 0.25f)), 0.5f)), 2.0f));
            const float slope = soften < 2.0f * pixel ? pixel : 0.5f * soften;
            const auto s = M::div(inside, M::all(slope));
            return M::max(M::min(s, M::all(1.0f)), M::all(-1.0f));
        };
        const auto both = M::mul(wave(p.x, p.sizeX), wave(p.y, p.sizeY));
        return {M::mul(M::sub(1.0f, both), 0.5f)};
    }

    float size;
    float soften;
};

} // namespace vyr::MaterialTranslation::bakes
