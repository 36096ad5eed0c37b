#include <array>
#include <complex>
#include <string_view>

#include <gtest/gtest.h>

#include "baking/Images.h"
#include "baking/PatternImage.h"
#include "baking/PatternReference.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

struct KindRows
{
    std::string_view schema;
    std::span<const PropertyRow> rows;
};

template <class... Kind> std::vector<KindRows> listed(const std::tuple<Kind...>* /*kinds*/)
{
    return {{Kind::schema, Kind::rows}...};
}

const std::vector<KindRows> kinds = listed(static_cast<const PatternKinds*>(nullptr));

bool isNumbered(const PropertyRow& row)
{
    return std::string_view(row.name).find('#') != std::string_view::npos;
}

using Given = std::vector<std::pair<std::string_view, std::array<float, 3>>>;

Pattern patternOf(std::string_view schema, int width, int height, const Given& given = {})
{
    const auto kind = std::ranges::find(kinds, schema, &KindRows::schema);
    Pattern pattern{static_cast<std::size_t>(kind - kinds.begin()), {}, width, height, {}, {}};
    std::size_t taken = 0;
    for (const PropertyRow& row : kind->rows)
    {
        auto& values = pattern.values.rows.emplace_back(isNumbered(row) ? 0U : 1U, row.fallback);
        for (const auto& [name, value] : given)
            if (name == row.name)
            {
                values[0] = value;
                ++taken;
            }
    }
    EXPECT_EQ(taken, given.size());
    return pattern;
}

std::size_t choices(const PropertyRow& row)
{
    return 1 + static_cast<std::size_t>(std::ranges::count(std::string_view(row.choices), ' '));
}

std::size_t anyBelow(std::size_t count)
{
    static std::mt19937 random(7);
    return random() % count;
}

/// Within its row's range: what is usual, an end, or what is odd.
std::array<float, 3> anyValue(const PropertyRow& row)
{
    constexpr float odd[] = {0.0f,  -0.0f,  1.0f, -1.0f, 0.5f,  1e-30f, -1e30f,
                             3e38f, 1e-41f, 2.5f, 7e5f,  25.0f, 1e-4f};
    const auto unit = [] { return static_cast<float>(anyBelow(1001)) / 1000.0f; };
    if (row.kind == PropertyKind::Choice || row.kind == PropertyKind::Boolean)
        return {static_cast<float>(anyBelow(*row.choices ? choices(row) : 2))};
    if (row.kind == PropertyKind::Color)
        return {unit(), anyBelow(9) == 0 ? 1e30f : unit(), anyBelow(9) == 0 ? -3.0f : unit()};
    const std::size_t way = anyBelow(6);
    float value = way < 2   ? row.fallback[0]
                  : way < 3 ? odd[anyBelow(std::size(odd))]
                  : way < 5 ? row.fallback[0] * 2.0f * unit() + 0.1f * unit()
                            : (anyBelow(2) == 0 ? row.least : row.most);
    value = std::isfinite(value) ? std::clamp(value, row.least, row.most) : 0.3f;
    return {row.kind == PropertyKind::Integer ? std::floor(value) : value};
}

Pattern anyPattern(std::size_t kind, int width, int height)
{
    Pattern pattern{kind, {}, width, height, {}, {}};
    for (const PropertyRow& row : kinds[kind].rows)
    {
        auto& list = pattern.values.rows.emplace_back();
        for (std::size_t count = isNumbered(row) ? anyBelow(6) : 1; count > 0; --count)
            list.push_back(anyValue(row));
    }
    return pattern;
}

constexpr PatternPixels allPixels[] = {PatternPixels::Color, PatternPixels::Srgb,
                                       PatternPixels::Number, PatternPixels::Heights};

OIIO::ImageBuf plainPattern(const Pattern& pattern, PatternPixels pixels)
{
    const bool isColor = pixels == PatternPixels::Color || pixels == PatternPixels::Srgb;
    OIIO::ImageBuf image(
        OIIO::ImageSpec(pattern.width, pattern.height, isColor ? 3 : 1, OIIO::TypeFloat));
    reference::bakePatternRows(pattern, pixels, 0, pattern.height, image);
    return image;
}

