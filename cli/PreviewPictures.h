#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "PreviewPage.h"

namespace vyr::cli
{

/// Has a browser draw the materials of a page, into the folder "pictures" in it.
/// @param program the browser; empty: one is looked for.
/// @return false when some or all could not be drawn; standard error then says why.
bool writePictures(const std::filesystem::path& page, const std::vector<PageItem>& items,
                   const std::string& program);

} // namespace vyr::cli
