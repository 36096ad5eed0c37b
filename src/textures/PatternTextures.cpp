#include <algorithm>
#include <limits>

#include "assets/Asset.h"
#include "assets/ColorModes.h"
#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "textures/Kinds.h"
#include "textures/Patterns.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

using bakes::Pattern;
using bakes::PatternUse;
using Value = std::array<float, 3>;

const char* unitTypeOf(const PropertyRow& row)
{
    const std::string_view unit = row.unit;
    return unit == "meter" ? base::distanceUnitType : unit == "degree" ? base::angleUnitType : "";
}

PatternUse useOf(const TextureRequest& request)
{
    if (request.role == TextureRole::Relief)
        return PatternUse::Relief;
    return std::string_view(request.type) == "color3" ? PatternUse::Color : PatternUse::Number;
}

/// A texture that drives one of a pattern's colours: one of its own, one level below.
class PatternReader
{
  public:
    /// @param isInner  Whether the pattern stands in another one's colour.
    PatternReader(const TextureRequest& request, PatternUse use, bool isInner)
        : _request(request), _asset(request.texture), _log(request.textureLog), _use(use),
          _isInner(isInner)
    {
    }

    Pattern read()
    {
        constexpr std::uint64_t largest = std::numeric_limits<int>::max();
        _pattern.kind = findPattern(_asset.schema()).value();
        const SchemaRow& schema = proceduralTextures()[_pattern.kind];
        const auto colors = patternColors(_pattern.kind);
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
        {
            const PropertyRow& row = schema.properties[i];
            auto& list = _pattern.values.rows.emplace_back();
            if (!isNumbered(row))
                list.push_back(readValue(row, row.name).value_or(row.fallback));
            else
                for (std::string name = numbered(row, 1); _asset[name.c_str()].hasValue();
                     name = numbered(row, list.size() + 1))
                    list.push_back(*readValue(row, name.c_str()));
            if (row.takesTexture && _asset[row.name].isConnected())
                readImage(row.name, _pattern.images[i == colors[0] ? 0 : 1]);
        }
        _pattern.width =
            static_cast<int>(std::min(_request.translation.options.imageSize, largest));
        _pattern.height = _pattern.width;
        readPlacement();
        return std::move(_pattern);
    }

    const Placement& placement() const { return _placement; }

  private:
    bool isColor() const { return _use == PatternUse::Color; }

    std::optional<Value> readValue(const PropertyRow& row, const char* name) const
    {
        const assets::Property property = _asset[name];
        if (!property.hasValue())
            return std::nullopt;
        Value value{};
        switch (row.kind)
        {
        case PropertyKind::Boolean:
            value[0] = property.boolean() ? 1.0f : 0.0f;
            break;
        case PropertyKind::Integer:
            value[0] = static_cast<float>(property.integer());
            break;
        case PropertyKind::Scalar:
            value[0] = readNumber(row, property);
            break;
        case PropertyKind::Color:
            value = readColor(property);
            break;
        case PropertyKind::Choice:
            value[0] = readChoice(row, property);
            break;
        }
        if (const std::string done = takeInside(row, value); !done.empty())
            _log.warning(DiagnosticCode::ValueAdjusted, name, done);
        return value;
    }

    float readNumber(const PropertyRow& row, const assets::Property& property) const
    {
        const char* const type = unitTypeOf(row);
        if (!*type)
            return property.bareNumber(_log);
        property.unit(type, _log); // says when it is none of this kind
        return static_cast<float>(static_cast<double>(property.number()) *
                                  base::unitSize(property.unitCode(), type));
    }

    Value readColor(const assets::Property& property) const
    {
        if (!isColor())
            return property.color();
        const assets::ShaderColor color =
            assets::ColorReader{_asset, _request.translation.options.colorMode, _log}.linear(
                property.name(), assets::ShaderColor(0.0f));
        Value value{color[0], color[1], color[2]};
        for (float& channel : value)
            channel = std::clamp(channel, 0.0f, 1.0f);
        if (value != Value{color[0], color[1], color[2]})
            _log.warning(DiagnosticCode::ValueAdjusted, property.name(),
                         "an image holds 0 to 1; the colour is cut to it");
        return value;
    }

    float readChoice(const PropertyRow& row, const assets::Property& property) const
    {
        const std::string choice = property.choice("");
        const auto place = choicePlace(row, choice);
        if (!place && !choice.empty())
            _log.warning(DiagnosticCode::ChoiceUnknown, property.name(),
                         "\"" + choice + "\" is none of " + row.choices +
                             "; taken as the first of them");
        return static_cast<float>(place.value_or(0));
    }

