#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialXCore/Document.h>

#include "assets/Asset.h"
#include "base/WriteFile.h"

namespace vyr::MaterialTranslation::textures
{

/// The images that one translation makes for its material, in the folder output directory / material name. They
/// get their names when the translation has succeeded. Unless they are kept, they are gone with the object.
class MaterialFiles
{
  public:
    /// @param same  what becomes of files that are there with the same bytes.
    MaterialFiles(const std::string& outputDirectory, const std::string& material,
                  base::SameBytes same);
    ~MaterialFiles();
    MaterialFiles(const MaterialFiles&) = delete;
    MaterialFiles& operator=(const MaterialFiles&) = delete;

    /// Absolute.
    const std::filesystem::path& folder() const;

    /// Makes the folder when it is missing.
    /// @throws std::filesystem::filesystem_error "create_directory" when it cannot be made, and when a
    ///         file or a symbolic link stands in its place: nothing may leave the output directory.
    void makeFolder();

    /// The place of a file in the folder: the name, or the first with a number, that is none of the files to be
    /// left alone, nor one that was added before.
    /// @param others texts of paths.
    std::filesystem::path freePlace(const std::string& name,
                                    const std::vector<std::string>& others) const;

    /// Writes a file, which gets its place when it is published. Makes the folder.
    /// @throws std::filesystem::filesystem_error "write", and as makeFolder.
    void add(const std::filesystem::path& place, std::string_view bytes);

    /// Adds a file that stands in its place already.
    void addKept(const std::filesystem::path& place);

    /// Says where a file is going to be published, before another file may get the place that it was added for.
    /// @throws std::filesystem::filesystem_error "write"
    void prepare(const std::filesystem::path& place, const std::filesystem::path& destination);

    /// Notes a copy of a user's image.
    void addGathered(const std::filesystem::path& place) { _gathered.push_back(place); }

    base::SameBytes same() const { return _same; }

    MaterialImages images() const;

    /// Says that nothing needs a file that was added.
    void drop(const std::filesystem::path& place);

    /// Gives a file its place, or another one in the folder, and replaces what is there.
    /// @throws std::filesystem::filesystem_error "rename"
    void publish(const std::filesystem::path& place, const std::filesystem::path& destination);

    /// Gives all files their places that have none yet.
    /// @throws std::filesystem::filesystem_error "rename"
    void publish();

    /// The same where nothing is yet; the other files stay as they are there.
    void publishWhereNothingIs();

    /// Whether the file was added here.
    bool isOwn(const std::filesystem::path& place) const;

    /// Removes the files that were not there before and that nobody has replaced since, and the folder if it
    /// was made here and nothing is left in it.
    void discard();

    /// Removes the folder if it was made here and nothing is in it.
    void leaveFolder();

    /// Keeps the files of a translation that succeeded, until the next one of this thread, so that
    /// discardLastBakes can still remove them.
    /// @param files null: only forgets those of the last one.
    static void keep(std::unique_ptr<MaterialFiles> files);

  private:
    struct File
    {
        std::filesystem::path place;
        base::PendingFile content;
        bool isKept = false;
        /// Another translation found it in its place and needs it too.
        bool isShared = false;
        /// Empty until it has its place.
        std::filesystem::path published;
    };

    /// Says that this one needs a file too. To be called under the mutex of the places.
    void shareWithOthers(const std::filesystem::path& place) const;

    std::string _outputDirectory;
    std::string _material;
    base::SameBytes _same;
    /// Empty until it is asked for: most materials have no files.
    mutable std::filesystem::path _folder;
    bool _madeFolder = false;
    bool _kept = false;
    std::vector<File> _files;
    std::vector<std::filesystem::path> _gathered;
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
