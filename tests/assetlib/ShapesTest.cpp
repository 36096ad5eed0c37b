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
    const auto* choices = dynamic_cast<const platform::IChoiceListValue*>(value);
    const auto* integers = dynamic_cast<const platform::IIntegerValue*>(value);
    const auto* scalars = dynamic_cast<const platform::IScalarValue*>(value);
    if (const auto* texts = dynamic_cast<const platform::IStringValue*>(value))
        out << ' '
            << text(*texts, &platform::IStringValue::GetString, platform::TextForm::Preferred);
    for (std::size_t i = 0; choices && i < choices->GetSelectedCount(); ++i)
    {
        const auto index = static_cast<std::size_t>(choices->GetSelectedIndex(i));
        out << ' ' << index
            << text(*choices->GetChoiceTable()->GetChoice(index), &platform::IChoice::GetName);
    }
    if (choices)
        out << " of " << choices->GetChoiceTable()->GetChoiceCount();
    for (std::size_t i = 0; integers && i < value->GetComponentCount(); ++i)
        out << ' ' << integers->GetInteger(i);
    for (std::size_t i = 0; scalars && i < value->GetComponentCount(); ++i)
        out << ' ' << scalars->GetScalar(i);
    double r = -1, g = -1, b = -1, a = -1;
    value->GetColor(0, r, g, b, a);
    if (property.GetType() == 8)
        out << ' ' << r << ' ' << g << ' ' << b << ' ' << a;
    if (property.GetType() == 5)
        out << (value->GetBoolean(0) ? " true" : " false");
    if (property.GetType() == 4)
        out << ' ' << uri(&property);
    if (value->GetUnit() != 0)
        out << " unit " << std::hex << value->GetUnit();
    return out.str();
}

Lines describedJson(const std::string& property)
{
    AssetFiles files;
    const Library library = files.add("f.json", propertyFile(property)).library();
    return {described(*find(library, "p"))};
}

TEST(AssetShapes, OfValues)
{
    checkTable(R"-({"type": "string", "value": "\u00e4"} => 2: )-"
               "\xC3\xA4"
               R"-(
{"type": "text", "value": "x"} => 11: x
{"type": "uri", "value": "no/such.png"} => 4: no/such.png
{"type": "boolean", "value": true} => 5: true
{"type": "integer", "value": -7} => 6: -7
{"type": "integer", "value": [1, 2.0, -2147483648]} => 6: 1 2 -2147483648
{"type": "scalar", "value": 0.1} => 7: 0.1
{"type": "scalar", "value": [1, 2, 3], "unit": "millimeter"} => 7: 1 2 3 unit 200e
{"type": "scalar", "value": 99999999999999999999, "unit": "candelapersquarefoot"} => 7: 1e+20 unit 37003
{"type": "scalar", "value": 1, "unit": 268435455} => 7: 1 unit fffffff
{"type": "scalar", "unit": "degrees"} => 7: none
{"type": "color", "value": [0.1, 0.2, 3]} => 8: 0.1 0.2 3 1
{"type": "color", "value": [0, 0, 0, 0.5]} => 8: 0 0 0 0.5
{"type": "reference"} => 9: none
{"type": "referenceList", "connected": []} => 12: none
{"type": "choice", "value": "a"} => 10: 0a of 1
{"type": "choice", "value": ["b", "a", "b"]} => 10: 0b 1a 0b of 2
{"type": "choice", "value": []} => 10: of 0
{"type": "choice", "value": {"choices": ["a", "a", "c"], "selected": [2, 0]}} => 10: 2c 0a of 3
false => 5: false
-1.5 => 7: -1.5
[1, 2, 3] => 8: 1 2 3 1
)-",
               describedJson);
}

