#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Growth rings, cut along the trunk or across it, bent by noise, with fine fibres.
struct Wood
{
    static constexpr const char* schema = "WoodSchema";
    static constexpr const char* meaning = "growth rings along or across the grain";
    static constexpr PropertyRow rows[] = {
        {.name = "wood_Color1",
         .kind = PropertyKind::Color,
         .meaning = "of the early wood",
         .fallback = {0.45f, 0.25f, 0.1f},
         .takesTexture = true},
        {.name = "wood_Color2",
         .kind = PropertyKind::Color,
         .meaning = "of the late wood",
         .fallback = {0.18f, 0.08f, 0.03f},
         .takesTexture = true},
        {.name = "wood_Type",
         .kind = PropertyKind::Choice,
         .meaning = "a plank with the grain upwards, or the end of a trunk",
         .choices = "wood_plank wood_end"},
        {.name = "wood_RingWidth",
         .kind = PropertyKind::Scalar,
         .meaning = "width of a ring; the image is sixteen wide, a plank's 64 high",
         .fallback = {0.01f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "wood_RadialNoise",
         .kind = PropertyKind::Scalar,
         .meaning = "how far rings are bent across the grain, in rings",
         .fallback = {1.5f},
         .least = 0.0f,
         .most = 100.0f},
        {.name = "wood_AxialNoise",
         .kind = PropertyKind::Scalar,
         .meaning = "how far they drift along the grain of a plank, in rings",
         .fallback = {1.0f},
         .least = 0.0f,
         .most = 100.0f},
        {.name = "wood_Fibres",
         .kind = PropertyKind::Scalar,
         .meaning = "how much the fibres show",
         .fallback = {0.3f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "wood_Phase",
         .kind = PropertyKind::Scalar,
         .meaning = "place on the fourth axis of the noise: another one is another tree"},
    };
    static constexpr std::array colors{rowOf(rows, "wood_Color1"), rowOf(rows, "wood_Color2")};
    static constexpr float rings = 16.0f;

    explicit Wood(const Values& values)
        : isPlank(values.integer(rowOf(rows, "wood_Type")) == 0),
          ringWidth(values.number(rowOf(rows, "wood_RingWidth"))),
          radialNoise(values.number(rowOf(rows, "wood_RadialNoise"))),
          axialNoise(values.number(rowOf(rows, "wood_AxialNoise"))),
          fibres(values.number(rowOf(rows, "wood_Fibres"))),
          phase(values.number(rowOf(rows, "wood_Phase")))
    {
    }

    std::array<float, 2> period() const
    {
        return {rings * ringWidth, (isPlank ? 4.0f : 1.0f) * rings * ringWidth};
    }

    std::vector<NoiseLayer> layers() const
    {
        if (isPlank)
            return {{3, 2, 3, phase}, {192, 12, 2, phase}};
        return {{4, 4, 3, phase}, {128, 128, 2, phase}};
    }

    /// What is the same for all pixels of a column: for the end of a trunk the square of the distance aside.
    std::size_t columnValues() const { return isPlank ? 0 : 1; }

    template <class L> typename L::Floats columnValue(std::size_t /*i*/, typename L::Floats x) const
    {
        using M = Math<L>;
        const auto dx = M::apart(M::sub(x, 0.5f));
        return M::mul(dx, dx);
    }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        auto place = M::mul(p.noise[0], radialNoise);
        if (isPlank)
            place = M::add(M::add(place, M::mul(p.x, rings)), M::mul(M::sine(p.y), axialNoise));
        else
        {
            const auto dy = M::apart(M::sub(p.y, 0.5f));
            const auto far = L::squareRoot(M::add(p.column(0), M::mul(dy, dy)));
            place = M::add(place, M::mul(far, rings));
        }
        // The late wood comes slowly and ends with the year.
        constexpr float endOfYear = 0.85f;
        const auto year = M::fraction(place);
        const auto rising = M::mul(year, 1.0f / endOfYear);
        const auto falling = M::mul(M::sub(1.0f, year), 1.0f / (1.0f - endOfYear));
        const auto late = M::less(year, endOfYear, M::mul(rising, rising), falling);
        return {M::clamp01(M::add(late, M::mul(p.noise[1], fibres)))};
    }

    bool isPlank;
    float ringWidth;
    float radialNoise;
    float axialNoise;
    float fibres;
    float phase;
};

} // namespace vyr::MaterialTranslation::bakes
