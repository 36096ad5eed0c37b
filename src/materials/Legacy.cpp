#include <algorithm>
#include <cmath>
#include <iostream>
#include <string_view>

#include "materials/Translators.h"
#include "materials/legacy/MaterialValues.h"
#include "textures/Patterns.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using legacy::NamedSchema;
using textures::MadePattern;
using textures::TextureRole;
using Params = StandardSurfaceParams;

/// The shader input that shows a field; null for one that no texture may drive.
const StandardSurfaceInput* inputOf(const legacy::Row& row)
{
    const auto find = [](auto matches) -> const StandardSurfaceInput*
    {
        const auto* input = std::ranges::find_if(standardSurfaceInputs, matches);
        return input == std::end(standardSurfaceInputs) ? nullptr : input;
    };
    const auto named = [&](std::string_view name)
    { return find([=](const StandardSurfaceInput& input) { return input.name == name; }); };
    if (row.duty == legacy::Duty::ReliefTexture)
        return named("normal");
    if (row.duty == legacy::Duty::CutOut)
        return named("opacity");
    if (std::holds_alternative<std::monostate>(row.field))
        return nullptr;
    return find([&](const StandardSurfaceInput& input) { return input.field == row.field; });
}

/// What the value of a field is as a colour; nothing for a field that no texture drives.
std::optional<std::array<float, 3>> shownBy(const Params& params,
                                            const StandardSurfaceInput::Field& field)
{
    if (const auto* number = std::get_if<float Params::*>(&field))
        return std::array{params.*(*number), params.*(*number), params.*(*number)};
    if (const auto* color = std::get_if<Params::Color Params::*>(&field))
        return std::array{(params.*(*color))[0], (params.*(*color))[1], (params.*(*color))[2]};
    return std::nullopt;
}

/// Noise that covers a share of the surface with its second colour.
/// @param isColor  Colours go before numbers: at the edges bright metal would look like pale paint.
MadePattern patches(float share, bool isColor, const std::array<float, 3>& bare,
                    const std::array<float, 3>& covered)
{
    // The noise lies around 0.5 like a normal distribution of deviation 0.13; a logistic one is near enough.
    constexpr double deviation = 0.13;
    const double odds = (1.0 - static_cast<double>(share)) / static_cast<double>(share);
    constexpr float blur = 0.02f;
    const auto middle = static_cast<float>(0.5 + deviation / 1.7 * std::log(odds));
    const float edge = isColor ? middle - blur : middle + blur;
    constexpr float size = 0.6f;
    return {"NoiseSchema",
            {},
            {{"noise_Type", {1.0f}},
             {"noise_Size", {12.0f}},
             {"noise_Levels", {7.0f}},
             {"noise_ThresholdLow", {edge - blur}},
             {"noise_ThresholdHigh", {edge + blur}},
             {"noise_Color1", bare},
             {"noise_Color2", covered}},
            size};
}

/// Makes and reads the textures of one material.
class LegacyTextures
{
  public:
    LegacyTextures(const assets::Asset& asset, const Translation& translation,
                   const NamedSchema& schema, const legacy::MaterialValues& values,
                   StandardSurface& material)
        : _asset(asset), _log(translation.log), _schema(schema), _values(values),
          _material(material), _textures(asset, translation)
    {
    }

    /// In the order in which one texture of an input wins over the next.
    void read()
    {
        const bool isMade = isPatternMade();
        readConnected(isMade);
        if (isMade)
            makePattern();
        makeReliefs();
        makePatches();
        _textures.bake();
        for (const auto& [input, property] : _driven)
            take(input, property);
        _textures.dropUnused();
    }

  private:
    float reliefAmount() const
    {
        return _values.givenBy(legacy::Duty::ReliefAmount).value_or(1.0f);
    }

