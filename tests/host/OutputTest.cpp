#include <filesystem>
#include <string>
#include <vector>

#include <MaterialXFormat/XmlIo.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

/// Serialisation with the system's temporary directory inside the test's folder.
class Output : public HostTest
{
  protected:
    Output() : _temporary(_folder / "temporary")
    {
        fs::create_directory(_temporary);
        fs::create_directory(_folder / "output");
        _options.outputDirectory = UTF8String(TemporaryFolder::utf8(_folder / "output"));
        _options.writeMtlxFile = true;
    }

    bool serialise(const AssetPtr& asset, StringSink& message)
    {
        const TemporaryDirectoryOverride redirect(_temporary);
        MaterialXConverter converter(_options);
        StringSink unused;
        EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, unused));
        return converter.SerializeRegisteredAssetsForConversion(message, nullptr);
    }

    fs::path _temporary;
    ConverterOptions _options;
};

TEST_F(Output, GoesToTheTemporaryDirectoryWhenAskedFor)
{
    const AssetPtr asset = AssetBuilder().name("Oak").build();
    StringSink message;
    ASSERT_TRUE(serialise(asset, message));
    EXPECT_EQ(_folder.entries(),
              (std::vector<std::string>{"output", "temporary", "temporary/Oak.mtlx"}));
    EXPECT_EQ(readFile(_temporary / "Oak.mtlx"), message.text);

    fs::remove(_temporary / "Oak.mtlx");
    _options.writeMtlxFile = false;
    StringSink again;
    ASSERT_TRUE(serialise(asset, again));
    EXPECT_EQ(again.text, message.text);
    EXPECT_FALSE(fs::exists(_temporary / "Oak.mtlx"));
}

TEST_F(Output, ReplacesAnEarlierFileWhole)
{
    _folder.write("temporary/Oak.mtlx", std::string(100000, 'x'));
    StringSink message;
    ASSERT_TRUE(serialise(AssetBuilder().name("Oak").build(), message));
    EXPECT_EQ(readFile(_temporary / "Oak.mtlx"), message.text);
    EXPECT_EQ(_folder.entries().size(), 3u) << "no file beside it is left over";
}

TEST_F(Output, IsWrittenForAFailedMaterialToo)
{
    StringSink message;
    EXPECT_FALSE(serialise(AssetBuilder("CeramicSchema").name("Tile").build(), message));
    EXPECT_EQ(message.assignments, 0);
    const auto written = mx::createDocument();
    mx::readFromXmlString(written, readFile(_temporary / "Tile.mtlx"));
    EXPECT_TRUE(written->getNodes().empty());
}

/// A folder of the file's name stands in the way; nobody's data is lost over it.
TEST_F(Output, ThatCannotBeWrittenIsAnException)
{
    fs::create_directories(_temporary / "Oak.mtlx" / "inside");
    StringSink message;
    EXPECT_THROW(serialise(AssetBuilder().name("Oak").build(), message), fs::filesystem_error);
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_TRUE(fs::is_directory(_temporary / "Oak.mtlx" / "inside"));
}

TEST_F(Output, WithoutATemporaryDirectoryIsAnException)
{
    fs::remove(_temporary);
    StringSink message;
    EXPECT_THROW(serialise(AssetBuilder().name("Oak").build(), message), fs::filesystem_error);
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_FALSE(fs::exists(_temporary));
}

/// The file is whole or an exception tells that it is not, also on a device that takes nothing.
TEST_F(Output, OnAFullDeviceIsNoticed)
{
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "the system has no device that is always full";
    const fs::path file = _temporary / "Oak.mtlx";
    fs::create_symlink("/dev/full", file);
    StringSink message;
    try
    {
        ASSERT_TRUE(serialise(AssetBuilder().name("Oak").build(), message));
        ASSERT_TRUE(fs::is_regular_file(file));
        EXPECT_EQ(readFile(file), message.text);
    }
    catch (const fs::filesystem_error&)
    {
        EXPECT_EQ(registeredAssetCount(), 0u);
    }
}

} // namespace

} // namespace vyr::hosttests