    /// The texture that stands in for a colour.
    void readImage(const char* property, std::shared_ptr<const bakes::ColorImage>& image) const
    {
        const assets::Property color = _asset[property];
        color.settleConnection();
        const auto refuse = [&](const std::string& why)
        {
            _log.warning(DiagnosticCode::TextureNotTranslated, property,
                         why + "; the plain colour is used");
        };
        if (_isInner)
            return refuse("a texture within the colour of a texture's colour is not baked");
        const assets::AssetHandle connected = color.connected();
        if (!connected)
            return refuse("the connection leads to no asset");
        const assets::Asset texture(*connected);
        const std::string schema = texture.schema();
        const Log log = _log.below(property);
        const TextureRequest request{_request.translation,
                                     _request.material,
                                     texture,
                                     property,
                                     TextureRole::Value,
                                     _request.type,
                                     0.0f,
                                     _log,
                                     log};
        auto read = std::make_shared<bakes::ColorImage>();
        if (findPattern(schema))
        {
            PatternReader reader(request, isColor() ? PatternUse::Color : PatternUse::Number, true);
            read->pattern = std::make_shared<const Pattern>(reader.read());
            read->placement = read->pattern->placement;
        }
        else if (schema == assets::bitmapSchema)
        {
            const Reading bitmap = readBitmap(request);
            if (!bitmap)
                return;
            if (!isImageFile(bitmap->texture.file))
                return refuse("its image is missing");
            read->file = base::pathFromUtf8(bitmap->texture.file);
            read->placement = inMetres(*bitmap->texture.placement, texture);
        }
        else
            return refuse("a texture of schema \"" + schema + "\" cannot be baked into another");
        texture.reportUnread(log);
        image = std::move(read);
    }

    void readPlacement()
    {
        _placement = textures::readPlacement(_request);
        // Patterns go on for ever, unless the asset says otherwise.
        _placement.repeatU = _asset["texture_URepeat"].boolean(true);
        _placement.repeatV = _asset["texture_VRepeat"].boolean(true);
        _pattern.placement = inMetres(_placement, _asset);
        const auto period = patternPeriod(_pattern.kind, _pattern.values);
        if (!period || _asset["texture_RealWorldScaleX"].hasValue())
            return;
        _pattern.placement.size = *period;
        _placement.realWorldScale = inUnit(*period);
    }

    /// A size in the unit of the first length that the asset states with one.
    Measured<assets::Vector2> inUnit(const assets::Vector2& metres) const
    {
        const SchemaRow& schema = proceduralTextures()[_pattern.kind];
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
        {
            const PropertyRow& row = schema.properties[i];
            const assets::Property property = _asset[row.name];
            if (unitTypeOf(row) != base::distanceUnitType || !property.hasValue())
                continue;
            const std::uint32_t code = property.unitCode();
            const base::Unit unit = base::unitForCode(code);
            if (unit.type != base::distanceUnitType || unit.name.empty())
                return {metres, {}};
            const double size = base::unitSize(code, base::distanceUnitType);
            return {{static_cast<float>(static_cast<double>(metres[0]) / size),
                     static_cast<float>(static_cast<double>(metres[1]) / size)},
                    unit};
        }
        return {metres, {"meter", base::distanceUnitType}};
    }

    static bakes::ImagePlacement inMetres(const Placement& placement, const assets::Asset& asset)
    {
        const auto scaled = [&](const Measured<assets::Vector2>& pair, const char* property)
        {
            const assets::Property x = asset[property];
            const double size =
                x.hasValue() ? base::unitSize(x.unitCode(), base::distanceUnitType) : 1.0;
            return assets::Vector2{static_cast<float>(static_cast<double>(pair.value[0]) * size),
                                   static_cast<float>(static_cast<double>(pair.value[1]) * size)};
        };
        const assets::Property angle = asset["texture_WAngle"];
        const double degrees =
            angle.hasValue() ? base::unitSize(angle.unitCode(), base::angleUnitType) : 1.0;
        return {scaled(placement.realWorldOffset, "texture_RealWorldOffsetX"),
                scaled(placement.realWorldScale, "texture_RealWorldScaleX"),
                placement.uvOffset,
                placement.uvScale,
                {placement.repeatU, placement.repeatV},
                static_cast<float>(static_cast<double>(placement.rotation.value) * degrees)};
    }

    const TextureRequest& _request;
    const assets::Asset& _asset;
    const Log& _log;
    PatternUse _use;
    bool _isInner;
    Pattern _pattern;
    Placement _placement;
};

} // namespace

Reading readPattern(const TextureRequest& request)
{
    const PatternUse use = useOf(request);
    PatternReader reader(request, use, false);
    const auto pattern = std::make_shared<const Pattern>(reader.read());
    const bool isRelief = use == PatternUse::Relief;
    if (isRelief && isFlat(pattern->kind, pattern->values))
    {
        request.log.warning(
            DiagnosticCode::TextureNotTranslated, request.property,
            "all stops of the gradient are alike; the surface stays without relief");
        return std::nullopt;
    }
    TextureReading reading;
    if (isRelief)
    {
        reading.texture = bakedNormalMap();
        reading.texture.strength = {"normal_scale", {request.bumpAmount, {}}};
    }
    else
    {
        const bool isColor = use == PatternUse::Color;
        reading.texture = {"kvor:bitmap", {}, isColor ? assets::srgbTexture : assets::linearRec709};
        reading.texture.tone = Tone{};
    }
    reading.texture.placement = reader.placement();
    reading.bake = {std::string(request.property) + "_" + std::to_string(pattern->width) + ".png",
                    bakes::PatternBake{pattern, use}};
    return reading;
}

} // namespace vyr::MaterialTranslation::textures
