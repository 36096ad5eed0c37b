#include <filesystem>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

class Driver : public HostTest
{
  protected:
    Translation into(const fs::path& folder) const
    {
        return translate(AssetBuilder().build(), with(&ConverterOptions::outputDirectory,
                                                      UTF8String(TemporaryFolder::utf8(folder))));
    }
};

TEST_F(Driver, TakesAnyExistingFolderAndLeavesNoFile)
{
    const fs::path wide = _folder / fs::path(u8"größe 木");
    fs::create_directory(wide);
    fs::create_directory_symlink(wide, _folder / "link");
    for (const fs::path& folder : {_folder.path(), wide, _folder / "link", fs::path(".")})
        EXPECT_TRUE(into(folder).succeeded) << folder;
    EXPECT_EQ(_folder.entries().size(), 2u);
}

TEST_F(Driver, RefusesWhatIsNoFolderBeforeAnythingIsDone)
{
    _folder.write("file", "text");
    fs::create_symlink(_folder / "nowhere", _folder / "dangling");
    for (const char* name : {"missing", "file", "missing/below", "file/below", "dangling"})
    {
        const Translation translation = into(_folder / name);
        EXPECT_FALSE(translation.succeeded) << name;
        EXPECT_TRUE(*translation.document == *mx::createDocument()) << name;
        const Diagnostic reason = translation.first(DiagnosticCode::OutputDirectory);
        EXPECT_NE(reason.text.find(name), std::string::npos) << reason.text;
    }
    EXPECT_EQ(cloneCount(), 0u);
    EXPECT_FALSE(fs::exists(_folder / "missing"));

    fs::create_symlink(_folder / "loop", _folder / "loop");
    EXPECT_THROW(into(_folder / "loop"), fs::filesystem_error) << "it cannot be looked at";
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::Exception});
}

/// The first translation settles the directory for the life of the instance.
TEST_F(Driver, AnEmptyDirectoryBecomesTheTemporaryOneForGood)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
    for (const char* temporary : {"first", "second"})
    {
        fs::create_directory(_folder / temporary);
        redirectTemporaryDirectory(_folder / temporary);
        EXPECT_TRUE(
            converter.TranslateToMaterialX(*AssetBuilder().build(), "M", mx::createDocument()));
    }
    fs::remove(_folder / "first");
    EXPECT_FALSE(
        converter.TranslateToMaterialX(*AssetBuilder().build(), "M", mx::createDocument()));
}

TEST_F(Driver, NeedsADocument)
{
    ConverterOptions options = plainOptions();
    EXPECT_FALSE(
        MaterialXConverter(options).TranslateToMaterialX(*AssetBuilder().build(), "M", nullptr));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoDocument});
}

/// "Lyrex" schemas have a translator of their own whatever the path; the others need their table.
TEST_F(Driver, ChoosesTheTranslatorByTheExactSchemaAndThePath)
{
    // Schema and path, whether there is a translator for them, and whether it is the Generic one.
    const std::tuple<const char*, int, bool, bool> cases[] = {
        {"GenericSchema", 0, true, true},     {"GenericSchema", 1, false, false},
        {"GenericSchema", 2, true, true},     {"lyrexmetalschema", 0, true, true},
        {"CeramicSchema", 0, true, true},     {"", 0, true, true},
        {"LyrexMetalSchema", 0, true, false}, {"LyrexMetalSchema", 1, true, false},
    };
    for (const auto& [schema, path, succeeds, isGeneric] : cases)
    {
        const Translation translation =
            translate(AssetBuilder(schema).generic().scalar("generic_glossiness", 0.5).build(),
                      with(&ConverterOptions::translationPath, path));
        EXPECT_EQ(translation.succeeded, succeeds) << schema << path << translation.report();
        EXPECT_EQ(translation.document->getNodes("standard_surface").size(), isGeneric) << schema;
        EXPECT_EQ(translation.count(DiagnosticCode::LegacyUnavailable), !succeeds);
    }
    for (const char* schema : {"genericschema", "GenericSchema ", "Generic", ""})
        translate(AssetBuilder(schema).build()).first(DiagnosticCode::NoGenericProperties);
}

TEST_F(Driver, TakesOnlyIdentifiersAsNames)
{
    for (const char* name : {"Oak", "oak_2", "_oak", "x99999999999999999999999", "default"})
    {
        const Translation translation = translate(AssetBuilder().build(), plainOptions(), name);
        EXPECT_TRUE(translation.succeeded && translation.document->getNode(name)) << name;
        EXPECT_TRUE(isSound(translation.document));
    }
    for (const char* name : {"", "1oak", "oak wood", "oak-2", "\xC3\x96l", "oak\n", "../oak",
                             "oak:2", "oak/2", "\x01", " "})
    {
        const Translation translation = translate(AssetBuilder().build(), plainOptions(), name);
        EXPECT_FALSE(translation.succeeded) << name;
        translation.first(DiagnosticCode::NameInvalid);
        EXPECT_TRUE(translation.document->getChildren().empty());
    }
}

TEST_F(Driver, ReducesDisplayNamesToIdentifiers)
{
    std::string spaced;
    for (int i = 0; i < 200000; ++i)
        spaced += "a ";
    const std::tuple<std::string, const char*, bool, std::string> cases[] = {
        {"Ceramic_Tile-3", "x", false, "CeramicTile3"},
        {"3D Metal", "x", false, "M3DMetal"},
        {"-7-", "x", false, "M7"},
        {"\xC3\x84pfel", "x", false, "pfel"},
        {"\xE6\x9C\xA8", "mat-12.a", false, "XID__mat12a"},
        {"!?", "a_b c", false, "XID__a_bc"},
        {"", "", false, "XID__"},
        {"Oak", "mat-12.a", true, "XID_Oak_mat12a"},
        {"3D", "_id_", true, "XID_3D__id_"},
        {"Oak_Wood", "", true, "XID_OakWood_"},
        {"\xFF\xFE\x80 broken\nUTF-8\t", "x", false, "brokenUTF8"},
        {spaced, "a recursive pattern matcher runs out of stack", false, std::string(200000, 'a')},
    };
    for (const auto& [name, identifier, useIdentifier, expected] : cases)
    {
        ConverterOptions options = with(&ConverterOptions::useAssetIdInName, useIdentifier);
        const AssetPtr asset = AssetBuilder().name(name).id(identifier).build();
        EXPECT_TRUE(MaterialXConverter(options).getMaterialName(*asset).str() == expected)
            << expected;
    }
}

} // namespace

} // namespace vyr::hosttests
