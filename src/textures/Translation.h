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

    /// Says that nothing came of a file, or that nothing needs it.
    void drop(const std::filesystem::path& file);

    /// Gives a file another place in the folder, and replaces what is there.
    /// @throws std::filesystem::filesystem_error "rename"
    void move(const std::filesystem::path& from, const std::filesystem::path& to);

    /// Whether the file was claimed: only such files may be moved.
    bool isOwn(const std::filesystem::path& file) const;

    /// Lets go of all files. What is not kept is removed, if it was not there before and no other
    /// translation under way makes or has made it too, and so is a new folder in which nothing is left.
    void release(bool keep);

    /// Keeps the files of a translation that succeeded, until the next one of this thread, so that
    /// discardLastBakes can still remove them.
    /// @param files null: only forgets those of the last one.
    static void keep(std::unique_ptr<MaterialFiles> files);

  private:
    std::filesystem::path claimOf(const std::filesystem::path& file) const;

    std::filesystem::path _folder;
    /// What the folder is called where translations are told apart; empty until it is needed.
    std::filesystem::path _claimedFolder;
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
