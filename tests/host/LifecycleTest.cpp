#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <type_traits>

#if defined(__linux__)
#include <csignal>
#include <sys/resource.h>
#endif

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

AssetPtr named(const std::string& name, const std::string& id = "id", Behaviour behaviour = {})
{
    return material(R"("id": ")" + id + R"(", "displayName": ")" + name + "\"",
                    std::move(behaviour));
}

const char* const bad = R"("schema": "CeramicSchema", "name": "Bad")";

class Lifecycle : public HostTest
{
  protected:
    void TearDown() override
    {
        MaterialXConverter::releaseInstance();
        HostTest::TearDown();
    }

    static std::string nameBy(const std::shared_ptr<MaterialXConverter>& converter)
    {
        return converter->getMaterialName(*named("Oak", "7")).str();
    }

    /// Options that show in material names.
    ConverterOptions _first = with(&ConverterOptions::useAssetIdInName, true);
    ConverterOptions _second;
};

TEST_F(Lifecycle, TheFirstOptionsOfTheSingletonStayUntilItIsReleased)
{
    const auto held = MaterialXConverter::getInstance(_first);
    EXPECT_EQ(MaterialXConverter::getInstance(_second), held);
    _first.useAssetIdInName = false;
    EXPECT_EQ(nameBy(held), "XID_Oak_7");
    MaterialXConverter::releaseInstance();
    MaterialXConverter::releaseInstance();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(nameBy(MaterialXConverter::getInstance(_second)), "Oak");
    EXPECT_EQ(nameBy(held), "XID_Oak_7") << "it lives with its holders";
    EXPECT_TRUE(held->SupportsConversion(*material(bad)));
}

TEST_F(Lifecycle, ConvertCallsTheConverterRegisteredLast)
{
    MaterialXConverter converter(_second);
    const auto answering = [](const std::string& text, bool result)
    {
        return [text, result](const MaterialInfo& info, MaterialXConverter::IString& message)
        {
            message.Assign(UTF8String(text + info.name.str()));
            return result;
        };
    };
    MaterialInfo info;
    info.name = "Label";
    info.type = static_cast<ConversionType>(77);
    StringSink sink;
    EXPECT_FALSE(converter.Convert(info, sink));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoConverter});
    EXPECT_EQ(sink.assignments, 0);

    EXPECT_TRUE(converter.RegisterConverter(info.type, answering("first ", true)));
    EXPECT_TRUE(converter.Convert(info, sink));
    EXPECT_EQ(sink.text, "first Label");
    EXPECT_TRUE(converter.RegisterConverter(info.type, answering("second ", false)));
    MaterialXConverter other(_second);
    EXPECT_FALSE(other.Convert(info, sink)) << "the registry is shared by all converters";
    EXPECT_EQ(sink.text, "second Label");
    converter.RegisterConverter(info.type, nullptr);
    EXPECT_THROW(converter.Convert(info, sink), std::bad_function_call);

    for (const auto& [type, reason] : {std::pair(ConversionType::Decal, "invalid decal info"),
                                       {ConversionType::Thread, "invalid thread info"}})
    {
        MaterialInfo empty;
        empty.type = type;
        EXPECT_THROW(converter.Convert(empty, sink), std::invalid_argument);
        EXPECT_EQ(lastDiagnostics().at(0).text, reason);
    }
}

/// Hosts set only what they care for, and hosts of other compilers' builds rely on the places of the
/// fields.
TEST_F(Lifecycle, RecordsHaveTheExportedDefaultsAndLayout)
{
    static_assert(sizeof(ConverterOptions) == sizeof(UTF8String) + 32);
    static_assert(sizeof(DecalInfo) == sizeof(TextureInfo) + 24);
    const ConverterOptions o;
    const auto offsetOf = [&](const auto& field)
    { return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&o); };
    constexpr std::ptrdiff_t text = sizeof(UTF8String);
    EXPECT_EQ(std::tuple(offsetOf(o.imageSize), offsetOf(o.addLook), offsetOf(o.copyTextures),
                         offsetOf(o.verbose), offsetOf(o.writeMtlxFile),
                         offsetOf(o.useAssetIdInName), offsetOf(o.colorMode),
                         offsetOf(o.roughnessMode), offsetOf(o.translationPath)),
              std::tuple(text, text + 8, text + 9, text + 10, text + 11, text + 12, text + 16,
                         text + 20, text + 24));
    EXPECT_EQ(std::tuple(o.outputDirectory.str(), o.imageSize, o.addLook, o.copyTextures, o.verbose,
                         o.writeMtlxFile, o.useAssetIdInName, o.colorMode, o.roughnessMode,
                         o.translationPath),
              std::tuple("", 1024u, false, false, false, false, false, 2, 2, 0));
    static_assert(std::is_nothrow_move_constructible_v<ThreadInfo> &&
                  std::is_nothrow_move_assignable_v<ConverterOptions>);
}

