#pragma once

#include <cstdint>

#include <MaterialTranslation/Export.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace vyr::MaterialTranslation
{

/// Everything that can be configured of a converter; there are no configuration files, registry
/// keys or environment variables. A plain value; no field is validated on assignment.
struct VYR_MTLX_API ConverterOptions
{
    ConverterOptions();
    ConverterOptions(const ConverterOptions& other);
    ConverterOptions(ConverterOptions&& other) noexcept;
    ConverterOptions& operator=(const ConverterOptions& other);
    ConverterOptions& operator=(ConverterOptions&& other) noexcept;
    ~ConverterOptions();

    /// Existing folder, absolute or relative to the working directory, UTF-8, that baked images and
    /// gathered textures go into (each material into a folder of its name). Empty: the first
    /// translation of the instance stores the system's temporary directory here.
    kelvor::platform::core::string::UTF8String outputDirectory;
    /// Width and height in pixels of images baked from procedural textures.
    std::uint64_t imageSize = 1024;
    /// Adds the look "default", which assigns the material to all geometry.
    bool addLook = false;
    /// After each translation, gathers the image files that the document refers to into
    /// outputDirectory / material name and rewrites the references (absolute paths).
    bool copyTextures = false;
    /// Writes the material's description and every property read to standard output. Has no effect
    /// on documents.
    bool verbose = false;
    /// Serialisation also writes "<material name>.mtlx" into the system's temporary directory.
    bool writeMtlxFile = false;
    /// Builds material names from the asset's identifier, so that assets of one name stay apart.
    bool useAssetIdInName = false;
    /// What the plain colours of assets outside the "Lyrex" family are taken for, and how the
    /// document states them:
    ///
    /// | value | taken for | written as |
    /// |---|---|---|
    /// | 1 | power 2.2 | linear values, "lin_rec709" |
    /// | 2 | Rec.709 display (power 2.4) | linear values, "lin_rec709" |
    /// | 3 | power 2.2 | the values as they stand, "g22_rec709" |
    /// | 4 | Rec.709 display | the values as they stand, "rec709_display" |
    /// | other | linear | the values as they stand, "lin_rec709" |
    ///
    /// 1 and 3, and 2 and 4, are the same colours; 3 and 4 leave the decoding to a reader with
    /// colour management.
    std::int32_t colorMode = 2;
    /// Roughness from glossiness: 2 gives 1 - glossiness; any other value a curve that follows the
    /// perceived size of a highlight (0.5 gives 0.155).
    std::int32_t roughnessMode = 2;
    /// 1 selects the translator of the legacy schema family for assets outside the "Lyrex" family;
    /// any other value the Generic translator. The family reads its own properties (legacyMaterials in Schemas.h);
    /// "GenericSchema" is translated as without it, and any other schema fails with a diagnostic.
    std::int32_t translationPath = 0;
};

} // namespace vyr::MaterialTranslation
