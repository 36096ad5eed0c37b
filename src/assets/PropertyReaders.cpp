#include "assets/PropertyReaders.h"

#include <cmath>

#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>
#include <kelvor/platform/assets/UnitCode.h>

#include "assets/PropertyError.h"

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;

namespace
{

constexpr const char* invalidProperty = "Invalid property specified";
constexpr const char* notFinite = "the value is not a finite 32-bit number";

/// The value of a property of the type, cast to the interface that the type promises; throws
/// `message` when the asset does not keep the promise.
template <class Value>
const Value& require(const AssetView& view, const char* name, platform::PropertyType type,
                     const char* message, std::size_t components = 1)
{
    const IProperty* property = FindProperty(view, name);
    if (!property || property->GetType() != type)
        throw PropertyError(message, name);
    const auto* value = dynamic_cast<const Value*>(property->GetValue());
    if (!value || value->GetComponentCount() < components)
        throw PropertyError(message, name);
    return *value;
}

const platform::IScalarValue& requireScalar(const AssetView& view, const char* name,
                                            std::size_t components)
{
    return require<platform::IScalarValue>(view, name, platform::ePropertyType_Scalar,
                                           "ePropertyType_Scalar", components);
}

/// The value of a Boolean or a colour, which have no interface of their own: every other kind has.
const platform::IValue& requirePlain(const AssetView& view, const char* name,
                                     platform::PropertyType type, const char* message)
{
    const auto& value = require<platform::IValue>(view, name, type, message);
    if (dynamic_cast<const platform::IScalarValue*>(&value) ||
        dynamic_cast<const platform::IIntegerValue*>(&value) ||
        dynamic_cast<const platform::IStringValue*>(&value) ||
        dynamic_cast<const platform::IUriValue*>(&value) ||
        dynamic_cast<const platform::IChoiceListValue*>(&value))
        throw PropertyError(message, name);
    return value;
}

float narrow(double value, const char* message, const char* name)
{
    const auto result = static_cast<float>(value);
    if (!std::isfinite(result))
        throw PropertyError(message, name, DiagnosticCode::ValueNotFinite, notFinite);
    return result;
}

float component(const platform::IScalarValue& value, std::size_t index, const char* name)
{
    return narrow(value.GetScalar(index), "ePropertyType_Scalar", name);
}

const platform::IValue& requireValue(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    const platform::IValue* value = property ? property->GetValue() : nullptr;
    if (!value)
        throw PropertyError(invalidProperty, name, DiagnosticCode::PropertyInvalid);
    return *value;
}

std::string requireString(const AssetView& view, const char* name, platform::PropertyType type,
                          const char* message)
{
    UTF8String text;
    require<platform::IStringValue>(view, name, type, message, 0)
        .GetString(text, platform::TextForm::Stored);
    return text.str();
}

} // namespace

const IProperty* FindProperty(const AssetView& view, const char* name)
{
    return view.use() ? view.use()->find(view.table(), name) : view.table().FindProperty(name);
}

bool HasProperty(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    return property && (property->GetValue() || property->HasConnections());
}

bool HasPropertyValue(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    return property && property->GetValue();
}

bool IsPropertyActive(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    if (!property)
        return false;
    const std::uint32_t type = property->GetType();
    if (type != platform::ePropertyType_Reference && type != platform::ePropertyType_ReferenceList)
        return true;
    return property->HasConnections() && property->GetConnectionCount() != 0;
}

std::string GetPropertyIdentifier(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    if (!property)
        throw PropertyError(invalidProperty, name, DiagnosticCode::PropertyInvalid);
    UTF8String identifier;
    property->GetIdentifier(identifier);
    return identifier.str();
}

std::uint32_t GetPropertyUnit(const AssetView& view, const char* name)
{
    return requireValue(view, name).GetUnit();
}

bool HasPropertyUnit(const AssetView& view, const char* name)
{
    const std::uint32_t unit = GetPropertyUnit(view, name);
    return unit != platform::eUnit_None && unit != platform::eUnit_NoneA &&
           unit != platform::eUnit_NoneB;
}

