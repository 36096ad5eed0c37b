#include "Targets.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>

#include <kelvor/platform/assets/IProperty.h>
#include <vyr/assetlib/Library.h>

#include "support/TemporaryFolder.h"

namespace vyr::attack
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using namespace assetlib;

namespace
{

/// Whether a table finds what it lists, and so do all assets that it is connected to.
bool holds(const platform::IPropertyConstTable& table)
{
    for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
    {
        const platform::IProperty* property = table.GetProperty(i);
        UTF8String name;
        property->GetIdentifier(name);
        if (table.FindProperty(name) != property)
            return false;
        for (std::size_t k = 0; k < property->GetConnectionCount(); ++k)
        {
            const std::unique_ptr<platform::IAssetInstance, platform::IAssetInstanceDeleter>
                connected(property->GetConnectedAsset(k));
            if (!connected || !connected->GetDefinition() || !holds(*connected))
                return false;
        }
    }
    return true;
}

} // namespace

/// A library or errors, each error on one line with a place inside the file, tables that find what they list,
/// references all given back.
std::string tryJson(const std::string& bytes)
{
    static const support::TemporaryFolder folder;
    const std::filesystem::path file = folder / "f.json";
    // A new file each time: some file systems write a truncated one to the disk at once.
    std::filesystem::remove(file);
    std::ofstream(file, std::ios::binary) << bytes;
    const LoadResult result = load({file.string()});
    if (result.library.has_value() != result.errors.empty())
        return "neither library nor errors";
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
    const auto lines = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')) + 1;
    for (const LoadError& error : result.errors)
    {
        const std::string text = error.format();
        if (text.empty() || std::any_of(text.begin(), text.end(), isControl) ||
            (error.line == 0 && !bytes.empty()) || error.line > lines ||
            error.column > bytes.size() + 1)
            return "error: " + text;
    }
    if (!result.library)
        return {};
    for (const Material& material : result.library->materials())
    {
        const platform::IPropertyConstTable* generic = material.asset->GetGenericPropertyTable();
        if (!holds(*material.asset) || (generic && !holds(*generic)) ||
            result.library->findMaterial(material.id) != &material)
            return "material: " + material.id;
    }
    return result.library->referenceCount() == 0 ? "" : "references are left";
}

} // namespace vyr::attack
