#include "baking/PatternImage.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include "baking/ColorImage.h"
#include "baking/ImageFile.h"
#include "baking/ImageRows.h"
#include "baking/NoiseStrip.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// A pattern as the kernels want it.
struct Recipe
{
    int width;
    int height;
    PatternStrip strip{};
    PatternShade shade{};
    KernelSet::PatternRow row = nullptr;
    KernelSet::PatternColumns columns = nullptr;
    const void* pattern = nullptr;
    bool rowsAreAlike = false;
    std::vector<ColorStop> stops{};
    std::vector<NoiseField> fields{};
    std::array<std::optional<SampledImage>, 2> images{};
};

/// Bakes a part of an image strip by strip; a pixel depends on its place only.
class PatternRows
{
  public:
    /// Columns that are baked together: what is known of them stays in the cache.
    static constexpr int mostColumns = 8 * noiseColumns;

    /// @param xBegin  The first of at most mostColumns columns.
    PatternRows(const Recipe& recipe, const KernelSet& set, int xBegin)
        : _recipe(recipe), _set(set), _strip(recipe.strip), _shade(recipe.shade),
          _columns(std::min(mostColumns, recipe.width - xBegin))
    {
        for (int x = 0; x < _columns; x += noiseColumns)
        {
            for (const NoiseField& field : recipe.fields)
                _noise.emplace_back(field, set).moveTo(xBegin + x);
            for (int i = 0; i < noiseColumns; ++i)
                _x.push_back((static_cast<float>(xBegin + x + i) + 0.5f) /
                             static_cast<float>(recipe.width));
            recipe.columns(recipe.pattern, _x.data() + x, _known.emplace_back());
        }
    }

    /// @param pixels  The first one.
    void bake(int yBegin, int yEnd, float* pixels)
    {
        for (int y = yBegin; y < yEnd; y += bandRows)
            bakeBand(y, std::min(y + bandRows, yEnd), pixels + rowStart(y - yBegin));
    }

  private:
    /// Noise is added up for some rows at a time, all strips of them, so that pixels are written in their order.
    static constexpr int bandRows = NoiseStrip::bandRows / 2;

    std::size_t rowStart(int row) const
    {
        return static_cast<std::size_t>(_shade.channels) * static_cast<std::size_t>(row) *
               static_cast<std::size_t>(_recipe.width);
    }

    void bakeBand(int yBegin, int yEnd, float* pixels)
    {
        _sums.clear();
        for (NoiseStrip& noise : _noise)
            _sums.push_back(noise.sumRows(yBegin, yEnd));
        for (int y = yBegin; y < yEnd; ++y)
        {
            if (_recipe.rowsAreAlike && y > yBegin)
            {
                std::copy_n(pixels, _shade.channels * _columns, pixels + rowStart(y - yBegin));
                continue;
            }
            // Rows go downwards, the pattern goes up.
            _strip.y = 1.0f - (static_cast<float>(y) + 0.5f) / static_cast<float>(_recipe.height);
            auto sums = _sums.begin();
            for (int x = 0; x < _columns; x += noiseColumns)
            {
                for (std::size_t i = 0; i < _recipe.fields.size(); ++i)
                {
                    _strip.noise[i] = *sums;
                    *sums++ += noiseColumns;
                }
                bakeStrip(static_cast<std::size_t>(x),
                          static_cast<std::size_t>(std::min(noiseColumns, _columns - x)),
                          pixels + rowStart(y - yBegin));
            }
        }
    }

    void bakeStrip(std::size_t x, std::size_t count, float* row)
    {
        _strip.x = _x.data() + x;
        _strip.columns = _known[x / noiseColumns].data();
        _recipe.row(_recipe.pattern, _strip, _mix, _factor);
        sampleImages();
        _set.shadePattern(_mix, _factor, count, _shade,
                          row + static_cast<std::size_t>(_shade.channels) * x);
    }

    void sampleImages()
    {
        for (std::size_t i = 0; i < 2; ++i)
            if (_recipe.images[i])
            {
                _recipe.images[i]->sample(_strip.x, _strip.y, noiseColumns, _colors[i]);
                for (int c = 0; c < 3; ++c)
                    _shade.pixels[i][c] = _colors[i][c];
            }
    }

    const Recipe& _recipe;
    const KernelSet& _set;
    PatternStrip _strip;
    PatternShade _shade;
    int _columns;
    /// Strip after strip the layers of each, and where their next rows begin.
    std::deque<NoiseStrip> _noise;
    std::vector<const float*> _sums;
    std::vector<float> _x;                  ///< of all columns, and on to the end of the last strip
    std::vector<std::vector<float>> _known; ///< by the pattern of the columns of each strip
    alignas(64) float _mix[noiseColumns];
    alignas(64) float _factor[noiseColumns];
    alignas(64) float _colors[2][3][noiseColumns];
};

