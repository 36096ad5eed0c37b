#pragma once

#include <cmath>

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Waves of several sources that add up: circles around points, or straight fronts.
struct Wave
{
    static constexpr int mostSources = 64;
    static constexpr const char* schema = "WaveSchema";
    static constexpr const char* meaning = "waves that add up, of points or straight ones";
    static constexpr PropertyRow rows[] = {
        {.name = "wave_Color1",
         .kind = PropertyKind::Color,
         .meaning = "of the troughs",
         .takesTexture = true},
        {.name = "wave_Color2",
         .kind = PropertyKind::Color,
         .meaning = "of the crests",
         .fallback = {1.0f, 1.0f, 1.0f},
         .takesTexture = true},
        {.name = "wave_Type",
         .kind = PropertyKind::Choice,
         .meaning = "circles around points, or straight fronts that run upwards",
         .choices = "wave_radial wave_plane"},
        {.name = "wave_Sources",
         .kind = PropertyKind::Integer,
         .meaning = "how many waves add up",
         .fallback = {3.0f},
         .least = 1.0f,
         .most = mostSources},
        {.name = "wave_Length",
         .kind = PropertyKind::Scalar,
         .meaning = "from crest to crest; the image is eight wide",
         .fallback = {0.1f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "wave_LengthVariation",
         .kind = PropertyKind::Scalar,
         .meaning = "share by which waves may be shorter",
         .least = 0.0f,
         .most = 0.9f},
        {.name = "wave_Amplitude",
         .kind = PropertyKind::Scalar,
         .meaning = "how much of the way from colour to colour the waves go",
         .fallback = {1.0f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "wave_Phase",
         .kind = PropertyKind::Scalar,
         .meaning = "how far the waves have run",
         .unit = "degree"},
        {.name = "wave_Seed",
         .kind = PropertyKind::Integer,
         .meaning = "another number places the sources elsewhere",
         .least = 0.0f,
         .most = 1000000.0f},
    };
    static constexpr std::array colors{rowOf(rows, "wave_Color1"), rowOf(rows, "wave_Color2")};
    static constexpr float lengths = 8.0f;

    struct Source
    {
        float x; ///< the point, or the whole waves across the image
        float y;
        float frequency;
        float phase; ///< turns
    };

    explicit Wave(const Values& values)
        : isRadial(values.integer(rowOf(rows, "wave_Type")) == 0),
          length(values.number(rowOf(rows, "wave_Length"))),
          amplitude(values.number(rowOf(rows, "wave_Amplitude")))
    {
        // Whole numbers of waves, about as many as lengths, that run much the same way: fronts that cross each
        // other look like cloth.
        constexpr float directions[][2] = {{0, 8},  {1, 7}, {-1, 9}, {2, 8},
                                           {-2, 7}, {1, 9}, {-1, 7}, {3, 8}};
        const float variation = values.number(rowOf(rows, "wave_LengthVariation"));
        const float turns = values.number(rowOf(rows, "wave_Phase")) / 360.0f;
        const float phase = turns - std::floor(turns); // small: many turns would cost digits
        Lots lots(values.integer(rowOf(rows, "wave_Seed")));
        for (int i = 0; i < values.integer(rowOf(rows, "wave_Sources")); ++i)
        {
            const float a = lots.next();
            const float b = lots.next();
            const float shorter = 1.0f / (1.0f - variation * lots.next());
            const auto* d = directions[static_cast<int>(a * 8.0f)];
            const auto whole = [&](float n)
            {
                return static_cast<float>(
                    static_cast<int>(n * shorter + (n < 0.0f ? -0.5f : 0.5f)));
            };
            sources[sourceCount++] = isRadial ? Source{a, b, lengths * shorter, phase}
                                              : Source{whole(d[0]), whole(d[1]), 1.0f, phase + b};
        }
    }

    std::array<float, 2> period() const { return {lengths * length, lengths * length}; }

    /// What is the same for all pixels of a row: for each source the square of its distance upwards.
    template <class L> struct Row
    {
        typename L::Floats upwards[mostSources];
    };

    template <class L> Row<L> row(typename L::Floats y) const
    {
        Row<L> all;
        for (int i = 0; isRadial && i < sourceCount; ++i)
            all.upwards[i] = square<L>(y, sources[i].y);
        return all;
    }

    /// And of a column: the square of its distance aside.
    std::size_t columnValues() const
    {
        return isRadial ? static_cast<std::size_t>(sourceCount) : 0;
    }

    template <class L> typename L::Floats columnValue(std::size_t i, typename L::Floats x) const
    {
        return square<L>(x, sources[i].x);
    }

    template <class L> Sample<L> sample(const Pixels<L>& p, const Row<L>& row) const
    {
        using M = Math<L>;
        auto sum = M::all(0.0f);
        for (int i = 0; i < sourceCount; ++i)
        {
            const Source& source = sources[i];
            const auto far = [&]
            {
                return L::squareRoot(M::add(p.column(static_cast<std::size_t>(i)), row.upwards[i]));
            };
            const auto place = isRadial ? M::mul(far(), source.frequency)
                                        : M::add(M::mul(p.x, source.x), M::mul(p.y, source.y));
            sum = M::add(sum, M::sine(M::sub(place, source.phase)));
        }
        const auto height = M::mul(sum, amplitude / (2.0f * static_cast<float>(sourceCount)));
        return {M::clamp01(M::add(height, 0.5f))};
    }

    /// Of the distance on one axis, bent so that it meets itself half an image away.
    template <class L> static typename L::Floats square(typename L::Floats place, float point)
    {
        using M = Math<L>;
        const auto apart = M::apart(M::sub(place, point));
        return M::mul(apart, apart);
    }

    bool isRadial;
    float length;
    float amplitude;
    int sourceCount = 0;
    Source sources[mostSources];
};

} // namespace vyr::MaterialTranslation::bakes
