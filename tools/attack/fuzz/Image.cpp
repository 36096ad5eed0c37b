#include "Targets.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include "baking/ImageFile.h"
#include "baking/NormalImage.h"
#include "baking/PngFile.h"
#include "support/TemporaryFolder.h"

namespace vyr::attack
{

using namespace MaterialTranslation;
using namespace MaterialTranslation::baking;

namespace
{

/// Whether a PNG file has the pixels of a float image, rounded to 8 bits.
std::string comparePng(const OIIO::ImageBuf& image)
{
    const std::vector<unsigned char> file = encodePng(image, 1);
    OIIO::Filesystem::IOMemReader memory(file.data(), file.size());
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    const OIIO::ImageSpec& spec = image.spec();
    const auto input = OIIO::ImageInput::create("png");
    OIIO::ImageSpec found;
    if (!input || !input->set_ioproxy(&memory) || !input->open("x.png", found, hints))
        return "the PNG file cannot be opened: " + input->geterror();
    std::vector<unsigned char> pixels(spec.image_pixels() *
                                      static_cast<std::size_t>(spec.nchannels));
    if (found.width != spec.width || found.height != spec.height ||
        found.nchannels != spec.nchannels ||
        !input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeUInt8, pixels.data()))
        return "the PNG file cannot be read: " + input->geterror();
    const auto* values = static_cast<const float*>(image.localpixels());
    for (std::size_t i = 0; i < pixels.size(); ++i)
    {
        const float value = std::isnan(values[i]) ? 0.0f : std::clamp(values[i], 0.0f, 1.0f);
        if (std::fabs(value * 255.0f - static_cast<float>(pixels[i])) > 0.51f)
            return "a pixel of the PNG file is wrong";
    }
    return {};
}

/// The bytes are repeated, as floats or as what they are.
std::string tryPixels(const std::string& bytes)
{
    if (bytes.size() < 6)
        return {};
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const int channels = 1 + at(0) % 4;
    // Several strips, seldom: under the sanitizers they take as long as a hundred small images.
    const bool large = at(1) == 0;
    const int width = 1 + (large ? at(2) * 16 : at(2) / 8);
    const int height = 1 + (large ? std::min<int>(at(3), 600000 / (width * channels)) : at(3) / 8);
    const OIIO::ImageSpec spec(width, height, channels, OIIO::TypeFloat);
    OIIO::ImageBuf image = uninitializedImage("pixels", spec);
    auto* values = static_cast<float*>(image.localpixels());
    const std::size_t count = spec.image_pixels() * static_cast<std::size_t>(channels);
    const std::string content = bytes.substr(5);
    if (at(4) % 2 == 0)
        for (std::size_t i = 0; i < count; ++i)
            values[i] =
                static_cast<float>(static_cast<unsigned char>(content[i % content.size()])) /
                255.0f;
    else
        for (std::size_t i = 0; i < count * sizeof(float); ++i)
            std::memcpy(reinterpret_cast<char*>(values) + i, &content[i % content.size()], 1);
    return comparePng(image);
}

std::string tryFile(const std::string& name, const std::string& bytes)
{
    static const support::TemporaryFolder folder;
    std::filesystem::remove(folder / name);
    ImageLimits limits;
    limits.pixels = 1 << 12;
    limits.decodedBytes = 1 << 18;
    try
    {
        const HeightImage image = readHeightImage(folder.write(name, bytes), limits, 1);
        NormalBakeOptions options;
        options.threads = 1;
        return comparePng(bakeNormals(image.heights, options));
    }
    catch (const BakeError& error)
    {
        const std::string text = error.what();
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
        return std::any_of(text.begin(), text.end(), isControl) ? "message: " + text
                                                                : std::string();
    }
}

} // namespace

std::string tryImage(const std::string& bytes)
{
    // The first byte chooses, in letters, so that a file can be made into an input by putting one in front.
    if (bytes.empty())
        return {};
    if (bytes[0] == 'P')
        return tryPixels(bytes.substr(1));
    return tryFile(bytes[0] == 'T' ? "f.tga" : "f.img", bytes.substr(1));
}

} // namespace vyr::attack
