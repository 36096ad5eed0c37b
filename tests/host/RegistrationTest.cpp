#include <filesystem>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

class Registration : public HostTest
{
  protected:
    void TearDown() override
    {
        _converter.Destroy();
        HostTest::TearDown();
    }

    bool registerAsset(const std::string& name, const std::string& id = "id",
                       const std::string& schema = "GenericSchema")
    {
        const AssetPtr asset = AssetBuilder(schema).name(name).id(id).build();
        return _converter.RegisterAssetForConversion(*asset, _message);
    }

    /// Whether the next entry is the material of that name; it is taken off in any case.
    bool drains(const std::string& name)
    {
        const bool done = _converter.SerializeRegisteredAssetsForConversion(_message, nullptr);
        return done &&
               _message.text.find("<surfacematerial name=\"" + name + "\"") != std::string::npos;
    }

    void expectLeft(std::size_t count) const
    {
        EXPECT_EQ(registeredAssetCount(), count);
        EXPECT_EQ(liveAssets(), count) << "the clones, since the originals are gone";
    }

    ConverterOptions _options = plainOptions();
    MaterialXConverter _converter{_options};
    StringSink _message;
};

TEST_F(Registration, DrainsInTheOrderOfRegistration)
{
    const std::string direct =
        xmlOf(translate(AssetBuilder().id("id").build(), _options, "Elm").document);
    for (const char* name : {"Oak", "Ash", "Elm"})
        EXPECT_TRUE(registerAsset(name));
    expectLeft(3);
    EXPECT_EQ(_message.assignments, 0);
    for (const char* name : {"Oak", "Ash", "Elm"})
        EXPECT_TRUE(drains(name)) << _message.text;
    expectLeft(0);
    EXPECT_EQ(_message.text, direct);
    EXPECT_FALSE(drains(""));
    EXPECT_EQ(_message.assignments, 3);
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NothingRegistered});
}

TEST_F(Registration, TheFirstAssetOfANameWins)
{
    EXPECT_TRUE(registerAsset("Oak 1", "first"));
    EXPECT_TRUE(lastDiagnostics().empty());
    EXPECT_TRUE(registerAsset("Oak_1", "second"));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NameDuplicate});
    expectLeft(1);
    EXPECT_EQ(cloneCount(), 1u);
    EXPECT_TRUE(drains("Oak1"));
    EXPECT_NE(_message.text.find("first"), std::string::npos);
    EXPECT_TRUE(registerAsset("Oak1", "third"));
    EXPECT_TRUE(lastDiagnostics().empty()) << "a drained name is free again";
}

TEST_F(Registration, NamesAreThoseOfTheRegisteringInstance)
{
    ConverterOptions options = with(&ConverterOptions::useAssetIdInName, true);
    MaterialXConverter byIdentifier(options);
    for (const char* id : {"1", "2"})
        EXPECT_TRUE(byIdentifier.RegisterAssetForConversion(
            *AssetBuilder().name("Oak").id(id).build(), _message));
    EXPECT_TRUE(drains("XID_Oak_1") && drains("XID_Oak_2"));
}

/// A text of the host's that cannot take the result.
struct FailingSink final : MaterialXConverter::IString
{
    void Assign(const UTF8String&) override { throw HostFault("IString::Assign"); }
};

/// Whatever happens to an entry, it is taken off and does not block the next.
TEST_F(Registration, FailuresTakeTheEntryOff)
{
    EXPECT_FALSE(
        _converter.RegisterAssetForConversion(*AssetBuilder().withoutClone().build(), _message));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::CloneFailed});
    for (const char* name : {"Bad", "Unlucky", "Unheard", "Homeless", "Good"})
        registerAsset(name, "id", name == std::string("Bad") ? "CeramicSchema" : "GenericSchema");
    EXPECT_FALSE(drains("Bad"));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    expectLeft(4);
    failAfter(0);
    EXPECT_THROW(drains("Unlucky"), HostFault);
    expectLeft(3);
    FailingSink failing;
    EXPECT_THROW(_converter.SerializeRegisteredAssetsForConversion(failing, nullptr), HostFault);
    expectLeft(2);
    ConverterOptions homeless =
        with(&ConverterOptions::outputDirectory, UTF8String(_folder.text() + "/missing"));
    MaterialXConverter other(homeless);
    EXPECT_FALSE(other.SerializeRegisteredAssetsForConversion(_message, nullptr));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::OutputDirectory});
    expectLeft(1);
    EXPECT_EQ(_message.assignments, 0);
    EXPECT_TRUE(drains("Good"));
}

TEST_F(Registration, DestroyingAnyInstanceEmptiesTheSharedList)
{
    registerAsset("Oak");
    MaterialXConverter other(_options);
    EXPECT_TRUE(other.Destroy());
    expectLeft(0);
    EXPECT_TRUE(other.Destroy());
    EXPECT_TRUE(registerAsset("Oak")) << "registration starts again afterwards";
    {
        const MaterialXConverter copy(_converter);
    }
    expectLeft(0);
}

/// Serialisation with the system's temporary directory inside the test's folder.
class Output : public HostTest
{
  protected:
    Output()
    {
        fs::create_directory(_temporary);
        redirectTemporaryDirectory(_temporary);
    }

    bool serialise(const std::string& schema = "GenericSchema")
    {
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
    EXPECT_FALSE(serialise("CeramicSchema"));
    EXPECT_EQ(readFile(_file), xmlOf(mx::createDocument())) << "for a failed material too";
    EXPECT_EQ(_message.assignments, 1);

    fs::remove(_file);
    _options.writeMtlxFile = false;
    ASSERT_TRUE(serialise());
    EXPECT_FALSE(fs::exists(_file));
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
