#include <filesystem>
#include <string>
#include <vector>

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
    Output() { fs::create_directory(_temporary); }

    bool serialise(const std::string& schema = "GenericSchema")
    {
        const TemporaryDirectoryOverride redirect(_temporary);
        MaterialXConverter converter(_options);
        EXPECT_TRUE(converter.RegisterAssetForConversion(*AssetBuilder(schema).name("Oak").build(),
                                                         _message));
        return converter.SerializeRegisteredAssetsForConversion(_message, nullptr);
    }

    fs::path _temporary = _folder / "temporary";
    fs::path _file = _temporary / "Oak.mtlx";
    ConverterOptions _options = with(&ConverterOptions::writeMtlxFile, true);
    StringSink _message;
};

/// Whatever was there before, and no file is left over beside it.
TEST_F(Output, GoesToTheTemporaryDirectoryWhenAskedFor)
{
    _folder.write("temporary/Oak.mtlx", std::string(100000, 'x'));
    ASSERT_TRUE(serialise());
    EXPECT_EQ(_folder.entries(), (std::vector<std::string>{"temporary", "temporary/Oak.mtlx"}));
    EXPECT_EQ(readFile(_file), _message.text);

    fs::remove(_file);
    _options.writeMtlxFile = false;
    ASSERT_TRUE(serialise());
    EXPECT_FALSE(fs::exists(_file));
}

TEST_F(Output, IsWrittenForAFailedMaterialToo)
{
    EXPECT_FALSE(serialise("CeramicSchema"));
    EXPECT_EQ(_message.assignments, 0);
    EXPECT_EQ(readFile(_file), xmlOf(mx::createDocument()));
}

/// A folder of the file's name stands in the way, then the directory is gone.
TEST_F(Output, ThatCannotBeWrittenIsAnException)
{
    fs::create_directories(_file / "inside");
    EXPECT_THROW(serialise(), fs::filesystem_error);
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_TRUE(fs::is_directory(_file / "inside")) << "nobody's data is lost over it";
    fs::remove_all(_temporary);
    EXPECT_THROW(serialise(), fs::filesystem_error);
    EXPECT_EQ(registeredAssetCount(), 0u);
}

} // namespace

} // namespace vyr::hosttests
