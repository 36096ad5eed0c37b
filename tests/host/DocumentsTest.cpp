#include <array>
#include <cmath>
#include <functional>
#include <tuple>

#include <MaterialTranslation/DocumentIO.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Assets of each kind that make more than shader and material.
AssetPtr metal()
{
    return material(R"("schema": "LyrexMetalSchema", "properties": {)" +
                    textured("metal_f0", "metal.png") + "}");
}

AssetPtr stained(const std::string& tint = "[0.5, 0.5, 0.5]")
{
    return material(
        R"("schema": "HardwoodSchema", "properties": {"hardwood_tint_color": )" + tint +
        R"(, "hardwood_tint_enabled": {"type": "choice", "value": "hardwood_color_choice"}},
        "genericProperties": {)" +
        textured("generic_diffuse", "wood.png") + "}");
}

class Documents : public HostTest
{
  protected:
    bool add(const AssetPtr& asset, const std::string& name, bool addLook = false)
    {
        ConverterOptions options = with(&ConverterOptions::addLook, addLook);
        return MaterialXConverter(options).TranslateToMaterialX(*asset, UTF8String(name),
                                                                _document);
    }

    void expectRefused(const AssetPtr& asset, const std::string& name, bool addLook = false,
                       DiagnosticCode code = DiagnosticCode::NameTaken)
    {
        const std::string before = xmlOf(_document);
        EXPECT_FALSE(add(asset, name, addLook)) << name;
        EXPECT_EQ(xmlOf(_document), before) << "changed by a translation that failed";
        EXPECT_EQ(lastCodes().back(), code);
    }

    Names topLevel() const
    {
        Names lines;
        for (const mx::ElementPtr& child : _document->getChildren())
            lines.push_back(child->getCategory() + " " + child->getName());
        return lines;
    }

    Translation into(const fs::path& folder) const
    {
        return translate(generic(""), with(&ConverterOptions::outputDirectory,
                                           UTF8String(TemporaryFolder::utf8(folder))));
    }

    mx::DocumentPtr _document = mx::createDocument();
};

TEST_F(Documents, NeedAnExistingFolder)
{
    const fs::path wide = _folder / fs::path(u8"größe 木");
    fs::create_directory(wide);
    fs::create_directory_symlink(wide, _folder / "link");
    for (const fs::path& folder : {_folder.path(), wide, _folder / "link", fs::path(".")})
        EXPECT_TRUE(into(folder).succeeded) << folder;
    EXPECT_EQ(_folder.entries().size(), 2u);

    _folder.write("file", "text");
    fs::create_symlink(_folder / "nowhere", _folder / "dangling");
    for (const char* name : {"missing", "file", "missing/below", "file/below", "dangling"})
    {
        const Translation translation = into(_folder / name);
        EXPECT_FALSE(translation.succeeded) << name;
        EXPECT_TRUE(*translation.document == *mx::createDocument()) << name;
        EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::OutputDirectory});
        EXPECT_NE(lastDiagnostics()[0].text.find(name), std::string::npos);
    }
    EXPECT_FALSE(fs::exists(_folder / "missing"));
    fs::create_symlink(_folder / "loop", _folder / "loop");
    EXPECT_THROW(into(_folder / "loop"), fs::filesystem_error) << "it cannot be looked at";
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::Exception});
}

/// The first translation settles the directory for the life of the instance.
TEST_F(Documents, GoToTheTemporaryFolderForGood)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
    for (const char* temporary : {"first", "second"})
    {
        fs::create_directory(_folder / temporary);
        redirectTemporaryDirectory(_folder / temporary);
        EXPECT_TRUE(converter.TranslateToMaterialX(*generic(""), "M", mx::createDocument()));
    }
    fs::remove(_folder / "first");
    EXPECT_FALSE(converter.TranslateToMaterialX(*generic(""), "M", mx::createDocument()));
    options = plainOptions();
    EXPECT_FALSE(MaterialXConverter(options).TranslateToMaterialX(*generic(""), "M", nullptr));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoDocument});
}

TEST_F(Documents, TakeOnlyIdentifiersAsNames)
{
    const AssetPtr asset = generic("");
    for (const char* name :
         {"Oak", "oak_2", "_oak", "x99999999999999999999999", "Zz_09", "default"})
        EXPECT_TRUE(add(asset, name)) << name;
    EXPECT_TRUE(isSound(_document));
    for (const char* name : {"", "1oak", "oak wood", "oak-2", "\xC3\x96l", "oak\n", "../oak",
                             "oak:2", "oak/2", "\x01", " ", "a[", "a@", "a`", "a{"})
        expectRefused(asset, name, false, DiagnosticCode::NameInvalid);
}