/// Every code has a name of its own and a row of the table that hosts read, and no row is left over.
TEST_F(Lifecycle, DiagnosticsAreAllInTheTable)
{
    const std::string table = readFile(std::string(VYR_SOURCE_DIR) + "/docs/diagnostics.md");
    const std::regex row("\\n\\| [0-9]+ \\| `[a-z-]+` \\| .");
    const auto rows = std::distance(std::sregex_iterator(table.begin(), table.end(), row), {});
    std::set<std::string> names;
    for (int number = -10; number < 3000; ++number)
    {
        const std::string name = diagnosticCodeName(static_cast<DiagnosticCode>(number));
        if (name == "unknown")
            continue;
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_NE(table.find("\n| " + std::to_string(number) + " | `" + name + "` | "),
                  std::string::npos)
            << name;
    }
    EXPECT_EQ(static_cast<std::size_t>(rows), names.size());
}

TEST_F(Lifecycle, DiagnosticsAreThoseOfTheThreadsLastCall)
{
    const AssetPtr asset = material(bad);
    for (int repeat = 0; repeat < 2; ++repeat)
    {
        translate(asset);
        EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    }
    EXPECT_EQ(lastDiagnostics()[0].severity, Severity::Error);
    EXPECT_EQ(lastDiagnostics()[0].asset, "asset-id");
    std::thread(
        [&]
        {
            EXPECT_TRUE(lastDiagnostics().empty());
            translate(asset, plainOptions(), "1");
            EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NameInvalid});
        })
        .join();
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    translate(generic(R"("generic_difuse": 1)"));
    EXPECT_EQ(lastDiagnostics().at(0).severity, Severity::Warning);
    translate(generic(""));
    EXPECT_TRUE(lastDiagnostics().empty());
}

class Registration : public HostTest
{
  protected:
    void TearDown() override
    {
        _converter.Destroy();
        HostTest::TearDown();
    }

    bool registers(const AssetPtr& asset)
    {
        return _converter.RegisterAssetForConversion(*asset, _message);
    }

    /// Whether the next entry is the material of that name; it is taken off in any case.
    bool drains(const std::string& name)
    {
        const bool done = _converter.SerializeRegisteredAssetsForConversion(_message, nullptr);
        return done &&
               _message.text.find("<surfacematerial name=\"" + name + "\"") != std::string::npos;
    }

    static void expectLeft(std::size_t count)
    {
        EXPECT_EQ(registeredAssetCount(), count);
        EXPECT_EQ(watch().live, count) << "the clones, since the originals are gone";
    }

    ConverterOptions _options = plainOptions();
    MaterialXConverter _converter{_options};
    StringSink _message;
};

TEST_F(Registration, DrainsInTheOrderOfRegistration)
{
    const std::string direct = xmlOf(translate(named("x"), _options, "Elm").document);
    for (const char* name : {"Oak", "Ash", "Elm"})
        EXPECT_TRUE(registers(named(name)));
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
    EXPECT_TRUE(registers(named("Oak 1", "first")));
    EXPECT_TRUE(lastDiagnostics().empty());
    EXPECT_TRUE(registers(named("Oak_1", "second")));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NameDuplicate});
    expectLeft(1);
    EXPECT_TRUE(drains("Oak1"));
    EXPECT_NE(_message.text.find("first"), std::string::npos);
    EXPECT_TRUE(registers(named("Oak1", "third")));
    EXPECT_TRUE(lastDiagnostics().empty()) << "a drained name is free again";
}

TEST_F(Registration, NamesAreThoseOfTheRegisteringInstance)
{
    ConverterOptions options = with(&ConverterOptions::useAssetIdInName, true);
    MaterialXConverter byIdentifier(options);
    for (const char* id : {"1", "2"})
        EXPECT_TRUE(byIdentifier.RegisterAssetForConversion(*named("Oak", id), _message));
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
    EXPECT_FALSE(registers(named("Twin", "id", {.canBeCloned = false})));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::CloneFailed});
    registers(material(bad));
    for (const char* name : {"Unlucky", "Unheard", "Homeless", "Good"})
        registers(named(name));
    EXPECT_FALSE(drains("Bad"));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    expectLeft(4);
    operationsLeft = 0;
    EXPECT_THROW(drains("Unlucky"), HostFault);
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::Exception});
    expectLeft(3);
    FailingSink failing;
    EXPECT_THROW(_converter.SerializeRegisteredAssetsForConversion(failing, nullptr), HostFault);
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::Exception}) << "of whatever leaves the operation";
    expectLeft(2);
    ConverterOptions homeless =
        with(&ConverterOptions::outputDirectory, UTF8String(_folder.text() + "/missing"));
    EXPECT_FALSE(
        MaterialXConverter(homeless).SerializeRegisteredAssetsForConversion(_message, nullptr));
    EXPECT_EQ(registeredAssetCount(), 0u) << "the end of any instance empties the shared list";
    EXPECT_EQ(_message.assignments, 0);
    registers(named("Good"));
    EXPECT_TRUE(drains("Good"));
}

