#include "textures/Texture.h"

#include <algorithm>
#include <iterator>

#include <MaterialTranslation/Schemas.h>

#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "graph/Nodes.h"
#include "graph/Values.h"
#include "textures/Kinds.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

struct KindRow
{
    TextureRole role;
    const char* schema;
    Reading (*read)(const TextureRequest& request);
};

constexpr KindRow ownKinds[] = {
    {TextureRole::Value, assets::bitmapSchema, readBitmap},
    {TextureRole::Relief, assets::bitmapSchema, readBump},
    {TextureRole::Relief, assets::noiseSchema, readNoise},
    {TextureRole::Relief, assets::gradientSchema, readPattern},
    {TextureRole::AnyRelief, assets::bitmapSchema, readBump},
    {TextureRole::Lyrex, assets::bitmapSchema, readLyrexBitmap},
    {TextureRole::Lyrex, assets::bumpMapSchema, readLyrexMap},
};

constexpr bool hasColorSpace(const KindRow& kind)
{
    return kind.role != TextureRole::Lyrex ||
           std::ranges::find(assets::lyrexTextureSchemas, std::string_view(kind.schema)) !=
               std::end(assets::lyrexTextureSchemas);
}

static_assert(std::ranges::all_of(ownKinds, hasColorSpace), "missing in lyrexTextureSchemas");

/// Every procedural texture gives values.
const std::vector<KindRow>& kinds()
{
    static const std::vector<KindRow> rows = []
    {
        std::vector<KindRow> all(std::begin(ownKinds), std::end(ownKinds));
        for (const SchemaRow& schema : proceduralTextures())
            for (const TextureRole role : {TextureRole::Value, TextureRole::AnyRelief})
                all.push_back({role, schema.name, readPattern});
        return all;
    }();
    return rows;
}

const KindRow* findKind(TextureRole role, const std::string& schema)
{
    const auto row = std::ranges::find_if(kinds(), [&](const KindRow& r)
                                          { return r.role == role && r.schema == schema; });
    return row == kinds().end() ? nullptr : &*row;
}

/// What stands in for a texture that cannot be used.
const char* substituteFor(TextureRole role)
{
    return role == TextureRole::Relief || role == TextureRole::AnyRelief
               ? "the surface stays without relief"
               : "the plain value is used";
}

/// The "Lyrex" family refuses a texture that it does not know; elsewhere it is left out.
void rejectTexture(const std::string& schema, TextureRole role, const char* property,
                   const Log& log)
{
    if (role == TextureRole::Lyrex)
        throw assets::PropertyError(("Unhandled Schema " + schema).c_str(), property,
                                    DiagnosticCode::UnhandledTextureSchema);
    log.warning(DiagnosticCode::TextureNotTranslated, property,
                "a texture of schema \"" + schema + "\" cannot be translated here; " +
                    substituteFor(role));
}

/// An image that was made for a property, or its folder, that cannot be written.
assets::PropertyError notWritten(const std::filesystem::filesystem_error& error,
                                 const std::string& property)
{
    return {"image not written", property, DiagnosticCode::ImageNotWritten,
            base::utf8FromPath(error.path1()) + ": cannot be written: " + error.code().message()};
}

void addMeasuredInput(const mx::NodePtr& node, const char* name,
                      const Measured<assets::Vector2>& measured)
{
    const mx::Vector2 value(measured.value[0], measured.value[1]);
    graph::setInputUnit(graph::addTypedInput(node, name, value), measured.unit);
}

void addMeasuredInput(const mx::NodePtr& node, const char* name, const Measured<float>& measured)
{
    graph::setInputUnit(graph::addTypedInput(node, name, measured.value), measured.unit);
}

void addPlacementInputs(const mx::NodePtr& node, const Placement& placement)
{
    addMeasuredInput(node, "realworld_offset", placement.realWorldOffset);
    addMeasuredInput(node, "realworld_scale", placement.realWorldScale);
    addMeasuredInput(node, "uv_offset", {placement.uvOffset, {}});
    addMeasuredInput(node, "uv_scale", {placement.uvScale, {}});
    graph::setAddressModes(node, placement.repeatU, placement.repeatV);
    addMeasuredInput(node, "rotation_angle", placement.rotation);
}

} // namespace

void TextureSet::read(const char* name, TextureRole role, const char* type, float bumpAmount)
{
    const assets::Property property = _material[name];
    if (!property.isConnected())
        return;
    Entry& entry = _entries.emplace_back();
    entry.property = name;
    entry.role = role;
    try
    {
        readInto(entry, property, role, type, bumpAmount);
    }
    catch (const assets::PropertyError&)
    {
        entry.error = std::current_exception();
    }
}

void TextureSet::make(const char* name, TextureRole role, const char* type, float bumpAmount,
                      const MadePattern& pattern)
{
    Entry& entry = _entries.emplace_back();
    entry.property = name;
    entry.role = role;
    const Log log = _translation.log.into(entry.messages);
    try
    {
        entry.reading = readMadePattern(
            {_translation, _material, _material, name, role, type, bumpAmount, log, log}, pattern);
    }
    catch (const assets::PropertyError&)
    {
        entry.error = std::current_exception();
    }
}

