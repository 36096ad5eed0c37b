#include "assets/Schemas.h"

#include <algorithm>
#include <cstdlib>

#include "assets/PropertyReaders.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

constexpr std::string_view lyrexPrefix = "Lyrex-";

constexpr const char* lyrexSchemas[] = {lyrexMetalSchema, lyrexOpaqueSchema, lyrexTransparentSchema,
                                        lyrexLayeredSchema, lyrexGlazingSchema};

} // namespace

bool IsLyrex(const IAssetInstance& asset)
{
    const std::string schema = GetAssetSchemaName(asset);
    return std::ranges::find(lyrexSchemas, schema) != std::end(lyrexSchemas);
}

bool HasLyrexPrefix(std::string_view name)
{
    return base::equalsIgnoringCase(name.substr(0, lyrexPrefix.size()), lyrexPrefix);
}

bool IsLyrexName(std::string_view name)
{
    return HasLyrexPrefix(name) && name.find('_') == std::string_view::npos;
}

int LyrexNameNumber(const std::string& name)
{
    const std::string number = name.substr(name.find('-') + 1);
    // Not std::atoi, whose result for a number out of range is undefined.
    const long value = std::strtol(number.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp(value, -2147483647L, 2147483647L));
}

} // namespace vyr::MaterialTranslation::assets
