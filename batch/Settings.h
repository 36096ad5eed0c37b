#pragma once

#include <string>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/NodeForms.h>

namespace vyr::batch
{

/// How documents are made. Texts are UTF-8; paths are as the user wrote them.
struct Settings
{
    /// The folder of the documents.
    std::string output;
    /// `outputDirectory` is filled when the folder is known to exist.
    MaterialTranslation::ConverterOptions options;
    /// Of the images that are baked.
    MaterialTranslation::ImageLimits limits;
    bool absolutePaths = false;
    /// How the documents use the kvor nodes.
    MaterialTranslation::NodeForm nodes = MaterialTranslation::NodeForm::Reference;
    bool validate = false;
    /// Whether everything is made anew, also what is there and would be the same.
    bool anew = false;
    /// Whether documents of other assets may be replaced.
    bool replace = false;
    /// Documents made side by side; 0: as many as there are cores.
    unsigned jobs = 0;
    /// JSON report that is written beside the documents; empty: none.
    std::string report;
    /// Whether outcomes list the images of their documents.
    bool listImages = false;
};

} // namespace vyr::batch
