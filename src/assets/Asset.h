#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/Fwd.h>

#include "assets/Log.h"
#include "base/Units.h"

/// @file
/// The one way in which the converter reads assets.
namespace vyr::MaterialTranslation::assets
{

inline constexpr const char* bitmapSchema = "UnifiedBitmapSchema";
inline constexpr const char* bumpMapSchema = "BumpMapSchema";
inline constexpr const char* noiseSchema = "NoiseSchema";
inline constexpr const char* gradientSchema = "GradientSchema";

inline constexpr const char* genericSchema = "GenericSchema";
inline constexpr const char* hardwoodSchema = "HardwoodSchema";
inline constexpr const char* metallicPaintSchema = "MetallicPaintSchema";
inline constexpr const char* solidGlassSchema = "SolidGlassSchema";
inline constexpr const char* waterSchema = "WaterSchema";

/// The property of a bitmap texture that names its image.
inline constexpr const char* bitmapImageProperty = "unifiedbitmap_Bitmap";
/// The two properties that every asset has besides those of its schema: the schema's name as a
/// text, and whether the asset is hidden from users.
inline constexpr const char* versionProperty = "VersionGUID";
inline constexpr const char* hiddenProperty = "Hidden";

/// What follows a colour property's identifier in the name of the companion that declares its colour
/// space.
inline constexpr const char* colorSpaceSuffix = "_colorspace";

using kelvor::platform::assets::IAssetInstance;
using kelvor::platform::assets::IProperty;
using kelvor::platform::assets::IPropertyConstTable;

/// One reference to an asset, given back when the handle goes.
struct AssetRelease
{
    void operator()(IAssetInstance* asset) const;
};
using AssetHandle = std::unique_ptr<IAssetInstance, AssetRelease>;

AssetHandle cloneOf(const IAssetInstance& asset);

using Color3 = std::array<float, 3>; ///< red, green, blue
using Color4 = std::array<float, 4>; ///< red, green, blue, alpha
using Vector2 = std::array<float, 2>;
using Vector3 = std::array<float, 3>;

/// A property that is missing, of another type than expected, or of a value that cannot be used.
///
/// what() is the fixed text that hosts know: "Invalid property specified" or the name of the
/// expected type, such as "ePropertyType_Scalar". The property's name and the reason come beside
/// it.
class PropertyError : public std::invalid_argument
{
  public:
    PropertyError(const char* message, std::string property,
                  DiagnosticCode code = DiagnosticCode::PropertyType, std::string reason = {})
        : std::invalid_argument(message), _property(std::move(property)), _code(code),
          _reason(reason.empty() ? message : std::move(reason))
    {
    }

    const std::string& property() const { return _property; }
    /// The same error of a texture that is connected to `property`.
    PropertyError below(const std::string& property) const
    {
        return {what(), property + "/" + _property, _code, _reason};
    }
    DiagnosticCode code() const { return _code; }
    /// What to tell a person: what(), or something more helpful.
    const std::string& reason() const { return _reason; }

  private:
    std::string _property;
    DiagnosticCode _code;
    std::string _reason;
};

/// What `read` gives; nothing, with the reason in the log, when a property cannot be read.
template <class Read>
auto readOrReport(const Log& log, Read read) -> std::optional<decltype(read())>
{
    try
    {
        return read();
    }
    catch (const PropertyError& error)
    {
        log.error(error.code(), error.property(), error.reason());
    }
    catch (const std::invalid_argument& error)
    {
        log.error(DiagnosticCode::PropertyInvalid, "", error.what());
    }
    return std::nullopt;
}

class Asset;

/// A property of an asset, looked up by its name; the asset may lack it.
///
/// Unless said otherwise a reader throws PropertyError (an `std::invalid_argument`) for a property that
/// is missing, without a value or of another type. The property borrows its asset and its name.
class Property
{
  public:
    Property(const Asset& asset, const IProperty* property, const char* name)
        : _asset(&asset), _property(property), _name(name)
    {
    }

    const char* name() const { return _name; }
    /// Whether the asset has the property.
    explicit operator bool() const { return _property != nullptr; }
    /// Whether it exists and has a value.
    bool hasValue() const;
    /// Whether assets are connected to it.
    bool isConnected() const { return connectionCount() != 0; }
    /// Whether it takes part in the material: one that only carries connections when it has some, any
    /// other always, whatever it holds. False for a missing property.
    bool isActive() const;
    /// The type code; 0 for a missing property.
    std::uint32_t type() const;
    /// Throws "Invalid property specified" when it is missing.
    std::string identifier() const;

    bool boolean() const;
    int integer() const;
    /// Component 0, narrowed to float; a number that is not finite there is an error.
    float number() const;
    /// Components 0 and 1 of a value of *more than* two components; hosts store pairs with a third.
    Vector2 pair() const;
    /// Components 0 to 2 of a value of three or more components.
    Vector3 vector() const;
    Color3 color() const;
    Color4 colorWithAlpha() const;
    std::string string() const;
    std::string text() const;
    /// The names of the selected choices, in the order of selection.
    std::vector<std::string> choices() const;

    /// The value, or `fallback` when there is none. A value of another type is an error.
    bool boolean(bool fallback) const { return hasValue() ? boolean() : fallback; }
    float number(float fallback) const { return hasValue() ? number() : fallback; }
    Color3 color(const Color3& fallback) const { return hasValue() ? color() : fallback; }
    /// The first selected choice, or `fallback` when there is none.
    std::string choice(const char* fallback) const;
    /// The number if that is what the property holds; says nothing of any other.
    std::optional<float> numberIfAny() const;

