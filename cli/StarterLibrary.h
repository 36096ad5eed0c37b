#pragma once

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Json.h"
#include "TextureSets.h"

namespace vyr::cli
{

/// An asset library of texture sets, for its user to go on with: a material a set, which converts at once, with
/// sizes that are to be filled in.
class StarterLibrary
{
  public:
    /// @param images folder that the paths of images are below.
    /// @param home folder of the library's file, absolute.
    StarterLibrary(const std::filesystem::path& images, const std::filesystem::path& home);

    void add(TextureSet set);

    std::string text() const { return _document.text(); }
    /// Number of materials.
    std::size_t count() const { return _count; }
    /// What there is to say about images.
    const std::vector<ImageRemark>& remarks() const { return _remarks; }
    /// Images that are not used, and why.
    const std::vector<ImageRemark>& left() const { return _left; }

  private:
    void dropRivals(TextureSet& set);
    std::string uniqueName(const std::string& wanted);
    void addTexture(const std::string& id, Slot slot, const std::filesystem::path& image,
                    bool turned);

    std::filesystem::path _way;
    JsonDocument _document;
    JsonNode _materials;
    JsonNode _textures;
    std::set<std::string> _names;
    std::vector<ImageRemark> _remarks;
    std::vector<ImageRemark> _left;
    std::size_t _count = 0;
};

} // namespace vyr::cli
