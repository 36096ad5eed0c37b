#include "StarterLibrary.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "Installed.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;
using enum Slot;

/// A property that an image drives.
struct Use
{
    Slot slot;
    const char* property;
};

/// A schema that can show the images of a set.
struct Kind
{
    const char* schema;
    std::vector<Use> uses;
};

// A glossy body without a metal image; with one, a body that is metal where the image is white.
const Kind opaque = {"LyrexOpaqueSchema",
                     {{BaseColor, "opaque_albedo"},
                      {Roughness, "surface_roughness"},
                      {Gloss, "surface_roughness"},
                      {Normal, "surface_normal"},
                      {NormalDown, "surface_normal"},
                      {Height, "surface_normal"},
                      {Opacity, "surface_cutout"},
                      {Emission, "opaque_luminance_modifier"}}};
const Kind layered = {"LyrexLayeredSchema",
                      {{BaseColor, "layered_diffuse"},
                       {BaseColor, "layered_bottom_f0"},
                       {Metal, "layered_fraction"},
                       {Roughness, "surface_roughness"},
                       {Roughness, "layered_roughness"},
                       {Gloss, "surface_roughness"},
                       {Gloss, "layered_roughness"},
                       {Normal, "surface_normal"},
                       {Normal, "layered_normal"},
                       {NormalDown, "surface_normal"},
                       {NormalDown, "layered_normal"},
                       {Height, "surface_normal"},
                       {Height, "layered_normal"},
                       {Opacity, "surface_cutout"}}};

/// Of images for one thing the first is used.
struct Rivals
{
    std::vector<Slot> slots;
    const char* reason;
};
const Rivals rivals[] = {
    {{Normal, NormalDown, Height}, "the relief is that of "},
    {{Roughness, Gloss}, "the roughness is that of "},
};

/// How the textures of a material are told apart.
constexpr std::pair<Slot, const char*> suffixes[] = {
    {BaseColor, "/base-color"}, {Roughness, "/roughness"}, {Gloss, "/gloss"},
    {Metal, "/metal"},          {Normal, "/normal"},       {NormalDown, "/normal"},
    {Height, "/height"},        {Opacity, "/opacity"},     {Emission, "/emission"},
};

std::string textureId(const std::string& material, Slot slot)
{
    return material +
           std::ranges::find(suffixes, slot, &std::pair<Slot, const char*>::first)->second;
}

// What images do not tell and the user fills in: metres, millimetres, candela per square metre.
constexpr float size = 1.0f;
constexpr float depth = 5.0f;
constexpr float luminance = 250.0f;

constexpr const char* toFillIn =
    "To be filled in: the size of the images, texture_RealWorldScaleX and Y of each, 1 m so far";

std::string idOf(const std::string& name)
{
    std::string id;
    for (const char c : name)
        id += c == ' ' ? '-' : base::toAsciiLower(c);
    return id;
}

void addConnection(const JsonNode& property, const std::string& texture)
{
    property.add("type", "reference");
    property.add("connected", texture);
}

void addMeasure(const JsonNode& properties, const char* name, float value, const char* unit)
{
    const JsonNode property = properties.addObject(name);
    property.add("type", "scalar");
    property.addNumber("value", value);
    property.add("unit", unit);
}

void addEmission(const JsonNode& properties)
{
    properties.addFlag("opaque_emission", true);
    addMeasure(properties, "opaque_luminance", luminance, "candelapersquaremeter");
}

void addValue(const JsonNode& properties, const char* name, const char* type,
              const std::string& value)
{
    const JsonNode property = properties.addObject(name);
    property.add("type", type);
    property.add("value", value);
}

} // namespace

StarterLibrary::StarterLibrary(const fs::path& images, const fs::path& home)
    : _way(base::tidyAbsolute(images).lexically_relative(home))
{
    if (_way.empty())
        _way = base::tidyAbsolute(images);
    if (const std::optional<fs::path> schema = installedFile("schema/asset-library.schema.json"))
        _document.root().add("$schema", fileUrl(*schema));
    _document.root().addInteger("assetLibrary", 1);
    _materials = _document.root().addList("materials");
    _textures = _document.root().addList("textures");
}