void TextureSet::readInto(Entry& entry, const assets::Property& property, TextureRole role,
                          const char* type, float bumpAmount)
{
    const Log log = _translation.log.into(entry.messages);
    if (const std::size_t count = property.connectionCount(); count > 1)
        log.warning(DiagnosticCode::ConnectionsIgnored, property.name(),
                    "only the first of " + std::to_string(count) + " connected assets is used");
    const assets::AssetHandle asset = property.connected();
    if (!asset)
        return log.warning(DiagnosticCode::ConnectionEmpty, property.name(),
                           std::string("the connection leads to no asset; ") + substituteFor(role));
    const assets::Asset texture(*asset);
    const std::string schema = texture.schema();
    const KindRow* kind = findKind(role, schema);
    if (!kind)
        return rejectTexture(schema, role, property.name(), log);
    const Log textureLog = log.below(property.name());
    try
    {
        entry.reading = kind->read({_translation, _material, texture, property.name(), role, type,
                                    bumpAmount, log, textureLog});
    }
    catch (const assets::PropertyError& error)
    {
        throw error.below(property.name());
    }
    if (entry.reading)
        texture.reportUnread(textureLog);
}

void TextureSet::bake()
{
    const auto needsBake = [](const Entry& e) { return e.reading && e.reading->bake; };
    if (std::ranges::none_of(_entries, needsBake))
        return;
    // Also those that nothing uses: no bake may take the name of a user's file.
    const auto images = assets::imagesOf(_translation.asset);
    for (Entry& entry : _entries)
        if (needsBake(entry) && images)
            bakeInto(entry, *images);
        else if (needsBake(entry))
            dropBake(entry, "more assets are connected than can be looked through for images");
}

void TextureSet::dropBake(Entry& entry, const std::string& reason)
{
    _translation.log.into(entry.messages)
        .warning(DiagnosticCode::BakeFailed, entry.property,
                 std::string(substituteFor(entry.role)) + ": " + reason);
    entry.reading.reset();
}

void TextureSet::bakeInto(Entry& entry, const std::vector<std::string>& images)
{
    const Log log = _translation.log.into(entry.messages);
    const std::filesystem::path place =
        _translation.files.freePlace(entry.reading->bake->fileName, images);
    const bakes::BakeOutcome outcome =
        bakes::bakeForMaterial(entry.reading->bake->record, _translation.bakes, place);
    for (const std::string& warning : outcome.warnings)
        log.warning(DiagnosticCode::ValueAdjusted, entry.property, warning);
    for (const bakes::DroppedColorImage& image : outcome.droppedImages)
        log.warning(DiagnosticCode::TextureNotTranslated, image.property,
                    image.reason + "; the plain colour is used");
    if (outcome.file.empty() && !outcome.isKept)
        return dropBake(entry, outcome.message);
    try
    {
        if (outcome.isKept)
            _translation.files.addKept(place);
        else
            _translation.files.add(place, base::textOf(outcome.file));
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        throw notWritten(error, entry.property);
    }
    entry.reading->texture.file = base::genericUtf8FromPath(place);
}

const TextureSet::Entry* TextureSet::find(const assets::Property& property) const
{
    const auto entry = std::ranges::find(_entries, property.name(), &Entry::property);
    return entry == _entries.end() ? nullptr : &*entry;
}

bool TextureSet::isUsable(const assets::Property& property) const
{
    const Entry* entry = find(property);
    return entry && entry->reading;
}

std::optional<Texture> TextureSet::take(const assets::Property& property)
{
    const auto entry = std::ranges::find(_entries, property.name(), &Entry::property);
    if (entry == _entries.end())
        return std::nullopt;
    property.settleConnection();
    _material.trace(property);
    return takeFrom(*entry);
}

std::optional<Texture> TextureSet::take(const std::string& name)
{
    const auto entry = std::ranges::find(_entries, name, &Entry::property);
    return entry == _entries.end() ? std::nullopt : takeFrom(*entry);
}

std::optional<Texture> TextureSet::takeFrom(Entry& entry)
{
    entry.taken = true;
    _translation.log.append(std::move(entry.messages));
    if (entry.error)
        std::rethrow_exception(entry.error);
    return entry.reading ? std::optional(entry.reading->texture) : std::nullopt;
}

void TextureSet::dropUnused()
{
    for (const Entry& entry : _entries)
        if (entry.reading && entry.reading->bake && !entry.taken)
            _translation.files.drop(base::pathFromUtf8(entry.reading->texture.file));
}

void publishBakes(const Translation& translation)
{
    try
    {
        translation.files.publish();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        throw notWritten(error, "");
    }
}

std::vector<std::string> textureSchemas()
{
    std::vector<std::string> schemas;
    std::ranges::transform(kinds(), std::back_inserter(schemas), &KindRow::schema);
    return schemas;
}

mx::OutputPtr addTexture(const Texture& texture, const mx::NodeGraphPtr& graph,
                         const std::string& name, const std::string& type)
{
    const mx::NodePtr node = graph->addNode(texture.category, name, type);
    mx::OutputPtr output = graph::addNodeOutput(graph, node);
    graph::addFileInput(node, texture.file, texture.colorSpace);
    if (texture.placement)
        addPlacementInputs(node, *texture.placement);
    if (texture.realWorldScale)
        addMeasuredInput(node, "realworld_scale", *texture.realWorldScale);
    if (texture.tone)
    {
        graph::addTypedInput(node, "rgbamount", texture.tone->amount);
        graph::addTypedInput(node, "invert", texture.tone->invert);
    }
    if (texture.strength)
        addMeasuredInput(node, texture.strength->input, texture.strength->measured);
    return output;
}

} // namespace vyr::MaterialTranslation::textures
