#pragma once

#include <filesystem>
#include <string>

namespace vyr::assetlib::tests
{

/// Loads the bytes as an asset file and reads all that came of them through the interfaces.
/// @param file is overwritten.
/// @return what is wrong, empty when all holds: a library or errors, each error on one line of UTF-8 with
///         a place inside the file, tables that find what they list, references all given back.
std::string checkAssetFile(const std::filesystem::path& file, const std::string& bytes);

} // namespace vyr::assetlib::tests
