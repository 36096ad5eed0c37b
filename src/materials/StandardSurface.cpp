#include "materials/StandardSurface.h"

#include <variant>

#include "assets/PropertyReaders.h"
#include "graph/Inputs.h"
#include "graph/Names.h"
#include "graph/Nodes.h"
#include "materials/ColorPass.h"
#include "materials/Skeleton.h"
#include "materials/TintGraph.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

using Params = StandardSurfaceParams;
using Field =
    std::variant<std::monostate, float Params::*, Params::Color Params::*, bool Params::*>;

/// A shader input: where its plain value comes from, and its type when a texture drives it.
struct InputRow
{
    const char* name;
    /// Without a field the input is only written when a texture drives it.
    Field field;
    const char* type = "float";
};

// The inputs in the order in which documents have them: the four that make the material's nature,
// then the shading model's own order.
const InputRow inputs[] = {
    {"base", &Params::base},
    {"metalness", &Params::metalness},
    {"base_color", &Params::base_color, "color3"},
    {"specular", &Params::specular},
    {"diffuse_roughness", &Params::diffuse_roughness},
    {"specular_roughness", &Params::specular_roughness},
    {"specular_IOR", &Params::specular_IOR},
    {"transmission", &Params::transmission},
    {"transmission_color", &Params::transmission_color, "color3"},
    {"subsurface", &Params::subsurface},
    {"coat", &Params::coat},
    {"coat_roughness", &Params::coat_roughness},
    {"coat_IOR", &Params::coat_IOR},
    {"emission", &Params::emission},
    {"emission_color", &Params::emission_color, "color3"},
    {"opacity", &Params::opacity, "color3"},
    {"thin_walled", &Params::thin_walled},
    {"normal", std::monostate(), "vector3"},
};

/// Writes the shader inputs of one material.
class InputWriter
{
  public:
    InputWriter(const GenericMaterial& material, const mx::NodePtr& shader,
                const textures::TextureBuild& build)
        : _material(material), _shader(shader), _build(build),
          _colorSpace(plainColorSpace(build.options.colorMode))
    {
    }

    void write(const InputRow& row) const
    {
        if (const mx::OutputPtr output = tinted(row, textureOutput(row)))
            graph::addConnectedInput(_shader, row.name, output);
        else
            std::visit([&](auto field) { writePlain(row.name, field); }, row.field);
    }

  private:
    mx::OutputPtr textureOutput(const InputRow& row) const
    {
        const auto texture = _material.textures.find(row.name);
        return texture == _material.textures.end()
                   ? nullptr
                   : textures::addConnectedTexture(texture->second, row.type, _build);
    }

    /// The texture of a tinted wood's base colour goes through the tint; any other stays.
    mx::OutputPtr tinted(const InputRow& row, const mx::OutputPtr& texture) const
    {
        if (!texture || !_material.tint || row.field != Field(&Params::base_color))
            return texture;
        return addTintGraph(_shader->getDocument(), texture, *_material.tint, _colorSpace);
    }

    void writePlain(const char* /*name*/, std::monostate /*none*/) const {}
    void writePlain(const char* name, float Params::* field) const
    {
        graph::addTypedInput(_shader, name, _material.params.*field);
    }
    void writePlain(const char* name, bool Params::* field) const
    {
        graph::addTypedInput(_shader, name, _material.params.*field);
    }
    void writePlain(const char* name, Params::Color Params::* field) const
    {
        const mx::InputPtr input = graph::addTypedInput(_shader, name, _material.params.*field);
        if (field != &Params::opacity)
            input->setColorSpace(_colorSpace);
    }

    const GenericMaterial& _material;
    const mx::NodePtr& _shader;
    const textures::TextureBuild& _build;
    const char* _colorSpace;
};

} // namespace

bool buildStandardSurface(const GenericMaterial& material, const Translation& translation)
{
    const auto& [asset, name, document, options, log, baked] = translation;
    const std::string assetId = assets::GetAssetIdentifier(asset);
    const SkeletonRequest request{name, material.params.category, assetId, options.addLook,
                                  graph::nodeGraphName(name)};
    if (!canBuildSkeleton(document, request, log))
        return false;

    const Skeleton skeleton = buildSkeleton(document, request, log);
    textures::TextureBuild build{name, options, {}, material.bumpAmount, log, baked};
    if (!material.textures.empty())
        build.graph = graph::addNodeGraph(document, request.graphName);
    const InputWriter writer(material, skeleton.shader, build);
    for (const InputRow& row : inputs)
        writer.write(row);
    if (build.graph && build.graph->getChildren().empty())
        document->removeNodeGraph(request.graphName);
    return true;
}

} // namespace vyr::MaterialTranslation::materials
