#include "materials/LyrexTranslator.h"

#include <iostream>
#include <optional>
#include <variant>
#include <vector>

#include "assets/Description.h"
#include "assets/InputColorSpace.h"
#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "base/Text.h"
#include "graph/Inputs.h"
#include "graph/Names.h"
#include "graph/Nodes.h"
#include "materials/LyrexFamilies.h"
#include "materials/Skeleton.h"
#include "textures/ConnectedTexture.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

using PlainValue = std::variant<float, bool, mx::Color3, mx::Vector3>;

/// A property as it was read: a texture, a plain value for when there is none, or both.
struct LyrexValue
{
    LyrexInput input;
    std::optional<textures::ConnectedTexture> texture;
    std::optional<PlainValue> plain;
    std::string colorSpace;
    assets::Unit unit;
};

constexpr std::string_view fractionInput = "layered_fraction";
constexpr const char* fractionInvertInput = "layered_fraction_invert";
/// Documents give luminances as bare numbers, whatever the asset's unit.
constexpr std::string_view unitlessInput = "opaque_luminance";

/// Reads the properties of one material.
class LyrexReader
{
  public:
    LyrexReader(const assets::AssetView& view, const Translation& translation)
        : _view(view), _log(translation.log), _verbose(translation.options.verbose)
    {
    }

    std::vector<LyrexValue> read(const LyrexFamily& family) const
    {
        std::vector<LyrexValue> values;
        for (const LyrexInput& input : family.inputs)
        {
            if (!assets::IsPropertyActive(_view, input.name))
                continue;
            if (_verbose)
                assets::WriteTextureSchema(assets::AssetView(_view.asset()), input.name, std::cout);
            LyrexValue value = readValue(input);
            if (value.texture || value.plain)
                values.push_back(std::move(value));
        }
        assets::reportLeftProperties(_view, {}, _log);
        return values;
    }

  private:
    LyrexValue readValue(const LyrexInput& input) const
    {
        LyrexValue value{input, {}, {}, {}, {}};
        const bool connected = assets::HasConnectedAsset(_view, input.name);
        if (connected)
            value.texture = readTexture(input);
        // A property that only carries its texture may be without a value of its own.
        if (!connected || (!value.texture && assets::HasPropertyValue(_view, input.name)))
            readPlain(value);
        return value;
    }

    std::optional<textures::ConnectedTexture> readTexture(const LyrexInput& input) const
    {
        const char* const reason = whyUndrivable(input);
        if (!reason)
            return textures::readConnectedTexture(
                {_view, input.name, textures::TextureRole::Lyrex, typeName(input.type), _log});
        assets::dismissConnection(_view, input.name);
        _log.warning(DiagnosticCode::TextureNotTranslated, input.name,
                     std::string(reason) + "; the plain value is used");
        return std::nullopt;
    }

    /// Why the texture connected to a property cannot drive it; null when its kind can.
    const char* whyUndrivable(const LyrexInput& input) const
    {
        if (input.type == LyrexType::Boolean)
            return "no texture can drive a Boolean";
        // Height and normal maps yield normals; their nodes exist for no other type.
        const bool isNormal = input.type == LyrexType::Vector;
        if (!isNormal &&
            assets::GetConnectedTextureName(_view, input.name) == assets::bumpMapSchema)
            return "a bump map can only drive a normal";
        return nullptr;
    }

    void readPlain(LyrexValue& value) const
    {
        value.plain = readPlainValue(value.input);
        const bool colored =
            value.input.type == LyrexType::Color || value.input.type == LyrexType::Vector;
        if (colored)
            value.colorSpace = assets::inputColorSpace(
                {_view, _view, value.input.name, false, typeName(value.input.type)});
        if (value.input.name != unitlessInput)
            value.unit = assets::readUnit(_view, value.input.name, value.input.unitType, _log);
    }

    PlainValue readPlainValue(const LyrexInput& input) const
    {
        switch (input.type)
        {
        case LyrexType::Boolean:
            return assets::GetBooleanProperty(_view, input.name);
        case LyrexType::Color:
        {
            const assets::Color3 color = assets::GetColor3Property(_view, input.name);
            return mx::Color3(color[0], color[1], color[2]);
        }
        case LyrexType::Vector:
        {
            const assets::Vector3 vector = assets::GetVector3Property(_view, input.name);
            return mx::Vector3(vector[0], vector[1], vector[2]);
        }
        case LyrexType::Float:
            break;
        }
        if (input.name == unitlessInput)
            return assets::readUnitless(_view, input.name, 0.0f, _log,
                                        assets::candelaPerSquareMeter);
        return assets::GetFloatProperty(_view, input.name);
    }

