#pragma once

#include <MaterialTranslation/MaterialInfo.h>
#include <kelvor/platform/core/string/IString.h>

namespace vyr::MaterialTranslation::converter
{

/// The built-in converter of decal and thread requests.
/// @throws std::invalid_argument "invalid decal info" or "invalid thread info" for a null payload.
bool convertOverlay(const MaterialInfo& info, kelvor::platform::core::string::IString& result);

} // namespace vyr::MaterialTranslation::converter
