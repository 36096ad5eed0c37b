#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Gradient noise, thresholded, between two colours. As relief the noise texture is baked as its own images are.
struct Noise
{
    static constexpr const char* schema = "NoiseSchema";
    static constexpr const char* meaning = "gradient noise between two colours";
    static constexpr PropertyRow rows[] = {
        {.name = "noise_Type",
         .kind = PropertyKind::Choice,
         .meaning = "one octave, several, or several of absolute values",
         .choices = "noise_regular noise_fractal noise_turbulence"},
        {.name = "noise_Color1",
         .kind = PropertyKind::Color,
         .meaning = "where the noise is 0",
         .takesTexture = true},
        {.name = "noise_Color2",
         .kind = PropertyKind::Color,
         .meaning = "where the noise is 1",
         .fallback = {1.0f, 1.0f, 1.0f},
         .takesTexture = true},
        {.name = "noise_Size",
         .kind = PropertyKind::Scalar,
         .meaning = "the image is 100 / size noise cells wide and high, rounded to whole ones "
                    "where it repeats; "
                    "what is not greater than 0 counts as 1",
         .fallback = {1.0f}},
        {.name = "noise_ThresholdLow", .kind = PropertyKind::Scalar, .meaning = "noise below is 0"},
        {.name = "noise_ThresholdHigh",
         .kind = PropertyKind::Scalar,
         .meaning = "noise above is 1",
         .fallback = {1.0f}},
        {.name = "noise_Levels",
         .kind = PropertyKind::Scalar,
         .meaning = "octaves of fractal and turbulence noise; a fraction counts as a whole one",
         .fallback = {1.0f},
         .least = 0.0f,
         .most = 32.0f},
        {.name = "noise_Phase",
         .kind = PropertyKind::Scalar,
         .meaning = "place on the fourth axis of the noise; a slow change makes the image flow"},
    };
    static constexpr std::array colors{rowOf(rows, "noise_Color1"), rowOf(rows, "noise_Color2")};

    explicit Noise(const Values& values)
        : type(values.integer(rowOf(rows, "noise_Type"))),
          cells(cellsOf(values.number(rowOf(rows, "noise_Size")))),
          low(values.number(rowOf(rows, "noise_ThresholdLow"))),
          high(values.number(rowOf(rows, "noise_ThresholdHigh"))),
          levels(type == 0 ? 1 : octavesOf(values.number(rowOf(rows, "noise_Levels")))),
          phase(values.number(rowOf(rows, "noise_Phase")))
    {
    }

    std::array<float, 2> period() const { return noPeriod; }

    std::vector<NoiseLayer> layers() const { return {{cells, cells, levels, phase, type == 2}}; }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        const auto v = type == 2 ? p.noise[0] : M::mul(M::add(p.noise[0], 1.0f), 0.5f);
        const auto between = low != high ? M::div(M::sub(v, low), M::all(high - low)) : v;
        return {M::less(v, low, M::all(0.0f), M::less(M::all(high), v, M::all(1.0f), between))};
    }

    int type;
    int cells;
    float low;
    float high;
    int levels;
    float phase;
};

} // namespace vyr::MaterialTranslation::bakes
