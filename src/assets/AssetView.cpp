#include "assets/AssetView.h"

#include <algorithm>

#include <kelvor/platform/assets/IProperty.h>

#include "assets/Schemas.h"
#include "assets/Units.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

void note(std::vector<const IProperty*>& list, const IProperty* property)
{
    if (std::find(list.begin(), list.end(), property) == list.end())
        list.push_back(property);
}

bool holds(const std::vector<const IProperty*>& list, const IProperty* property)
{
    return std::find(list.begin(), list.end(), property) != list.end();
}

std::string identifierOf(const IProperty& property)
{
    kelvor::platform::core::string::UTF8String identifier;
    property.GetIdentifier(identifier);
    return identifier.str();
}

bool isKnown(const std::string& name, std::span<const char* const> known)
{
    return name == versionProperty || name == hiddenProperty ||
           std::find(known.begin(), known.end(), name) != known.end();
}

/// Whether the property declares the colour space of one that was read.
bool isCompanionOfRead(const std::string& name, const AssetView& view)
{
    const std::string suffix = colorSpaceSuffix;
    if (name.size() <= suffix.size() || !name.ends_with(suffix))
        return false;
    const auto* property = view.table().FindProperty(name.substr(0, name.size() - suffix.size()));
    return property && view.use()->wasRead(property);
}

} // namespace

const IProperty* PropertyUse::find(const IPropertyConstTable& table, const char* name)
{
    if (_last && _lastName == name)
        return _last;
    const IProperty* property = table.FindProperty(name);
    if (!property)
        return nullptr;
    note(_read, property);
    _lastName = name;
    _last = property;
    return property;
}

void PropertyUse::noteConnection(const IProperty* property)
{
    note(_connections, property);
}

bool PropertyUse::wasRead(const IProperty* property) const
{
    return holds(_read, property);
}

bool PropertyUse::wasConnectionTaken(const IProperty* property) const
{
    return holds(_connections, property);
}

void reportLeftProperties(const AssetView& view, std::span<const char* const> known, const Log& log)
{
    const std::size_t count = view.use() ? view.table().GetPropertyCount() : 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        const IProperty* property = view.table().GetProperty(i);
        if (!property)
            continue;
        const std::string name = identifierOf(*property);
        if (property->HasConnections() && !view.use()->wasConnectionTaken(property))
            log.warning(DiagnosticCode::TextureUnused, name,
                        "nothing in the document uses the texture connected to it");
        else if (!view.use()->wasRead(property) && !isKnown(name, known) &&
                 !isCompanionOfRead(name, view))
            log.warning(DiagnosticCode::PropertyUnread, name,
                        "no rule reads a property of this name here");
    }
}

} // namespace vyr::MaterialTranslation::assets
