#pragma once

#include <string>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IProperty.h>
#include <vyr/assetlib/Library.h>

#include "support/TemporaryFolder.h"

namespace vyr::assetlib::tests
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;

/// Asset files in a folder of their own, loaded together.
class AssetFiles
{
  public:
    /// Writes a file and adds it to the load.
    AssetFiles& add(const std::string& name, const std::string& content);
    LoadResult load(const LoadOptions& options = {}) const;
    /// The same for files that must be good.
    Library library(const LoadOptions& options = {}) const;
    /// The formatted errors of the load, without the folder.
    std::vector<std::string> errors() const;

    const support::TemporaryFolder& folder() const { return _folder; }
    /// The text without the folder's path.
    std::string relative(std::string text) const;

  private:
    support::TemporaryFolder _folder;
    std::vector<std::string> _files;
};

/// A file with one material "m" and, in it, the members that are given.
std::string materialFile(const std::string& members);
/// A file with one material "m" and one property "p".
std::string propertyFile(const std::string& property);

const platform::IProperty* find(const platform::IPropertyConstTable& table, const char* name);
/// The text that an operation fills, for example `text(*asset, &IAssetInstance::GetIdentifier)`.
template <class Object, class Owner>
std::string text(const Object& object, void (Owner::*fill)(UTF8String&) const)
{
    UTF8String result("not filled");
    (object.*fill)(result);
    return result.str();
}
std::string uri(const platform::IProperty* property);

} // namespace vyr::assetlib::tests
