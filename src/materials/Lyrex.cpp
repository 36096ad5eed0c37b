#include "materials/Translators.h"

#include <iostream>
#include <variant>

#include "assets/Asset.h"
#include "assets/ColorSpaces.h"
#include "assets/Lyrex.h"
#include "base/Text.h"
#include "graph/Values.h"
#include "materials/StandardSurface.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

using assets::LyrexFamily;
using assets::LyrexProperty;
using assets::LyrexType;
using textures::Texture;

/// A plain value as a document states it.
struct PlainValue
{
    std::variant<float, bool, mx::Color3, mx::Vector3> value;
    std::string colorSpace;
    base::Unit unit;
};

/// A property as it was read.
struct LyrexValue
{
    const LyrexProperty& property;
    std::variant<PlainValue, Texture> content;
};

constexpr const char* graphSuffix = "_inputGraph";
constexpr std::string_view fraction = "layered_fraction";
constexpr const char* fractionInvert = "layered_fraction_invert";

/// Why the texture connected to a property cannot drive it; null when its kind can.
const char* whyNotTexturable(const LyrexProperty& row, const assets::Property& property)
{
    if (row.type == LyrexType::Boolean)
        return "no texture can drive a Boolean";
    // Height and normal maps yield normals; their nodes exist for no other type.
    if (row.type != LyrexType::Vector && property.connectedSchema() == assets::bumpMapSchema)
        return "a bump map can only drive a normal";
    return nullptr;
}

/// Reads the properties of one material.
class LyrexReader
{
  public:
    LyrexReader(const assets::Asset& asset, const Translation& translation)
        : _asset(asset), _log(translation.log), _textures(asset, translation)
    {
    }

    std::vector<LyrexValue> read(const LyrexFamily& family)
    {
        for (const LyrexProperty* row : family.properties)
            if (const assets::Property property = _asset[row->name];
                property.isConnected() && !whyNotTexturable(*row, property))
                _textures.read(row->name, textures::TextureRole::Lyrex, typeName(row->type));
        _textures.bake();

        std::vector<LyrexValue> values;
        for (const LyrexProperty* row : family.properties)
        {
            const assets::Property property = _asset[row->name];
            if (!property.isActive())
                continue;
            _asset.traceTexture(property);
            if (std::optional<Texture> texture = takeTexture(*row, property))
                values.push_back({*row, std::move(*texture)});
            // A property that only carries its texture may be without a value of its own.
            else if (!property.isConnected() || property.hasValue())
                values.push_back({*row, readPlain(*row, property)});
        }
        _asset.reportUnread(_log);
        return values;
    }

  private:
    std::optional<Texture> takeTexture(const LyrexProperty& row, const assets::Property& property)
    {
        const char* const reason =
            property.isConnected() ? whyNotTexturable(row, property) : nullptr;
        if (!reason)
            return _textures.take(property);
        property.settleConnection();
        _log.warning(DiagnosticCode::TextureNotTranslated, row.name,
                     std::string(reason) + "; the plain value is used");
        return std::nullopt;
    }

    PlainValue readPlain(const LyrexProperty& row, const assets::Property& property) const
    {
        PlainValue plain;
        switch (row.type)
        {
        case LyrexType::Boolean:
            plain.value = property.boolean();
            break;
        case LyrexType::Color:
        case LyrexType::LinearColor:
        {
            const assets::Color3 color = property.color();
            plain.value = mx::Color3(color[0], color[1], color[2]);
            break;
        }
        case LyrexType::Vector:
        {
            const assets::Vector3 vector = property.vector();
            plain.value = mx::Vector3(vector[0], vector[1], vector[2]);
            break;
        }
        case LyrexType::Float:
            plain.value =
                row.bareUnit != 0 ? property.bareNumber(_log, row.bareUnit) : property.number();
            break;
        }
        if (row.type != LyrexType::Boolean && row.type != LyrexType::Float)
            plain.colorSpace = assets::inputColorSpace(
                {_asset, _asset, row.name, false, typeName(row.type)}, _log);
        if (row.bareUnit == 0)
            plain.unit = property.unit(row.unitType, _log);
        return plain;
    }

