#include <MaterialTranslation/MaterialXConverter.h>

#include <deque>
#include <filesystem>
#include <map>
#include <unordered_set>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>

#include "assets/Lyrex.h"
#include "converter/Driver.h"
#include "converter/Overlays.h"
#include "converter/Reporting.h"

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;
namespace
{

/// The assets that wait for serialisation, in the order of registration, under unique names.
class RegisteredAssets
{
  public:
    struct Entry
    {
        std::string name;
        assets::AssetHandle asset;
    };

    bool contains(std::string_view name) const { return _names.contains(name); }
    bool empty() const { return _entries.empty(); }
    std::size_t size() const { return _entries.size(); }
    const Entry& front() const { return _entries.front(); }

    /// The name must not be registered yet.
    void append(std::string name, assets::AssetHandle asset);
    /// Releases the oldest entry's asset.
    void releaseFront();
    /// Releases all assets, in order.
    void clear();

  private:
    std::deque<Entry> _entries;
    /// Of the entries, which stay where they are as long as they are listed.
    std::unordered_set<std::string_view> _names;
};

/// What all converter objects of the process share, from the loading of the library to its unloading.
/// Members are destroyed from the last to the first: the instance's destructor still uses the list.
struct SharedState
{
    RegisteredAssets registered;
    std::map<ConversionType, MaterialXConverter::OverlayConverter> converters;
    std::shared_ptr<MaterialXConverter> instance;
};

void RegisteredAssets::append(std::string name, assets::AssetHandle asset)
{
    _entries.push_back({std::move(name), std::move(asset)});
    try
    {
        _names.insert(_entries.back().name);
    }
    catch (...)
    {
        _entries.pop_back();
        throw;
    }
}

void RegisteredAssets::releaseFront()
{
    _names.erase(_entries.front().name);
    _entries.pop_front();
}

void RegisteredAssets::clear()
{
    while (!empty())
        releaseFront();
}

/// Made when the library is loaded and destroyed when it is unloaded: before and after everything of a
/// host that was linked to it, static objects included.
SharedState state{{},
                  {{ConversionType::Decal, converter::convertOverlay},
                   {ConversionType::Thread, converter::convertOverlay}},
                  {}};

/// Takes the oldest registered asset off the list on the way out, however a call ends.
class FrontRelease
{
  public:
    explicit FrontRelease(RegisteredAssets& registered) : _registered(registered) {}
    FrontRelease(const FrontRelease&) = delete;
    FrontRelease& operator=(const FrontRelease&) = delete;
    ~FrontRelease() { _registered.releaseFront(); }

  private:
    RegisteredAssets& _registered;
};

/// Registers a clone of the asset unless its name is registered already.
bool registerAsset(const assets::IAssetInstance& asset, const std::string& name)
{
    const Log log = LogSession::log(assets::Asset(asset).identifier());
    RegisteredAssets& registered = state.registered;
    if (name.empty())
        log.error(DiagnosticCode::NameEmpty, "", "the asset has neither a name nor an identifier");
    else if (registered.contains(name))
        log.warning(DiagnosticCode::NameDuplicate, "",
                    "an asset with the material name \"" + name +
                        "\" is registered already; this one is left out");
    else if (assets::AssetHandle clone = assets::cloneOf(asset))
        registered.append(name, std::move(clone));
    else
        log.error(DiagnosticCode::CloneFailed, "", "the asset cannot be cloned");
    return registered.contains(name);
}

std::filesystem::path temporaryDocumentPath(const std::string& name)
{
    std::filesystem::path path = std::filesystem::temp_directory_path() / name;
    return path.replace_extension(".mtlx");
}

} // namespace

std::shared_ptr<MaterialXConverter> MaterialXConverter::getInstance(ConverterOptions& options)
{
    auto& instance = state.instance;
    if (!instance)
        instance = std::make_shared<MaterialXConverter>(options);
    return instance;
}

void MaterialXConverter::releaseInstance()
{
    // Out of the shared state first: the destructor may run here and uses that state.
    const auto released = std::move(state.instance);
    state.instance.reset();
}

MaterialXConverter::MaterialXConverter(ConverterOptions& given) : options(given) {}

MaterialXConverter::MaterialXConverter(const MaterialXConverter& other) = default;

MaterialXConverter::~MaterialXConverter()
{
    MaterialXConverter::Destroy();
}

bool MaterialXConverter::SupportsConversion(const IAssetInstance& /*asset*/)
{
    return true;
}

bool MaterialXConverter::RegisterAssetForConversion(const IAssetInstance& asset,
                                                    IString& /*message*/)
{
    const LogSession session;
    return converter::reporting(
        [&]
        {
            return SupportsConversion(asset) && registerAsset(asset, getMaterialName(asset).str());
        });
}

bool MaterialXConverter::SerializeRegisteredAssetsForConversion(
    IString& message, IAssetSerializer::IPathSerializer* /*serializer*/)
{
    const LogSession session;
    RegisteredAssets& registered = state.registered;
    if (registered.empty())
    {
        LogSession::log().error(DiagnosticCode::NothingRegistered, "", "no asset is registered");
        return false;
    }
    return converter::reporting(
        [&]
        {
            const std::string name = registered.front().name;
            const mx::DocumentPtr document = mx::createDocument();
            bool translated = false;
            {
                const FrontRelease release(registered);
                translated = TranslateToMaterialX(*registered.front().asset, name, document);
                if (translated)
                    message.Assign(UTF8String(documentToXml(document)));
            }
            if (options.writeMtlxFile)
                writeDocumentFile(document, temporaryDocumentPath(name));
            return translated;
        });
}

bool MaterialXConverter::Destroy()
{
    state.registered.clear();
    return true;
}

bool MaterialXConverter::RegisterConverter(ConversionType type, OverlayConverter converter)
{
    state.converters[type] = std::move(converter);
    return true;
}

bool MaterialXConverter::TranslateToMaterialX(const IAssetInstance& asset,
                                              const UTF8String& materialName,
                                              std::shared_ptr<mx::Document> document)
{
    const LogSession session;
    return converter::reporting(
        [&]
        {
            const Log log = LogSession::log(assets::Asset(asset).identifier());
            return converter::translate(asset, materialName.str(), document, options, log);
        });
}

kelvor::platform::core::string::UTF8String MaterialXConverter::getMaterialName(
    const IAssetInstance& asset)
{
    return converter::materialName(asset, options.useAssetIdInName);
}

bool MaterialXConverter::Convert(MaterialInfo& info, IString& result)
{
    const LogSession session;
    const auto entry = state.converters.find(info.type);
    if (entry == state.converters.end())
    {
        LogSession::log().error(DiagnosticCode::NoConverter, "",
                                "no converter is registered for type " +
                                    std::to_string(static_cast<std::int32_t>(info.type)));
        return false;
    }
    const OverlayConverter convert = entry->second;
    return converter::reporting([&] { return convert(info, result); });
}

bool MaterialXConverter::IsLyrex(
    const std::unique_ptr<IAssetInstance, kelvor::platform::assets::IAssetInstanceDeleter>& asset)
{
    return asset && assets::findLyrexFamily(assets::Asset(*asset).schema());
}

std::size_t registeredAssetCount()
{
    return state.registered.size();
}

} // namespace vyr::MaterialTranslation
