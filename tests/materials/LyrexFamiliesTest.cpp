#include <functional>
#include <map>
#include <string>
#include <vector>

#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

using Lines = std::vector<std::string>;

/// What is done to one property.
enum class State
{
    Missing,
    /// It only carries connections, and has none.
    Inactive,
    Plain,
    Bitmap,
    HeightMap,
    NormalMap,
    /// A bitmap that names no image, beside a plain value.
    NoImage,
    /// The same without a plain value.
    NoImageAlone,
    Unhandled,
};

const std::map<State, const char*> stateNames{
    {State::Missing, "missing"},       {State::Inactive, "inactive"},
    {State::Plain, "plain"},           {State::Bitmap, "bitmap"},
    {State::HeightMap, "height map"},  {State::NormalMap, "normal map"},
    {State::NoImage, "without image"}, {State::NoImageAlone, "without image and value"},
    {State::Unhandled, "unhandled"},
};

/// The category of the texture node; empty when there is none to be.
std::string textureCategory(State state, Kind kind)
{
    if (kind == Kind::Boolean)
        return {};
    if (state == State::Bitmap)
        return "kvor:bitmap";
    // These give a normal; a number or a colour has no use for it.
    if (state == State::HeightMap && kind == Kind::Vector)
        return "kvor:height_map";
    if (state == State::NormalMap && kind == Kind::Vector)
        return "kvor:normal_map";
    return {};
}

bool isAbsent(State state)
{
    return state == State::Missing || state == State::Inactive || state == State::NoImageAlone;
}

/// A state for each property of a family.
using States = std::function<State(const Property&)>;

class LyrexFamilies : public HostTest
{
  protected:
    void TearDown() override
    {
        _textures.clear();
        HostTest::TearDown();
    }

    AssetPtr makeAsset(const Family& family, const States& states) const
    {
        AssetBuilder builder = lyrexBuilder(family.schema);
        int position = 0;
        for (const Property& property : family.properties)
            addProperty(builder, property, position++, states(property));
        return builder.build();
    }

    /// The shader's inputs, and the graph's nodes, as they have to be.
    struct Expected
    {
        Lines inputs;
        Lines nodes;
    };

    static Expected expect(const Family& family, const States& states)
    {
        Expected expected;
        bool inverted = false;
        int position = 0;
        for (const Property& property : family.properties)
        {
            const State state = states(property);
            const std::string line = expectedLine(property, position++, state, expected.nodes);
            const std::string name = property.name;
            if (line.empty() || (name == "layered_fraction_invert" && inverted))
                continue;
            expected.inputs.push_back(line);
            if (name != "layered_fraction")
                continue;
            const bool textured = !textureCategory(state, property.kind).empty();
            expected.inputs.emplace_back(std::string("layered_fraction_invert boolean ") +
                                         (textured ? "false" : "true"));
            inverted = true;
        }
        return expected;
    }

    void check(const Family& family, const States& states) const
    {
        const Translation translation = translate(makeAsset(family, states));
        const mx::DocumentPtr& document = translation.document;
        ASSERT_TRUE(translation.succeeded) << translation.report();
        const Expected expected = expect(family, states);
        Lines elements{std::string(family.category) + " M_shader", "surfacematerial M"};
        if (!expected.nodes.empty())
            elements.emplace_back("nodegraph M_inputGraph");
        ASSERT_EQ(topLevel(document), elements);
        EXPECT_EQ(inputLines(document->getNode("M_shader")), expected.inputs);
        EXPECT_EQ(nodeLines(document), expected.nodes);
        EXPECT_TRUE(isSound(document));
    }

    static std::string describe(const Family& family, const Property& property, State state)
    {
        return std::string(family.schema) + ": " + property.name + " " + stateNames.at(state);
    }

  private:
    void addProperty(AssetBuilder& builder, const Property& property, int position,
                     State state) const
    {
        constexpr std::uint32_t reference = 9;
        if (state == State::Inactive)
            builder.property(property.name, reference, nullptr);
        // A texture alone is enough for everything that it can drive.
        if (!isAbsent(state) && textureCategory(state, property.kind).empty())
            setPlain(builder, property, position);
        if (const auto texture = _textures.find(state); texture != _textures.end())
            builder.connect(property.name, texture->second);
    }

    static std::string expectedLine(const Property& property, int position, State state,
                                    Lines& nodes)
    {
        if (isAbsent(state))
            return {};
        const std::string name = property.name;
        const std::string type = typeOf(property.kind);
        if (const std::string category = textureCategory(state, property.kind); !category.empty())
        {
            nodes.push_back(category + " " + name + " " + type + " -> " + name + "_output " + type);
            return name + " " + type + " M_inputGraph/" + name + "_output";
        }
        const std::string colorSpace = colorSpaceOf(property.kind);
        return name + " " + type + " " + plainText(property, position) +
               (colorSpace.empty() ? "" : " " + colorSpace);
    }

