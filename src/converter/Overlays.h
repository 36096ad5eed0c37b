#pragma once

#include <MaterialTranslation/MaterialInfo.h>
#include <kelvor/platform/core/string/IString.h>

namespace vyr::MaterialTranslation::converter
{

/// The built-in converter of decal and thread requests. Where there is nothing to build, the text is that of
/// an empty document.
/// @return true.
/// @throws std::invalid_argument for a null payload, and for a name without a letter or digit.
bool convertOverlay(const MaterialInfo& info, kelvor::platform::core::string::IString& result);

} // namespace vyr::MaterialTranslation::converter
