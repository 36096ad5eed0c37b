#include "Targets.h"

#include <array>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>
#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/Validation.h>

#include "support/TemporaryFolder.h"

namespace vyr::attack
{

namespace kpa = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;
using namespace MaterialTranslation;

namespace
{

struct HostFault
{
};

class Asset;

/// The answers, in the order of the questions, and all objects that were handed out.
struct World
{
    std::string_view left;
    int references = 0;
    bool breached = false;
    bool failed = false;
    std::deque<std::unique_ptr<Asset>> assets;
};

World world;

/// The next answer, from 0 to below a number; 0 when there is none left.
unsigned next(unsigned below = 256)
{
    if (world.left.empty())
        return 0;
    const auto answer = static_cast<unsigned char>(world.left.front());
    world.left.remove_prefix(1);
    return answer % below;
}

/// One in so many answers; none when all are used up.
bool rarely(unsigned times)
{
    return next(times) == times - 1;
}

/// Before each operation that may fail.
void pass()
{
    if (!world.left.empty() && world.left.front() == '\xFF' && rarely(2))
        throw HostFault();
}

template <class T, std::size_t size> T oneOf(const std::array<T, size>& table)
{
    return table[next(size)];
}

const std::string& image()
{
    static const std::string path = VYR_SOURCE_DIR "/tests/cases/images/relief.png";
    return path;
}

std::string text()
{
    // clang-format off
    static const std::array<std::string, 40> texts = {
        "", image(), "a.png", "GenericSchema", "UnifiedBitmapSchema", "BumpMapSchema", "NoiseSchema", "HardwoodSchema",
        "MetallicPaintSchema", "SolidGlassSchema", "WaterSchema", "LyrexMetalSchema", "LyrexOpaqueSchema", "LyrexTransparentSchema",
        "LyrexLayeredSchema", "LyrexGlazingSchema", "generic_diffuse", "generic_bump_map", "Linear", "sRGB", "noise_fractal",
        "../x.png", "/dev/null", "/", "a\\b.PNG", "file:///x%20y.png", "\xFF", "\xC3", std::string(1, '\0'), "\n\x1b[2J", "con.png",
        std::string(300, 'x'), std::string(5000, '/'), "\xED\xA0\x80", "<&\">", "9999999999999999999999", "M", "<UDIM>", "unifiedbitmap_Bitmap",
        VYR_SOURCE_DIR "/tests/cases/images",
    };
    // clang-format on
    const unsigned choice = next(48);
    if (choice < texts.size())
        return texts[choice];
    std::string result;
    for (unsigned size = next(12); size > 0; --size)
        result += static_cast<char>(next());
    return result;
}

double number()
{
    constexpr std::array<double, 16> numbers = {0,
                                                1,
                                                0.5,
                                                2,
                                                -1,
                                                1e-45,
                                                1e300,
                                                -1e300,
                                                3.5e38,
                                                std::numeric_limits<double>::infinity(),
                                                std::numeric_limits<double>::quiet_NaN(),
                                                1e-300,
                                                255,
                                                2147483648.0,
                                                0.25,
                                                -0.0};
    const unsigned choice = next(32);
    return choice < numbers.size() ? numbers[choice] : next() / 255.0;
}

std::size_t count()
{
    constexpr std::array<std::size_t, 8> counts = {1, 1, 3, 4, 2, 0, 16, 300};
    return oneOf(counts);
}

template <class Interface> class Value : public Interface
{
  public:
    std::size_t GetComponentCount() const override { return pass(), _count; }
    std::uint32_t GetUnit() const override
    {
        constexpr std::array<std::uint32_t, 8> units = {0,      0x2001, 0x2016,  0x200E,
                                                        0x8001, 0x8002, 0x37001, 77};
        return pass(), oneOf(units);
    }
    bool GetBoolean(std::size_t) const override { return pass(), next(2) == 0; }
    void GetColor(std::size_t, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        pass();
        for (double* const channel : {&red, &green, &blue, &alpha})
            *channel = number();
    }

  private:
    std::size_t _count = count();
};

struct Scalar final : Value<kpa::IScalarValue>
{
    double GetScalar(std::size_t) const override { return pass(), number(); }
};

struct Integer final : Value<kpa::IIntegerValue>
{
    std::int32_t GetInteger(std::size_t) const override
    {
        return pass(), static_cast<std::int32_t>(next() * 0x1010101U);
    }
};

struct Text final : Value<kpa::IStringValue>
{
    void GetString(UTF8String& given, kpa::TextForm) const override { pass(), given = text(); }
};

struct Uri final : Value<kpa::IUriValue>
{
    void GetUri(UTF8String& given, kpa::TextForm) const override { pass(), given = text(); }
    void GetUri(WideString& given, kpa::TextForm) const override
    {
        pass();
        const std::string narrow = text();
        given = WideString(std::wstring(narrow.begin(), narrow.end()));
    }
};

struct Choices final : Value<kpa::IChoiceListValue>, kpa::IChoiceTable, kpa::IChoice
{
    std::size_t GetSelectedCount() const override { return pass(), count(); }
    std::int32_t GetSelectedIndex(std::size_t) const override
    {
        return pass(), static_cast<std::int32_t>(next(8)) - 1;
    }
    const kpa::IChoiceTable* GetChoiceTable() const override
    {
        return pass(), rarely(16) ? nullptr : this;
    }
    std::size_t GetChoiceCount() const override { return pass(), count(); }
    const kpa::IChoice* GetChoice(std::size_t) const override
    {
        return pass(), rarely(16) ? nullptr : this;
    }
    void GetName(UTF8String& name) const override { pass(), name = text(); }
};

std::shared_ptr<kpa::IValue> makeValue(unsigned kind)
{
    switch (kind)
    {
    case kpa::ePropertyType_String:
    case kpa::ePropertyType_Text:
        return std::make_shared<Text>();
    case kpa::ePropertyType_URI:
        return std::make_shared<Uri>();
    case kpa::ePropertyType_Integer:
        return std::make_shared<Integer>();
    case kpa::ePropertyType_Scalar:
        return std::make_shared<Scalar>();
    case kpa::ePropertyType_ChoiceList:
        return std::make_shared<Choices>();
    case 0:
        return nullptr;
    default:
        return std::make_shared<Value<kpa::IValue>>();
    }
}

kpa::IAssetInstance* newReference();

class Property final : public kpa::IProperty
{
  public:
    explicit Property(std::string name) : _name(std::move(name))
    {
        constexpr std::array<std::uint32_t, 12> types = {7, 8, 9, 4, 5, 10, 2, 6, 11, 12, 0, 99};
        _type = oneOf(types);
        _value = makeValue(rarely(8) ? oneOf(types) : _type);
        _connections = rarely(2) || _type == kpa::ePropertyType_Reference ? 1 + next(3) : 0;
        if (rarely(16))
            _name = text();
    }
    void GetIdentifier(UTF8String& identifier) const override { pass(), identifier = _name; }
    std::uint32_t GetType() const override { return pass(), _type; }
    const kpa::IValue* GetValue() const override { return pass(), _value.get(); }
    bool HasConnections() const override { return pass(), (_connections != 0) != rarely(16); }
    std::size_t GetConnectionCount() const override { return pass(), _connections; }
    kpa::IAssetInstance* GetConnectedAsset(std::size_t) const override
    {
        return pass(), rarely(16) ? nullptr : newReference();
    }