    const assets::Asset& _asset;
    const Log& _log;
    textures::TextureSet _textures;
};

/// Writes what was read onto a shading node.
class LyrexWriter
{
  public:
    LyrexWriter(Skeleton& skeleton, const Log& log) : _skeleton(skeleton), _log(log) {}

    void write(const LyrexValue& value) const
    {
        const mx::NodePtr& shader = _skeleton.shader();
        const auto& [property, content] = value;
        const auto* plain = std::get_if<PlainValue>(&content);
        // The fraction has decided already which way round it counts.
        if (property.name == std::string_view(fractionInvert) && shader->getInput(fractionInvert))
            return warnIfOverruled(std::get<PlainValue>(content));
        if (plain)
            writePlain(property, *plain);
        else
            graph::addConnectedInput(shader, property.name,
                                     _skeleton.addTexture(std::get<Texture>(content), property.name,
                                                          typeName(property.type)));
        if (property.name == fraction)
            graph::addTypedInput(shader, fractionInvert, plain != nullptr);
    }

  private:
    void writePlain(const LyrexProperty& property, const PlainValue& plain) const
    {
        const mx::InputPtr input =
            std::visit([&](const auto& value)
                       { return graph::addTypedInput(_skeleton.shader(), property.name, value); },
                       plain.value);
        if (!plain.colorSpace.empty())
            input->setColorSpace(plain.colorSpace);
        graph::setInputUnit(input, plain.unit);
    }

    void warnIfOverruled(const PlainValue& plain) const
    {
        const bool written = _skeleton.shader()->getInputValue(fractionInvert)->asA<bool>();
        if (std::get<bool>(plain.value) != written)
            _log.warning(DiagnosticCode::ValueAdjusted, fractionInvert,
                         "the document says the opposite: a plain fraction is inverted, an "
                         "image of it is not");
    }

    Skeleton& _skeleton;
    const Log& _log;
};

/// The name that users see in other programs, reduced like a material's name.
std::string userInterfaceName(const assets::Asset& asset)
{
    std::string name = asset.displayName();
    if (name.empty())
        name = asset.name();
    std::erase_if(name, [](char c) { return !base::isAsciiAlphanumeric(c); });
    return name;
}

void buildMaterial(const assets::Asset& asset, const LyrexFamily& family,
                   const std::vector<LyrexValue>& values, const Translation& translation)
{
    const std::string label = userInterfaceName(asset);
    Skeleton skeleton(placeOf(translation), family.category, graphSuffix,
                      assets::Asset(translation.asset).identifier());
    if (!label.empty())
        skeleton.material()->setAttribute(mx::ValueElement::UI_NAME_ATTRIBUTE, label);
    const LyrexWriter writer(skeleton, translation.log);
    for (const LyrexValue& value : values)
        writer.write(value);
}

} // namespace

bool translateLyrex(const Translation& translation)
{
    const bool verbose = translation.options.verbose;
    const assets::Asset asset(translation.asset, verbose ? &std::cout : nullptr);
    if (verbose)
        assets::writeMaterialDescription(assets::Asset(translation.asset), std::cout);
    const std::string schema = asset.schema();
    const LyrexFamily* family = assets::findLyrexFamily(schema);
    if (!family)
    {
        translation.log.error(DiagnosticCode::UnknownSchema, "",
                              "\"" + schema + "\" is no schema of the Lyrex family");
        return false;
    }
    if (!Skeleton::isPossible(placeOf(translation), graphSuffix))
        return false;
    const auto values = assets::readOrReport(
        translation.log, [&] { return LyrexReader(asset, translation).read(*family); });
    if (values)
        buildMaterial(asset, *family, *values, translation);
    return values.has_value();
}

} // namespace vyr::MaterialTranslation::materials
