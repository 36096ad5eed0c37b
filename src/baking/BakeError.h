#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace vyr::MaterialTranslation::baking
{
/// An image that cannot be read, baked or written; the text says which and why. It stays inside this module:
/// the functions that others call turn it into a BakeResult.
class BakeError : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// The path as OpenImageIO and messages take it.
std::string utf8(const std::filesystem::path& path);
} // namespace vyr::MaterialTranslation::baking