    /// Whether the material's own properties make its pattern.
    bool isPatternMade() const
    {
        const legacy::Pattern* const pattern = _schema.schema().pattern;
        if (!pattern)
            return false;
        const std::size_t place = _values.placeOf(pattern->property);
        if (_values.isGiven(place))
            return _values.at(place)[0] != 0.0f;
        const auto& rows = _schema.rows();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern && _values.isGiven(i))
                return true;
        return false;
    }

    void readConnected(bool isMade)
    {
        const auto& rows = _schema.rows();
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const legacy::Row& row = *rows[i].row;
            const char* const name = rows[i].property.name;
            const StandardSurfaceInput* const input = inputOf(row);
            if (!row.property.takesTexture || !input || !_asset[name].isConnected())
                continue;
            if (i + 1 < rows.size() && rows[i + 1].row->duty == legacy::Duty::Fade &&
                !doesShow(name, rows[i + 1].property.name, _values.at(i + 1)[0]))
                continue;
            // A texture of the base colour shows within the pattern.
            if (isMade && isColorOfPattern(row))
            {
                _isColorTextured = true;
                continue;
            }
            const bool isRelief = row.duty == legacy::Duty::ReliefTexture;
            _textures.read(name, isRelief ? TextureRole::AnyRelief : TextureRole::Value,
                           input->type, reliefAmount());
            _driven.emplace_back(input->name, name);
        }
    }

    /// Of a fade documents know all or nothing.
    bool doesShow(const char* property, const char* fadeProperty, float fade) const
    {
        if (fade <= 0.0f)
            _asset[property].settleConnection();
        else if (fade < 1.0f)
            _log.warning(DiagnosticCode::FadeIgnored, fadeProperty,
                         "the image is not blended with the plain value; it shows fully");
        return fade > 0.0f;
    }

    bool isColorOfPattern(const legacy::Row& row) const
    {
        return _schema.schema().pattern->color && std::string_view(row.property.name) == "color";
    }

    bool isDriven(std::string_view input) const
    {
        return std::ranges::any_of(_driven,
                                   [&](const auto& driven) { return driven.first == input; });
    }

    void makePattern()
    {
        const legacy::Pattern& pattern = *_schema.schema().pattern;
        MadePattern made{pattern.schema, {}, {}};
        made.depth = pattern.depth;
        const auto add = [&](const legacy::Constant& constant)
        {
            if (constant.property)
                made.constants.push_back({constant.property, constant.value});
        };
        const auto& rows = _schema.rows();
        add(pattern.implied);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern)
            {
                made.links.push_back({rows[i].row->pattern, rows[i].property.name});
                if (_values.isGiven(i) && rows[i].row->presets.empty())
                    add({rows[i].row->pattern, _values.at(i)});
            }
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (const legacy::Preset* const preset = _values.presetAt(i))
                std::ranges::for_each(preset->shapes, add);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern && rows[i].row->presets.empty())
                add({rows[i].row->pattern, _values.at(i)});
        if (pattern.color)
        {
            add({pattern.color, colorOf(_material.params)});
            if (_isColorTextured)
                made.links.push_back({pattern.color, _schema.nameOf("color")});
        }
        std::ranges::for_each(pattern.constants, add);
        for (const char* input : pattern.inputs)
            if (input && !isDriven(input))
                make(input, pattern.property, made, reliefAmount());
    }

    /// Reliefs that choices make, of which the last row's wins, where nothing else is the relief.
    void makeReliefs()
    {
        for (std::size_t i = _schema.rows().size(); i-- > 0;)
        {
            const legacy::Preset* const preset = _values.presetAt(i);
            if (!preset || !preset->relief)
                continue;
            const legacy::Relief& relief = *preset->relief;
            if (relief.depth > 0.0f && isDriven("normal"))
            {
                if (_values.isGiven(i))
                    _log.warning(DiagnosticCode::ValueAdjusted, _schema.rows()[i].property.name,
                                 "its relief is not shown: the material has another one");
            }
            else if (relief.depth > 0.0f)
                make("normal", _schema.rows()[i].row->property.name, patternOf(relief),
                     reliefAmount());
            if (relief.shade > 0.0f && !isDriven("base_color"))
                make("base_color", _schema.rows()[i].row->property.name, shadesOf(relief));
        }
    }

    MadePattern patternOf(const legacy::Relief& relief) const
    {
        MadePattern made{relief.schema, {}, {}, relief.size};
        made.depth = relief.depth;
        made.stretch =
            _values.givenBy(legacy::Duty::ReliefSize).value_or(relief.feature) / relief.feature;
        for (const legacy::Constant& constant : relief.constants)
            if (constant.property)
                made.constants.push_back({constant.property, constant.value});
        return made;
    }

    /// The heights of a relief as shades of the base colour.
    MadePattern shadesOf(const legacy::Relief& relief) const
    {
        MadePattern made = patternOf(relief);
        const std::size_t kind = textures::findPattern(relief.schema).value();
        const auto color = colorOf(_material.params);
        for (const std::size_t place : textures::patternColors(kind))
        {
            const PropertyRow& row = proceduralTextures()[kind].properties[place];
            const auto found = std::ranges::find(made.constants, std::string_view(row.name),
                                                 &MadePattern::Constant::patternProperty);
            const bool isGiven = found != made.constants.end();
            const float height = isGiven ? found->value[0] : row.fallback[0];
            const float left = 1.0f - relief.shade * (1.0f - height);
            const std::array shaded{color[0] * left, color[1] * left, color[2] * left};
            if (isGiven)
                found->value = shaded;
            else
                made.constants.push_back({row.name, shaded});
        }
        return made;
    }

    /// What a row covers in part, in patches; evenly where another texture drives what they would.
    void makePatches()
    {
        const auto& rows = _schema.rows();
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const float share = _values.at(i)[0];
            if (rows[i].row->duty != legacy::Duty::Patches || share <= 0.0f || share >= 1.0f)
                continue;
            const Params bare = _values.paramsWith(i, 0.0f);
            const Params covered = _values.paramsWith(i, 1.0f);
            const auto differs = [&](const StandardSurfaceInput& input)
            { return shownBy(bare, input.field) != shownBy(covered, input.field); };
            if (std::ranges::any_of(standardSurfaceInputs, [&](const StandardSurfaceInput& input)
                                    { return differs(input) && isDriven(input.name); }))
                continue;
            for (const StandardSurfaceInput& input : standardSurfaceInputs)
                if (differs(input))
                    make(input.name, rows[i].row->property.name,
                         patches(share, std::string_view(input.type) == "color3",
                                 *shownBy(bare, input.field), *shownBy(covered, input.field)));
        }
    }

    /// @param row  Names the texture's node, with the input.
    void make(const std::string& input, const char* row, const MadePattern& pattern,
              float amount = 1.0f)
    {
        const std::string name = _schema.nameOf(row) + '_' + input;
        _textures.make(name.c_str(),
                       input == "normal" ? TextureRole::AnyRelief : TextureRole::Value,
                       shaderInputType(input), amount, pattern);
        _driven.emplace_back(input, name);
    }

    void take(const std::string& input, const std::string& property)
    {
        const assets::Property own = _asset[property.c_str()];
        std::optional<textures::Texture> texture =
            own ? _textures.take(own) : _textures.take(property);
        if (texture)
            _material.textures.insert_or_assign(input,
                                                DrivingTexture{property, std::move(*texture)});
    }

    static std::array<float, 3> colorOf(const Params& params)
    {
        return {params.base_color[0], params.base_color[1], params.base_color[2]};
    }

    const assets::Asset& _asset;
    const Log& _log;
    const NamedSchema& _schema;
    const legacy::MaterialValues& _values;
    StandardSurface& _material;
    textures::TextureSet _textures;
    /// Whether a texture shows in the colour of the pattern.
    bool _isColorTextured = false;
    /// Shader inputs and the textures that drive them.
    std::vector<std::pair<std::string, std::string>> _driven;
};

