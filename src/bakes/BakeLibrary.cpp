#include "bakes/BakeLibrary.h"

#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <type_traits>

#include "bakes/BakeKey.h"
#include "base/Paths.h"
#include "base/SharedLibrary.h"

namespace vyr::MaterialTranslation
{

namespace bakes
{

namespace fs = std::filesystem;

namespace
{

struct Opened
{
    const BakeLibrary* library = nullptr;
    /// Why there is none.
    std::string failure;
};

/// The library is never closed: threads of the image library run in it.
constinit std::optional<Opened> opened;
constinit std::once_flag opening;

Opened open()
{
    const fs::path folder = base::folderOfCode(reinterpret_cast<const void*>(&open));
    // A name without a folder would be looked for on the system's search path.
    if (folder.empty())
        return {nullptr,
                "the library of the bakes lies beside the converter's, which is not found"};
    const fs::path file = folder / VYR_MTLX_BAKES_FILE;
    const std::string named = "the library of the bakes, " + base::utf8FromPath(file);
    const auto [function, failure] = base::openFunction(file, "vyrMtlxBakeLibrary");
    if (!function)
        return {nullptr, named + ", cannot be loaded: " + failure};
    const BakeLibrary* library = reinterpret_cast<decltype(&vyrMtlxBakeLibrary)>(function)();
    if (library->stamp != std::string_view(VYR_MTLX_BAKES_STAMP))
        return {nullptr, named + ", is of another build: " + library->stamp + ", not " +
                             VYR_MTLX_BAKES_STAMP};
    return {library, {}};
}

/// Calls one of the library's functions. The first call opens it, and a failure to open it is remembered.
template <class Function, class... Arguments>
std::invoke_result_t<Function, Arguments...> call(Function BakeLibrary::* function,
                                                  const fs::path& image,
                                                  const Arguments&... arguments)
{
    std::invoke_result_t<Function, Arguments...> result;
    try
    {
        std::call_once(opening, [] { opened = open(); });
        if (opened->library)
            return (opened->library->*function)(arguments...);
        result.message = base::utf8FromPath(image) + ": " + opened->failure;
    }
    catch (const std::bad_alloc&)
    {
        result.message = "out of memory"; // so short that it takes none
    }
    return result;
}

} // namespace

BakeOutcome bakeForMaterial(const MaterialBake& bake, const BakeSettings& settings,
                            const fs::path& place)
{
    try
    {
        const std::string key = keyOf(bake, settings.limits);
        BakeOutcome outcome;
        outcome.isKept = !settings.anew && !key.empty() && hasKey(place, key);
        if (outcome.isKept)
            return outcome;
        outcome = call(&BakeLibrary::bakeForMaterial, place, bake, settings, place);
        // What is to be told has to be told again the next time, and a source may have changed meanwhile.
        if (!key.empty() && outcome.warnings.empty() && outcome.droppedImages.empty() &&
            keyOf(bake, settings.limits) == key)
            addKey(outcome.file, key);
        return outcome;
    }
    catch (const std::bad_alloc&)
    {
        BakeOutcome outcome;
        outcome.message = "out of memory"; // so short that it takes none
        return outcome;
    }
}

} // namespace bakes

BakeResult bakeNormalMapFile(const std::filesystem::path& source,
                             const std::filesystem::path& destination,
                             const NormalBakeOptions& options)
{
    return bakes::call(&bakes::BakeLibrary::bakeNormalMapFile, destination, source, destination,
                       options);
}

BrowserImage browserImage(const std::filesystem::path& source, int largest,
                          const BakeSettings& settings)
{
    return bakes::call(&bakes::BakeLibrary::browserImage, source, source, largest, settings);
}

BakeResult bakeNoiseFile(const std::filesystem::path& destination, const NoiseBakeOptions& options)
{
    return bakes::call(&bakes::BakeLibrary::bakeNoiseFile, destination, destination, options);
}

} // namespace vyr::MaterialTranslation
