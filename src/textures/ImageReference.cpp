#include "textures/ImageReference.h"

#include <filesystem>

#include "assets/PropertyReaders.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::textures
{

bool isImageFile(const std::filesystem::path& path)
{
    std::error_code error;
    return path.is_absolute() && std::filesystem::is_regular_file(path, error);
}

std::string readImageReference(const assets::AssetView& texture, const char* property,
                               const Log& log)
{
    std::string image = assets::GetUriPathOrEmpty(texture, property);
    if (image.empty())
    {
        log.warning(DiagnosticCode::TexturePathEmpty, property, "the texture names no image");
        return {};
    }
    if (base::xmlText(image) != image)
    {
        log.warning(DiagnosticCode::TextureNameRefused, property,
                    "a document cannot hold the image's name: " + base::xmlText(image));
        return {};
    }
    if (!isImageFile(base::pathFromUtf8(image)))
        log.warning(DiagnosticCode::TextureFileMissing, property,
                    "there is no such image file: " + image);
    return image;
}

} // namespace vyr::MaterialTranslation::textures