  private:
    std::string _name;
    std::uint32_t _type = 0;
    std::shared_ptr<kpa::IValue> _value;
    std::size_t _connections = 0;
};

/// A property of every name, as long as there are answers.
template <class Interface> class Table : public Interface
{
  public:
    const kpa::IProperty* FindProperty(const UTF8String& name) const override
    {
        pass();
        const auto [found, isNew] = _properties.try_emplace(name.str());
        if (isNew && next(3) == 1)
            found->second = std::make_unique<Property>(name.str());
        return found->second.get();
    }
    std::size_t GetPropertyCount() const override { return pass(), next(16); }
    const kpa::IProperty* GetProperty(std::size_t) const override
    {
        return rarely(16) ? nullptr : FindProperty(UTF8String(text()));
    }

  private:
    mutable std::map<std::string, std::unique_ptr<Property>> _properties;
};

struct Generic final : Table<kpa::IPropertyConstTable>
{
};

class Asset final : public Table<kpa::IAssetInstance>,
                    public kpa::IAssetIdentity,
                    public kpa::IAssetDefinition
{
  public:
    void Release() override
    {
        world.breached = world.breached || _references == 0;
        --_references;
        --world.references;
    }
    void GetDisplayName(UTF8String& name, const char*) const override { pass(), name = text(); }
    void GetDescription(UTF8String& given) const override { pass(), given = text(); }
    const kpa::IAssetIdentity* GetIdentity() const override
    {
        return pass(), rarely(16) ? nullptr : this;
    }
    const kpa::IAssetDefinition* GetDefinition() const override
    {
        return pass(), rarely(16) ? nullptr : this;
    }
    bool HasWorkingPropertyNames() const override { return pass(), !rarely(4); }
    kpa::IAssetInstance* Clone() const override
    {
        return pass(), rarely(16) ? nullptr : const_cast<Asset*>(this)->handedOut();
    }
    void GetIdentifier(UTF8String& identifier) const override { pass(), identifier = text(); }
    const kpa::IPropertyConstTable* GetGenericPropertyTable() const override
    {
        return pass(), rarely(4) ? nullptr : &_generic;
    }
    /// The schema, and the name, of which most have to be right for anything to happen.
    void GetName(UTF8String& name) const override { pass(), name = _name; }

    kpa::IAssetInstance* handedOut()
    {
        ++_references;
        ++world.references;
        return this;
    }

  private:
    std::string _name = text();
    Generic _generic;
    int _references = 0;
};

kpa::IAssetInstance* newReference()
{
    constexpr std::size_t mostAssets = 300;
    if (world.assets.size() < mostAssets && !world.left.empty() && !rarely(8))
        world.assets.push_back(std::make_unique<Asset>());
    return world.assets[next() % world.assets.size()]->handedOut();
}

struct Manager final : kpa::IAssetLibraryManager, kpa::IPathResolver
{
    const kpa::IPathResolver* GetPathResolver() const override
    {
        return pass(), rarely(16) ? nullptr : this;
    }
    bool Resolve(const UTF8String&, UTF8String& path) const override
    {
        pass();
        path = rarely(4) ? text() : image();
        return !rarely(8);
    }
    bool Resolve(const WideString&, WideString& path) const override
    {
        pass();
        path = WideString(std::wstring(image().begin(), image().end()));
        return !rarely(8);
    }
};

struct Sink final : MaterialXConverter::IString
{
    void Assign(const UTF8String&) override { pass(); }
};

ConverterOptions optionsIn(const support::TemporaryFolder& folder)
{
    ConverterOptions options;
    options.outputDirectory = UTF8String(folder.text());
    options.imageSize = 1 + next(9);
    options.colorMode = static_cast<std::int32_t>(next(5));
    options.roughnessMode = static_cast<std::int32_t>(next(3));
    const unsigned flags = next();
    options.addLook = (flags & 1U) != 0;
    options.copyTextures = (flags & 2U) != 0;
    options.useAssetIdInName = (flags & 4U) != 0;
    options.verbose = (flags & 8U) != 0;
    return options;
}

/// What the call throws but for the host's own faults and files that cannot be made gets out.
template <class Call> bool happens(const Call& call)
{
    try
    {
        return call();
    }
    catch (const HostFault&)
    {
        world.failed = true;
    }
    catch (const std::filesystem::filesystem_error&)
    {
        world.failed = true;
    }
    return false;
}

std::string translate(const Asset& asset, ConverterOptions options)
{
    MaterialXConverter converter(options);
    const auto document = MaterialX::createDocument();
    const bool done =
        happens([&] { return converter.TranslateToMaterialX(asset, UTF8String("M"), document); });
    if (!done && lastDiagnostics().empty())
        return "a failure without a reason";
    if (!done)
        // Gathering comes when the document is done, and may throw.
        return document->getChildren().empty() || world.failed
                   ? ""
                   : "a failure that leaves something in the document";
    // A unit of the wrong kind is stated, with a warning.
    for (const ValidationMessage& message : validateDocument(document))
        if (message.code != ValidationCode::FileMissing &&
            message.code != ValidationCode::UnitMisfit)
            return "invalid: " + message.path + ": " + message.text;
    Sink sink;
    happens([&] { return converter.RegisterAssetForConversion(asset, sink); });
    happens([&] { return converter.SerializeRegisteredAssetsForConversion(sink, nullptr); });
    happens([&] { return converter.Destroy(); });
    happens([&] { return converter.SupportsConversion(asset); });
    happens([&] { return !converter.getMaterialName(asset).empty(); });
    return {};
}

} // namespace

std::string tryHost(const std::string& bytes)
{
    static const support::TemporaryFolder folder;
    // What verbose translations print.
    std::cout.rdbuf(nullptr);
    BakeSettings settings;
    settings.threads = 1;
    setBakeSettings(settings);
    world.left = bytes;
    const ConverterOptions options = optionsIn(folder);
    world.assets.push_back(std::make_unique<Asset>());
    std::string wrong = translate(*world.assets.front(), options);
    if (wrong.empty() && (world.references != 0 || world.breached))
        wrong = "references are not given back";
    world = {};
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        std::filesystem::remove_all(entry.path());
    return wrong;
}

} // namespace vyr::attack

kelvor::platform::assets::IAssetLibraryManager* kelvor::platform::assets::GetIAssetLibraryManager()
{
    static vyr::attack::Manager manager;
    vyr::attack::pass();
    return vyr::attack::rarely(32) ? nullptr : &manager;
}