template <class Kind> constexpr bool hasOwnHeights()
{
    if constexpr (requires { Kind::hasOwnHeights; })
        return Kind::hasOwnHeights;
    else
        return false;
}

template <class Kind> void setColors(Recipe& recipe, const Kind& kind, const Pattern& bake)
{
    const bool isNumber = recipe.shade.channels == 1;
    if constexpr (requires { kind.stops; })
    {
        recipe.stops = kind.stops;
        if (isNumber)
            for (ColorStop& stop : recipe.stops)
                stop.color[0] = luminance(stop.color[0], stop.color[1], stop.color[2]);
        recipe.shade.stops = recipe.stops.data();
        recipe.shade.stopCount = recipe.stops.size();
        recipe.shade.step = kind.step;
    }
    else
        for (std::size_t i = 0; i < 2; ++i)
        {
            const std::array<float, 3>& given = bake.values.rows[Kind::colors[i]].front();
            std::ranges::copy(given, recipe.shade.colors[i]);
            if (isNumber)
                recipe.shade.colors[i][0] = luminance(given[0], given[1], given[2]);
        }
}

/// The first colour is high, the second one low.
void setOwnHeights(PatternShade& shade)
{
    shade.colors[0][0] = 1.0f;
    shade.colors[1][0] = 0.0f;
}

/// One that cannot be read leaves its colour plain.
void setImages(Recipe& recipe, const Pattern& bake, const BakeSettings& settings,
               const KernelSet& set, std::vector<DroppedColorImage>* dropped)
{
    for (std::size_t i = 0; i < 2; ++i)
        try
        {
            if (bake.images[i])
                recipe.images[i].emplace(*bake.images[i], bake, recipe.shade.channels == 1,
                                         settings, set);
        }
        catch (const BakeError& error)
        {
            if (dropped)
                dropped->push_back({bake.images[i]->property, error.what()});
        }
}

template <class Kind> std::vector<NoiseField> fieldsOf(const Kind& kind, const Pattern& bake)
{
    std::vector<NoiseField> fields;
    if constexpr (requires { kind.layers(); })
        for (const NoiseLayer& layer : kind.layers())
            fields.push_back({bake.width, bake.height, 1.0f, layer.cellsX, layer.cellsY,
                              layer.phase, layer.octaves, layer.absolute});
    return fields;
}

} // namespace

OIIO::ImageBuf bakePattern(const Pattern& bake, PatternPixels pixels, const BakeSettings& settings,
                           const KernelSet& set, std::vector<DroppedColorImage>* dropped)
{
    const bool isColor = pixels == PatternPixels::Color || pixels == PatternPixels::Srgb;
    OIIO::ImageBuf image =
        uninitializedImage("pattern_image", OIIO::ImageSpec(bake.width, bake.height,
                                                            isColor ? 3 : 1, OIIO::TypeFloat));
    if (!image.initialized())
        return image;
    Recipe recipe{bake.width, bake.height};
    recipe.strip.sizeX = 1.0f / static_cast<float>(bake.width);
    recipe.strip.sizeY = 1.0f / static_cast<float>(bake.height);
    recipe.strip.heights = pixels == PatternPixels::Heights;
    recipe.shade.channels = isColor ? 3 : 1;
    recipe.shade.srgb = pixels == PatternPixels::Srgb;
    const auto run = [&]<class Kind>()
    {
        const Kind kind{Values(bake.values)};
        recipe.pattern = &kind;
        recipe.row = set.patternRows[bake.kind];
        recipe.columns = set.patternColumns[bake.kind];
        recipe.fields = fieldsOf(kind, bake);
        if constexpr (requires { kind.rowsAreAlike(); })
            recipe.rowsAreAlike = kind.rowsAreAlike();
        setColors(recipe, kind, bake);
        if (hasOwnHeights<Kind>() && recipe.strip.heights)
            setOwnHeights(recipe.shade);
        else
            setImages(recipe, bake, settings, set, dropped);
        forEachRowBlock(bake.width, bake.height, settings.threads,
                        [&](int yBegin, int yEnd)
                        {
                            for (int x = 0; x < bake.width; x += PatternRows::mostColumns)
                                PatternRows(recipe, set, x)
                                    .bake(yBegin, yEnd,
                                          static_cast<float*>(image.pixeladdr(x, yBegin)));
                        });
    };
    withPatternKind(bake.kind, run);
    return image;
}

} // namespace vyr::MaterialTranslation::baking
