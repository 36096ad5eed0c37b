#include <filesystem>
#include <optional>

#include <kelvor/platform/assets/IAssetLibraryManager.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;
using platform::TextForm;

namespace
{

/// The value of a URI property; null when there is none.
const platform::IUriValue* findUri(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    if (!property || property->GetType() != platform::ePropertyType_URI)
        return nullptr;
    return dynamic_cast<const platform::IUriValue*>(property->GetValue());
}

template <class String> String readUri(const platform::IUriValue& value, TextForm form)
{
    String text;
    value.GetUri(text, form);
    return text;
}

template <class String> std::optional<String> resolve(const String& uri)
{
    const platform::IAssetLibraryManager* manager = platform::GetIAssetLibraryManager();
    const platform::IPathResolver* resolver = manager ? manager->GetPathResolver() : nullptr;
    String path;
    if (!resolver || !resolver->Resolve(uri, path))
        return std::nullopt;
    return path;
}

} // namespace

std::string GetUriProperty(const AssetView& view, const char* name)
{
    const platform::IUriValue* value = findUri(view, name);
    if (!value)
        throw PropertyError("ePropertyType_URI", name);
    const auto uri = readUri<UTF8String>(*value, TextForm::Stored);
    if (const auto path = resolve(uri))
        return path->str();
    if (!uri.empty() && uri.str().back() == '.')
    {
        const UTF8String withoutDot(uri.str().substr(0, uri.size() - 1));
        if (const auto path = resolve(withoutDot))
            return path->str();
    }
    return uri.str();
}

std::string GetUriPathProperty(const AssetView& view, const char* name)
{
    return base::utf8FromPath(base::pathFromUtf8(GetUriProperty(view, name)));
}

std::string GetUriPathOrEmpty(const AssetView& view, const char* name)
{
    return HasPropertyValue(view, name) ? GetUriPathProperty(view, name) : std::string();
}

std::wstring GetUriWideProperty(const AssetView& view, const char* name)
{
    const platform::IUriValue* value = findUri(view, name);
    return value ? readUri<WideString>(*value, TextForm::Stored).str() : std::wstring();
}

std::wstring GetResolvedWidePath(const AssetView& view, const char* name)
{
    const platform::IUriValue* value = findUri(view, name);
    if (!value)
        return {};
    const auto preferred = readUri<WideString>(*value, TextForm::Preferred);
    if (const auto path = resolve(preferred))
        return path->str();
    const auto stored = readUri<WideString>(*value, TextForm::Stored);
    if (const auto path = resolve(stored))
        return path->str();
    return preferred.empty() ? stored.str() : preferred.str();
}

} // namespace vyr::MaterialTranslation::assets
