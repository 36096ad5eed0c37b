#pragma once

#include <memory>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/MaterialInfo.h>

namespace vyr::MaterialTranslation
{

/// Builds the document of a decal or thread as the built-in converter of MaterialXConverter::Convert does,
/// for hosts that want the document itself, a look, or the images beside it. The registry of overlay
/// converters is not asked. Safe on several threads at once.
/// @param info a request of type Decal or Thread.
/// @param options `addLook` and `copyTextures` with `outputDirectory` count: images are gathered in output
///        directory / material name, as those of translated assets are.
/// @return null when there is nothing to build, and when an option cannot be followed; lastDiagnostics()
///         (Diagnostics.h) tells why.
/// @throws std::invalid_argument as Convert does.
/// @throws std::filesystem::filesystem_error when images cannot be gathered.
VYR_MTLX_API std::shared_ptr<MaterialX::Document> buildOverlay(const MaterialInfo& info,
                                                               const ConverterOptions& options);

} // namespace vyr::MaterialTranslation
