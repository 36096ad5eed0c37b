#pragma once

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IAssetSerializer.h>
#include <kelvor/platform/core/string/IString.h>

namespace kelvor::platform::assets
{

/// A converter as the asset library sees it: assets are registered, then the results are collected
/// one per call. The library calls a converter from one thread at a time.
class KELVOR_PLATFORM_INTERFACE IConverterAdaptor
{
  public:
    /// Offers an asset for conversion.
    /// @param asset borrowed for the call; the converter keeps a clone.
    /// @param message may receive a text; the library must not rely on one.
    /// @return whether the asset is registered, or another of its name already was.
    virtual bool RegisterAssetForConversion(const IAssetInstance& asset,
                                            core::string::IString& message) = 0;

    /// Converts the oldest registered asset and takes it off the list.
    /// @param message receives the result.
    /// @param serializer may be null; borrowed for the call.
    /// @return false when nothing was registered or the conversion failed.
    virtual bool SerializeRegisteredAssetsForConversion(
        core::string::IString& message, IAssetSerializer::IPathSerializer* serializer) = 0;

    /// Releases all registered assets.
    virtual bool Destroy() = 0;

    /// Whether the converter takes an asset.
    virtual bool SupportsConversion(const IAssetInstance& asset) = 0;

    virtual ~IConverterAdaptor() = default;

  protected:
    IConverterAdaptor() = default;
    IConverterAdaptor(const IConverterAdaptor&) = default;
    IConverterAdaptor& operator=(const IConverterAdaptor&) = default;
};

} // namespace kelvor::platform::assets
