#include "PatternReference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string_view>

#include "Reference.h"

namespace vyr::MaterialTranslation::baking::reference
{

namespace
{

/// The properties by name.
class Properties
{
  public:
    explicit Properties(const Pattern& pattern) : _pattern(pattern)
    {
        withPatternKind(pattern.kind,
                        [&]<class Kind>()
                        {
                            for (const PropertyRow& row : Kind::rows)
                                _names.emplace_back(row.name);
                        });
    }

    const std::vector<std::array<float, 3>>& list(std::string_view name) const
    {
        const auto place = std::ranges::find(_names, name) - _names.begin();
        return _pattern.values.rows.at(static_cast<std::size_t>(place));
    }
    float number(std::string_view name) const { return list(name)[0][0]; }
    int integer(std::string_view name) const { return static_cast<int>(number(name)); }
    std::uint32_t seed(std::string_view name) const
    {
        return static_cast<std::uint32_t>(integer(name));
    }

  private:
    const Pattern& _pattern;
    std::vector<std::string_view> _names;
};

struct Pixel
{
    int column;
    int row;
    float x;
    float y;
};

struct Image
{
    int columns;
    int rows;
    float pixelX;
    float pixelY;
    bool heights;
};

struct Share
{
    float mix;
    float factor = 1.0f;
};

using Shares = std::function<Share(const Pixel&)>;

float clamp01(float a)
{
    return a > 0.0f ? std::min(a, 1.0f) : 0.0f;
}

float fraction(float a)
{
    return a - std::floor(a);
}

float modulo(float a, float n)
{
    return a - std::floor(a / n) * n;
}

/// Up, then down, for a from 0 to 1.
float thereAndBack(float a)
{
    return 1.0f - std::fabs(a * 2.0f - 1.0f);
}

float smooth(float a)
{
    return a * a * (3.0f - a * 2.0f);
}

template <std::size_t N> float polynomial(const float (&c)[N], float x)
{
    float sum = c[N - 1];
    for (std::size_t i = N - 1; i > 0; --i)
        sum = sum * x + c[i - 1];
    return sum;
}

float sine(float turns)
{
    constexpr float c[] = {6.2831855f, -41.341682f, 81.60248f, -76.58128f, 39.760723f};
    float t = turns - std::floor(turns + 0.5f);
    if (t < -0.25f)
        t = -0.5f - t;
    else if (t > 0.25f)
        t = 0.5f - t;
    return polynomial(c, t * t) * t;
}

float angle(float x, float y)
{
    constexpr float c[] = {0.15915483f,  -0.05304057f,   0.0316398f,   -0.021454731f,
                           0.013327883f, -0.0058725993f, 0.0012454643f};
    const float longer = std::max(std::fabs(x), std::fabs(y));
    const float q = std::min(std::fabs(x), std::fabs(y)) / (longer > 0.0f ? longer : 1.0f);
    float turns = polynomial(c, q * q) * q;
    if (std::fabs(x) < std::fabs(y))
        turns = 0.25f - turns;
    if (x < 0.0f)
        turns = 0.5f - turns;
    return y < 0.0f ? 1.0f - turns : turns;
}

/// A distance on an axis of length 1 that meets itself.
float apart(float a)
{
    const float s = sine(a * 0.5f);
    return (s * s * s + s * 3.0f) * 0.10610330f;
}

float distance(float dx, float dy)
{
    const float x = apart(dx);
    const float y = apart(dy);
    return std::sqrt(x * x + y * y);
}

float random(float a, float b, std::uint32_t seed)
{
    std::uint32_t h = seed;
    for (const std::uint32_t k : {0x4B000000U + static_cast<std::uint32_t>(a),
                                  0x4B000000U + static_cast<std::uint32_t>(b), 0x9E3779B9U})
    {
        h += k;
        h *= 1025;
        h ^= h >> 6;
        h *= 9;
        h ^= h >> 11;
        h *= 32769;
    }
    return static_cast<float>(h >> 9) / 8388608.0f;
}

int noiseCells(float size)
{
    return static_cast<int>(std::clamp(100.0f / (size > 0.0f ? size : 1.0f) + 0.5f, 1.0f, 4096.0f));
}

int noiseOctaves(float levels)
{
    return static_cast<int>(std::clamp(std::ceil(levels), 1.0f, 16.0f));
}

using Noise = std::function<float(const Pixel&)>;

/// Noise that repeats after so many cells.
Noise repeatingNoise(const Image& image, int cellsX, int cellsY, int octaves, float phase,
                     bool absolute)
{
    return [=](const Pixel& p)
    {
        const auto place = [](int pixel, int pixels, int cells)
        {
            return static_cast<float>(pixel) / static_cast<float>(pixels) *
                   static_cast<float>(cells);
        };
        const float x = place(p.column, image.columns, cellsX);
        const float y = place(p.row, image.rows, cellsY);
        float sum = 0.0f;
        for (int octave = 0; octave < octaves; ++octave)
        {
            const auto times = static_cast<float>(1 << octave);
            const float n =
                noise4(y * times, x * times, 0.0f, phase, cellsY << octave, cellsX << octave) /
                times;
            sum += absolute ? std::fabs(n) : n;
        }
        return sum;
    };
}

Shares noise(const Properties& given, const Image& image)
{
    const int type = given.integer("noise_Type");
    const int cells = noiseCells(given.number("noise_Size"));
    const int octaves = type == 0 ? 1 : noiseOctaves(given.number("noise_Levels"));
    const float low = given.number("noise_ThresholdLow");
    const float high = given.number("noise_ThresholdHigh");
    const Noise sum =
        repeatingNoise(image, cells, cells, octaves, given.number("noise_Phase"), type == 2);
    return [=](const Pixel& p) -> Share
    {
        const float v = type == 2 ? sum(p) : (sum(p) + 1.0f) * 0.5f;
        if (v < low || v > high)
            return {v < low ? 0.0f : 1.0f};
        return {low != high ? (v - low) / (high - low) : v};
    };
}

Shares checker(const Properties& given, const Image& image)
{
    const float soften = given.number("checker_Soften");
    const auto wave = [=](float x, float pixel)
    {
        const float inside = 0.5f - std::fabs(fraction(x + 0.25f) - 0.5f) * 2.0f;
        return std::clamp(inside / (soften < 2.0f * pixel ? pixel : 0.5f * soften), -1.0f, 1.0f);
    };
    return [=](const Pixel& p) -> Share
    { return {(1.0f - wave(p.x, image.pixelX) * wave(p.y, image.pixelY)) * 0.5f}; };
}

float gradientPlace(std::string_view shape, float x, float y)
{
    const float dx = x * 2.0f - 1.0f;
    const float dy = y * 2.0f - 1.0f;
    const float squares = dx * dx + dy * dy;
    const float far = std::sqrt(squares);
    if (shape == "quadratic")
        return x * x;
    if (shape == "mirrored")
        return 1.0f - std::fabs(dx);
    if (shape == "diagonal")
        return (x + y) * 0.5f;
    if (shape == "radial")
        return std::min(far, 1.0f);
    if (shape == "spherical")
        return 1.0f - std::sqrt(std::max(1.0f - squares, 0.0f));
    if (shape == "box")
        return std::max(std::fabs(dx), std::fabs(dy));
    if (shape == "diamond")
        return (std::fabs(dx) + std::fabs(dy)) * 0.5f;
    if (shape == "sweep")
        return angle(dx, dy);
    if (shape == "sweep_mirrored")
        return thereAndBack(angle(dx, dy));
    if (shape == "spiral")
        return fraction(angle(dx, dy) + far);
    if (shape == "cushion")
        return (sine(x - 0.25f) + sine(y - 0.25f) + 2.0f) * 0.25f;
    return x;
}

Shares gradient(const Properties& given, const Image& image)
{
    constexpr std::string_view shapes[] = {"linear", "quadratic",      "mirrored", "diagonal",
                                           "radial", "spherical",      "box",      "diamond",
                                           "sweep",  "sweep_mirrored", "spiral",   "cushion"};
    const std::string_view shape = shapes[given.integer("gradient_Type")];
    const bool round = shape == "sweep" || shape == "spiral";
    const float repeats = given.number("gradient_Repeats");
    const bool alternates = given.number("gradient_Alternates") != 0.0f;
    const bool reversed = given.number("gradient_Reversed") != 0.0f;
    const float amount = given.number("gradient_NoiseAmount");
    const int type = given.integer("gradient_NoiseType");
    const int cells = noiseCells(given.number("gradient_NoiseSize"));
    const int octaves = type == 0 ? 1 : noiseOctaves(given.number("gradient_NoiseLevels"));
    const Noise sum = repeatingNoise(image, cells, cells, octaves,
                                     given.number("gradient_NoisePhase"), type == 2);
    return [=](const Pixel& p) -> Share
    {
        float t = gradientPlace(shape, p.x, p.y);
        if (amount > 0.0f)
            t += sum(p) * amount;
        if (round || repeats != 1.0f)
        {
            t *= repeats;
            if (alternates)
                t = thereAndBack(fraction(t * 0.5f));
            else if (round || (t >= 0.0f && t < repeats))
                t = fraction(t);
            else
                t = t < 0.0f ? 0.0f : 1.0f;
        }
        return {reversed ? 1.0f - clamp01(t) : clamp01(t)};
    };
}

Shares marble(const Properties& given, const Image& image)
{
    const float width = given.number("marble_Width");
    const float turbulence = given.number("marble_Turbulence");
    const float phase = given.number("marble_Phase");
    const Noise sum = repeatingNoise(image, 3, 3, given.integer("marble_Levels"), phase, false);
    const Noise strength = repeatingNoise(image, 5, 5, 2, phase, false);
    const float drawn = std::max(width, 16.0f * image.pixelX);
    return [=](const Pixel& p) -> Share
    {
        const float place = p.x * 7.0f + p.y * 4.0f + sum(p) * turbulence;
        const float fromVein = std::fabs(fraction(place) * 2.0f - 1.0f);
        const float inside = smooth(clamp01(1.0f - fromVein / drawn));
        return {width > 0.0f ? inside * clamp01(strength(p) * 1.5f + 0.5f) : 0.0f};
    };
}

/// The linear congruential numbers of a seed, mixed, from 0 to 1.
class Lots
{
  public:
    explicit Lots(std::uint32_t seed) : _state(seed) {}

