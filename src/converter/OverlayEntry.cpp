#include "converter/OverlayEntry.h"

#include <stdexcept>

#include "assets/Log.h"

namespace vyr::MaterialTranslation::converter
{

bool convertOverlay(const MaterialInfo& info, kelvor::platform::core::string::IString& /*result*/)
{
    if (info.type == ConversionType::Decal && !info.payload)
        throw std::invalid_argument("invalid decal info");
    if (info.type == ConversionType::Thread && !info.payload)
        throw std::invalid_argument("invalid thread info");
    // The graphs of decals and threads are still to be built; until then a request fails rather
    // than yielding an empty document.
    LogSession::log().error(DiagnosticCode::NoConverter, "",
                            "this version builds no decal and thread materials");
    return false;
}

} // namespace vyr::MaterialTranslation::converter
