#pragma once

#include <functional>
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
using Lines = std::vector<std::string>;

/// Asset files in a folder of their own, loaded together.
class AssetFiles
{
  public:
    /// Writes a file and adds it to the load.
    AssetFiles& add(const std::string& name, const std::string& content);
    /// What was loaded from files that must be good.
    Library library() const;
    /// The formatted errors of the load, without the folder.
    Lines errors() const;

    const support::TemporaryFolder& folder() const { return _folder; }
    /// The text without the folder's path.
    std::string relative(std::string text) const;

  private:
    support::TemporaryFolder _folder;
    std::vector<std::string> _files;
};

/// Compares a function with a table of lines `input => result`; an indented line is one result more.
void checkTable(const std::string& table, const std::function<Lines(const std::string&)>& function);

/// A file with one material "m" and, in it, the members that are given.
std::string materialFile(const std::string& members);
/// A file with one material "m" and one property "p".
std::string propertyFile(const std::string& property);

/// A property of a material, by default of the only one.
const platform::IProperty* find(const Library& library, const char* name, std::size_t index = 0);
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