/// The largest difference of neighbours across the rows or along them: inside, and between opposite edges.
std::array<float, 2> differences(const OIIO::ImageBuf& image, int dx, int dy)
{
    const OIIO::ImageSpec& spec = image.spec();
    const auto* pixels = static_cast<const float*>(image.localpixels());
    const auto at = [&](int x, int y) { return pixels + (y * spec.width + x) * spec.nchannels; };
    std::array<float, 2> largest{};
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x)
        {
            float& most = largest[x + dx == spec.width || y + dy == spec.height];
            const float* const one = at(x, y);
            const float* const next = at((x + dx) % spec.width, (y + dy) % spec.height);
            for (int c = 0; c < spec.nchannels; ++c)
                most = std::max(most, std::fabs(next[c] - one[c]));
        }
    return largest;
}

constexpr double pi = 3.14159265358979323846;

double cushion(double x, double y)
{
    return (2 - std::cos(2 * pi * x) - std::cos(2 * pi * y)) / 4;
}

} // namespace

TEST(PatternKernels, EqualTheReferenceInEveryBit)
{
    constexpr int shapes[][2] = {{61, 43}, {1, 1}, {257, 9}, {3, 70}, {16, 16}, {1, 77}, {2053, 1}};
    for (std::size_t i = 0; i < 700; ++i)
    {
        const auto& [width, height] = shapes[anyBelow(std::size(shapes))];
        const Pattern pattern = anyPattern(i % patternKindCount, width, height);
        const PatternPixels pixels = allPixels[anyBelow(std::size(allPixels))];
        const OIIO::ImageBuf expected = plainPattern(pattern, pixels);
        for (const KernelSet& set : kernelSets())
            ASSERT_TRUE(sameBits(bakePattern(pattern, pixels, {{}, 1}, set), expected))
                << kinds[pattern.kind].schema << ", case " << i << ", " << set.name;
    }
    // In blocks of rows, side by side; of gradients each shape.
    for (std::size_t kind = 0; kind < patternKindCount; ++kind)
        for (std::size_t choice = 0; choice < choices(kinds[kind].rows[0]); ++choice)
        {
            Pattern pattern = anyPattern(kind, 331, 29);
            if (kinds[kind].rows[0].kind == PropertyKind::Choice)
                pattern.values.rows[0][0][0] = static_cast<float>(choice);
            const OIIO::ImageBuf expected = plainPattern(pattern, PatternPixels::Srgb);
            for (const int threads : {1, 3})
                EXPECT_TRUE(
                    sameBits(bakePattern(pattern, PatternPixels::Srgb, {{}, threads}), expected))
                    << kinds[kind].schema << ", choice " << choice;
        }
}

