#include <cstdlib>
#include <fstream>

#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

void describe(std::ostream& out, const platform::IPropertyConstTable& table);

/// What a value says, read through the interfaces.
void describe(std::ostream& out, const platform::IValue& value)
{
    if (const auto* string = dynamic_cast<const platform::IStringValue*>(&value))
        out << ' '
            << text(*string, &platform::IStringValue::GetString, platform::TextForm::Preferred);
    if (const auto* choices = dynamic_cast<const platform::IChoiceListValue*>(&value))
    {
        for (std::size_t i = 0; i < choices->GetSelectedCount(); ++i)
            out << ' ' << choices->GetSelectedIndex(i);
        out << " of";
        for (std::size_t i = 0; i < choices->GetChoiceTable()->GetChoiceCount(); ++i)
            out << ' '
                << text(*choices->GetChoiceTable()->GetChoice(i), &platform::IChoice::GetName);
    }
    for (std::size_t i = 0; i <= value.GetComponentCount(); ++i) // one more than there are
    {
        if (const auto* integers = dynamic_cast<const platform::IIntegerValue*>(&value))
            out << ' ' << integers->GetInteger(i);
        if (const auto* scalars = dynamic_cast<const platform::IScalarValue*>(&value))
            out << ' ' << scalars->GetScalar(i);
    }
    double r = -1, g = -1, b = -1, a = -1;
    value.GetColor(0, r, g, b, a);
    out << " color " << r << ' ' << g << ' ' << b << ' ' << a
        << (value.GetBoolean(0) ? " true" : "") << " unit " << std::hex << value.GetUnit()
        << std::dec;
}

void describe(std::ostream& out, const platform::IAssetInstance& asset)
{
    out << text(asset, &platform::IAssetInstance::GetIdentifier) << ", schema "
        << text(*asset.GetDefinition(), &platform::IAssetDefinition::GetName) << ", "
        << text(asset, &platform::IAssetInstance::GetDescription);
    if (asset.GetIdentity())
        out << ", name " << text(*asset.GetIdentity(), &platform::IAssetIdentity::GetName);
    for (const char* language : {"eng", "deu", "fra"})
        out << ", "
            << text(asset, &platform::IAssetInstance::GetDisplayName,
                    static_cast<const char*>(language));
    out << '\n';
    describe(out, static_cast<const platform::IPropertyConstTable&>(asset));
    if (asset.GetGenericPropertyTable())
        describe(out << "generic\n", *asset.GetGenericPropertyTable());
}

void describe(std::ostream& out, const platform::IPropertyConstTable& table)
{
    for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
    {
        const platform::IProperty& property = *table.GetProperty(i);
        const std::string name = text(property, &platform::IProperty::GetIdentifier);
        EXPECT_EQ(table.FindProperty(UTF8String(name)), &property);
        out << "  " << name << ": " << property.GetType();
        if (property.GetValue())
            describe(out, *property.GetValue());
        out << '\n';
        for (std::size_t k = 0; k < property.GetConnectionCount(); ++k)
            describe(out << "  connected: ", *AssetPointer(property.GetConnectedAsset(k)));
    }
    EXPECT_EQ(table.GetProperty(table.GetPropertyCount()), nullptr);
    EXPECT_EQ(table.FindProperty(UTF8String("hidden")), nullptr);
}

void describe(std::ostream& out, const char* name, const std::optional<OverlayTexture>& texture)
{
    if (!texture)
        return;
    out << ' ' << name << ' ' << texture->path << ' ' << texture->unit << ' ' << texture->rotation;
    for (const auto& pair :
         {texture->realWorldOffset, texture->realWorldScale, texture->uvOffset, texture->uvScale})
        out << ' ' << pair[0] << ',' << pair[1];
}

void describe(std::ostream& out, const Overlay& overlay)
{
    out << overlay.name << overlay.pointer;
    if (const auto* decal = std::get_if<Decal>(&overlay.content))
    {
        out << ' ' << decal->kind << ' ' << decal->value0 << ' ' << decal->value1 << ' '
            << decal->value2;
        describe(out, "texture", decal->texture);
    }
    if (const auto* thread = std::get_if<Thread>(&overlay.content))
    {
        describe(out, "thread", thread->threadTexture);
        describe(out, "normal", thread->normalTexture);
        out << (thread->flag ? " flag" : "");
        for (const auto& plane :
             {thread->baseMaterialColor, thread->startClippingPlane, thread->endClippingPlane})
            out << " | " << (plane ? (*plane)[0] + 10 * (*plane)[1] + 100 * (*plane)[2] : -1);
    }
    out << '\n';
}

