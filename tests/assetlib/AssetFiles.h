#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <vyr/assetlib/Library.h>

#include "support/TemporaryFolder.h"

namespace vyr::assetlib::tests
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using Lines = std::vector<std::string>;
using AssetPointer = std::unique_ptr<platform::IAssetInstance, platform::IAssetInstanceDeleter>;

/// Asset files in a folder of their own, loaded together.
struct AssetFiles
{
    /// Writes a file and adds it to the load.
    AssetFiles& add(const std::string& name, const std::string& content)
    {
        paths.push_back(support::TemporaryFolder::utf8(folder.write(name, content)));
        return *this;
    }

    /// What was loaded from files that must be good.
    Library library() const
    {
        EXPECT_EQ(errors(), Lines());
        return std::move(load(paths).library).value();
    }

    /// The formatted errors of the load, without the folder.
    Lines errors() const
    {
        const LoadResult result = load(paths);
        EXPECT_EQ(result.library.has_value(), result.errors.empty());
        Lines lines;
        for (const LoadError& error : result.errors)
            lines.push_back(relative(error.format()));
        return lines;
    }

    /// The text without the folder's path.
    std::string relative(std::string text) const
    {
        const std::string prefix = folder.text() + '/';
        for (auto at = text.find(prefix); at != text.npos; at = text.find(prefix))
            text.erase(at, prefix.size());
        return text;
    }

    support::TemporaryFolder folder;
    std::vector<std::string> paths;
};

/// A file with these members at its top.
inline std::string memberFile(const std::string& members)
{
    return R"({"assetLibrary": 1, )" + members + "}";
}

/// A file with one material "m" and, in it, the members that are given.
inline std::string materialFile(const std::string& members)
{
    return memberFile(R"("materials": [{"id": "m", "schema": "S", )" + members + "}]");
}

/// A property of a material, by default of the only one.
inline const platform::IProperty* find(const Library& library, const char* name,
                                       std::size_t index = 0)
{
    return library.materials().at(index).asset->FindProperty(UTF8String(name));
}

/// The text that an operation fills, for example `text(*asset, &IAssetInstance::GetIdentifier)`.
template <class Object, class Owner, class... More>
std::string text(const Object& object, void (Owner::*fill)(UTF8String&, More...) const,
                 More... more)
{
    UTF8String result("not filled");
    (object.*fill)(result, more...);
    return result.str();
}

inline std::string uri(const platform::IProperty* property)
{
    const auto& value = dynamic_cast<const platform::IUriValue&>(*property->GetValue());
    return text<platform::IUriValue>(value, &platform::IUriValue::GetUri,
                                     platform::TextForm::Preferred);
}

} // namespace vyr::assetlib::tests
