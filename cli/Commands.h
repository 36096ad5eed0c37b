#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <MaterialTranslation/ConverterOptions.h>

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

ExitStatus run(const ConvertCommand& command);
ExitStatus run(const OverlayCommand& command);
ExitStatus run(const ListCommand& command);

} // namespace vyr::cli
