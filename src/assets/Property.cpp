#include <cmath>
#include <iterator>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>
#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>
#include <kelvor/platform/assets/UnitCode.h>

#include "assets/Asset.h"
#include "base/Paths.h"

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;
using platform::TextForm;

namespace
{

constexpr const char* invalidProperty = "Invalid property specified";
constexpr const char* scalarType = "ePropertyType_Scalar";

float narrow(double value, const char* message, const char* name)
{
    const auto result = static_cast<float>(value);
    if (!std::isfinite(result))
        throw PropertyError(message, name, DiagnosticCode::ValueNotFinite,
                            "the value is not a finite 32-bit number");
    return result;
}

/// The value of a URI property; null when there is none.
const platform::IUriValue* uriOf(const IProperty* property)
{
    return property && property->GetType() == platform::ePropertyType_URI
               ? dynamic_cast<const platform::IUriValue*>(property->GetValue())
               : nullptr;
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

bool Property::hasValue() const
{
    return _property && _property->GetValue();
}

bool Property::isActive() const
{
    const bool onlyConnects = type() == platform::ePropertyType_Reference ||
                              type() == platform::ePropertyType_ReferenceList;
    return _property && (!onlyConnects || isConnected());
}

std::uint32_t Property::type() const
{
    return _property ? _property->GetType() : 0;
}

std::string Property::identifier() const
{
    if (!_property)
        throw PropertyError(invalidProperty, _name, DiagnosticCode::PropertyInvalid);
    UTF8String identifier;
    _property->GetIdentifier(identifier);
    return identifier.str();
}

/// The value, cast to the interface that the type promises; throws `message` when the asset does not keep
/// the promise.
template <class Value>
const Value& Property::require(std::uint32_t type, const char* message,
                               std::size_t components) const
{
    if (_property)
        _asset->trace(*this);
    if (this->type() != type || !_property)
        throw PropertyError(message, _name);
    const auto* value = dynamic_cast<const Value*>(_property->GetValue());
    if (!value || value->GetComponentCount() < components)
        throw PropertyError(message, _name);
    return *value;
}

/// The value of a Boolean or a colour, which have no interface of their own: every other kind has.
template <class Plain>
const Plain& Property::requirePlain(std::uint32_t type, const char* message) const
{
    const auto& value = require<Plain>(type, message);
    if (dynamic_cast<const platform::IScalarValue*>(&value) ||
        dynamic_cast<const platform::IIntegerValue*>(&value) ||
        dynamic_cast<const platform::IStringValue*>(&value) ||
        dynamic_cast<const platform::IUriValue*>(&value) ||
        dynamic_cast<const platform::IChoiceListValue*>(&value))
        throw PropertyError(message, _name);
    return value;
}

bool Property::boolean() const
{
    return requirePlain<platform::IValue>(platform::ePropertyType_Boolean, "ePropertyType_Boolean")
        .GetBoolean(0);
}

int Property::integer() const
{
    return require<platform::IIntegerValue>(platform::ePropertyType_Integer,
                                            "ePropertyType_Integer")
        .GetInteger(0);
}

float Property::component(std::size_t index, std::size_t ofAtLeast) const
{
    const auto& value =
        require<platform::IScalarValue>(platform::ePropertyType_Scalar, scalarType, ofAtLeast);
    return narrow(value.GetScalar(index), scalarType, _name);
}

float Property::number() const
{
    return component(0, 1);
}

Vector2 Property::pair() const
{
    return {component(0, 3), component(1, 3)};
}

Vector3 Property::vector() const
{
    return {component(0, 3), component(1, 3), component(2, 3)};
}

Color4 Property::colorWithAlpha() const
{
    constexpr const char* message = "ePropertyType_Color";
    std::array<double, 4> c{};
    requirePlain<platform::IValue>(platform::ePropertyType_Color, message)
        .GetColor(0, c[0], c[1], c[2], c[3]);
    Color4 color{};
    for (std::size_t i = 0; i < color.size(); ++i)
        color[i] = narrow(c[i], message, _name);
    return color;
}

Color3 Property::color() const
{
    const Color4 color = colorWithAlpha();
    return {color[0], color[1], color[2]};
}

std::string Property::textOf(std::uint32_t type, const char* message) const
{
    UTF8String text;
    require<platform::IStringValue>(type, message, 0).GetString(text, TextForm::Stored);
    return text.str();
}

std::string Property::string() const
{
    return textOf(platform::ePropertyType_String, "ePropertyType_String");
}

std::string Property::text() const
{
    return textOf(platform::ePropertyType_Text, invalidProperty);
}

std::vector<std::string> Property::choices() const
{
    const auto& value =
        require<platform::IChoiceListValue>(platform::ePropertyType_ChoiceList, invalidProperty, 0);
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
            throw PropertyError(invalidProperty, _name, DiagnosticCode::PropertyInvalid,
                                "a selected choice does not exist");
        UTF8String name;
        choice->GetName(name);
        names.push_back(name.str());
    }
    return names;
}

std::string Property::choice(const char* fallback) const
{
    if (!hasValue())
        return fallback;
    const std::vector<std::string> selected = choices();
    return selected.empty() ? fallback : selected.front();
}

std::optional<float> Property::numberIfAny() const
{
    const auto* value = type() == platform::ePropertyType_Scalar
                            ? dynamic_cast<const platform::IScalarValue*>(_property->GetValue())
                            : nullptr;
    if (!value || value->GetComponentCount() == 0)
        return std::nullopt;
    const auto number = static_cast<float>(value->GetScalar(0));
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::uint32_t Property::unitCode() const
{
    if (!hasValue())
        throw PropertyError(invalidProperty, _name, DiagnosticCode::PropertyInvalid);
    return _property->GetValue()->GetUnit();
}

bool Property::hasUnit() const
{
    const std::uint32_t unit = unitCode();
    return unit != platform::eUnit_None && unit != platform::eUnit_NoneA &&
           unit != platform::eUnit_NoneB;
}

base::Unit Property::unit(const std::string& unitType, const Log& log) const
{
    if (!hasValue() || !hasUnit())
        return {};
    base::Unit unit = base::unitForCode(unitCode());
    if (!unit.type.empty() && unit.type != unitType)
        log.warning(DiagnosticCode::UnitMisfit, _name,
                    "a unit of the kind \"" + unit.type +
                        "\" does not fit here; renderers will refuse it");
    else if (unit.name.empty())
        log.warning(DiagnosticCode::UnitUnknown, _name,
                    "the unit of the value is not known; the document does not state it");
    return unit;
}

float Property::bareNumber(const Log& log, std::uint32_t expected) const
{
    const float value = number();
    if (hasUnit() && unitCode() != expected)
        log.warning(DiagnosticCode::UnitIgnored, _name,
                    "the document states no unit here; the number is taken as it stands");
    return value;
}

std::string Property::uri() const
{
    const platform::IUriValue* value = uriOf(_property);
    if (!value)
        throw PropertyError("ePropertyType_URI", _name);
    const auto uri = readUri<UTF8String>(*value, TextForm::Stored);
    if (const auto path = resolve(uri))
        return path->str();
    if (!uri.empty() && uri.str().back() == '.')
        if (const auto path = resolve(UTF8String(uri.str().substr(0, uri.size() - 1))))
            return path->str();
    return uri.str();
}

std::string Property::path() const
{
    return base::utf8FromPath(base::pathFromUtf8(uri()));
}

std::wstring Property::storedWidePath() const
{
    const platform::IUriValue* value = uriOf(_property);
    return value ? readUri<WideString>(*value, TextForm::Stored).str() : std::wstring();
}

std::wstring Property::resolvedWidePath() const
{
    const platform::IUriValue* value = uriOf(_property);
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

std::size_t Property::connectionCount() const
{
    return _property && _property->HasConnections() ? _property->GetConnectionCount() : 0;
}

AssetHandle Property::connected(std::size_t index) const
{
    return AssetHandle(index < connectionCount() ? _property->GetConnectedAsset(index) : nullptr);
}

AssetHandle Property::connectedBitmap() const
{
    AssetHandle asset = connected();
    const bool named = asset && !Asset(*asset)[bitmapImageProperty].resolvedWidePath().empty();
    return named ? std::move(asset) : nullptr;
}

std::string Property::connectedSchema() const
{
    const AssetHandle asset = connected();
    return asset ? Asset(*asset).schema() : "No connected texture!";
}

Color3 colorFromBytes(float red, float green, float blue)
{
    return {red / 255.0f, green / 255.0f, blue / 255.0f};
}

} // namespace vyr::MaterialTranslation::assets