/// Each file of the folder "cases" gives what the text file beside it says. With VYR_ACCEPT in the
/// environment the text files are written anew.
TEST(AssetFileCases, GiveWhatIsExpected)
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VYR_CASES))
    {
        std::filesystem::path file = entry.path();
        if (file.extension() != ".json")
            continue;
        ++count;
        std::ostringstream out;
        const LoadResult result = load({file.string()});
        for (LoadError error : result.errors)
        {
            error.file = file.filename().string();
            out << error.format() << '\n';
        }
        for (std::size_t i = 0; result.library && i < result.library->materials().size(); ++i)
            describe(out << result.library->materials()[i].pointer << ' ',
                     *result.library->materials()[i].asset);
        for (std::size_t i = 0; result.library && i < result.library->overlays().size(); ++i)
            describe(out, result.library->overlays()[i]);
        file.replace_extension(".txt");
        if (std::getenv("VYR_ACCEPT"))
            std::ofstream(file) << out.str();
        EXPECT_EQ(support::readFile(file), out.str()) << file;
    }
    EXPECT_GE(count, 3u);
}

TEST(AssetErrors, OfNoAssetFileHaveLineAndColumn)
{
    const std::string good = R"({"assetLibrary": 1})";
    // clang-format off
    const std::pair<std::string, const char*> rows[] = {
        {"{\"assetLibrary\": 1,\n \"materials\": [", "2:16: broken JSON: unexpected end of the file"},
        {"{\"a\": 1,\n  }", "1:8: broken JSON: expected no comma behind the last item"},
        {"{ true}", "1:3: broken JSON: expected a key in double quotes, found \"true\""},
        {"{\"a\" 1}", "1:6: broken JSON: expected ':' after the key, found \"1\""},
        {"[1 \"\\u00e4\"]", "1:4: broken JSON: expected ',' or ']', found a text"},
        {"[\n tru-e]", "2:2: broken JSON: expected a value, found \"tru-e\""},
        // Columns count characters, and what is found is one.
        {"{\"a\": \"\xC3\xA4\xE2\x82\xAC\" \xC3\xB6\xC3\xB6}", "1:12: broken JSON: expected ',' or '}', found \"\xC3\xB6\""},
        {good + "\n {", "2:2: broken JSON: expected the end of the file, found \"{\""},
        {"\xEF\xBB\xBF{,", "1:2: broken JSON: expected a key in double quotes, found \",\""},
        {"{\"a\": \"\n\"}", "1:8: broken JSON: expected no control character in a text, found \"\\n\""},
        {"{\"a\": \"\xFF\"}", "1:8: broken JSON: invalid UTF-8 in a text"},
        {"[\"\\ud800\"]", "1:9: broken JSON: half of a surrogate pair in a text"},
        {"[1.]", "1:4: broken JSON: no digit after decimal point"},
        {"\n ", "1:1: broken JSON: expected a value"},
        {std::string("\xFF\xFE{\0}\0", 6), "1:1: expected UTF-8, this looks like UTF-16"},
        {good + std::string("\0x", 2), "1:20: broken JSON: a NUL character"},
        {"\n[]", "2:1: expected an object"},
        {"{}", "1:1: expected the key \"assetLibrary\""},
        {"{\"assetLibrary\": 2, \"new\": 1}", "1:18: /assetLibrary: expected 1, the version of the format"},
    };
    // clang-format on
    for (const auto& [json, expected] : rows)
        EXPECT_EQ(AssetFiles().add("f.json", json).errors(),
                  Lines{std::string("f.json:") + expected});
}

TEST(AssetErrors, OfNesting)
{
    const auto errors = [](std::size_t depth)
    {
        const std::string arrays = std::string(depth, '[') + std::string(depth, ']');
        return AssetFiles().add("f.json", memberFile("\"$schema\": " + arrays)).errors();
    };
    std::string place = "f.json:1:95: /$schema";
    for (int i = 0; i < 63; ++i)
        place += "/0";
    EXPECT_EQ(errors(63), Lines());
    for (const std::size_t depth : {64u, 200000u})
        EXPECT_EQ(errors(depth),
                  Lines{place + ": expected at most 64 arrays and objects inside one another"});

    // What is deeper is not read, however deep it goes.
    std::string assets = "[";
    std::string ends;
    for (int i = 0; i < 100000; ++i)
    {
        ends += "}}}";
        assets +=
            R"({"id": "a", "schema": "S", "properties": {"p": {"type": "text", "connected": )";
    }
    EXPECT_LT(AssetFiles()
                  .add("f.json", memberFile("\"materials\": " + assets + "0" + ends + "]"))
                  .errors()
                  .size(),
              50u);
}

TEST(AssetErrors, OfFilesThatCannotBeRead)
{
    AssetFiles files;
    const std::string folder = files.folder.text();
    files.paths = {folder + "/missing.json", folder};
    files.add("empty.json", "").add("good.json", materialFile("\"name\": \"n\""));
    files.add("bad.json", "{}").paths.emplace_back();
    EXPECT_EQ(files.errors(),
              (Lines{"missing.json: no such file", folder + ": expected a file, this is a folder",
                     "empty.json: the file is empty",
                     "bad.json:1:1: expected the key \"assetLibrary\"", ": no such file"}));
}

} // namespace

} // namespace vyr::assetlib::tests