/// A taken name is refused before anything is added, or a free one is found: no exception from
/// half-way, and the first material stays as it was.
TEST_F(Documents, StayAsTheyAreWhenATranslationFails)
{
    const std::tuple<const char*, const char*, bool, bool> cases[] = {
        {"Oak", "Oak", false, true},        {"Oak", "Oak_shader", false, true},
        {"Oak_shader", "Oak", false, true}, {"Oak", "Ash", true, false},
        {"Oak", "Ash", false, false},       {"Oak", "Oak", true, true},
        {"Oak", "default", true, true},
    };
    for (const auto& [first, second, addLook, refused] : cases)
        for (AssetPtr (*const make)() :
             {+[] { return generic(""); }, &metal, +[] { return stained(); }})
        {
            SCOPED_TRACE(std::string(first) + " and " + second);
            _document = mx::createDocument();
            ASSERT_TRUE(add(make(), first, addLook));
            if (refused)
                expectRefused(make(), second, addLook);
            else
                EXPECT_TRUE(add(make(), second, addLook));
            EXPECT_TRUE(isSound(_document));
        }
    // A tint's graph takes a name that a later material may want.
    _document = mx::createDocument();
    ASSERT_TRUE(add(stained(), "M"));
    expectRefused(stained(), "hardWoodTint");
    expectRefused(metal(), "hardWoodTint_nodegraph");
    EXPECT_TRUE(add(metal(), "hardWoodTint"));
    // What is found late, in a texture, is found before anything is added.
    expectRefused(
        material(R"("schema": "LyrexLayeredSchema", "properties": {)" +
                 textured("surface_albedo", "a.png") +
                 R"(, "layered_normal": {"type": "reference", "connected": {"schema": "X"}}})"),
        "Bad", true, DiagnosticCode::UnhandledTextureSchema);
    // The host's own elements are not written into.
    for (const char* name : {"M", "M_shader", "M_inputGraph", "default"})
    {
        _document = mx::createDocument();
        _document->addNodeGraph(name);
        expectRefused(metal(), "M", true);
    }
}

/// The same asset under another name is another material, and both may share a look.
TEST_F(Documents, HoldSeveralMaterials)
{
    const AssetPtr asset = metal();
    ASSERT_TRUE(add(asset, "A"));
    const std::string alone = xmlOf(_document);
    ASSERT_TRUE(add(asset, "B", true));
    ASSERT_TRUE(add(stained(), "Wood", true));
    EXPECT_EQ(topLevel(), (Names{"kvor:metal A_shader", "surfacematerial A",
                                 "nodegraph A_inputGraph", "kvor:metal B_shader",
                                 "surfacematerial B", "look default", "nodegraph B_inputGraph",
                                 "standard_surface Wood_shader", "surfacematerial Wood",
                                 "nodegraph Wood_nodegraph", "nodegraph hardWoodTint_nodegraph"}));
    EXPECT_EQ(inputOf(_document, "B_shader", "metal_f0")->getNodeGraphString(), "B_inputGraph");
    EXPECT_TRUE(isSound(_document));
    Names assigned;
    for (const mx::MaterialAssignPtr& one : _document->getLook("default")->getMaterialAssigns())
        assigned.push_back(one->getName() + " " + one->getMaterial() + " " + one->getGeom());
    EXPECT_EQ(assigned, (Names{"material_assign_default B *", "material_assign_Wood Wood *"}));
    while (_document->getChildren().size() > 3)
        _document->removeChild(_document->getChildren().back()->getName());
    EXPECT_EQ(xmlOf(_document), alone) << "the first material was touched";
}

/// The channels of a colour, or one number.
using Value = std::vector<double>;

/// Computes what an input gets, through outputs, sibling nodes and inputs of the graph around it, by what
/// MaterialX says of the standard nodes. Images yield a value of the test's choice.
Value evaluate(const mx::InputPtr& input, const Value& image)
{
    if (input && input->hasValueString())
    {
        Value numbers;
        for (const std::string& part : mx::splitString(input->getValueString(), ","))
            numbers.push_back(std::stod(part));
        return numbers;
    }
    if (const mx::InputPtr published = input ? input->getInterfaceInput() : nullptr)
        return evaluate(published, image);
    const mx::NodePtr node = input ? input->getConnectedNode() : nullptr;
    const std::string category = node ? node->getCategory() : "nothing";
    const auto in = [&](const char* name) { return evaluate(node->getInput(name), image); };
    // Channel by channel; a single number stands for all channels.
    const auto combine = [](Value a, const Value& b, const auto& operation)
    {
        for (std::size_t i = 0; i < a.size(); ++i)
            a[i] = operation(a[i], b.size() == 1 ? b[0] : b.at(i));
        return a;
    };
    if (category == "kvor:bitmap")
        return image;
    if (category == "constant")
        return in("value");
    if (category == "extract")
        return {in("in").at(static_cast<std::size_t>(in("index")[0]))};
    if (category == "combine3")
        return {in("in1")[0], in("in2")[0], in("in3")[0]};
    if (category == "multiply")
        return combine(in("in1"), in("in2"), std::multiplies<>());
    if (category == "subtract")
        return combine(in("in1"), in("in2"), std::minus<>());
    if (category == "ifgreatereq")
        return in("value1")[0] >= in("value2")[0] ? in("in1") : in("in2");
    if (category == "mix") // bg - (bg - fg) * mix
        return combine(
            in("bg"),
            combine(combine(in("bg"), in("fg"), std::minus<>()), in("mix"), std::multiplies<>()),
            std::minus<>());
    ADD_FAILURE() << (input ? input->getNamePath() : "a missing input") << " reads " << category;
    return {0.0, 0.0, 0.0};
}

