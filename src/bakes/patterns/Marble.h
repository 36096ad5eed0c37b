#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Veins that run obliquely through a ground, are bent by noise, and come and go with another one.
struct Marble
{
    static constexpr const char* schema = "MarbleSchema";
    static constexpr const char* meaning = "bent veins in a ground";
    static constexpr PropertyRow rows[] = {
        {.name = "marble_Color1",
         .kind = PropertyKind::Color,
         .meaning = "of the ground",
         .fallback = {0.8f, 0.8f, 0.77f},
         .takesTexture = true},
        {.name = "marble_Color2",
         .kind = PropertyKind::Color,
         .meaning = "of the veins",
         .fallback = {0.12f, 0.13f, 0.14f},
         .takesTexture = true},
        {.name = "marble_Size",
         .kind = PropertyKind::Scalar,
         .meaning = "distance from vein to vein; the image is eight wide",
         .fallback = {0.1f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "marble_Width",
         .kind = PropertyKind::Scalar,
         .meaning = "width of a vein as a share of the distance",
         .fallback = {0.6f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "marble_Turbulence",
         .kind = PropertyKind::Scalar,
         .meaning = "how far veins are bent, in distances",
         .fallback = {1.5f},
         .least = 0.0f,
         .most = 100.0f},
        {.name = "marble_Levels",
         .kind = PropertyKind::Integer,
         .meaning = "octaves of the noise that bends them",
         .fallback = {6.0f},
         .least = 1.0f,
         .most = 16.0f},
        {.name = "marble_Phase",
         .kind = PropertyKind::Scalar,
         .meaning = "place on the fourth axis of that noise"},
    };
    static constexpr std::array colors{rowOf(rows, "marble_Color1"), rowOf(rows, "marble_Color2")};
    static constexpr float veins = 8.0f;

    explicit Marble(const Values& values)
        : size(values.number(rowOf(rows, "marble_Size"))),
          width(values.number(rowOf(rows, "marble_Width"))),
          turbulence(values.number(rowOf(rows, "marble_Turbulence"))),
          levels(values.integer(rowOf(rows, "marble_Levels"))),
          phase(values.number(rowOf(rows, "marble_Phase")))
    {
    }

    std::array<float, 2> period() const { return {veins * size, veins * size}; }

    std::vector<NoiseLayer> layers() const { return {{3, 3, levels, phase}, {5, 5, 2, phase}}; }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        // Whole numbers of veins across and upwards, together about eight to a length of the image.
        const auto across = M::add(M::mul(p.x, 7.0f), M::mul(p.y, 4.0f));
        const auto place = M::add(across, M::mul(p.noise[0], turbulence));
        const auto fromVein = M::abs(M::sub(M::mul(M::fraction(place), 2.0f), 1.0f));
        // A vein that is thinner than a pixel still shows.
        const float pixel = 2.0f * veins * p.sizeX;
        const auto width_ = M::all(width < pixel ? pixel : width);
        const auto inside = M::smooth(M::clamp01(M::sub(1.0f, M::div(fromVein, width_))));
        const auto strength = M::clamp01(M::add(M::mul(p.noise[1], 1.5f), 0.5f));
        return {width > 0.0f ? M::mul(inside, strength) : M::all(0.0f)};
    }

    float size;
    float width;
    float turbulence;
    int levels;
    float phase;
};

} // namespace vyr::MaterialTranslation::bakes
