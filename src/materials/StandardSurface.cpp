#include "materials/StandardSurface.h"

#include "graph/Values.h"
#include "materials/Translators.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

using Params = StandardSurfaceParams;

/// Writes the shader inputs of one material.
class InputWriter
{
  public:
    InputWriter(const StandardSurface& material, Skeleton& skeleton, const char* colorSpace)
        : _material(material), _skeleton(skeleton), _colorSpace(colorSpace)
    {
    }

    void write(const StandardSurfaceInput& row) const
    {
        const auto texture = _material.textures.find(row.name);
        if (texture == _material.textures.end())
            return std::visit([&](auto field) { writePlain(row.name, field); }, row.field);
        const auto& [property, node] = texture->second;
        mx::OutputPtr output = _skeleton.addTexture(node, property, row.type);
        if (_material.tint && row.field == StandardSurfaceInput::Field(&Params::base_color))
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
    for (const StandardSurfaceInput& row : standardSurfaceInputs)
        writer.write(row);
}

} // namespace vyr::MaterialTranslation::materials