/// The closed form of one channel.
double tinted(double s, double t)
{
    const double overlay = s >= 0.5 ? 1.0 - 2.0 * (1.0 - s) * (1.0 - t) : 2.0 * s * t;
    return (s + overlay) * (1.0 + t) / 4.0;
}

/// From the shader's input through both graphs to the image and back; each stained wood with its own
/// stain, even when a material's own graph is called as tints are.
TEST_F(Documents, AreWrittenAsMaterialXWritesThem)
{
    ASSERT_TRUE(add(metal(), "M") && add(stained(), "H", true));
    const auto expectSame = [](const mx::DocumentPtr& document, const std::string& what)
    {
        // What MaterialX's writer leaves in values, and XML does not allow there.
        std::string expected = mx::writeToXmlString(document);
        for (auto at = expected.find("a<b"); at != expected.npos; at = expected.find("a<b", at))
            expected.replace(at, 3, "a&lt;b");
        EXPECT_EQ(documentToXml(document), expected) << what;
    };
    expectSame(_document, "as translated");
    expectSame(mx::createDocument(), "empty");
    for (const char* text :
         {"", " a ", "größe 木", "\xFF\xC3", "a<b", "a>b", "a&b", "a\"b", "a'b", "a\nb", "a\tb",
          "a\x01"
          "b",
          "a\x7F"
          "b"})
    {
        const mx::DocumentPtr document = _document->copy();
        document->getNodeGraphs().front()->getNodes().front()->setAttribute("note", text);
        expectSame(document, text);
    }
    const std::function<void(mx::Document&)> changes[] = {
        [](mx::Document& d)
        { d.getNodes().front()->addChildOfCategory("comment")->setDocString("--"); },
        [](mx::Document& d) { d.addChildOfCategory("newline"); },
        [](mx::Document& d) { d.getNodes().front()->setSourceUri("other.mtlx"); },
        [](mx::Document& d) { d.getNodes().front()->setName("a&b"); },
        [](mx::Document& d) { d.getNodes().front()->setCategory(""); },
        [](mx::Document& d) { d.setAttribute("a:b", "c"); },
    };
    for (const auto& change : changes)
    {
        const mx::DocumentPtr document = _document->copy();
        change(*document);
        expectSame(document, "change " + std::to_string(&change - changes));
    }
}

TEST_F(Documents, TintImagesByTheClosedForm)
{
    const std::array<double, 3> tints[] = {{0.5, 0.5, 0.5},    {1.0, 1.0, 1.0},
                                           {0.0, 0.0, 0.0},    {0.8, 0.1, 0.4},
                                           {0.68, 0.03, 0.55}, {1.25, 0.999, 0.001}};
    const double sources[] = {0.0,  0.001,     0.1, 0.25, 0.4999999, 0.5,
                              0.75, 0.5000001, 0.9, 1.0,  1.5};
    const auto nameOf = [&](const auto& tint)
    { return &tint == tints ? "hardWoodTint" : "M" + std::to_string(&tint - tints); };
    for (const auto& tint : tints)
        ASSERT_TRUE(add(stained("[" + std::to_string(tint[0]) + ", " + std::to_string(tint[1]) +
                                ", " + std::to_string(tint[2]) + "]"),
                        nameOf(tint)));
    EXPECT_EQ(_document->getNodeGraphs().size(), 2 * std::size(tints));
    EXPECT_TRUE(isSound(_document));
    for (const auto& tint : tints)
        for (std::size_t i = 0; i < std::size(sources); ++i)
        {
            Value source;
            for (std::size_t channel = 0; channel < 3; ++channel)
                source.push_back(sources[(i + 3 * channel) % std::size(sources)]);
            const Value result =
                evaluate(inputOf(_document, nameOf(tint) + "_shader", "base_color"), source);
            ASSERT_EQ(result.size(), 3u);
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(result[channel], tinted(source[channel], tint.at(channel)), 1e-12)
                    << "source " << source[channel] << ", tint " << tint.at(channel);
        }
}

} // namespace

} // namespace vyr::hosttests
