#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// @file
/// Sets of textures in a folder, by the names that their makers give them: `Oak_1K_Color.jpg`,
/// `oak_nor_gl_2k.exr`, `Oak-albedo.png`, `T_Oak_N.tga`.
namespace vyr::cli
{

/// What an image of a set says about the surface.
enum class Slot
{
    BaseColor,
    Roughness,
    Gloss,
    Metal,
    /// A normal map whose green points up (OpenGL's convention), and one whose green points down (DirectX's).
    Normal,
    NormalDown,
    Height,
    Opacity,
    Emission,
    /// Nothing that a property could take.
    Other,
};

/// The images of one material.
struct TextureSet
{
    /// For people; letters as in the images' names.
    std::string name;
    /// Below the folder that was searched.
    std::map<Slot, std::filesystem::path> images;
};

/// Something to tell about an image, such as why it is in no set.
struct ImageRemark
{
    std::filesystem::path path;
    std::string text;
};

struct TextureSets
{
    std::vector<TextureSet> sets;
    std::vector<ImageRemark> left;
};

/// Sorts images into sets. Files of other kinds are passed over.
/// @param files paths below the folder that was searched; sets lie in one folder each.
/// @param folder name of that folder, for images whose names say nothing but the slot.
TextureSets findTextureSets(std::vector<std::filesystem::path> files, const std::string& folder);

} // namespace vyr::cli
