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

/// Writes the plain value of a shader input.
struct PlainWriter
{
    const mx::NodePtr& shader;
    const Params& params;
    const char* colorSpace;
    const char* name;

    void operator()(std::monostate /*none*/) const {}
    template <class Value> void operator()(Value Params::* field) const
    {
        graph::addTypedInput(shader, name, params.*field);
    }
    void operator()(Params::Color Params::* field) const
    {
        const mx::InputPtr input = graph::addTypedInput(shader, name, params.*field);
        if (field != &Params::opacity)
            input->setColorSpace(colorSpace);
    }
};

bool isDefault(const Params& params, const StandardSurfaceInput::Field& field)
{
    static const Params standard;
    const auto compare = [&](auto member)
    {
        if constexpr (std::is_same_v<decltype(member), std::monostate>)
            return true;
        else
            return params.*member == standard.*member;
    };
    return std::visit(compare, field);
}

} // namespace

void writeStandardSurface(const mx::NodePtr& shader, const Params& params, const char* colorSpace,
                          const ShaderDriver& driver)
{
    for (const StandardSurfaceInput& row : standardSurfaceInputs)
        if (const mx::OutputPtr output = driver(row))
            graph::addConnectedInput(shader, row.name, output);
        else if (!row.onlyWhenSet || !isDefault(params, row.field))
            std::visit(PlainWriter{shader, params, colorSpace, row.name}, row.field);
}

void buildStandardSurface(const StandardSurface& material, const Translation& translation)
{
    Skeleton skeleton(placeOf(translation), material.params.category, standardSurfaceGraphSuffix,
                      assets::Asset(translation.asset).identifier());
    const auto driver = [&](const StandardSurfaceInput& row) -> mx::OutputPtr
    {
        const auto texture = material.textures.find(row.name);
        if (texture == material.textures.end())
            return nullptr;
        const auto& [property, node] = texture->second;
        const mx::OutputPtr output = skeleton.addTexture(node, property, row.type);
        if (material.tint && row.field == StandardSurfaceInput::Field(&Params::base_color))
            return addTintGraph(skeleton.shader()->getDocument(), output, *material.tint);
        return output;
    };
    writeStandardSurface(skeleton.shader(), material.params,
                         assets::plainColorSpace(translation.options.colorMode), driver);
}

bool translateStandardSurface(const Translation& translation,
                              const std::function<StandardSurface()>& read)
{
    if (!Skeleton::isPossible(placeOf(translation), standardSurfaceGraphSuffix))
        return false;
    const auto readAll = [&]
    {
        StandardSurface material = read();
        // Gathering names them itself: a user's image may want the name.
        if (!translation.options.copyTextures)
            textures::publishBakes(translation);
        return material;
    };
    const auto material = assets::readOrReport(translation.log, readAll);
    if (material)
        buildStandardSurface(*material, translation);
    return material.has_value();
}

} // namespace vyr::MaterialTranslation::materials
