#include "support/Host.h"

#include <mutex>
#include <optional>
#include <utility>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "support/Assets.h"

namespace vyr::support
{

namespace
{

using kelvor::platform::core::string::WideString;

struct TestManager final : kpa::IAssetLibraryManager, kpa::IPathResolver
{
    const IPathResolver* GetPathResolver() const override
    {
        return passing(settings.hasResolver ? this : nullptr);
    }
    bool Resolve(const UTF8String& uri, UTF8String& path) const override
    {
        std::string found;
        if (!passing(settings).resolve || !settings.resolve(uri.str(), found))
            return false;
        path = UTF8String(found);
        return true;
    }
    /// Only for texts of ASCII characters, which is all that the tests resolve in this form.
    bool Resolve(const WideString& uri, WideString& path) const override
    {
        UTF8String found;
        if (!Resolve(UTF8String(std::string(uri.str().begin(), uri.str().end())), found))
            return false;
        path = WideString(std::wstring(found.str().begin(), found.str().end()));
        return true;
    }

    HostSettings settings;
};

TestManager manager;
std::mutex breachMutex;
std::vector<std::string> breaches;
thread_local std::optional<std::size_t> operationsLeft;

} // namespace

HostSettings& hostSettings()
{
    return manager.settings;
}

void resetHost()
{
    cancelFailure();
    manager.settings = {};
    resetAssetPool();
    const std::lock_guard lock(breachMutex);
    breaches.clear();
}

std::vector<std::string> contractBreaches()
{
    const std::lock_guard lock(breachMutex);
    return breaches;
}

void recordBreach(const std::string& what)
{
    const std::lock_guard lock(breachMutex);
    breaches.push_back(what);
}

void failAfter(std::size_t operations)
{
    operationsLeft = operations;
}

bool cancelFailure()
{
    return std::exchange(operationsLeft, std::nullopt).has_value();
}

void passOperation(std::source_location where)
{
    if (!operationsLeft || (*operationsLeft)-- > 0)
        return;
    operationsLeft.reset();
    throw HostFault(where.function_name());
}

} // namespace vyr::support

kelvor::platform::assets::IAssetLibraryManager* kelvor::platform::assets::GetIAssetLibraryManager()
{
    using vyr::support::manager;
    return manager.settings.hasManager ? &manager : nullptr;
}