TEST_F(Registration, DestroyingAnyInstanceEmptiesTheSharedList)
{
    registers(named("Oak"));
    MaterialXConverter other(_options);
    EXPECT_TRUE(other.Destroy());
    expectLeft(0);
    EXPECT_TRUE(other.Destroy());
    EXPECT_TRUE(registers(named("Oak"))) << "registration starts again afterwards";
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

    bool serialise(const AssetPtr& asset)
    {
        MaterialXConverter converter(_options);
        EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, _message));
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
    ASSERT_TRUE(serialise(named("Oak")));
    EXPECT_EQ(_folder.entries(), (Names{"temporary", "temporary/Oak.mtlx"}));
    EXPECT_EQ(readFile(_file), _message.text);
    EXPECT_FALSE(serialise(material(R"("schema": "CeramicSchema", "name": "Oak")")));
    EXPECT_EQ(readFile(_file), xmlOf(mx::createDocument())) << "for a failed material too";
    EXPECT_EQ(_message.assignments, 1);

    fs::remove(_file);
    _options.writeMtlxFile = false;
    ASSERT_TRUE(serialise(named("Oak")));
    EXPECT_FALSE(fs::exists(_file));
}

/// A folder of the file's name stands in the way, then the directory is gone.
TEST_F(Output, ThatCannotBeWrittenIsAnException)
{
    fs::create_directories(_file / "inside");
    EXPECT_THROW(serialise(named("Oak")), fs::filesystem_error);
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::Exception});
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_TRUE(fs::is_directory(_file / "inside")) << "nobody's data is lost over it";
    fs::remove_all(_temporary);
    EXPECT_THROW(serialise(named("Oak")), fs::filesystem_error);
    EXPECT_EQ(registeredAssetCount(), 0u);
}

class BakedImages : public HostTest
{
  protected:
    /// @param image of the test cases, which is the relief.
    AssetPtr relief(const char* image, const std::string& properties = {})
    {
        _folder.write("relief.png",
                      readFile(fs::path(VYR_SOURCE_DIR "/tests/cases/images") / image));
        const std::string bump = textured("generic_bump_map", "relief.png");
        return generic(bump + R"(, "generic_bump_amount": 1)" + properties, {}, _folder.path());
    }

    std::map<std::string, std::string> content() const
    {
        std::map<std::string, std::string> files;
        for (const std::string& name : _folder.entries())
            files[name] = fs::is_directory(_folder / name) ? "" : readFile(_folder / name);
        return files;
    }

    void expectUnchanged(const AssetPtr& asset, DiagnosticCode code)
    {
        const auto before = content();
        const Translation translation = translate(asset);
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(translation.document->getChildren().empty());
        EXPECT_EQ(lastCodes(), Codes{code}) << translation.report();
        EXPECT_EQ(content(), before);
    }
};

/// A file stands where the folder of the baked image has to be; then no file may have a byte.
TEST_F(BakedImages, ThatCannotBeWrittenFailTheMaterial)
{
    const AssetPtr asset = relief("relief.png");
    _folder.write("M", "");
    expectUnchanged(asset, DiagnosticCode::ImageNotWritten);
    fs::remove(_folder / "M");
    fs::create_directories(_folder / "M/relief_normalmap.png/inside");
    expectUnchanged(asset, DiagnosticCode::ImageNotWritten);
#if defined(__linux__)
    fs::remove_all(_folder / "M");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit former = {};
    ::getrlimit(RLIMIT_FSIZE, &former);
    const rlimit nothing = {0, former.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &nothing);
    expectUnchanged(asset, DiagnosticCode::ImageNotWritten);
    ::setrlimit(RLIMIT_FSIZE, &former);
#endif
}

TEST_F(BakedImages, OfAnEarlierResultOutliveAMaterialThatFails)
{
    const char* const broken = R"(, "generic_glossiness": [1, 0, 0])";
    expectUnchanged(relief("relief.png", broken), DiagnosticCode::PropertyType);
    ASSERT_TRUE(translate(relief("relief.png")).succeeded);
    expectUnchanged(relief("wood.png", broken), DiagnosticCode::PropertyType);
}

/// Two threads make the same image; then only one does.
TEST_F(BakedImages, AreDiscardedUnlessSomebodyElseHasThem)
{
    const AssetPtr asset = relief("relief.png");
    const auto before = content();
    ASSERT_TRUE(translate(asset).succeeded);
    const auto after = content();
    EXPECT_GT(after.size(), before.size());
    EXPECT_EQ(lastImages().baked.size(), 1U);
    std::thread(
        [&]
        {
            EXPECT_TRUE(translate(asset).succeeded);
            EXPECT_EQ(lastImages().kept.size(), 1U);
        })
        .join();
    discardLastBakes();
    EXPECT_EQ(content(), after);
    fs::remove_all(_folder / "M");
    ASSERT_TRUE(translate(asset).succeeded);
    discardLastBakes();
    EXPECT_EQ(content(), before);
}

} // namespace

} // namespace vyr::hosttests