void StarterLibrary::add(TextureSet set)
{
    const Kind& kind = set.images.contains(Metal) ? layered : opaque;
    dropRivals(set);
    const auto isUseless = [&](const auto& entry)
    {
        const auto& [slot, image] = entry;
        const bool used = std::ranges::find(kind.uses, slot, &Use::slot) != kind.uses.end();
        if (!used)
            _left.push_back(
                {image, std::string(kind.schema) +
                            ", which takes the image of the metal, has no property for it"});
        return !used;
    };
    std::erase_if(set.images, isUseless);
    if (set.images.empty())
        return;
    const std::string name = uniqueName(set.name);
    const std::string id = idOf(name);
    const JsonNode material = _materials.addObject();
    material.add("id", id);
    material.add("schema", kind.schema);
    material.add("displayName", name);
    material.add("description", toFillIn);
    const JsonNode properties = material.addObject("properties");
    for (const auto& [slot, property] : kind.uses)
        if (set.images.contains(slot))
            addConnection(properties.addObject(property), textureId(id, slot));
    if (set.images.contains(Emission))
        addEmission(properties);
    const bool turned = set.images.contains(NormalDown);
    for (const auto& [slot, image] : set.images)
        addTexture(textureId(id, slot), slot, image, turned);
    if (turned)
        _remarks.push_back({set.images.at(NormalDown),
                            "its green points down; the material is shown turned "
                            "over from top to bottom, in which its "
                            "relief is right"});
    ++_count;
}

void StarterLibrary::dropRivals(TextureSet& set)
{
    for (const auto& [slots, reason] : rivals)
    {
        std::optional<fs::path> used;
        for (const Slot slot : slots)
            if (const auto image = set.images.find(slot); image == set.images.end())
                continue;
            else if (!used)
                used = image->second;
            else
            {
                _left.push_back({image->second, reason + base::utf8FromPath(used->filename())});
                set.images.erase(image);
            }
    }
}

/// Documents are named after the letters and digits of names.
std::string StarterLibrary::uniqueName(const std::string& wanted)
{
    std::string name = wanted;
    for (int number = 2; !_names.insert(base::foldCase(base::plainName(name))).second; ++number)
        name = wanted + ' ' + std::to_string(number);
    return name;
}

void StarterLibrary::addTexture(const std::string& id, Slot slot, const fs::path& image,
                                bool turned)
{
    const bool relief = slot == Normal || slot == NormalDown || slot == Height;
    const JsonNode texture = _textures.addObject();
    texture.add("id", id);
    texture.add("schema", relief ? "BumpMapSchema" : "UnifiedBitmapSchema");
    const JsonNode properties = texture.addObject("properties");
    addValue(properties, relief ? "bumpmap_Bitmap" : "unifiedbitmap_Bitmap", "uri",
             base::genericUtf8FromPath((_way / image).lexically_normal()));
    if (relief)
        addValue(properties, "bumpmap_Type", "choice",
                 slot == Height ? "bumpmap_height_map" : "bumpmap_normal_map");
    if (slot == Height)
        addMeasure(properties, "bumpmap_Depth", depth, "millimeter");
    if (slot == Gloss)
        properties.addFlag("unifiedbitmap_Invert", true);
    addMeasure(properties, "texture_RealWorldScaleX", size, "meter");
    addMeasure(properties, "texture_RealWorldScaleY", size, "meter");
    if (turned)
        properties.addNumber("texture_VScale", -1.0f);
    properties.addFlag("texture_URepeat", true);
    properties.addFlag("texture_VRepeat", true);
    const std::string extension = base::utf8FromPath(image.extension());
    if (slot == BaseColor && (base::equalsIgnoringCase(extension, ".exr") ||
                              base::equalsIgnoringCase(extension, ".hdr")))
        _remarks.push_back(
            {image,
             "images of colours are read as sRGB, which those of this format mostly are not"});
}

} // namespace vyr::cli