/// Against a fault that reference and kernels share.
TEST(PatternKernels, AreNearTheExactFunctions)
{
    double worst[2] = {};
    std::vector<float> decoded;
    for (int i = 0; i <= 100000; ++i)
    {
        const double x = i / 1e5;
        decoded.push_back(static_cast<float>(x));
        const double code = x < 0.0031308 ? x * 12.92 : 1.055 * std::pow(x, 1.0 / 2.4) - 0.055;
        const double value = x < 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
        const auto f = static_cast<float>(x);
        worst[0] = std::max(worst[0], std::fabs(double{reference::srgbCode(f)} - code));
        worst[1] = std::max(worst[1], std::fabs(double{reference::srgbValue(f)} - value));
    }
    EXPECT_LT(worst[0], 2e-6);
    EXPECT_LT(worst[1], 3e-6);
    decoded.insert(decoded.end(), {nan, infinity, -1.0f, 2.0f});
    for (const KernelSet& set : kernelSets())
    {
        std::vector<float> values = decoded;
        set.decodeSrgb(values.data(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(values[i], reference::srgbValue(decoded[i])) << set.name;
    }
    const OIIO::ImageBuf sweep =
        bakePattern(patternOf("GradientSchema", 93, 64, {{"gradient_Type", {8.0f}}}),
                    PatternPixels::Number, {});
    for (OIIO::ImageBuf::ConstIterator<float> i(sweep); !i.done(); ++i)
    {
        const double turns =
            std::atan2((63 - 2 * i.y()) / 64.0, (2 * i.x() - 92) / 93.0) / (2 * pi);
        ASSERT_NEAR(i[0], turns < 0 ? turns + 1 : turns, 1e-6) << i.x() << ", " << i.y();
    }
}

TEST(Patterns, MeetAtOppositeEdges)
{
    // With soft edges, so that what does not meet is a larger step than any inside.
    std::vector<Pattern> patterns{
        patternOf("CheckerSchema", 160, 128, {{"checker_Soften", {1.0f}}}),
        patternOf("SpeckleSchema", 400, 360, {{"speckle_Soften", {1.0f}}}),
    };
    const auto add = [&](std::string_view schema, std::string_view type, int count, Given given)
    {
        given.push_back({type, {}});
        for (int i = 0; i < count; ++i)
        {
            given.back().second[0] = static_cast<float>(i);
            patterns.push_back(patternOf(schema, 360, 320, given));
        }
    };
    const std::array<float, 3> phase{0.4f};
    add("TileSchema", "tile_Bond", 6,
        {{"tile_Width", {0.6f}}, {"tile_Bevel", {0.09f}}, {"tile_Columns", {5.0f}}});
    add("WaveSchema", "wave_Type", 2, {{"wave_Sources", {9.0f}}, {"wave_LengthVariation", {0.4f}}});
    add("WoodSchema", "wood_Type", 2, {{"wood_Phase", phase}, {"wood_Fibres", {0.1f}}});
    add("NoiseSchema", "noise_Type", 3,
        {{"noise_Size", {19.0f}}, {"noise_Levels", {3.0f}}, {"noise_Phase", phase}});
    add("MarbleSchema", "marble_Phase", 2,
        {{"marble_Turbulence", {0.6f}}, {"marble_Width", {1.0f}}});
    for (const float shape : {2.0f, 4.0f, 5.0f, 6.0f, 7.0f, 11.0f})
        patterns.push_back(patternOf("GradientSchema", 240, 240,
                                     {{"gradient_Type", {shape}},
                                      {"gradient_NoiseAmount", {0.2f}},
                                      {"gradient_NoiseLevels", {2.0f}}}));
    for (std::size_t kind = 0; kind < kinds.size(); ++kind)
        EXPECT_TRUE(std::ranges::count(patterns, kind, &Pattern::kind)) << kinds[kind].schema;
    for (const Pattern& pattern : patterns)
        for (const PatternPixels pixels : {PatternPixels::Heights, PatternPixels::Srgb})
        {
            if (pixels == PatternPixels::Srgb && kinds[pattern.kind].schema == "TileSchema")
                continue; // sharp
            const OIIO::ImageBuf image = bakePattern(pattern, pixels, {});
            for (const int dx : {0, 1})
            {
                const auto [inside, seam] = differences(image, dx, 1 - dx);
                EXPECT_LE(seam, inside) << kinds[pattern.kind].schema << ' '
                                        << pattern.values.rows[0][0][0] << ", dx " << dx;
                EXPECT_LT(inside, 0.7f) << "too sharp to tell";
            }
        }
}

TEST(Patterns, DrawThinJointsByTheirShare)
{
    Pattern pattern = patternOf("TileSchema", 64, 64, {{"tile_JointWidth", {0.0f}}});
    EXPECT_EQ(differences(bakePattern(pattern, PatternPixels::Color, {}), 1, 0)[0], 0.0f);
    EXPECT_EQ(differences(bakePattern(pattern, PatternPixels::Heights, {}), 0, 1)[0], 0.0f);
}

TEST(Patterns, TakeImagesInPlaceOfColors)
{
    const ImagePlacement cases[][2] = {
        {{{0.3f, -0.2f}, {0.7f, 1.1f}, {0.1f, 0.2f}, {2.0f, 0.5f}, {true, true}, 33.0f}, {}},
        {{{0.3f, 0.2f}, {0.4f, 0.6f}, {}, {1.0f, 1.0f}, {false, true}, 200.0f},
         {{0.5f, 0.1f}, {1.5f, 1.2f}, {0.3f, 0.1f}, {1.0f, 3.0f}, {true, true}, -71.0f}},
        {{{}, {0.0f, 2.0f}, {}, {0.0f, -1.0f}, {false, false}, 90.0f}, {{}, {2.0f, 2.0f}}},
    };
    // A smooth image in the ground of a marble without veins.
    Pattern pattern = patternOf("MarbleSchema", 145, 138, {{"marble_Width", {0.0f}}});
    auto child = std::make_shared<ColorImage>();
    child->pattern = std::make_shared<Pattern>(
        patternOf("GradientSchema", 60, 57, {{"gradient_Type", {11.0f}}}));
    pattern.images[0] = child;
    using Point = std::complex<double>;
    const auto orOne = [](double a) { return a == 0.0 ? 1.0 : a; };
    const auto times = [&](const ImagePlacement& p, int axis)
    {
        const auto i = static_cast<std::size_t>(axis);
        return orOne(p.uvScale[i]) / orOne(p.size[i]);
    };
    const auto point = [](const std::array<float, 2>& p) { return Point(p[0], p[1]); };
    for (const auto& [own, parent] : cases)
    {
        child->placement = own;
        pattern.placement = parent;
        const OIIO::ImageBuf image = bakePattern(pattern, PatternPixels::Color, {});
        for (OIIO::ImageBuf::ConstIterator<float> i(image); !i.done(); ++i)
        {
            // Back from the parent's place to the surface, and on to the child as the node of a bitmap goes.
            Point at = Point((i.x() + 0.5) / 145, 1 - (i.y() + 0.5) / 138) + point(parent.uvOffset);
            at = Point(at.real() / times(parent, 0), at.imag() / times(parent, 1));
            at = at * std::polar(1.0, double{parent.degrees} * pi / 180.0) + point(parent.offset);
            at = (at - point(own.offset)) * std::polar(1.0, -double{own.degrees} * pi / 180.0);
            at = Point(at.real() * times(own, 0), at.imag() * times(own, 1)) - point(own.uvOffset);
            const double u = own.repeats[0] ? at.real() : std::clamp(at.real(), 0.0, 1.0);
            const double v = own.repeats[1] ? at.imag() : std::clamp(at.imag(), 0.0, 1.0);
            ASSERT_NEAR(i[0], cushion(u, v), 1e-3) << i.x() << ", " << i.y();
        }
    }
    // What is smaller than a pixel is averaged.
    child->placement = {{}, {1.0f, 1.0f}, {}, {300.0f, 300.0f}};
    pattern.placement = {};
    child->pattern = std::make_shared<Pattern>(patternOf("CheckerSchema", 128, 128));
    const OIIO::ImageBuf dense = bakePattern(pattern, PatternPixels::Color, {});
    for (OIIO::ImageBuf::ConstIterator<float> i(dense); !i.done(); ++i)
        ASSERT_NEAR(i[0], 0.5f, 1e-3f);
    // So are stripes of a pixel each, of which 1.9 fall on one.
    child->placement = {};
    child->pattern = std::make_shared<Pattern>(
        patternOf("GradientSchema", 274, 138, {{"gradient_Repeats", {137.0f}}}));
    const OIIO::ImageBuf stripes = bakePattern(pattern, PatternPixels::Color, {});
    for (OIIO::ImageBuf::ConstIterator<float> i(stripes); !i.done(); ++i)
        ASSERT_NEAR(i[0], 0.5f, 0.1f) << i.x();
}

} // namespace vyr::MaterialTranslation::baking
