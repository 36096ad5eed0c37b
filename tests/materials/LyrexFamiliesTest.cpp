#include <functional>
#include <set>

#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

/// What is done to one property.
struct State
{
    const char* name;
    /// Whether there is a plain value for where the texture is of no use.
    bool plain = false;
    AssetPtr (*texture)() = nullptr;
    /// The category of the texture's node; null when there is none.
    const char* category = nullptr;
    /// Whether the texture yields normals, which a number or a colour has no use for.
    bool normals = false;
    bool refused = false;

    bool drives(const Property& property) const
    {
        return category && property.type != "boolean" && (!normals || property.type == "vector3");
    }
};

AssetPtr (*const noImage)() = [] { return bitmapAsset(""); };

const State inactive{"inactive"};
const State plain{"plain", true};
const State states[] = {
    {"missing"},
    inactive,
    plain,
    {"bitmap", true, [] { return bitmapAsset("a.png"); }, "kvor:bitmap"},
    {"height map", true, [] { return bumpBuilder("height_map").build(); }, "kvor:height_map", true},
    {"normal map", true, [] { return bumpBuilder("normal_map").build(); }, "kvor:normal_map", true},
    {"bitmap without image", true, noImage},
    {"bitmap without image and value", false, noImage},
    {.name = "unhandled",
     .plain = true,
     .texture = [] { return AssetBuilder("NoiseSchema").build(); },
     .refused = true},
};

using StateOf = std::function<const State&(const Property&)>;

/// An asset of a family, and what its translation has to yield.
struct Expected
{
    Expected(const Family& family, const StateOf& stateOf) : builder(lyrexBuilder(family.schema))
    {
        int position = 0;
        for (const Property& property : family.properties)
            add(property, stateOf(property), position++);
        builder.scalar("unheard", 1);
    }

    void add(const Property& property, const State& state, int position)
    {
        const auto& [name, type, colorSpace] = property;
        std::string line = name + " " + type;
        const bool driven = state.drives(property);
        if (driven)
        {
            const std::string output = name + "_output";
            line += " nodegraph=M_inputGraph output=" + output;
            nodes.push_back(std::string(state.category) + " " + name + " " + type + " " + output +
                            " " + type);
        }
        else if (state.plain)
            line += " value=" + setPlain(builder, property, position) +
                    (colorSpace.empty() ? "" : " colorspace=" + colorSpace);
        addConnection(property, state);
        // The fraction has decided its direction already.
        if ((!driven && !state.plain) || (!inputs.empty() && inputs.back().starts_with(name + " ")))
            return;
        inputs.push_back(line);
        if (name == "layered_fraction")
            inputs.push_back(std::string("layered_fraction_invert boolean value=") +
                             (driven ? "false" : "true"));
    }

    void addConnection(const Property& property, const State& state)
    {
        constexpr std::uint32_t reference = 9;
        if (state.name == inactive.name)
            builder.property(property.name, reference, nullptr);
        if (!state.texture)
            return;
        builder.connect(property.name, state.texture());
        if (state.refused && refused.empty() && property.type != "boolean")
            refused = property.name;
        if (!state.drives(property))
            lost.insert(property.name);
    }

    AssetBuilder builder;
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
    void check(const Family& family, const StateOf& stateOf) const
    {
        Expected expected(family, stateOf);
        const Translation translation = translate(expected.builder.build());
        if (expected.refused.empty())
            return checkDocument(translation, family, expected);
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(*translation.document == *mx::createDocument());
        const Diagnostic reason = translation.first(DiagnosticCode::UnhandledTextureSchema);
        EXPECT_EQ(reason.severity, Severity::Error);
        EXPECT_EQ(reason.property, expected.refused);
        EXPECT_EQ(reason.text, "Unhandled Schema NoiseSchema");
    }

  private:
    static void checkDocument(const Translation& translation, const Family& family,
                              const Expected& expected)
    {
        ASSERT_TRUE(translation.succeeded) << translation.report();
        const mx::DocumentPtr& document = translation.document;
        Lines elements{family.category + " M_shader", "surfacematerial M"};
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
            if (one.code != DiagnosticCode::TextureFileMissing &&
                one.code != DiagnosticCode::ValueAdjusted)
                told.insert(one.property.substr(0, one.property.find('/')));
        EXPECT_EQ(told, expected.lost) << translation.report();
    }
};

/// Every property in every state, first all of a family together, then each among plain ones, then
/// each alone. A texture that the document does not show is told about, one that it shows is not.
TEST_F(LyrexFamilies, HaveTheirInputsInEveryState)
{
    for (const Family& family : families())
        for (const State& state : states)
        {
            SCOPED_TRACE(family.schema + ": all " + state.name);
            check(family, [&](const Property&) -> const State& { return state; });
            for (const Property& changed : family.properties)
                for (const State* const others : {&plain, &states[0]})
                {
                    SCOPED_TRACE(changed.name + " among " + others->name);
                    check(family, [&](const Property& property) -> const State&
                          { return &property == &changed ? state : *others; });
                }
        }
}

} // namespace

} // namespace vyr::materialtests
