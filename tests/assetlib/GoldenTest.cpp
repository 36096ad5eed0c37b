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

} // namespace

} // namespace vyr::assetlib::tests
