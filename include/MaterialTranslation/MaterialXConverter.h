#pragma once

#include <functional>
#include <memory>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConversionType.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/MaterialInfo.h>
#include <kelvor/platform/assets/IConverterAdaptor.h>

namespace vyr::MaterialTranslation
{

/// Turns material assets into MaterialX 1.39 documents.
///
/// A host uses it in one of three ways:
///
/// - as the asset library's converter adaptor: RegisterAssetForConversion for each asset, then
///   SerializeRegisteredAssetsForConversion once per registered asset, until
///   registeredAssetCount() (Diagnostics.h) is 0;
/// - directly: TranslateToMaterialX into a document of its own;
/// - for overlays: Convert, with a record of the host's.
///
/// **Results.** Operations answer with a bool. Why one was false, and what a successful conversion
/// left out, is told by lastDiagnostics() (Diagnostics.h). Exceptions are only those named at each
/// operation, and what the host's own asset library, MaterialX or allocation throws.
///
/// **Threads.** The library starts none, except inside image bakes. The list of registered assets
/// and the registry of overlay converters are shared by all instances and take no lock: use the
/// operations that touch them (getInstance, releaseInstance, registration, serialisation, Destroy,
/// the destructor, RegisterConverter) from one thread at a time. TranslateToMaterialX and
/// getMaterialName may run on several threads at once when each thread has an instance of its own
/// whose `outputDirectory` is not empty and documents of its own.
///
/// **Destruction.** Destroying any instance releases *all* registered assets, since the list is
/// shared. Make and destroy instances while no other thread registers or serialises.
class VYR_MTLX_API MaterialXConverter : public kelvor::platform::assets::IConverterAdaptor
{
  public:
    using IAssetInstance = kelvor::platform::assets::IAssetInstance;
    using IAssetSerializer = kelvor::platform::assets::IAssetSerializer;
    using IString = kelvor::platform::core::string::IString;
    using UTF8String = kelvor::platform::core::string::UTF8String;
    /// Builds an overlay material and assigns its XML to the text.
    using OverlayConverter = std::function<bool(const MaterialInfo&, IString&)>;

    /// The process-wide instance, made from `options` when there is none; otherwise `options` is
    /// ignored.
    static std::shared_ptr<MaterialXConverter> getInstance(ConverterOptions& options);

    /// Drops the process-wide instance; it lives on until its last holder lets go. Without one,
    /// does nothing.
    static void releaseInstance();

    /// @param options copied; later changes to it have no effect.
    explicit MaterialXConverter(ConverterOptions& options);
    MaterialXConverter(const MaterialXConverter& other);
    MaterialXConverter& operator=(const MaterialXConverter&) = delete;

    /// Registers a clone of `asset` under its material name. Of several assets with one name the
    /// first wins; the call for a later one still answers true, with a warning in
    /// lastDiagnostics(). `message` is never written.
    /// @return false when the asset is not supported, has no name, or cannot be cloned.
    bool RegisterAssetForConversion(const IAssetInstance& asset, IString& message) override;

    /// Translates the oldest registered asset, takes it off the list whatever comes of it, and
    /// assigns the document's XML text to `message` when it succeeded. With
    /// ConverterOptions::writeMtlxFile the document, complete or not, also goes to
    /// "<material name>.mtlx" in the system's temporary directory.
    /// @param serializer not used; may be null.
    /// @return false when nothing is registered and when the translation failed; lastDiagnostics()
    ///         tells which.
    /// @throws what TranslateToMaterialX throws, and `std::filesystem::filesystem_error` when the
    ///         file cannot be written whole; the entry is gone in either case.
    bool SerializeRegisteredAssetsForConversion(
        IString& message, IAssetSerializer::IPathSerializer* serializer) override;

    /// Releases all registered assets, of every instance. Always true.
    bool Destroy() override;

    /// True for every asset, whatever its schema.
    bool SupportsConversion(const IAssetInstance& asset) override;

    /// Releases all registered assets, of every instance.
    ~MaterialXConverter() override;

    /// Registers the converter that Convert calls for `type`, in place of any earlier one, the
    /// built-in ones for decals and threads included. Always true.
    bool RegisterConverter(ConversionType type, OverlayConverter converter);

    /// Translates one asset into a document of the caller's.
    ///
    /// Several assets may go into one document under different names. When a name is already taken
    /// there, nothing is added and the call answers false.
    /// @param asset borrowed for the call and not changed.
    /// @param materialName base of the names of the added elements and of the texture folder: ASCII
    ///        letters, digits and "_", not starting with a digit. Usually getMaterialName(asset).
    /// @param document receives the elements; shared with the caller. On false it is as it was.
    /// @return false when the output directory is not an existing folder, when the name is not
    ///         usable, or when the material cannot be translated, also because an image that had to be
    ///         baked cannot be written. What was baked for it until then is gone again.
    /// @throws std::filesystem::filesystem_error ("status") when the output directory cannot be
    ///         looked at, and those of gathering ("exists", "create_directory", "copy_file",
    ///         "rename"): the document then holds the material, and its images stay, unless
    ///         discardLastBakes (Bakes.h) is called.
    bool TranslateToMaterialX(const IAssetInstance& asset, const UTF8String& materialName,
                              std::shared_ptr<MaterialX::Document> document);

    /// The name of an asset's material: its English name reduced to ASCII letters and digits, "M"
    /// before a leading digit. When nothing is left of it, or with
    /// ConverterOptions::useAssetIdInName, "XID_", that name, "_" and the identifier reduced to
    /// ASCII letters, digits and "_". It is the same in every process; it need not be unique.
    UTF8String getMaterialName(const IAssetInstance& asset);

    /// Builds an overlay material with the converter registered for `info.type`.
    ///
    /// Those that are built in make decals of DecalInfo and threads of ThreadInfo, without regard to this
    /// object's options, and may run on several threads at once. buildOverlay (Overlays.h) gives what they
    /// make as a document. Where there is nothing to build, such as a decal without an image, the text is
    /// that of an empty document, and lastDiagnostics() says so.
    /// @param info the name of the material is reduced to ASCII letters and digits unless it is an
    ///        identifier.
    /// @param result receives the document's XML text.
    /// @return what the registered converter returns; false when none is registered for the type. The
    ///         built-in ones return true.
    /// @throws std::invalid_argument from the built-in ones: "invalid decal info" or "invalid thread info"
    ///         for a null payload, "invalid material name" for a name without a letter or digit;
    ///         `std::bad_function_call` when an empty function was registered.
    bool Convert(MaterialInfo& info, IString& result);

  private:
    bool IsLyrex(const std::unique_ptr<IAssetInstance,
                                       kelvor::platform::assets::IAssetInstanceDeleter>& asset);

    ConverterOptions options;
};

} // namespace vyr::MaterialTranslation
