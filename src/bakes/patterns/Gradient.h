#pragma once

#include <algorithm>

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// A ramp of any number of colours, laid out in one of many shapes.
struct Gradient
{
    static constexpr const char* schema = "GradientSchema";
    static constexpr const char* meaning = "a ramp of colours in one of many shapes";
    static constexpr PropertyRow rows[] = {
        {.name = "gradient_Type",
         .kind = PropertyKind::Choice,
         .meaning = "the shape along which the ramp runs",
         .choices = "gradient_linear gradient_quadratic gradient_mirrored gradient_diagonal "
                    "gradient_radial gradient_spherical gradient_box gradient_diamond "
                    "gradient_sweep gradient_sweep_mirrored gradient_spiral gradient_cushion"},
        {.name = "gradient_Color#",
         .kind = PropertyKind::Color,
         .meaning = "of a stop; black and white when there is none"},
        {.name = "gradient_Position#",
         .kind = PropertyKind::Scalar,
         .meaning = "place of a stop on the ramp, in any order; when one lacks, all are at even "
                    "distances, up to the "
                    "end of the ramp or, when they are constant, of even widths",
         .least = 0.0f,
         .most = 1.0f},
        {.name = "gradient_Interpolation",
         .kind = PropertyKind::Choice,
         .meaning = "how one stop gives way to the next",
         .choices = "gradient_interpolation_linear gradient_interpolation_constant "
                    "gradient_interpolation_smooth"},
        {.name = "gradient_Repeats",
         .kind = PropertyKind::Integer,
         .meaning = "how often the ramp runs",
         .fallback = {1.0f},
         .least = 1.0f,
         .most = 1000.0f},
        {.name = "gradient_Alternates",
         .kind = PropertyKind::Boolean,
         .meaning = "whether every second repeat runs backwards"},
        {.name = "gradient_Reversed",
         .kind = PropertyKind::Boolean,
         .meaning = "whether the ramp runs backwards"},
        {.name = "gradient_NoiseType",
         .kind = PropertyKind::Choice,
         .meaning = "noise that distorts the ramp",
         .choices = "noise_regular noise_fractal noise_turbulence"},
        {.name = "gradient_NoiseAmount",
         .kind = PropertyKind::Scalar,
         .meaning = "how far it shifts places on the ramp",
         .least = 0.0f,
         .most = 100.0f},
        {.name = "gradient_NoiseSize",
         .kind = PropertyKind::Scalar,
         .meaning = "the image is 100 / size of its cells wide and high, rounded to whole ones",
         .fallback = {25.0f}},
        {.name = "gradient_NoiseLevels",
         .kind = PropertyKind::Scalar,
         .meaning = "its octaves, where it has several",
         .fallback = {4.0f},
         .least = 0.0f,
         .most = 16.0f},
        {.name = "gradient_NoisePhase",
         .kind = PropertyKind::Scalar,
         .meaning = "place on its fourth axis"},
    };

    /// In the order of the choices.
    enum class Shape
    {
        Linear,
        Quadratic,
        Mirrored,
        Diagonal,
        Radial,
        Spherical,
        Box,
        Diamond,
        Sweep,
        SweepMirrored,
        Spiral,
        Cushion,
    };

    explicit Gradient(const Values& values)
        : shape(static_cast<Shape>(values.integer(rowOf(rows, "gradient_Type")))),
          step(static_cast<RampStep>(values.integer(rowOf(rows, "gradient_Interpolation")))),
          repeats(values.number(rowOf(rows, "gradient_Repeats"))),
          alternates(values.boolean(rowOf(rows, "gradient_Alternates"))),
          reversed(values.boolean(rowOf(rows, "gradient_Reversed"))),
          noiseAmount(values.number(rowOf(rows, "gradient_NoiseAmount"))),
          isDistorted(noiseAmount > 0.0f), isRound(shape == Shape::Sweep || shape == Shape::Spiral)
    {
        const int type = values.integer(rowOf(rows, "gradient_NoiseType"));
        const int cells = cellsOf(values.number(rowOf(rows, "gradient_NoiseSize")));
        const float levels = values.number(rowOf(rows, "gradient_NoiseLevels"));
        if (isDistorted)
            noise.push_back({cells, cells, type == 0 ? 1 : octavesOf(levels),
                             values.number(rowOf(rows, "gradient_NoisePhase")), type == 2});
        readStops(values.list(rowOf(rows, "gradient_Color#")),
                  values.list(rowOf(rows, "gradient_Position#")));
    }

