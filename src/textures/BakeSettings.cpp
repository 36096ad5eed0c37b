#include <MaterialTranslation/Bakes.h>

namespace vyr::MaterialTranslation
{

namespace
{

BakeSettings& threadSettings()
{
    thread_local BakeSettings settings;
    return settings;
}

} // namespace

void setBakeSettings(const BakeSettings& settings)
{
    threadSettings() = settings;
}

const BakeSettings& bakeSettings()
{
    return threadSettings();
}

} // namespace vyr::MaterialTranslation
