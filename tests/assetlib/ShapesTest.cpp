#include <gtest/gtest.h>
#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

/// What a value says, read through the interfaces: the kind, the components, the unit if any.
std::string described(const platform::IProperty& property)
{
    std::ostringstream out;
    out << property.GetType() << ':';
    const platform::IValue* value = property.GetValue();
    if (!value)
        return out.str() + " none";
    if (const auto* texts = dynamic_cast<const platform::IStringValue*>(value))
        out << ' ' << text(*texts, &platform::IStringValue::GetString);
    else if (const auto* choices = dynamic_cast<const platform::IChoiceListValue*>(value))
    {
        for (std::size_t i = 0; i < choices->GetSelectedCount(); ++i)
        {
            const auto index = static_cast<std::size_t>(choices->GetSelectedIndex(i));
            const platform::IChoice* choice = choices->GetChoiceTable()->GetChoice(index);
            out << ' ' << index << text(*choice, &platform::IChoice::GetName);
        }
        out << " of " << choices->GetChoiceTable()->GetChoiceCount();
    }
    else if (const auto* integers = dynamic_cast<const platform::IIntegerValue*>(value))
        for (std::size_t i = 0; i < value->GetComponentCount(); ++i)
            out << ' ' << integers->GetInteger(i);
    else if (const auto* scalars = dynamic_cast<const platform::IScalarValue*>(value))
        for (std::size_t i = 0; i < value->GetComponentCount(); ++i)
            out << ' ' << scalars->GetScalar(i);
    else if (property.GetType() == 8)
    {
        double r = -1, g = -1, b = -1, a = -1;
        value->GetColor(0, r, g, b, a);
        out << ' ' << r << ' ' << g << ' ' << b << ' ' << a;
    }
    else if (property.GetType() == 5)
        out << (value->GetBoolean(0) ? " true" : " false");
    else
        out << ' ' << uri(&property);
    if (value->GetUnit() != 0)
        out << " unit " << std::hex << value->GetUnit();
    return out.str();
}

TEST(AssetShapes, OfValues)
{
    struct Row
    {
        const char* json;
        const char* expected;
    };
    // clang-format off
    const Row rows[] = {
        {R"("type": "string", "value": "\u00e4")", "2: \xC3\xA4"},
        {R"("type": "text", "value": "")", "11: "},
        {R"("type": "uri", "value": "no/such.png")", "4: no/such.png"},
        {R"("type": "boolean", "value": true)", "5: true"},
        {R"("type": "integer", "value": -7)", "6: -7"},
        {R"("type": "integer", "value": [1, 2.0, -2147483648])", "6: 1 2 -2147483648"},
        {R"("type": "scalar", "value": 0.1)", "7: 0.1"},
        {R"("type": "scalar", "value": [1, 2, 3], "unit": "millimeter")", "7: 1 2 3 unit 200e"},
        {R"("type": "scalar", "value": 1, "unit": 268435455)", "7: 1 unit fffffff"},
        {R"("type": "scalar", "unit": "degrees")", "7: none"},
        {R"("type": "color", "value": [0.1, 0.2, 3])", "8: 0.1 0.2 3 1"},
        {R"("type": "color", "value": [0, 0, 0, 0.5])", "8: 0 0 0 0.5"},
        {R"("type": "reference")", "9: none"},
        {R"("type": "referenceList", "connected": [])", "12: none"},
        {R"("type": "choice", "value": "a")", "10: 0a of 1"},
        {R"("type": "choice", "value": ["b", "a", "b"])", "10: 0b 1a 0b of 2"},
        {R"("type": "choice", "value": [])", "10: of 0"},
        {R"("type": "choice", "value": {"choices": ["a", "a", "c"], "selected": [2, 0]})", "10: 2c 0a of 3"},
    };
    // clang-format on
    for (const Row& row : rows)
    {
        AssetFiles files;
        const Library library =
            files.add("f.json", propertyFile("{" + std::string(row.json) + "}")).library();
        EXPECT_EQ(described(*find(*library.materials()[0].asset, "p")), row.expected) << row.json;
    }
    for (const Row& row :
         {Row{"false", "5: false"}, Row{"-1.5", "7: -1.5"}, Row{"[1, 2, 3]", "8: 1 2 3 1"}})
    {
        AssetFiles files;
        const Library library = files.add("f.json", propertyFile(row.json)).library();
        EXPECT_EQ(described(*find(*library.materials()[0].asset, "p")), row.expected);
    }
}

TEST(AssetShapes, EveryUnitHasItsCode)
{
    const std::pair<const char*, std::uint32_t> units[] = {{"nanometer", 0x2010},
                                                           {"micron", 0x2027},
                                                           {"millimeter", 0x200E},
                                                           {"centimeter", 0x200D},
                                                           {"inch", 0x2016},
                                                           {"foot", 0x2017},
                                                           {"yard", 0x201D},
                                                           {"meter", 0x2001},
                                                           {"kilometer", 0x2009},
                                                           {"mile", 0x2021},
                                                           {"radians", 0x8001},
                                                           {"degrees", 0x8002},
                                                           {"candelapersquaremeter", 0x37001},
                                                           {"footlambert", 0x37002},
                                                           {"candelapersquarefoot", 0x37003}};
    for (const auto& [name, code] : units)
    {
        AssetFiles files;
        const Library library =
            files
                .add("f.json", propertyFile(R"({"type": "scalar", "value": 1, "unit": ")" +
                                            std::string(name) + "\"}"))
                .library();
        EXPECT_EQ(find(*library.materials()[0].asset, "p")->GetValue()->GetUnit(), code) << name;
    }
}