bool GetBooleanProperty(const AssetView& view, const char* name)
{
    return requirePlain(view, name, platform::ePropertyType_Boolean, "ePropertyType_Boolean")
        .GetBoolean(0);
}

int GetIntegerProperty(const AssetView& view, const char* name)
{
    return require<platform::IIntegerValue>(view, name, platform::ePropertyType_Integer,
                                            "ePropertyType_Integer")
        .GetInteger(0);
}

float GetFloatProperty(const AssetView& view, const char* name)
{
    return component(requireScalar(view, name, 1), 0, name);
}

std::pair<std::uint32_t, float> GetFloatWithUnitProperty(const AssetView& view, const char* name)
{
    const platform::IScalarValue& value = requireScalar(view, name, 1);
    return {value.GetUnit(), component(value, 0, name)};
}

Vector2 GetVector2Property(const AssetView& view, const char* name)
{
    const platform::IScalarValue& value = requireScalar(view, name, 3);
    return {component(value, 0, name), component(value, 1, name)};
}

Vector3 GetVector3Property(const AssetView& view, const char* name)
{
    const platform::IScalarValue& value = requireScalar(view, name, 3);
    return {component(value, 0, name), component(value, 1, name), component(value, 2, name)};
}

Color4 GetColor4Property(const AssetView& view, const char* name)
{
    constexpr const char* message = "ePropertyType_Color";
    std::array<double, 4> c{};
    requirePlain(view, name, platform::ePropertyType_Color, message)
        .GetColor(0, c[0], c[1], c[2], c[3]);
    Color4 color{};
    for (std::size_t i = 0; i < color.size(); ++i)
        color[i] = narrow(c[i], message, name);
    return color;
}

Color3 GetColor3Property(const AssetView& view, const char* name)
{
    const Color4 color = GetColor4Property(view, name);
    return {color[0], color[1], color[2]};
}

std::string GetStringProperty(const AssetView& view, const char* name)
{
    return requireString(view, name, platform::ePropertyType_String, "ePropertyType_String");
}

std::string GetTextProperty(const AssetView& view, const char* name)
{
    return requireString(view, name, platform::ePropertyType_Text, invalidProperty);
}

std::vector<std::string> GetChoiceListProperty(const AssetView& view, const char* name)
{
    const auto& value = require<platform::IChoiceListValue>(
        view, name, platform::ePropertyType_ChoiceList, invalidProperty, 0);
    const platform::IChoiceTable* table = value.GetChoiceTable();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < value.GetSelectedCount(); ++i)
    {
        const std::int32_t index = value.GetSelectedIndex(i);
        const bool exists =
            table && index >= 0 && static_cast<std::size_t>(index) < table->GetChoiceCount();
        const platform::IChoice* choice =
            exists ? table->GetChoice(static_cast<std::size_t>(index)) : nullptr;
        if (!choice)
            throw PropertyError(invalidProperty, name, DiagnosticCode::PropertyInvalid,
                                "a selected choice does not exist");
        UTF8String choiceName;
        choice->GetName(choiceName);
        names.push_back(choiceName.str());
    }
    return names;
}

float GetFloatOr(const AssetView& view, const char* name, float fallback)
{
    return HasPropertyValue(view, name) ? GetFloatProperty(view, name) : fallback;
}

bool GetBooleanOr(const AssetView& view, const char* name, bool fallback)
{
    return HasPropertyValue(view, name) ? GetBooleanProperty(view, name) : fallback;
}

Color3 GetColor3Or(const AssetView& view, const char* name, const Color3& fallback)
{
    return HasPropertyValue(view, name) ? GetColor3Property(view, name) : fallback;
}

std::string GetFirstChoiceOr(const AssetView& view, const char* name, const char* fallback)
{
    if (!HasPropertyValue(view, name))
        return fallback;
    const std::vector<std::string> choices = GetChoiceListProperty(view, name);
    return choices.empty() ? fallback : choices.front();
}

Color3 ColorFromBytes(float red, float green, float blue)
{
    return {red / 255.0f, green / 255.0f, blue / 255.0f};
}

std::string SuffixAfterFirstUnderscore(const std::string& text)
{
    return text.substr(text.find('_') + 1);
}

} // namespace vyr::MaterialTranslation::assets