    static Lines inputLines(const mx::NodePtr& shader)
    {
        Lines lines;
        for (const mx::InputPtr& input : shader->getInputs())
        {
            std::string line = input->getName() + " " + input->getType() + " ";
            line += input->getValueString();
            if (input->hasNodeGraphString())
                line += input->getNodeGraphString() + "/" + input->getOutputString();
            if (input->hasColorSpace())
                line += " " + input->getColorSpace();
            lines.push_back(line);
        }
        return lines;
    }

    static Lines nodeLines(const mx::DocumentPtr& document)
    {
        Lines lines;
        const mx::NodeGraphPtr graph = document->getNodeGraph("M_inputGraph");
        for (const mx::NodePtr& node : graph ? graph->getNodes() : std::vector<mx::NodePtr>())
        {
            const mx::OutputPtr output = graph->getOutput(node->getName() + "_output");
            lines.push_back(node->getCategory() + " " + node->getName() + " " + node->getType() +
                            " -> " + output->getName() + " " + output->getType());
            EXPECT_EQ(output->getConnectedNode(), node);
        }
        return lines;
    }

    static std::map<State, AssetPtr> makeTextures()
    {
        std::map<State, AssetPtr> textures;
        textures[State::Bitmap] = bitmapAsset("wood.png");
        textures[State::HeightMap] = bumpBuilder("bumpmap_height_map").build();
        textures[State::NormalMap] = bumpBuilder("bumpmap_normal_map").build();
        textures[State::NoImage] = bitmapAsset("");
        textures[State::NoImageAlone] = bitmapAsset("");
        textures[State::Unhandled] = AssetBuilder("NoiseSchema").build();
        return textures;
    }

    std::map<State, AssetPtr> _textures = makeTextures();
};

/// Every property in every state, first all of a family together, then each among plain ones.
TEST_F(LyrexFamilies, HaveTheirInputsInEveryState)
{
    for (const Family& family : families())
        for (const auto& [state, stateName] : stateNames)
        {
            if (state == State::Unhandled)
                continue;
            SCOPED_TRACE(std::string(family.schema) + ": all " + stateName);
            check(family, [s = state](const Property&) { return s; });
            for (const Property& changed : family.properties)
            {
                SCOPED_TRACE(describe(family, changed, state));
                check(family, [&, s = state](const Property& property)
                      { return &property == &changed ? s : State::Plain; });
            }
        }
}

/// A texture of an unknown kind ends the translation, wherever it is, and nothing stays behind.
TEST_F(LyrexFamilies, RefuseUnhandledTextures)
{
    for (const Family& family : families())
        for (const Property& changed : family.properties)
        {
            SCOPED_TRACE(describe(family, changed, State::Unhandled));
            const States states = [&](const Property& property)
            { return &property == &changed ? State::Unhandled : State::Plain; };
            if (changed.kind == Kind::Boolean)
            {
                check(family, states);
                continue;
            }
            const Translation translation = translate(makeAsset(family, states));
            EXPECT_FALSE(translation.succeeded);
            EXPECT_TRUE(*translation.document == *mx::createDocument());
            const Diagnostic reason = translation.first(DiagnosticCode::UnhandledTextureSchema);
            EXPECT_EQ(reason.severity, Severity::Error);
            EXPECT_EQ(reason.property, changed.name);
            EXPECT_EQ(reason.text, "Unhandled Schema NoiseSchema");
        }
}

/// A texture that the document does not show is always told about, and one that it shows never.
TEST_F(LyrexFamilies, TellOfTexturesThatCameToNothing)
{
    for (const Family& family : families())
        for (const Property& changed : family.properties)
            for (const State state : {State::Plain, State::Bitmap, State::HeightMap,
                                      State::NormalMap, State::NoImage, State::NoImageAlone})
            {
                const Translation translation = translate(
                    makeAsset(family, [&](const Property& property)
                              { return &property == &changed ? state : State::Missing; }));
                std::size_t told = 0;
                for (const Diagnostic& diagnostic : translation.diagnostics)
                    if (diagnostic.code != DiagnosticCode::TextureFileMissing)
                        told += diagnostic.property.starts_with(changed.name);
                const bool lost =
                    state != State::Plain && textureCategory(state, changed.kind).empty();
                EXPECT_EQ(told, lost ? 1u : 0u) << describe(family, changed, state) << "\n"
                                                << translation.report();
            }
}

} // namespace

} // namespace vyr::materialtests
