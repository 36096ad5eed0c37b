// What checking documents costs beside MaterialX's own check of the same documents, and what it costs to
// bring them into the other forms.

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/NodeForms.h>

namespace
{

namespace mx = MaterialX;
namespace mt = vyr::MaterialTranslation;

constexpr int documentCount = 1000;

void addImage(const mx::NodeGraphPtr& graph, const std::string& name, const std::string& type)
{
    const mx::NodePtr image = graph->addNode("kvor:bitmap", name, type);
    const mx::InputPtr file = image->addInput("file", "filename");
    file->setValueString(__FILE__);
    file->setColorSpace("srgb_texture");
    const mx::InputPtr scale = image->addInput("realworld_scale", "vector2");
    scale->setValueString("60, 90");
    scale->setUnit("millimeter");
    scale->setUnitType("distance");
    for (const char* mode : {"uaddressmode", "vaddressmode"})
        image->addInput(mode, "string")->setValueString("periodic");
    image->addInput("rotation_angle", "float")->setValueString("0");
    image->addInput("rgbamount", "float")->setValueString("1");
    image->addInput("invert", "boolean")->setValueString("false");
    graph->addOutput(name + "_output", type)->setConnectedNode(image);
}

/// A material as the converter writes it, with textures in two places or without any.
mx::DocumentPtr material(bool textured)
{
    const mx::DocumentPtr document = mx::createDocument();
    document->setColorSpace("lin_rec709");
    const mx::NodePtr shader = document->addNode("standard_surface", "oak_shader", "surfaceshader");
    for (const char* name : {"base", "metalness", "specular", "specular_IOR", "transmission",
                             "coat", "coat_roughness", "emission", "subsurface"})
        shader->addInput(name, "float")->setValueString("0.5");
    for (const char* name : {"transmission_color", "emission_color", "opacity"})
        shader->addInput(name, "color3")->setValueString("1, 1, 1");
    document->addMaterialNode("oak", shader);
    if (!textured)
        return document;
    const mx::NodeGraphPtr graph = document->addNodeGraph("oak_nodegraph");
    for (const auto& [name, type] :
         {std::pair("base_color", "color3"), {"specular_roughness", "float"}})
    {
        addImage(graph, name, type);
        const mx::InputPtr input = shader->addInput(name, type);
        input->setNodeGraphString(graph->getName());
        input->setOutputString(std::string(name) + "_output");
    }
    return document;
}

std::vector<mx::DocumentPtr> documents(bool textured)
{
    std::vector<mx::DocumentPtr> all;
    for (int i = 0; i < documentCount; ++i)
        all.push_back(material(textured));
    return all;
}

void materialXValidate(benchmark::State& state)
{
    const auto all = documents(state.range(0) != 0);
    for (const mx::DocumentPtr& document : all)
        document->setDataLibrary(mt::definitionLibrary());
    for (auto _ : state)
        for (const mx::DocumentPtr& document : all)
            if (!document->validate())
                state.SkipWithError("the document is not valid");
}

void validate(benchmark::State& state)
{
    const auto all = documents(state.range(0) != 0);
    mt::definitionLibrary();
    for (auto _ : state)
        for (const mx::DocumentPtr& document : all)
            if (!mt::validateDocument(document).empty())
                state.SkipWithError("the document is not valid");
}

void load(benchmark::State& state)
{
    for (auto _ : state)
    {
        mt::setDefinitionFolders({});
        benchmark::DoNotOptimize(mt::definitionLibrary());
    }
}

void form(benchmark::State& state)
{
    const auto all = documents(true);
    mt::definitionLibrary();
    for (auto _ : state)
        for (const mx::DocumentPtr& document : all)
        {
            const mx::DocumentPtr copy = document->copy();
            mt::applyNodeForm(copy, static_cast<mt::NodeForm>(state.range(0)));
        }
}

BENCHMARK(materialXValidate)->ArgName("textured")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(validate)->ArgName("textured")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(load)->Unit(benchmark::kMillisecond);
BENCHMARK(form)->ArgName("form")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

} // namespace