    std::array<float, 2> period() const { return noPeriod; }

    std::vector<NoiseLayer> layers() const { return noise; }

    /// Whether only x counts.
    bool rowsAreAlike() const
    {
        return !isDistorted &&
               (shape == Shape::Linear || shape == Shape::Quadratic || shape == Shape::Mirrored);
    }

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        auto t = placeOf<L>(p.x, p.y);
        if (isDistorted)
            t = M::add(t, M::mul(p.noise[0], noiseAmount));
        if (repeats != 1.0f || isRound)
            t = repeated<L>(M::mul(t, repeats));
        t = M::clamp01(t);
        return {reversed ? M::sub(1.0f, t) : t};
    }

    template <class L>
    typename L::Floats placeOf(typename L::Floats x, typename L::Floats y) const
    {
        using M = Math<L>;
        // From the middle, the image's edges at a distance of 1.
        const auto dx = M::sub(M::mul(x, 2.0f), 1.0f);
        const auto dy = M::sub(M::mul(y, 2.0f), 1.0f);
        const auto squares = M::add(M::mul(dx, dx), M::mul(dy, dy));
        const auto mirrored = [](auto t)
        { return M::sub(1.0f, M::abs(M::sub(M::mul(t, 2.0f), 1.0f))); };
        switch (shape)
        {
        case Shape::Linear:
            return x;
        case Shape::Quadratic:
            return M::mul(x, x);
        case Shape::Mirrored:
            return M::sub(1.0f, M::abs(dx));
        case Shape::Diagonal:
            return M::mul(M::add(x, y), 0.5f);
        case Shape::Radial:
            return M::min(L::squareRoot(squares), M::all(1.0f));
        case Shape::Spherical:
            return M::sub(1.0f, L::squareRoot(M::max(M::sub(1.0f, squares), M::all(0.0f))));
        case Shape::Box:
            return M::max(M::abs(dx), M::abs(dy));
        case Shape::Diamond:
            return M::mul(M::add(M::abs(dx), M::abs(dy)), 0.5f);
        case Shape::Sweep:
            return M::angle(dx, dy);
        case Shape::SweepMirrored:
            return mirrored(M::angle(dx, dy));
        case Shape::Spiral:
            return M::fraction(M::add(M::angle(dx, dy), L::squareRoot(squares)));
        case Shape::Cushion:
            return M::mul(
                M::add(M::add(M::sine(M::sub(x, 0.25f)), M::sine(M::sub(y, 0.25f))), 2.0f), 0.25f);
        }
        return x;
    }

    /// The ramp runs once for each whole number. Round the middle it has no end, and to and fro it meets itself;
    /// elsewhere it stays at its start before the first run and at its end after the last one.
    template <class L> typename L::Floats repeated(typename L::Floats t) const
    {
        using M = Math<L>;
        if (alternates)
        {
            const auto half = M::fraction(M::mul(t, 0.5f));
            return M::sub(1.0f, M::abs(M::sub(M::mul(half, 2.0f), 1.0f)));
        }
        const auto run = M::fraction(t);
        if (isRound)
            return run;
        return M::less(t, 0.0f, M::all(0.0f), M::less(t, repeats, run, M::all(1.0f)));
    }

    Shape shape;
    RampStep step;
    float repeats;
    bool alternates;
    bool reversed;
    float noiseAmount;
    bool isDistorted;
    bool isRound;
    std::vector<NoiseLayer> noise;
    /// Positions never fall.
    std::vector<ColorStop> stops;

  private:
    void readStops(const std::vector<std::array<float, 3>>& colors,
                   const std::vector<std::array<float, 3>>& positions)
    {
        if (colors.empty())
            return readStops({{0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 1.0f}}, {});
        const bool given = positions.size() >= colors.size();
        // Constant ones are of even width: the last one, too, is to be seen.
        const bool reachesEnd = step != RampStep::Constant && colors.size() > 1;
        const std::size_t last = reachesEnd ? colors.size() - 1 : colors.size();
        for (std::size_t i = 0; i < colors.size(); ++i)
        {
            const float even = static_cast<float>(i) / static_cast<float>(last);
            stops.push_back(
                {given ? positions[i][0] : even, {colors[i][0], colors[i][1], colors[i][2]}});
        }
        std::ranges::stable_sort(stops, {}, &ColorStop::position);
    }
};

} // namespace vyr::MaterialTranslation::bakes
