#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialXCore/Document.h>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation::textures
{

/// The files that one translation makes for its material: images in the folder output directory /
/// material name. Unless they are kept, they are gone when the object goes.
class MaterialFiles
{
  public:
    MaterialFiles(const std::string& outputDirectory, const std::string& material);
    ~MaterialFiles();
    MaterialFiles(const MaterialFiles&) = delete;
    MaterialFiles& operator=(const MaterialFiles&) = delete;

    /// Absolute.
    const std::filesystem::path& folder() const { return _folder; }

    /// Makes the folder when it is missing.
    /// @throws std::filesystem::filesystem_error "create_directory" when it cannot be made, and when a
    ///         file or a symbolic link stands in its place: nothing may leave the output directory.
    void makeFolder();

    /// Claims a place in the folder for a file that is about to be written: the name, or the first with a
    /// number that is none of the files to be left alone, nor one that was claimed before.
    /// @param others texts of paths.
    std::filesystem::path claim(const std::string& name, const std::vector<std::string>& others);

    /// Says that nothing came of a file, or that nothing needs it: it is removed if this translation made
    /// it and no other uses it.
    void drop(const std::filesystem::path& file);

    /// Says that a file has got another place.
    void rename(const std::filesystem::path& from, const std::filesystem::path& to);

    /// Whether the file was claimed: only such files may be moved.
    bool isOwn(const std::filesystem::path& file) const;

    /// Removes all files that this translation made and no other uses, and the folder if it made that too
    /// and it is empty.
    void discard();

    /// Keeps the files of a translation that succeeded, until the next one of this thread, so that
    /// discardLastBakes can still remove them.
    /// @param files null: only forgets those of the last one.
    static void keep(std::unique_ptr<MaterialFiles> files);

  private:
    std::filesystem::path _folder;
    bool _madeFolder = false;
    bool _kept = false;
    std::vector<std::filesystem::path> _files;
};

} // namespace vyr::MaterialTranslation::textures

namespace vyr::MaterialTranslation
{

/// One asset on its way into a document, and all that the stages of its translation share. Everything is
/// borrowed for the call.
struct Translation
{
    const assets::IAssetInstance& asset;
    /// Base of the element names.
    const std::string& name;
    const MaterialX::DocumentPtr& document;
    const ConverterOptions& options;
    const BakeSettings& bakes;
    const Log& log;
    textures::MaterialFiles& files;
};

} // namespace vyr::MaterialTranslation
