#include <algorithm>
#include <limits>

#include "assets/Asset.h"
#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "textures/Kinds.h"
#include "textures/Patterns.h"
#include "textures/PropertyValues.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

using bakes::Pattern;
using bakes::PatternUse;
using Value = std::array<float, 3>;

PatternUse useOf(const TextureRequest& request)
{
    if (request.role == TextureRole::Relief || request.role == TextureRole::AnyRelief)
        return PatternUse::Relief;
    return std::string_view(request.type) == "color3" ? PatternUse::Color : PatternUse::Number;
}

/// A texture that drives one of a pattern's colours: one of its own, one level below.
class PatternReader
{
  public:
    /// @param isInner  Whether the pattern stands in another one's colour.
    /// @param made  Null: the properties are the request's texture's own.
    PatternReader(const TextureRequest& request, PatternUse use, bool isInner,
                  const MadePattern* made = nullptr)
        : _request(request), _asset(request.texture), _log(request.textureLog), _use(use),
          _isInner(isInner), _made(made)
    {
    }

    Pattern read()
    {
        constexpr std::uint64_t largest = std::numeric_limits<int>::max();
        _pattern.kind = findPattern(_made ? _made->schema : _asset.schema()).value();
        const SchemaRow& schema = proceduralTextures()[_pattern.kind];
        const auto colors = patternColors(_pattern.kind);
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
        {
            const PropertyRow& row = schema.properties[i];
            auto& list = _pattern.values.rows.emplace_back();
            const std::string own = nameOf(row);
            if (!isNumbered(row))
                list.push_back(readValue(row, own).value_or(fallbackOf(row)));
            else if (!_made)
                for (std::string name = numbered(row, 1); _asset[name.c_str()].hasValue();
                     name = numbered(row, list.size() + 1))
                {
                    const auto value = readValue(row, name);
                    if (!value)
                        break;
                    list.push_back(*value);
                }
            if (row.takesTexture && !own.empty() && _asset[own.c_str()].isConnected())
                readImage(own.c_str(), _pattern.images[i == colors[0] ? 0 : 1]);
        }
        if (const std::string done = unevenNumbers(schema, _pattern.values); !done.empty())
            _request.log.warning(DiagnosticCode::ValueAdjusted, _request.property, done);
        _pattern.width =
            static_cast<int>(std::min(_request.translation.options.imageSize, largest));
        _pattern.height = _pattern.width;
        readPlacement();
        return std::move(_pattern);
    }

    const Placement& placement() const { return _placement; }
    /// As of the bake; a texture that is connected has the slopes that an image of 1024 pixels has from pixel to pixel.
    std::array<float, 2> strength() const { return _strength; }

  private:
    bool isColor() const { return _use == PatternUse::Color; }

    /// Name of the property that says what a row wants to know; empty when none does.
    std::string nameOf(const PropertyRow& row) const
    {
        if (!_made)
            return row.name;
        const auto link = std::ranges::find(_made->links, std::string_view(row.name),
                                            &MadePattern::Link::patternProperty);
        return link == _made->links.end() ? std::string() : link->materialProperty;
    }

    Value fallbackOf(const PropertyRow& row) const
    {
        if (_made)
            for (const MadePattern::Constant& constant : _made->constants)
                if (std::string_view(constant.patternProperty) == row.name)
                    return constant.value;
        return row.fallback;
    }

    std::optional<Value> readValue(const PropertyRow& row, const std::string& name) const
    {
        // The values of a made pattern are constants by now.
        if (name.empty() || (_made && row.kind != PropertyKind::Choice))
            return std::nullopt;
        const std::optional<std::int32_t> colorMode =
            isColor() ? std::optional(_request.translation.options.colorMode) : std::nullopt;
        std::optional<Value> value = readPropertyValue(_asset, row, name.c_str(), colorMode, _log);
        if (!value || row.kind != PropertyKind::Color || _use == PatternUse::Relief)
            return value;
        const Value given = *value;
        for (float& channel : *value)
            channel = std::clamp(channel, 0.0f, 1.0f);
        if (*value != given)
            _log.warning(DiagnosticCode::ValueAdjusted, name,
                         "an image holds 0 to 1; the colour is cut to it");
        return value;
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
        if (const std::size_t count = color.connectionCount(); count > 1)
            _log.warning(DiagnosticCode::ConnectionsIgnored, property,
                         "only the first of " + std::to_string(count) +
                             " connected assets is used");
        if (_isInner)
            return refuse("a texture within the colour of a texture's colour is not baked");
        const assets::AssetHandle connected = color.connected();
        if (!connected)
            return refuse("the connection leads to no asset");
        if (_asset.isOf(*connected))
            return refuse("a texture cannot stand in its own colour");
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
        read->property = _made ? property : std::string(_request.property) + '/' + property;
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
        const bool isPlaced = _asset["texture_RealWorldScaleX"].hasValue();
        auto period = patternPeriod(_pattern.kind, _pattern.values);
        if (!period && _made)
            period = {_made->size, _made->size};
        if (_made)
            _strength = {_made->depth / (*period)[0] * 0.5f, _made->depth / (*period)[1] * 0.5f};
        if (!period || isPlaced)
            return;
        const float stretch = _made ? _made->stretch : 1.0f;
        _pattern.placement.size = {(*period)[0] * stretch, (*period)[1] * stretch};
        _placement.realWorldScale = inUnit(_pattern.placement.size);
    }

    /// A size in the unit of the first length that the asset states with one.
    Measured<assets::Vector2> inUnit(const assets::Vector2& metres) const
    {
        const SchemaRow& schema = proceduralTextures()[_pattern.kind];
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
        {
            const PropertyRow& row = schema.properties[i];
            const std::string name = nameOf(row);
            const assets::Property property = _asset[name.c_str()];
            if (std::string_view(row.unit) != "meter" || !property.hasValue())
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
    const MadePattern* _made;
    Pattern _pattern;
    Placement _placement;
    std::array<float, 2> _strength{1.0f / 1024.0f, 1.0f / 1024.0f};
};

Reading readFrom(const TextureRequest& request, const MadePattern* made)
{
    const PatternUse use = useOf(request);
    PatternReader reader(request, use, false, made);
    const auto pattern = std::make_shared<const Pattern>(reader.read());
    const bool isRelief = use == PatternUse::Relief;
    // As that of noise: from pixel to pixel a gradient's slopes are too small for eight bits.
    const bool isAmountBaked = request.role == TextureRole::Relief;
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
        const bool hasOwnScale = request.bumpAmount == 0.0f || !isAmountBaked;
        reading.texture.strength = {"normal_scale", {hasOwnScale ? request.bumpAmount : 1.0f, {}}};
    }
    else
    {
        const bool isColor = use == PatternUse::Color;
        reading.texture = {"kvor:bitmap", {}, isColor ? assets::srgbTexture : assets::linearRec709};
        reading.texture.tone = Tone{};
    }
    reading.texture.placement = reader.placement();
    const std::array<float, 2> strength =
        isAmountBaked ? std::array{request.bumpAmount, request.bumpAmount} : reader.strength();
    reading.bake = {std::string(request.property) + "_" + std::to_string(pattern->width) + ".png",
                    bakes::PatternBake{pattern, use, strength}};
    return reading;
}

} // namespace

Reading readPattern(const TextureRequest& request)
{
    return readFrom(request, nullptr);
}

Reading readMadePattern(const TextureRequest& request, const MadePattern& made)
{
    return readFrom(request, &made);
}

} // namespace vyr::MaterialTranslation::textures
