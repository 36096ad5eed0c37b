#include "materials/StandardSurface.h"

#include <variant>

#include "graph/Values.h"
#include "materials/Translators.h"
#include "textures/Translation.h"

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

// The inputs that are written, in the order in which documents have them: the four that make the
// material's nature, then the shading model's own order.
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
    InputWriter(const StandardSurface& material, Skeleton& skeleton, const char* colorSpace)
        : _material(material), _skeleton(skeleton), _colorSpace(colorSpace)
    {
    }

    void write(const InputRow& row) const
    {
        const auto texture = _material.textures.find(row.name);
        if (texture == _material.textures.end())
            return std::visit([&](auto field) { writePlain(row.name, field); }, row.field);
        const auto& [property, node] = texture->second;
        mx::OutputPtr output = _skeleton.addTexture(node, property, row.type);
        if (_material.tint && row.field == Field(&Params::base_color))
            output = addTintGraph(_skeleton.shader()->getDocument(), output, *_material.tint);
        graph::addConnectedInput(_skeleton.shader(), row.name, output);
    }

  private:
    void writePlain(const char* /*name*/, std::monostate /*none*/) const {}
    template <class Value> void writePlain(const char* name, Value Params::* field) const
    {
        graph::addTypedInput(_skeleton.shader(), name, _material.params.*field);
    }
    void writePlain(const char* name, Params::Color Params::* field) const
    {
        const mx::InputPtr input =
            graph::addTypedInput(_skeleton.shader(), name, _material.params.*field);
        if (field != &Params::opacity)
            input->setColorSpace(_colorSpace);
    }

    const StandardSurface& _material;
    Skeleton& _skeleton;
    const char* _colorSpace;
};

} // namespace

void buildStandardSurface(const StandardSurface& material, const Translation& translation)
{
    Skeleton skeleton(translation, material.params.category, standardSurfaceGraphSuffix);
    const InputWriter writer(material, skeleton, plainColorSpace(translation.options.colorMode));
    for (const InputRow& row : inputs)
        writer.write(row);
}

} // namespace vyr::MaterialTranslation::materials
