#include "AssetFiles.h"

#include <sstream>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IUriValue.h>

namespace vyr::assetlib::tests
{

AssetFiles& AssetFiles::add(const std::string& name, const std::string& content)
{
    _files.push_back(support::TemporaryFolder::utf8(_folder.write(name, content)));
    return *this;
}

Library AssetFiles::library() const
{
    EXPECT_EQ(errors(), Lines());
    return std::move(load(_files).library).value();
}

Lines AssetFiles::errors() const
{
    const LoadResult result = load(_files);
    EXPECT_EQ(result.library.has_value(), result.errors.empty());
    Lines lines;
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

void checkTable(const std::string& table, const std::function<Lines(const std::string&)>& function)
{
    std::vector<std::pair<std::string, Lines>> rows;
    std::istringstream stream(table);
    for (std::string line; std::getline(stream, line);)
    {
        if (const auto arrow = line.find(" => "); arrow != line.npos)
            rows.push_back({line.substr(0, arrow), {line.substr(arrow + 4)}});
        else if (!line.empty())
            rows.at(rows.size() - 1).second.push_back(line.substr(2));
    }
    ASSERT_FALSE(rows.empty());
    for (const auto& [input, expected] : rows)
        EXPECT_EQ(function(input), expected) << input;
}

std::string materialFile(const std::string& members)
{
    return R"({"assetLibrary": 1, "materials": [{"id": "m", "schema": "S", )" + members + "}]}";
}

std::string propertyFile(const std::string& property)
{
    return materialFile(R"("properties": {"p": )" + property + "}");
}

const platform::IProperty* find(const Library& library, const char* name, std::size_t index)
{
    return library.materials().at(index).asset->FindProperty(UTF8String(name));
}

std::string uri(const platform::IProperty* property)
{
    UTF8String text;
    dynamic_cast<const platform::IUriValue&>(*property->GetValue())
        .GetUri(text, platform::UriForm::Preferred);
    return text.str();
}

} // namespace vyr::assetlib::tests