    float next()
    {
        _state = _state * 1664525U + 1013904223U;
        const std::uint32_t mixed = (_state ^ (_state >> 15)) * 0x2C1B3C6DU;
        return static_cast<float>((mixed ^ (mixed >> 13)) >> 8) / 16777216.0f;
    }

  private:
    std::uint32_t _state;
};

Shares speckle(const Properties& given, const Image& image)
{
    struct Spot
    {
        float x, y, radius;
    };
    constexpr int cells = 32;
    Lots lots(given.seed("speckle_Seed"));
    std::vector<Spot> spots;
    for (int i = 0; i < cells * cells; ++i)
    {
        Spot spot{lots.next(), lots.next(), 0.0f};
        spot.radius = (1.0f - lots.next() * given.number("speckle_Variation")) * 0.5f;
        if (lots.next() >= given.number("speckle_Amount"))
            spot.radius = 0.0f;
        spots.push_back(spot);
    }
    const float soften = given.number("speckle_Soften");
    const float pixel = 32.0f * std::max(image.pixelX, image.pixelY);
    return [=](const Pixel& p) -> Share
    {
        const float x = p.x * 32.0f;
        const float y = p.y * 32.0f;
        float inside = 0.0f;
        for (float row = std::floor(y) - 1.0f; row < y + 1.0f; ++row)
            for (float column = std::floor(x) - 1.0f; column < x + 1.0f; ++column)
            {
                const Spot& spot = spots[static_cast<std::size_t>(modulo(row, 32.0f) * 32.0f +
                                                                  modulo(column, 32.0f))];
                if (spot.radius == 0.0f)
                    continue;
                const float aside = column + spot.x - x;
                const float above = row + spot.y - y;
                const float distance = std::sqrt(aside * aside + above * above);
                const float edge = std::min(std::max(spot.radius * soften, pixel), 1.0f);
                inside = std::max(inside, clamp01((spot.radius - distance) / edge + 0.5f));
            }
        return {inside};
    };
}

/// A tile: its place in the image, in tiles or cells, and how far its edges are.
struct TilePlace
{
    float column;
    float row;
    float fromSide;
    float fromEnd;
};

struct TileBond
{
    std::string_view name;
    float length;
    float columns;
    float rows;
    float shift;

