#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <MaterialTranslation/Export.h>

/// @file
/// Images that the converter bakes, for hosts that want them without a material.
///
/// What holds for all functions here: an existing file is replaced only by a whole one, and after a failure
/// nothing new is left. Nothing is thrown. The pixels are the same on every machine and for every thread count.
/// Functions may be called from several threads at once, with different destinations, until the process ends its
/// static objects. What bakes is the library `vyr_mtlx_bakes` in the folder of the converter's own; without it all
/// bakes fail with that reason.
///
/// The extension of the destination names its format: png, tif, tiff, exr, tga, bmp, hdr, webp, sgi or pfm.
/// EXR, TIFF and PFM hold the 32-bit floats as they are baked, the others what they can: PNG 8 bits a channel. JPEG is refused: its loss shows in the shading, and its writer may end the process on an error.
namespace vyr::MaterialTranslation
{

/// How large an image may be. It is checked against the file's header, before memory is taken for the pixels:
/// a small file can unpack to many gigabytes.
struct ImageLimits
{
    /// Width times height. The default, 16384 x 16384, is the largest texture that graphics processors
    /// commonly take; as heights it needs 1 GiB, as a float normal map 3 GiB.
    std::uint64_t pixels = std::uint64_t{1} << 28;
    /// Only the first channel of a height image is used, but all have to be decoded.
    int channels = 64;
    /// Of all channels as the file stores them, unpacked: width times height times bytes a pixel.
    std::uint64_t decodedBytes = std::uint64_t{1} << 32;
};

/// What became of a bake.
struct BakeResult
{
    bool success = false;
    /// Why there is no file, in one line with the file's name; empty after a success.
    std::string message;
    /// What was done differently from what was asked for, one line each.
    std::vector<std::string> warnings;
};

struct NormalBakeOptions
{
    /// Strength of the relief for the image as a whole: the slopes are multiplied with
    /// width * bumpAmount / realWorldScale[0] * bumpScale[0] along x, and with height and the second
    /// components along y. 0 leaves the slopes as they are.
    float bumpAmount = 0.0f;
    /// Size of the image in the world, in any unit; not 0.
    std::array<float, 2> realWorldScale{1.0f, 1.0f};
    /// Further factors along x and y.
    std::array<float, 2> bumpScale{1.0f, 1.0f};
    ImageLimits limits;
    /// 0: as many threads as OpenImageIO uses by default; 1: only the calling thread.
    int threads = 0;
};

struct NoiseBakeOptions
{
    /// Pixels; both greater than 0.
    int width = 0;
    int height = 0;
    /// "noise_regular", "noise_fractal" or "noise_turbulence"; case does not count.
    std::string type = "noise_regular";
    /// Linear colours where the noise is 0 and where it is 1. With both the image has three channels, else one.
    std::optional<std::array<float, 3>> color1;
    std::optional<std::array<float, 3>> color2;
    /// The image is 100 / size noise cells wide and high; what is not greater than 0 counts as 1.
    float size = 0.0f;
    /// Below the low threshold the noise is 0, above the high one 1, between them it rises evenly.
    float thresholdLow = 0.0f;
    float thresholdHigh = 0.0f;
    /// Octaves of fractal and turbulence noise; a fraction counts as a whole octave, what is not greater than 0
    /// as 1, and above 32 as 32, with a warning.
    float levels = 0.0f;
    /// Coordinate on the fourth axis of the noise: a slow change of it makes the image flow.
    float phase = 0.0f;
    ImageLimits limits;
    /// 0: as many threads as OpenImageIO uses by default; 1: only the calling thread.
    int threads = 0;
};

/// Bakes a height (bump) image into a tangent-space normal map: linear, x to the right, y along the rows
/// downwards, each component n stored as n / 2 + 1 / 2.
///
/// @param source       png, jpeg, tiff, exr, targa, bmp, hdr, webp, sgi or pnm, whatever its name says; the
///                     first channel counts, integers from 0 to 1. Not the destination.
/// @param destination  In an existing folder.
VYR_MTLX_API BakeResult bakeNormalMapFile(const std::filesystem::path& source,
                                          const std::filesystem::path& destination,
                                          const NormalBakeOptions& options = {});

/// Bakes four-dimensional gradient noise into an image.
///
/// @param destination  In an existing folder.
VYR_MTLX_API BakeResult bakeNoiseFile(const std::filesystem::path& destination,
                                      const NoiseBakeOptions& options);

/// A property of a procedural texture, by its name in proceduralTextures() of Schemas.h.
struct TextureProperty
{
    std::string name;
    /// One number, of a colour three: linear Rec.709. Lengths in metres, angles in degrees, booleans 0 or 1.
    std::vector<float> numbers;
    /// In place of numbers the name of a choice.
    std::string choice;
};

/// What the pixels of a procedural texture are.
enum class TextureOutput
{
    Color, ///< three channels; formats of whole numbers hold the codes of sRGB, others linear values
    Number, ///< one channel: the colours' luminance
    Normal, ///< a normal map of heights that are that number (tiles: high between low joints)
};

struct TextureBakeOptions
{
    /// A name in proceduralTextures().
    std::string schema;
    /// What is missing has its fallback; what is out of range is taken as the nearest, with a warning.
    std::vector<TextureProperty> properties;
    TextureOutput output = TextureOutput::Color;
    /// Pixels; both greater than 0.
    int width = 1024;
    int height = 1024;
    ImageLimits limits;
    /// 0: as many threads as OpenImageIO uses by default; 1: only the calling thread.
    int threads = 0;
};

/// Bakes a procedural texture into an image that covers one period of its pattern: opposite edges meet, but
/// for gradients that do not repeat.
///
/// @param destination  In an existing folder.
/// @return without success also for a schema, a property or a choice that is not known.
VYR_MTLX_API BakeResult bakeTextureFile(const std::filesystem::path& destination,
                                        const TextureBakeOptions& options);

/// How the translations of a thread bake their images.
struct BakeSettings
{
    ImageLimits limits;
    /// 0: as many threads as OpenImageIO uses by default; 1: only the calling thread, for hosts that
    /// translate several materials side by side.
    int threads = 0;
    /// Whether images are baked and gathered anew that an earlier translation left where they belong: a bake of
    /// the same version, parameters and sources, and a copy of the same content. What comes out is the same.
    bool anew = false;
};

/// Sets how later translations on the calling thread bake. Other threads keep their own settings.
VYR_MTLX_API void setBakeSettings(const BakeSettings& settings);

/// The calling thread's settings.
VYR_MTLX_API const BakeSettings& bakeSettings();

/// The images that lie in a material's folder for its document, absolute.
struct MaterialImages
{
    std::vector<std::filesystem::path> baked;
    /// Of an earlier bake of the same version, parameters and sources.
    std::vector<std::filesystem::path> kept;
    /// Copies, also those that were there already; no image of the user that lies in the folder itself.
    std::vector<std::filesystem::path> gathered;
};

/// Those of the calling thread's last translation or buildOverlay, if it succeeded.
VYR_MTLX_API MaterialImages lastImages();

/// Removes the images that the calling thread's last translation baked, where they were not there before
/// it and nothing else uses them, and the material's folder if it is empty then. For a caller that fails a
/// material after its translation, because its document is not valid or cannot be written.
VYR_MTLX_API void discardLastBakes();

} // namespace vyr::MaterialTranslation
