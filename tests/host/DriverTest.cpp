#include <filesystem>
#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

class Driver : public HostTest
{
  protected:
    static Translation into(const fs::path& folder)
    {
        ConverterOptions options;
        options.outputDirectory = UTF8String(TemporaryFolder::utf8(folder));
        return translate(AssetBuilder().build(), options);
    }
};

TEST_F(Driver, TakesAnyExistingFolder)
{
    const fs::path wide = _folder / fs::path(u8"größe 木");
    fs::create_directory(wide);
    fs::create_directory_symlink(wide, _folder / "link");
    EXPECT_TRUE(into(_folder.path()).succeeded);
    EXPECT_TRUE(into(wide).succeeded);
    EXPECT_TRUE(into(_folder / "link").succeeded);
    EXPECT_TRUE(into(".").succeeded);
}

TEST_F(Driver, RefusesWhatIsNoFolderBeforeAnythingIsDone)
{
    _folder.write("file", "text");
    fs::create_symlink(_folder / "nowhere", _folder / "dangling");
    for (const char* name : {"missing", "file", "missing/below", "file/below", "dangling"})
    {
        const Translation translation = into(_folder / name);
        EXPECT_FALSE(translation.succeeded) << name;
        EXPECT_EQ(xmlOf(translation.document), xmlOf(mx::createDocument())) << name;
        const Diagnostic reason = translation.first(DiagnosticCode::OutputDirectory);
        EXPECT_EQ(reason.severity, Severity::Error);
        EXPECT_NE(reason.text.find(name), std::string::npos) << reason.text;
    }
    EXPECT_EQ(cloneCount(), 0u);
    EXPECT_FALSE(fs::exists(_folder / "missing"));
}

TEST_F(Driver, AFolderThatCannotBeLookedAtIsAnException)
{
    fs::create_symlink(_folder / "loop", _folder / "loop");
    try
    {
        into(_folder / "loop");
        FAIL() << "nothing thrown";
    }
    catch (const fs::filesystem_error& error)
    {
        EXPECT_NE(std::string(error.what()).find("status"), std::string::npos) << error.what();
        EXPECT_FALSE(lastDiagnostics().empty());
    }
}

/// The first translation settles the directory for the life of the instance.
TEST_F(Driver, AnEmptyDirectoryBecomesTheTemporaryOneForGood)
{
    const fs::path first = _folder / "first";
    const fs::path second = _folder / "second";
    fs::create_directory(first);
    fs::create_directory(second);
    ConverterOptions options;
    MaterialXConverter converter(options);
    const AssetPtr asset = AssetBuilder().build();
    {
        const TemporaryDirectoryOverride redirect(first);
        EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "A", mx::createDocument()));
    }
    const TemporaryDirectoryOverride redirect(second);
    EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "B", mx::createDocument()));
    fs::remove(first);
    EXPECT_FALSE(converter.TranslateToMaterialX(*asset, "C", mx::createDocument()));
}

TEST_F(Driver, LeavesNoFileOfAMaterialWithoutTextures)
{
    ConverterOptions options = plainOptions();
    options.copyTextures = true;
    EXPECT_TRUE(translate(AssetBuilder().build(), options).succeeded);
    EXPECT_EQ(_folder.entries(), std::vector<std::string>());
}

TEST_F(Driver, WorksOnACloneAndSharesTheDocumentForTheCallOnly)
{
    const AssetPtr asset = AssetBuilder().build();
    const Translation translation = translate(asset);
    EXPECT_TRUE(translation.succeeded);
    EXPECT_EQ(cloneCount(), 1u);
    EXPECT_EQ(liveAssets(), 1u);
    EXPECT_EQ(translation.document.use_count(), 1);
}

TEST_F(Driver, FailsWithoutDocumentOrClone)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    EXPECT_FALSE(converter.TranslateToMaterialX(*AssetBuilder().build(), "M", nullptr));
    ASSERT_EQ(lastDiagnostics().size(), 1u);
    EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NoDocument);

    const Translation unclonable = translate(AssetBuilder().withoutClone().build());
    EXPECT_FALSE(unclonable.succeeded);
    unclonable.first(DiagnosticCode::CloneFailed);
    EXPECT_TRUE(unclonable.document->getChildren().empty());
}

TEST_F(Driver, TheLegacyFamilyIsNotAvailable)
{
    ConverterOptions options = plainOptions();
    options.translationPath = 1;
    const Translation translation = translate(AssetBuilder().build(), options);
    EXPECT_FALSE(translation.succeeded);
    translation.first(DiagnosticCode::LegacyUnavailable);
    EXPECT_TRUE(translation.document->getChildren().empty());

    options.translationPath = 2;
    EXPECT_TRUE(translate(AssetBuilder().build(), options).succeeded);
}

/// Whether the document was built by the translator of the "Lyrex" family, or by none.
bool isNotGeneric(const Translation& translation)
{
    for (const mx::NodePtr& node : translation.document->getNodes())
        if (node->getCategory() == "standard_surface")
            return false;
    return translation.succeeded || !translation.diagnostics.empty();
}

/// Neither a generic table nor the translation path takes them to another translator.
TEST_F(Driver, TheLyrexFamilyIsTranslatedAsSuch)
{
    for (const int path : {0, 1})
    {
        ConverterOptions options = plainOptions();
        options.translationPath = path;
        for (const char* schema :
             {"LyrexMetalSchema", "LyrexOpaqueSchema", "LyrexTransparentSchema",
              "LyrexLayeredSchema", "LyrexGlazingSchema"})
        {
            const AssetPtr asset =
                AssetBuilder(schema).generic().scalar("generic_glossiness", 0.5).build();
            const Translation translation = translate(asset, options);
            EXPECT_TRUE(isNotGeneric(translation)) << schema << "\n" << translation.report();
            EXPECT_EQ(translation.count(DiagnosticCode::LegacyUnavailable), 0u) << schema;
        }
    }
    const Translation other =
        translate(AssetBuilder("lyrexmetalschema").generic().build(), plainOptions());
    EXPECT_TRUE(other.succeeded) << "the names are compared exactly";
    EXPECT_FALSE(isNotGeneric(other));
}

struct NameCase
{
    const char* name;
    bool usable;
};

const NameCase nameCases[] = {
    {"Oak", true},     {"oak_2", true},      {"_oak", true},   {"x99999999999999999999999", true},
    {"default", true}, {"", false},          {"1oak", false},  {"oak wood", false},
    {"oak-2", false},  {"\xC3\x96l", false}, {"oak\n", false}, {"../oak", false},
    {"oak:2", false},  {"oak/2", false},     {"\x01", false},  {" ", false},
};

TEST_F(Driver, TakesOnlyIdentifiersAsNames)
{
    for (const NameCase& one : nameCases)
    {
        const Translation translation = translate(AssetBuilder().build(), plainOptions(), one.name);
        EXPECT_EQ(translation.succeeded, one.usable) << "\"" << one.name << "\"";
        if (one.usable)
        {
            EXPECT_TRUE(isSound(translation.document));
            EXPECT_NE(translation.document->getNode(one.name), nullptr);
            continue;
        }
        translation.first(DiagnosticCode::NameInvalid);
        EXPECT_EQ(xmlOf(translation.document), xmlOf(mx::createDocument()));
    }
}

} // namespace

} // namespace vyr::hosttests