StandardSurface readLegacy(const assets::Asset& asset, const Translation& translation,
                           const NamedSchema& schema)
{
    const std::int32_t colorMode = translation.options.colorMode;
    const legacy::MaterialValues values(asset, schema, colorMode, translation.log);
    StandardSurface material;
    material.params = values.params();
    LegacyTextures(asset, translation, schema, values, material).read();
    asset.reportUnread(translation.log);
    for (const StandardSurfaceInput& input : standardSurfaceInputs)
        if (const auto* color = std::get_if<Params::Color Params::*>(&input.field))
            material.params.*(*color) = assets::statedColor(material.params.*(*color), colorMode);
    return material;
}

} // namespace

bool translateLegacy(const Translation& translation)
{
    const assets::Asset described(translation.asset);
    const std::string schema = described.schema();
    if (schema == assets::genericSchema)
        return translateGeneric(translation);
    if (translation.options.verbose)
        assets::writeMaterialDescription(described, std::cout);
    const auto named =
        std::ranges::find_if(legacy::namedSchemas(), [&](const legacy::NamedSchema& s)
                             { return s.schema().name == schema; });
    if (named == legacy::namedSchemas().end())
    {
        translation.log.error(DiagnosticCode::LegacyUnavailable, "",
                              "the schema \"" + schema + "\" is none of the legacy family");
        return false;
    }
    std::ostream* const trace = translation.options.verbose ? &std::cout : nullptr;
    return translateStandardSurface(
        translation,
        [&]
        {
            const assets::Asset asset(translation.asset, trace);
            StandardSurface material = readLegacy(asset, translation, *named);
            material.tint =
                readTint(schema, {asset, translation.options.colorMode, translation.log});
            return material;
        });
}

} // namespace vyr::MaterialTranslation::materials