    const assets::AssetView& _view;
    const Log& _log;
    bool _verbose;
};

/// Writes what was read onto a shading node.
class LyrexWriter
{
  public:
    LyrexWriter(const mx::NodePtr& shader, const std::string& graphName,
                textures::TextureBuild& build)
        : _shader(shader), _graphName(graphName), _build(build)
    {
    }

    void write(const LyrexValue& value)
    {
        // The fraction has decided already which way round it counts.
        if (value.input.name == std::string_view(fractionInvertInput) &&
            _shader->getInput(fractionInvertInput))
        {
            warnIfOverruled(value);
            return;
        }
        const mx::OutputPtr output = textureOutput(value);
        if (output)
            graph::addConnectedInput(_shader, value.input.name, output);
        else if (value.plain)
            writePlain(value, *value.plain);
        if (value.input.name == fractionInput)
            graph::addTypedInput(_shader, fractionInvertInput, !output);
    }

  private:
    mx::OutputPtr textureOutput(const LyrexValue& value)
    {
        if (!value.texture)
            return nullptr;
        if (!_build.graph)
            _build.graph = graph::addNodeGraph(_shader->getDocument(), _graphName);
        return textures::addConnectedTexture(*value.texture, typeName(value.input.type), _build);
    }

    void writePlain(const LyrexValue& value, const PlainValue& plain)
    {
        const mx::InputPtr input =
            std::visit([&](const auto& typed)
                       { return graph::addTypedInput(_shader, value.input.name, typed); }, plain);
        if (!value.colorSpace.empty())
            input->setColorSpace(value.colorSpace);
        graph::setInputUnit(input, value.unit);
    }

    void warnIfOverruled(const LyrexValue& value) const
    {
        const bool written = _shader->getInputValue(fractionInvertInput)->asA<bool>();
        if (value.plain && std::get<bool>(*value.plain) != written)
            _build.log.warning(DiagnosticCode::ValueAdjusted, fractionInvertInput,
                               "the document says the opposite: a plain fraction is inverted, an "
                               "image of it is not");
    }

    const mx::NodePtr& _shader;
    const std::string& _graphName;
    textures::TextureBuild& _build;
};

/// The name that users see in other programs, reduced like a material's name.
std::string userInterfaceName(const assets::IAssetInstance& asset)
{
    std::string name = assets::GetAssetDisplayName(asset);
    if (name.empty())
        name = assets::GetAssetName(asset);
    std::erase_if(name, [](char c) { return !base::isAsciiAlphanumeric(c); });
    return name;
}

std::optional<std::vector<LyrexValue>> readValues(const LyrexFamily& family,
                                                  const Translation& translation)
{
    try
    {
        assets::PropertyUse use;
        const assets::AssetView view(translation.asset, &use);
        return LyrexReader(view, translation).read(family);
    }
    catch (const assets::PropertyError& error)
    {
        translation.log.error(error.code(), error.property(), error.reason());
    }
    catch (const std::invalid_argument& error)
    {
        translation.log.error(DiagnosticCode::PropertyInvalid, "", error.what());
    }
    return std::nullopt;
}

bool buildMaterial(const LyrexFamily& family, const std::vector<LyrexValue>& values,
                   const Translation& translation)
{
    const auto& [asset, name, document, options, log, baked] = translation;
    const std::string category = family.category;
    const std::string assetId = assets::GetAssetIdentifier(asset);
    const SkeletonRequest request{name, category, assetId, options.addLook,
                                  graph::inputGraphName(name)};
    if (!canBuildSkeleton(document, request, log))
        return false;

    const Skeleton skeleton = buildSkeleton(document, request, log);
    if (const std::string label = userInterfaceName(asset); !label.empty())
        skeleton.material->setAttribute(mx::ValueElement::UI_NAME_ATTRIBUTE, label);
    textures::TextureBuild build{name, options, {}, 0.0f, log, baked};
    LyrexWriter writer(skeleton.shader, request.graphName, build);
    for (const LyrexValue& value : values)
        writer.write(value);
    return true;
}

} // namespace

bool translateLyrex(const Translation& translation)
{
    if (translation.options.verbose)
        assets::WriteMaterialDescription(translation.asset, std::cout);
    const std::string schema = assets::GetAssetSchemaName(translation.asset);
    const LyrexFamily* family = findLyrexFamily(schema);
    if (!family)
    {
        translation.log.error(DiagnosticCode::UnknownSchema, "",
                              "\"" + schema + "\" is no schema of the Lyrex family");
        return false;
    }
    const auto values = readValues(*family, translation);
    return values && buildMaterial(*family, *values, translation);
}

} // namespace vyr::MaterialTranslation::materials