TEST(AssetShapes, OfAssets)
{
    AssetFiles files;
    files.add("f.json", R"({"assetLibrary": 1, "$schema": {"any": "thing"}, "materials": [
        {"id": "full", "schema": "MetalSchema", "name": "n", "description": "d",
         "displayName": {"deu": "Stahl", "eng": "Steel"},
         "properties": {"z": 1, "Hidden": true, "a": 2, "VersionGUID": null},
         "genericProperties": {}},
        {"id": "named", "schema": "S", "name": "n", "displayName": "N"},
        {"id": "bare", "schema": "S"},
        {"id": "foreign", "schema": "S", "name": "n", "displayName": {"deu": "Holz"}}]})");
    const Library library = files.library();
    const auto asset = [&](const char* id) { return library.findMaterial(id)->asset; };
    const auto display = [&](const char* id, const char* language)
    {
        UTF8String name;
        asset(id)->GetDisplayName(name, language);
        return name.str();
    };
    EXPECT_EQ(display("full", "eng"), "Steel");
    EXPECT_EQ(display("full", "deu"), "Stahl");
    EXPECT_EQ(display("full", "fra"), "Steel");
    EXPECT_EQ(display("named", nullptr), "N");
    EXPECT_EQ(display("foreign", "eng"), "Holz");
    EXPECT_EQ(display("bare", "eng"), "");

    EXPECT_EQ(text(*asset("full"), &platform::IAssetInstance::GetDescription), "d");
    EXPECT_EQ(text(*asset("full")->GetIdentity(), &platform::IAssetIdentity::GetName), "n");
    EXPECT_EQ(asset("bare")->GetIdentity(), nullptr);
    EXPECT_TRUE(asset("full")->GetGenericPropertyTable());
    EXPECT_FALSE(asset("bare")->GetGenericPropertyTable());
    EXPECT_EQ(library.findMaterial("full")->schema, "MetalSchema");

    std::vector<std::string> properties;
    for (std::size_t i = 0; i < asset("full")->GetPropertyCount(); ++i)
        properties.push_back(
            text(*asset("full")->GetProperty(i), &platform::IProperty::GetIdentifier));
    EXPECT_EQ(properties, (std::vector<std::string>{"z", "Hidden", "a"}));
    EXPECT_EQ(asset("full")->GetProperty(3), nullptr);
    EXPECT_EQ(find(*asset("full"), "VersionGUID"), nullptr);
    EXPECT_EQ(described(*find(*asset("full"), "Hidden")), "5: true");
    EXPECT_EQ(described(*find(*asset("bare"), "VersionGUID")), "11: S");
    EXPECT_EQ(described(*find(*asset("bare"), "Hidden")), "5: false");
    EXPECT_EQ(find(*asset("bare"), "hidden"), nullptr);
}

TEST(AssetShapes, OfOverlays)
{
    AssetFiles files;
    files.add("f.json", R"({"assetLibrary": 1, "overlays": [
        {"name": "D", "type": "decal"},
        {"name": "E", "type": "decal", "kind": 3, "value0": 1, "value1": -2, "value2": 3, "texture":
          {"path": "x.png", "realWorldOffset": [1, 2], "realWorldScale": [3, 4], "unit": "inch",
           "uvOffset": [5, 6], "uvScale": [7, 8], "rotation": 9}},
        {"name": "T", "type": "thread", "normalTexture": {"unit": 9}, "flag": true,
         "startClippingPlane": [1, 2, 3, 4]}]})");
    const Library library = files.library();
    ASSERT_EQ(library.overlays().size(), 3u);

    const Decal bare = std::get<Decal>(library.overlays()[0].content);
    EXPECT_EQ(bare.kind, 1);
    EXPECT_EQ(bare.texture.unit, 3);
    EXPECT_EQ(bare.texture.path, "");
    EXPECT_EQ(bare.texture.uvScale, (std::array{1.0f, 1.0f}));
    const Decal full = std::get<Decal>(library.overlays()[1].content);
    EXPECT_EQ((std::array{full.kind, full.value0, full.value1, full.value2, full.texture.unit}),
              (std::array{3, 1, -2, 3, 4}));
    const OverlayTexture& t = full.texture;
    EXPECT_EQ((std::array{t.realWorldOffset[0], t.realWorldOffset[1], t.realWorldScale[0],
                          t.realWorldScale[1], t.uvOffset[0], t.uvOffset[1], t.uvScale[0],
                          t.uvScale[1], t.rotation}),
              (std::array{1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f, 9.0f}));
    EXPECT_EQ(t.path, "x.png");
    EXPECT_EQ(library.overlays()[1].pointer, "/overlays/1");

    const Thread thread = std::get<Thread>(library.overlays()[2].content);
    EXPECT_FALSE(thread.threadTexture);
    EXPECT_EQ(thread.normalTexture.value().unit, 9);
    EXPECT_TRUE(thread.flag);
    EXPECT_FALSE(thread.baseMaterialColor);
    EXPECT_EQ(thread.startClippingPlane.value(), (std::array{1.0f, 2.0f, 3.0f, 4.0f}));
}

} // namespace

} // namespace vyr::assetlib::tests
