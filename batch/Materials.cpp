#include <exception>
#include <string>

#include "base/Paths.h"
#include "batch/Documents.h"

namespace vyr::batch
{

using MaterialTranslation::MaterialXConverter;

MaterialTranslators::MaterialTranslators(const Settings& settings, const OutputFolder& folder,
                                         std::size_t workers)
    // Side by side with other materials a bake is not to take all cores.
    : _bakes{.limits = settings.limits, .threads = workers > 1 ? 1 : 0, .anew = settings.anew},
      _converters(workers)
{
    MaterialTranslation::ConverterOptions options = settings.options;
    options.outputDirectory = base::utf8FromPath(folder.absolute);
    for (auto& converter : _converters)
        converter = std::make_unique<MaterialXConverter>(options);
}

MaterialX::DocumentPtr MaterialTranslators::translate(std::size_t worker, const Task& task,
                                                      Outcome& outcome) const
{
    bool translated = false;
    MaterialX::DocumentPtr document;
    std::string reason = "the material cannot be translated";
    MaterialTranslation::setBakeSettings(_bakes);
    try
    {
        document = MaterialX::createDocument();
        const auto* material = std::get<const assetlib::Material*>(task.item);
        translated =
            _converters[worker]->TranslateToMaterialX(*material->asset, task.name, document);
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    addDiagnostics(outcome, translated ? "" : reason);
    return translated ? document : nullptr;
}

} // namespace vyr::batch
