// What UnloadProgram loads: a part of a host that uses the library.

#include <MaterialTranslation/MaterialXConverter.h>

namespace
{

using vyr::MaterialTranslation::MaterialXConverter;

struct Sink final : MaterialXConverter::IString
{
    void Assign(const MaterialXConverter::UTF8String&) override {}
} sink;

} // namespace

extern "C" __attribute__((visibility("default"))) bool registerAsset(
    const kelvor::platform::assets::IAssetInstance& asset)
{
    vyr::MaterialTranslation::ConverterOptions options;
    return MaterialXConverter::getInstance(options)->RegisterAssetForConversion(asset, sink);
}
