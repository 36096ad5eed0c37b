#include <functional>
#include <set>

#include <MaterialTranslation/Definitions.h>

#include "materials/LyrexAssets.h"

namespace vyr::materialtests
{

namespace
{

const std::string gloss = "surface_albedo surface_roughness surface_anisotropy surface_rotation ";
const std::string shape = "surface_normal surface_cutout ";

/// The inputs of a family's shading node in the order of documents, by the name in schema and node.
const std::pair<std::string, std::string> families[] = {
    {"Metal", "metal_f0 " + gloss + shape},
    {"Opaque", shape + "surface_albedo opaque_albedo surface_roughness surface_anisotropy "
                       "surface_rotation opaque_f0 opaque_translucency opaque_mfp_modifier "
                       "opaque_mfp opaque_emission opaque_luminance opaque_luminance_modifier"},
    {"Transparent", gloss + shape + "transparent_ior transparent_color transparent_distance"},
    {"Layered", gloss + shape +
                    "layered_f0 layered_roughness layered_anisotropy layered_rotation "
                    "layered_diffuse layered_bottom_f0 layered_fraction layered_fraction_invert "
                    "layered_normal"},
    {"Glazing", gloss + shape +
                    "glazing_transmission_color glazing_transmission_roughness glazing_f0 "
                    "glazing_backface_culling"},
};

/// Gives a property a value that no other position has.
/// @return its text in documents, with its colour space.
std::string setPlain(AssetBuilder& builder, const std::string& name, const std::string& type,
                     int position)
{
    const bool isData = name == "surface_cutout" || name == "opaque_mfp_modifier";
    const std::string number = " value=" + std::to_string(position);
    if (type == "float")
        return builder.scalar(name, position + 0.5), number + ".5";
    if (type == "vector3")
        return builder.scalars(name, {position + 0.25, -1, 8}),
               number + ".25, -1, 8 colorspace=lin_rec709";
    if (type == "boolean")
        return builder.boolean(name, position % 2 == 1),
               position % 2 == 1 ? " value=true" : " value=false";
    builder.color(name, position + 0.125, 0.25, 0.75, 0.5);
    return number + ".125, 0.25, 0.75 colorspace=" + (isData ? "lin_rec709" : "rec709_display");
}

/// What is done to one property.
struct State
{
    const char* name;
    /// Whether there is a plain value for where the texture is of no use.
    bool plain = false;
    AssetPtr (*texture)() = nullptr;
    /// The category of the texture's node, and the types that it can drive.
    const char* category = "";
    std::string drives = {};
};

AssetPtr (*const noImage)() = [] { return bitmapAsset(""); };

const State missing{"missing"};
const State inactive{"inactive"};
const State plain{"plain", true};
const State unhandled{"unhandled", true, [] { return AssetBuilder("NoiseSchema").build(); }};
const State states[] = {
    missing,
    inactive,
    plain,
    {"bitmap", true, [] { return bitmapAsset("a.png"); }, "kvor:bitmap", "color3 float vector3"},
    {"height map", true, [] { return bumpBuilder("height_map").build(); }, "kvor:height_map",
     "vector3"},
    {"normal map", true, [] { return bumpBuilder("normal_map").build(); }, "kvor:normal_map",
     "vector3"},
    {"bitmap without image", true, noImage},
    {"bitmap without image and value", false, noImage},
    unhandled,
};

using StateOf = std::function<const State&(const std::string& name)>;

/// An asset of a family, and what its translation has to yield.
struct Expected
{
    Expected(const std::string& family, const std::string& names, const StateOf& stateOf,
             int position = 0)
        : builder(lyrexBuilder("Lyrex" + family + "Schema")),
          category("kvor:" + mx::stringToLower(family))
    {
        inputs.push_back(category + " surfaceshader");
        const mx::NodeDefPtr definition = definitionLibrary()->getMatchingNodeDefs(category).at(0);
        for (const std::string& name : mx::splitString(names, " "))
            add(name, definition->getInput(name)->getType(), stateOf(name), position++);
        builder.scalar("unheard", 1);
    }

