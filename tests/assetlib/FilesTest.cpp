#include <clocale>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IScalarValue.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

TEST(AssetFilesTest, MaterialsKeepTheOrderOfFilesAndPlaces)
{
    AssetFiles files;
    files.add("b.json", R"({"assetLibrary": 1, "materials":
        [{"id": "z", "schema": "S"}, {"id": "a", "schema": "T"}]})");
    files.add("a.json", "\xEF\xBB\xBF" + materialFile("\"name\": \"n\""));
    const Library library = files.library();
    std::vector<std::string> lines;
    for (const Material& material : library.materials())
        lines.push_back(files.relative(material.file) + material.pointer + ' ' + material.id + ' ' +
                        material.schema);
    EXPECT_EQ(lines, (std::vector<std::string>{"b.json/materials/0 z S", "b.json/materials/1 a T",
                                               "a.json/materials/0 m GenericSchema"}));
    EXPECT_EQ(library.findMaterial("x"), nullptr);
    EXPECT_TRUE(load({}).library.value().materials().empty());
}

TEST(AssetFilesTest, ThatCannotBeReadAreReportedTogether)
{
    AssetFiles files;
    files.add("empty.json", "").add("good.json", materialFile("\"name\": \"n\""));
    files.add("bad.json", "{}");
    const std::string folder = files.folder().text();
    const std::string empty = folder + "/empty.json";
    const LoadResult result = load({folder + "/missing.json", folder, empty, folder + "/good.json",
                                    folder + "/bad.json", folder + "/good.json/x.json", ""});
    EXPECT_FALSE(result.library);
    std::vector<std::string> lines;
    for (const LoadError& error : result.errors)
        lines.push_back(files.relative(error.format()));
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], "missing.json: no such file");
    EXPECT_EQ(lines[1], folder + ": expected a file, this is a folder");
    EXPECT_EQ(lines[2], "empty.json: the file is empty");
    EXPECT_EQ(lines[3], "bad.json: expected the key \"assetLibrary\"");
    EXPECT_EQ(lines[4], "good.json/x.json: no such file");
    EXPECT_EQ(lines[5], ": no such file");
}

TEST(AssetFilesTest, DecimalCommasOfTheLocaleDoNotMatter)
{
    AssetFiles files;
    files.add("f.json", propertyFile(R"({"type": "scalar", "value": 0.5})"));
    const std::string former = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "no locale with decimal commas";
    const Library library = files.library();
    std::setlocale(LC_ALL, former.c_str());
    const platform::IValue* value = find(*library.materials()[0].asset, "p")->GetValue();
    EXPECT_EQ(dynamic_cast<const platform::IScalarValue&>(*value).GetScalar(0), 0.5);
}

} // namespace

} // namespace vyr::assetlib::tests
