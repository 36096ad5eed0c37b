#pragma once

#include <array>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/NodeForms.h>

#include "ExitStatus.h"

namespace vyr::cli
{

/// What `vyr-mtlx convert` was asked for. Texts are UTF-8; paths are as the user wrote them.
struct ConvertCommand
{
    std::vector<std::string> files;
    std::string output;
    /// Identifiers of the only materials to convert; empty: all.
    std::vector<std::string> assets;
    /// Further folders to look image references up in.
    std::vector<std::string> texturePaths;
    /// `outputDirectory` is filled when the folder is known to exist.
    MaterialTranslation::ConverterOptions options;
    bool absolutePaths = false;
    /// How the documents use the kvor nodes.
    MaterialTranslation::NodeForm nodes = MaterialTranslation::NodeForm::Reference;
    bool validate = false;
    /// Materials translated side by side; 0: as many as there are cores.
    unsigned jobs = 0;
    /// JSON report; empty: none.
    std::string report;
    bool strict = false;
    bool quiet = false;
};

/// What `vyr-mtlx overlay` was asked for.
struct OverlayCommand
{
    std::vector<std::string> files;
    std::string output;
};

/// What `vyr-mtlx list` was asked for.
struct ListCommand
{
    std::vector<std::string> files;
    bool json = false;
};

/// What `vyr-mtlx validate` was asked for.
struct ValidateCommand
{
    std::vector<std::string> files;
};

/// What `vyr-mtlx bake normal` was asked for.
struct BakeNormalCommand
{
    std::string image;
    std::string output;
    MaterialTranslation::NormalBakeOptions options;
};

/// What `vyr-mtlx bake noise` was asked for.
struct BakeNoiseCommand
{
    std::string output;
    /// Width and height in pixels, where `options` has none; 0: none either.
    int resolution = 0;
    /// The colours count when one of them was given.
    bool inColor = false;
    std::array<float, 3> color1{0.0F, 0.0F, 0.0F};
    std::array<float, 3> color2{1.0F, 1.0F, 1.0F};
    MaterialTranslation::NoiseBakeOptions options;
};

ExitStatus run(const ConvertCommand& command);
ExitStatus run(const OverlayCommand& command);
ExitStatus run(const ListCommand& command);
ExitStatus run(const ValidateCommand& command);
ExitStatus run(const BakeNormalCommand& command);
ExitStatus run(const BakeNoiseCommand& command);

} // namespace vyr::cli
