#include <MaterialTranslation/MaterialXConverter.h>

#include <filesystem>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>

#include "assets/Lyrex.h"
#include "converter/Driver.h"
#include "converter/SharedState.h"

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;
using converter::RegisteredAssets;
using converter::sharedState;

namespace
{

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

/// Notes what leaves an operation as an exception, and lets it pass.
template <class Operation> bool reporting(Operation operation)
{
    try
    {
        return operation();
    }
    catch (const std::exception& error)
    {
        if (LogSession::isOutermost())
            LogSession::log().error(DiagnosticCode::Exception, "", error.what());
        throw;
    }
}

/// Registers a clone of the asset unless its name is registered already.
bool registerAsset(const assets::IAssetInstance& asset, const std::string& name)
{
    const Log log = LogSession::log(assets::Asset(asset).identifier());
    RegisteredAssets& registered = sharedState().registered;
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
    auto& instance = sharedState().instance;
    if (!instance)
        instance = std::make_shared<MaterialXConverter>(options);
    return instance;
}

void MaterialXConverter::releaseInstance()
{
    // Out of the shared state first: the destructor may run here and uses that state.
    const auto released = std::move(sharedState().instance);
    sharedState().instance.reset();
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
    return reporting(
        [&]
        {
            return SupportsConversion(asset) && registerAsset(asset, getMaterialName(asset).str());
        });
}

bool MaterialXConverter::SerializeRegisteredAssetsForConversion(
    IString& message, IAssetSerializer::IPathSerializer* /*serializer*/)
{
    const LogSession session;
    RegisteredAssets& registered = sharedState().registered;
    if (registered.empty())
    {
        LogSession::log().error(DiagnosticCode::NothingRegistered, "", "no asset is registered");
        return false;
    }
    return reporting(
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
    sharedState().registered.clear();
    return true;
}

bool MaterialXConverter::RegisterConverter(ConversionType type, OverlayConverter converter)
{
    sharedState().converters[type] = std::move(converter);
    return true;
}

bool MaterialXConverter::TranslateToMaterialX(const IAssetInstance& asset,
                                              const UTF8String& materialName,
                                              std::shared_ptr<mx::Document> document)
{
    const LogSession session;
    return reporting(
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
    const auto entry = sharedState().converters.find(info.type);
    if (entry == sharedState().converters.end())
    {
        LogSession::log().error(DiagnosticCode::NoConverter, "",
                                "no converter is registered for type " +
                                    std::to_string(static_cast<std::int32_t>(info.type)));
        return false;
    }
    const OverlayConverter converter = entry->second;
    return reporting([&] { return converter(info, result); });
}

bool MaterialXConverter::IsLyrex(
    const std::unique_ptr<IAssetInstance, kelvor::platform::assets::IAssetInstanceDeleter>& asset)
{
    return asset && assets::findLyrexFamily(assets::Asset(*asset).schema());
}

} // namespace vyr::MaterialTranslation