    TilePlace at(float x, float y) const
    {
        constexpr float upright = 4096.0f;
        const auto fromEdge = [](float inside, float whole)
        { return std::min(inside, whole - inside); };
        const float column = std::floor(x);
        const float row = std::floor(y);
        if (name == "herringbone")
        {
            const float turn = modulo(column - row, 2.0f * length);
            const float below = 2.0f * length - 1.0f - turn;
            if (turn < length)
                return {modulo(column - turn, columns), modulo(row, rows),
                        fromEdge(turn + (x - column), length), fromEdge(y - row, 1.0f)};
            return {modulo(column, columns) + upright, modulo(row - below, rows),
                    fromEdge(x - column, 1.0f), fromEdge(below + (y - row), length)};
        }
        if (name == "basket")
        {
            const float squareX = std::floor(x / length);
            const float squareY = std::floor(y / length);
            if (modulo(squareX + squareY, 2.0f) == 0.0f)
                return {modulo(squareX, columns), modulo(row, rows),
                        fromEdge(x - squareX * length, length), fromEdge(y - row, 1.0f)};
            return {modulo(column, columns) + upright, modulo(squareY, rows),
                    fromEdge(x - column, 1.0f), fromEdge(y - squareY * length, length)};
        }
        const float shifted = x + modulo(row, name == "third" ? 3.0f : 2.0f) * shift;
        return {modulo(std::floor(shifted), columns), modulo(row, rows),
                fromEdge(fraction(shifted), 1.0f), fromEdge(y - row, 1.0f)};
    }
};

Shares tile(const Properties& given, const Image& image)
{
    constexpr std::string_view bonds[] = {"stack",       "running", "third",
                                          "herringbone", "basket",  "custom"};
    TileBond bond{bonds[given.integer("tile_Bond")], 0.0f, 0.0f, 0.0f, 0.0f};
    const float joint = given.number("tile_JointWidth");
    const bool interlocks = bond.name == "herringbone" || bond.name == "basket";
    float width = given.number("tile_Width");
    float height = given.number("tile_Height");
    const float ratio =
        (std::max(width, height) + joint) / (std::min(width, height) + joint) + 0.5f;
    bond.length = std::floor(std::clamp(ratio, 2.0f, 64.0f));
    if (interlocks)
        width = height = std::min(width, height);
    bond.shift = bond.name == "running"  ? 0.5f
                 : bond.name == "third"  ? 1.0f / 3.0f
                 : bond.name == "custom" ? given.number("tile_Offset")
                                         : 0.0f;
    const float columnsInBond = interlocks ? 2.0f * bond.length : 1.0f;
    const float rowsInBond = interlocks             ? 2.0f * bond.length
                             : bond.name == "stack" ? 1.0f
                             : bond.name == "third" ? 3.0f
                                                    : 2.0f;
    bond.columns = std::ceil(given.number("tile_Columns") / columnsInBond) * columnsInBond;
    bond.rows = std::ceil(given.number("tile_Rows") / rowsInBond) * rowsInBond;
    const float radius = given.number("tile_Rounding") * 0.5f * std::min(width, height);
    const float imageWidth = bond.columns * (width + joint);
    const float imageHeight = bond.rows * (height + joint);
    const float bevel = given.number("tile_Bevel");
    const float missing = given.number("tile_Missing");
    const float variation = given.number("tile_Variation");
    const std::uint32_t seed = given.seed("tile_Seed") * 2U;
    const float pixelX = imageWidth * image.pixelX;
    const float pixelY = imageHeight * image.pixelY;
    const auto share = [=](float inside, float pixel)
    {
        if (image.heights && bevel > pixel)
            return clamp01(inside / bevel);
        return std::max(clamp01(inside / pixel + 0.5f), 1.0f - 2.0f * (0.5f * joint) / pixel);
    };
    return [=](const Pixel& p) -> Share
    {
        const TilePlace at = bond.at(p.x * bond.columns, p.y * bond.rows);
        const float inX = at.fromSide * (imageWidth / bond.columns) - 0.5f * joint;
        const float inY = at.fromEnd * (imageHeight / bond.rows) - 0.5f * joint;
        float solid = std::min(share(inX, pixelX), share(inY, pixelY));
        if (radius > 0.0f)
        {
            const float cornerX = std::max(radius - inX, 0.0f);
            const float cornerY = std::max(radius - inY, 0.0f);
            solid = share(radius - std::sqrt(cornerX * cornerX + cornerY * cornerY) +
                              std::max(std::min(inX, inY) - radius, 0.0f),
                          std::max(pixelX, pixelY));
        }
        if (random(at.column, at.row, seed) < missing)
            solid = 0.0f;
        const float darker = random(at.column, at.row, seed + 1U) * variation;
        return {1.0f - solid, image.heights ? 1.0f : 1.0f - darker};
    };
}

Shares wave(const Properties& given, const Image& /*image*/)
{
    struct Source
    {
        float x, y, frequency, phase;
    };
    constexpr float directions[][2] = {{0, 8},  {1, 7}, {-1, 9}, {2, 8},
                                       {-2, 7}, {1, 9}, {-1, 7}, {3, 8}};
    const bool radial = given.integer("wave_Type") == 0;
    const float phase = fraction(given.number("wave_Phase") / 360.0f);
    Lots lots(given.seed("wave_Seed"));
    std::vector<Source> sources;
    for (int i = 0; i < given.integer("wave_Sources"); ++i)
    {
        const float a = lots.next();
        const float b = lots.next();
        const float shorter = 1.0f / (1.0f - given.number("wave_LengthVariation") * lots.next());
        const float* d = directions[static_cast<int>(a * 8.0f)];
        if (radial)
            sources.push_back({a, b, 8.0f * shorter, phase});
        else
            sources.push_back(
                {std::round(d[0] * shorter), std::round(d[1] * shorter), 1.0f, phase + b});
    }
    const float scale =
        given.number("wave_Amplitude") / (2.0f * static_cast<float>(sources.size()));
    return [=](const Pixel& p) -> Share
    {
        float sum = 0.0f;
        for (const Source& s : sources)
        {
            const float place =
                radial ? distance(p.x - s.x, p.y - s.y) * s.frequency : p.x * s.x + p.y * s.y;
            sum += sine(place - s.phase);
        }
        return {clamp01(sum * scale + 0.5f)};
    };
}

Shares wood(const Properties& given, const Image& image)
{
    const bool plank = given.integer("wood_Type") == 0;
    const float across = given.number("wood_RadialNoise");
    const float along = given.number("wood_AxialNoise");
    const float fibres = given.number("wood_Fibres");
    const float phase = given.number("wood_Phase");
    const Noise bends = repeatingNoise(image, plank ? 3 : 4, plank ? 2 : 4, 3, phase, false);
    const Noise fibre = repeatingNoise(image, plank ? 192 : 128, plank ? 12 : 128, 2, phase, false);
    return [=](const Pixel& p) -> Share
    {
        float place = bends(p) * across;
        if (plank)
            place = place + p.x * 16.0f + sine(p.y) * along;
        else
            place += distance(p.x - 0.5f, p.y - 0.5f) * 16.0f;
        const float year = fraction(place);
        const float rising = year * (1.0f / 0.85f);
        const float late = year < 0.85f ? rising * rising : (1.0f - year) * (1.0f / (1.0f - 0.85f));
        return {clamp01(late + fibre(p) * fibres)};
    };
}

/// The place of a stop counts once those before it do.
float rampColor(const std::vector<ColorStop>& stops, int step, float t, int channel)
{
    float color = stops[0].color[channel];
    for (std::size_t i = 1; i < stops.size(); ++i)
    {
        const float from = stops[i - 1].position;
        const float to = stops[i].position;
        float way = t < to ? 0.0f : 1.0f;
        if (step != 1 && from < to)
            way = clamp01((t - from) / (to - from));
        if (step == 2)
            way = smooth(way);
        color += way * (stops[i].color[channel] - color);
    }
    return color;
}

std::vector<ColorStop> stopsOf(const Properties& given)
{
    const auto& colors = given.list("gradient_Color#");
    const auto& positions = given.list("gradient_Position#");
    const bool constant = given.integer("gradient_Interpolation") == 1;
    std::vector<ColorStop> stops;
    for (std::size_t i = 0; i < colors.size(); ++i)
    {
        const auto count = static_cast<float>(colors.size());
        const float even = static_cast<float>(i) / (constant ? count : count - 1.0f);
        const float own = positions.size() >= colors.size() ? positions[i][0] : even;
        stops.push_back({own, {colors[i][0], colors[i][1], colors[i][2]}});
    }
    std::stable_sort(stops.begin(), stops.end(), [](const ColorStop& a, const ColorStop& b)
                     { return a.position < b.position; });
    if (stops.empty())
        stops = {{0.0f, {}}, {constant ? 0.5f : 1.0f, {1.0f, 1.0f, 1.0f}}};
    return stops;
}

float gray(const float* c)
{
    return 0.2126f * c[0] + 0.7152f * c[1] + 0.0722f * c[2];
}

struct KindOfPattern
{
    Shares (*shares)(const Properties&, const Image&);
    /// Of the two colours.
    const char* first;
    const char* second;
};

/// In the order of PatternKinds.
constexpr KindOfPattern kinds[] = {
    {checker, "checker_Color1", "checker_Color2"}, {gradient, nullptr, nullptr},
    {marble, "marble_Color1", "marble_Color2"},    {noise, "noise_Color1", "noise_Color2"},
    {speckle, "speckle_Color1", "speckle_Color2"}, {tile, "tile_Color", "tile_JointColor"},
    {wave, "wave_Color1", "wave_Color2"},          {wood, "wood_Color1", "wood_Color2"},
};
static_assert(std::size(kinds) == bakes::patternKindCount, "a kind without a plain formula");

} // namespace

float srgbCode(float linear)
{
    constexpr float c[] = {-0.05960657f, 0.14038016f,  1.3620015f, -0.8430237f,
                           0.64378244f,  -0.30922374f, 0.06569102f};
    const float x = clamp01(linear);
    return x < 0.0031308f ? clamp01(x * 12.92f) : clamp01(polynomial(c, std::sqrt(std::sqrt(x))));
}

float srgbValue(float code)
{
    constexpr float c[] = {0.00087092305f, 0.034599062f, 0.49519506f, 0.7992111f,
                           -0.6483896f,    0.52299964f,  -0.2623684f, 0.057883427f};
    const float x = clamp01(code);
    return x < 0.04045f ? x / 12.92f : polynomial(c, x);
}

void bakePatternRows(const Pattern& pattern, PatternPixels pixels, int yBegin, int yEnd,
                     OIIO::ImageBuf& image)
{
    const auto width = static_cast<float>(pattern.width);
    const auto height = static_cast<float>(pattern.height);
    const Properties given(pattern);
    const KindOfPattern& kind = kinds[pattern.kind];
    const Shares shares = kind.shares(given, {pattern.width, pattern.height, 1.0f / width,
                                              1.0f / height, pixels == PatternPixels::Heights});
    const int channels = image.nchannels();
    std::vector<ColorStop> stops;
    if (kind.first == nullptr)
        stops = stopsOf(given);
    else
        for (const char* name : {kind.first, kind.second})
        {
            const auto& color = given.list(name)[0];
            stops.push_back({0.0f, {color[0], color[1], color[2]}});
        }
    for (ColorStop& stop : stops)
        if (channels == 1)
            stop.color[0] = gray(stop.color);
    if (kind.shares == tile && pixels == PatternPixels::Heights)
        stops = {{0.0f, {1.0f}}, {0.0f, {0.0f}}};
    const int step = kind.first ? 0 : given.integer("gradient_Interpolation");
    for (OIIO::ImageBuf::Iterator<float> out(image, OIIO::ROI(0, pattern.width, yBegin, yEnd));
         !out.done(); ++out)
    {
        const Pixel pixel{out.x(), out.y(), (static_cast<float>(out.x()) + 0.5f) / width,
                          1.0f - (static_cast<float>(out.y()) + 0.5f) / height};
        const Share share = shares(pixel);
        for (int c = 0; c < channels; ++c)
        {
            const float first = stops[0].color[c] * share.factor;
            const float color = kind.first ? first + share.mix * (stops[1].color[c] - first)
                                           : rampColor(stops, step, share.mix, c);
            out[c] = pixels == PatternPixels::Srgb ? srgbCode(color) : color;
        }
    }
}

} // namespace vyr::MaterialTranslation::baking::reference