    void add(const std::string& name, const std::string& type, const State& state, int position)
    {
        const bool driven = state.drives.find(type) != std::string::npos;
        const std::string output = name + "_output";
        std::string line = name + " " + type;
        if (driven)
            nodes.push_back(state.category + (" " + line + " " + output + " " + type));
        if (driven)
            line += " nodegraph=M_inputGraph output=" + output;
        else if (state.plain)
            line += setPlain(builder, name, type, position);
        if (state.name == inactive.name)
            builder.property(name, 9, nullptr);
        if (state.texture)
            builder.connect(name, state.texture());
        if (state.texture && !driven)
            lost.insert(name);
        if (state.name == unhandled.name && refused.empty() && type != "boolean")
            refused = name;
        // The fraction has decided its direction already: only an image of it is not inverted.
        const bool decided = inputs.back().starts_with(name + " ");
        if (decided && state.plain &&
            !inputs.back().ends_with(position % 2 == 1 ? "true" : "false"))
            lost.insert(name);
        if (decided || (!driven && !state.plain))
            return;
        inputs.push_back(line);
        if (name == "layered_fraction")
            inputs.push_back(std::string("layered_fraction_invert boolean value=") +
                             (driven ? "false" : "true"));
    }

    AssetBuilder builder;
    std::string category;
    Lines inputs;
    Lines nodes;
    /// The properties that a warning has to tell of.
    std::multiset<std::string> lost{"unheard"};
    /// The property that ends the translation.
    std::string refused;
};

class LyrexFamilies : public HostTest
{
  protected:
    void check(Expected expected) const
    {
        const Translation translation = translate(expected.builder.build());
        const mx::DocumentPtr& document = translation.document;
        if (!expected.refused.empty())
        {
            EXPECT_FALSE(translation.succeeded);
            EXPECT_TRUE(*document == *mx::createDocument());
            const Diagnostic reason = translation.first(DiagnosticCode::UnhandledTextureSchema);
            EXPECT_EQ(reason.severity, Severity::Error);
            EXPECT_EQ(reason.property, expected.refused);
            EXPECT_EQ(reason.text, "Unhandled Schema NoiseSchema");
            return;
        }
        ASSERT_TRUE(translation.succeeded) << translation.report();
        Lines elements{expected.category + " M_shader", "surfacematerial M"};
        if (!expected.nodes.empty())
            elements.emplace_back("nodegraph M_inputGraph");
        ASSERT_EQ(topLevel(document), elements);
        EXPECT_EQ(inputOf(document, "M", "surfaceshader")->getNodeName(), "M_shader");
        EXPECT_EQ(linesOf(document->getNode("M_shader")), expected.inputs);
        EXPECT_TRUE(isSound(document));
        Lines nodes;
        if (const mx::NodeGraphPtr graph = document->getNodeGraph("M_inputGraph"))
            for (const mx::OutputPtr& output : graph->getOutputs())
            {
                const mx::NodePtr node = output->getConnectedNode();
                nodes.push_back(node->getCategory() + " " + node->getName() + " " +
                                node->getType() + " " + output->getName() + " " +
                                output->getType());
            }
        EXPECT_EQ(nodes, expected.nodes);
        std::multiset<std::string> told;
        for (const Diagnostic& one : translation.diagnostics)
            if (one.code != DiagnosticCode::TextureFileMissing)
                told.insert(one.property.substr(0, one.property.find('/')));
        EXPECT_EQ(told, expected.lost) << translation.report();
    }
};

/// Every property in every state, first all of a family together, then each among plain ones, then
/// each alone. What the document does not show is told about, what it shows is not.
TEST_F(LyrexFamilies, HaveTheirInputsInEveryState)
{
    for (const auto& [family, names] : families)
        for (const State& state : states)
        {
            SCOPED_TRACE(family + ": all " + state.name);
            for (const int position : {0, 1})
                check({family, names, [&](const std::string&) -> const State& { return state; },
                       position});
            for (const std::string& changed : mx::splitString(names, " "))
                for (const State* const others : {&plain, &missing})
                {
                    SCOPED_TRACE(changed + " among " + others->name);
                    check({family, names, [&](const std::string& name) -> const State&
                           { return name == changed ? state : *others; }});
                }
        }
}

} // namespace

} // namespace vyr::materialtests