    /// The unit code of the value. Throws "Invalid property specified" when there is none.
    std::uint32_t unitCode() const;
    /// Whether the value has a physical unit. Throws like unitCode.
    bool hasUnit() const;
    /// The unit as a document states it; two empty texts for a value without a unit, or none at all. A
    /// unit that is not known is reported, and one of another kind than the input takes: no shader can
    /// be generated from either.
    /// @param unitType of the numbers that the input takes; empty where they have no unit.
    base::Unit unit(const std::string& unitType, const Log& log) const;
    /// The number where the document has no place for a unit; any other unit than `expected` is
    /// reported.
    float bareNumber(const Log& log, std::uint32_t expected = 0) const;

    /// The reference resolved to a path by the asset library; the reference itself when nothing
    /// resolves it. A reference that ends in a dot is also tried without it.
    std::string uri() const;
    /// uri() in the file system's normal form for texts.
    std::string path() const;
    /// The stored reference, unresolved; empty when missing or of another type.
    std::wstring storedWidePath() const;
    /// The preferred or else the stored reference resolved; unresolved when nothing resolves it; empty
    /// when missing or of another type.
    std::wstring resolvedWidePath() const;

    std::size_t connectionCount() const;
    /// A connected asset, by default the first; null when there is none.
    AssetHandle connected(std::size_t index = 0) const;
    /// The same if it names an image by "unifiedbitmap_Bitmap".
    AssetHandle connectedBitmap() const;
    /// Schema of the first connected asset, or "No connected texture!".
    std::string connectedSchema() const;
    /// Notes that the connection needs no further mention: it was taken up, or the material itself
    /// switches it off.
    void settleConnection() const;

  private:
    friend class Asset;
    template <class Value>
    const Value& require(std::uint32_t type, const char* message, std::size_t components = 1) const;
    template <class Plain> const Plain& requirePlain(std::uint32_t type, const char* message) const;
    float component(std::size_t index, std::size_t ofAtLeast) const;
    std::string textOf(std::uint32_t type, const char* message) const;

    const Asset* _asset;
    const IProperty* _property;
    const char* _name;
};

/// An asset, and the table that its properties are read from: its own or its generic one. It notes what
/// is read. Borrows both; they must outlive it.
class Asset
{
  public:
    /// @param trace gets a line for each property when its value or texture is first read; null: none.
    explicit Asset(const IAssetInstance& instance, std::ostream* trace = nullptr);
    Asset(const IAssetInstance& instance, const IPropertyConstTable& table,
          std::ostream* trace = nullptr)
        : _instance(instance), _table(table), _trace(trace)
    {
    }
    Asset(const Asset&) = delete;
    Asset& operator=(const Asset&) = delete;

    Property operator[](const char* name) const;

    /// Whether it is an asset of this instance.
    bool isOf(const IAssetInstance& instance) const { return &_instance == &instance; }

    /// The asset's own name; empty when it has no identity.
    std::string name() const;
    /// The name shown to people, in English.
    std::string displayName() const;
    /// The host is asked once: what was chosen by its answer must not meet another one.
    const std::string& schema() const;
    /// Whether property names may be used to tell what properties mean.
    bool hasWorkingPropertyNames() const;
    std::string description() const;
    std::string identifier() const;

    /// Warns about every property of the table that no rule has looked up, which is how typing errors
    /// show, and about every connection that was not settled. Says nothing of the two properties that
    /// every asset has, and of the declared colour space of a property that was read.
    /// @param isConditional says of a name whether rules read it only under conditions; without an
    ///        effect it is nothing lost.
    void reportUnread(const Log& log,
                      bool (*isConditional)(const std::string& name) = nullptr) const;

    /// Writes the line of a property into the trace, unless it is there already.
    void trace(const Property& property) const;
    /// Writes the line of the texture that drives a property, if one does.
    void traceTexture(const Property& property) const;

  private:
    friend class Property;
    bool isKnownCompanion(const std::string& name) const;

    const IAssetInstance& _instance;
    const IPropertyConstTable& _table;
    std::ostream* _trace;
    mutable std::optional<std::string> _schema;
    mutable std::vector<const IProperty*> _lookedUp;
    mutable std::vector<const IProperty*> _settled;
    mutable std::vector<const IProperty*> _traced;
};

/// The images that an asset and everything connected to it name, resolved; what cannot be read is left
/// out.
/// @return nothing when thousands of assets are connected: a chain may have no end.
std::optional<std::vector<std::string>> imagesOf(const IAssetInstance& asset);

/// Three channels of 0..255 as a colour of 0..1; not clamped.
Color3 colorFromBytes(float red, float green, float blue);

/// Writes four lines that describe a material: class, description, name, and whether it is hidden. A
/// missing "Hidden" counts as not hidden: looking at a material must not make it fail. Every line here is
/// flushed.
void writeMaterialDescription(const Asset& asset, std::ostream& stream);

/// Writes one line: the schema of the texture that drives a property, and the type of a noise.
void writeTextureSchema(const Property& property, std::ostream& stream);

/// Writes one line: the property's name and its plain value, or the texture that drives it.
void writeProperty(const Property& property, std::ostream& stream);

} // namespace vyr::MaterialTranslation::assets