TEST(AssetShapes, OfAssets)
{
    AssetFiles files;
    files.add("f.json", R"({"assetLibrary": 1, "$schema": {"any": "thing"}, "materials": [
        {"id": "full", "schema": "MetalSchema", "name": "n", "description": "d",
         "displayName": {"deu": "Stahl", "eng": "Steel"},
         "properties": {"z": 1, "Hidden": true, "a": 2, "VersionGUID": null},
         "genericProperties": {}},
        {"id": "bare", "schema": "S"},
        {"id": "foreign", "schema": "S", "name": "n", "displayName": {"deu": "Holz"}}]})");
    files.add("a.json", "\xEF\xBB\xBF" + materialFile("\"name\": \"n\", \"displayName\": \"N\""));
    const Library library = files.library();
    Lines materials;
    for (const Material& m : library.materials())
        materials.push_back(files.relative(m.file) + m.pointer + ' ' + m.id + ' ' + m.schema);
    EXPECT_EQ(materials, (Lines{"f.json/materials/0 full MetalSchema", "f.json/materials/1 bare S",
                                "f.json/materials/2 foreign S", "a.json/materials/0 m S"}));
    EXPECT_EQ(library.findMaterial("x"), nullptr);
    const auto asset = [&](const char* id) { return library.findMaterial(id)->asset; };
    const auto display = [&](const char* id, const char* language)
    {
        UTF8String name;
        asset(id)->GetDisplayName(name, language);
        return name.str();
    };
    EXPECT_EQ((Lines{display("full", "eng"), display("full", "deu"), display("full", "fra"),
                     display("m", nullptr), display("foreign", "eng"), display("bare", "eng")}),
              (Lines{"Steel", "Stahl", "Steel", "N", "Holz", ""}));
    EXPECT_EQ(text(*asset("full"), &platform::IAssetInstance::GetDescription), "d");
    EXPECT_EQ(text(*asset("full")->GetIdentity(), &platform::IAssetIdentity::GetName), "n");
    EXPECT_EQ(asset("bare")->GetIdentity(), nullptr);
    EXPECT_TRUE(asset("full")->GetGenericPropertyTable());
    EXPECT_FALSE(asset("bare")->GetGenericPropertyTable());
    Lines properties;
    for (std::size_t i = 0; i < asset("full")->GetPropertyCount(); ++i)
        properties.push_back(
            text(*asset("full")->GetProperty(i), &platform::IProperty::GetIdentifier));
    EXPECT_EQ(properties, (Lines{"z", "Hidden", "a"}));
    EXPECT_EQ(asset("full")->GetProperty(3), nullptr);
    EXPECT_EQ(find(library, "VersionGUID"), nullptr);
    EXPECT_EQ(described(*find(library, "Hidden")), "5: true");
    EXPECT_EQ(described(*find(library, "VersionGUID", 1)), "11: S");
    EXPECT_EQ(described(*find(library, "Hidden", 1)), "5: false");
    EXPECT_EQ(find(library, "hidden", 1), nullptr);
}

TEST(AssetShapes, OfOverlays)
{
    AssetFiles files;
    files.add("f.json", R"({"assetLibrary": 1, "overlays": [{"name": "D", "type": "decal"},
        {"name": "E", "type": "decal", "kind": 3, "value0": 1, "value1": -2, "value2": 3, "texture":
          {"path": "x.png", "realWorldOffset": [1, 2], "realWorldScale": [3, 4], "unit": "inch",
           "uvOffset": [5, 6], "uvScale": [7, 8], "rotation": 9}},
        {"name": "T", "type": "thread", "normalTexture": {"unit": 9}, "flag": true,
         "startClippingPlane": [1, 2, 3, 4]}]})");
    const Library library = files.library();
    ASSERT_EQ(library.overlays().size(), 3u);
    const auto decal = [&](std::size_t index)
    {
        const auto& d = std::get<Decal>(library.overlays()[index].content);
        const OverlayTexture& t = d.texture;
        std::ostringstream out;
        out << t.path;
        for (const auto number : {d.kind, d.value0, d.value1, d.value2, t.unit})
            out << ' ' << number;
        for (const auto& pair : {t.realWorldOffset, t.realWorldScale, t.uvOffset, t.uvScale})
            out << ' ' << pair[0] << ',' << pair[1];
        out << ' ' << t.rotation;
        return out.str();
    };
    EXPECT_EQ(decal(0), " 1 0 0 0 3 0,0 1,1 0,0 1,1 0");
    EXPECT_EQ(decal(1), "x.png 3 1 -2 3 4 1,2 3,4 5,6 7,8 9");
    EXPECT_EQ(library.overlays()[1].pointer, "/overlays/1");
    const auto& thread = std::get<Thread>(library.overlays()[2].content);
    EXPECT_FALSE(thread.threadTexture || thread.baseMaterialColor || thread.endClippingPlane);
    EXPECT_EQ(thread.normalTexture.value().unit, 9);
    EXPECT_TRUE(thread.flag);
    EXPECT_EQ(thread.startClippingPlane.value(), (std::array{1.0f, 2.0f, 3.0f, 4.0f}));
}

} // namespace

} // namespace vyr::assetlib::tests
