#include "AssetFiles.h"

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IUriValue.h>

namespace vyr::assetlib::tests
{

AssetFiles& AssetFiles::add(const std::string& name, const std::string& content)
{
    _files.push_back(support::TemporaryFolder::utf8(_folder.write(name, content)));
    return *this;
}

LoadResult AssetFiles::load(const LoadOptions& options) const
{
    return assetlib::load(_files, options);
}

Library AssetFiles::library(const LoadOptions& options) const
{
    LoadResult result = load(options);
    for (const LoadError& error : result.errors)
        ADD_FAILURE() << error.format();
    return std::move(result.library).value();
}

std::vector<std::string> AssetFiles::errors() const
{
    const LoadResult result = load();
    EXPECT_EQ(result.library.has_value(), result.errors.empty());
    std::vector<std::string> lines;
    for (const LoadError& error : result.errors)
        lines.push_back(relative(error.format()));
    return lines;
}

std::string AssetFiles::relative(std::string text) const
{
    const std::string prefix = _folder.text() + '/';
    for (auto at = text.find(prefix); at != text.npos; at = text.find(prefix))
        text.erase(at, prefix.size());
    return text;
}

std::string materialFile(const std::string& members)
{
    return R"({"assetLibrary": 1, "materials": [{"id": "m", "schema": "GenericSchema", )" +
           members + "}]}";
}

std::string propertyFile(const std::string& property)
{
    return materialFile(R"("properties": {"p": )" + property + "}");
}

const platform::IProperty* find(const platform::IPropertyConstTable& table, const char* name)
{
    return table.FindProperty(UTF8String(name));
}

std::string uri(const platform::IProperty* property)
{
    const auto* value =
        property ? dynamic_cast<const platform::IUriValue*>(property->GetValue()) : nullptr;
    if (!value)
        return "no uri";
    UTF8String text;
    value->GetUri(text, platform::UriForm::Preferred);
    return text.str();
}

} // namespace vyr::assetlib::tests
