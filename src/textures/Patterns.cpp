#include "textures/Patterns.h"

#include <algorithm>
#include <sstream>

#include <MaterialTranslation/Bakes.h>
#include <fmt/format.h>

#include "bakes/MaterialBakes.h"
#include "bakes/patterns/Kinds.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"

namespace vyr::MaterialTranslation
{

namespace textures
{

namespace
{

template <class... Kind>
std::vector<SchemaRow> schemasOf(const std::tuple<Kind...>* /*kinds*/)
{
    return {{Kind::schema, Kind::meaning, Kind::rows, std::size(Kind::rows)}...};
}

} // namespace

std::optional<std::size_t> findPattern(std::string_view schema)
{
    const auto& rows = proceduralTextures();
    const auto row = std::ranges::find(rows, schema, &SchemaRow::name);
    if (row == rows.end())
        return std::nullopt;
    return static_cast<std::size_t>(row - rows.begin());
}

std::optional<std::array<float, 2>> patternPeriod(std::size_t kind,
                                                  const bakes::PatternValues& values)
{
    std::array<float, 2> period{};
    bakes::withPatternKind(kind,
                           [&]<class Kind>() { period = Kind(bakes::Values(values)).period(); });
    return period == bakes::noPeriod ? std::nullopt : std::optional(period);
}

std::array<std::size_t, 2> patternColors(std::size_t kind)
{
    std::array<std::size_t, 2> rows{};
    bakes::withPatternKind(kind, [&]<class Kind>()
                           { rows = bakes::colorRows<Kind>(std::size(Kind::rows)); });
    return rows;
}

bool isFlat(std::size_t kind, const bakes::PatternValues& values)
{
    bool flat = false;
    const auto look = [&]<class Kind>()
    {
        if constexpr (requires(const Kind& k) { k.stops; })
        {
            const auto stops = Kind(bakes::Values(values)).stops;
            flat = std::ranges::all_of(
                stops, [&](const bakes::ColorStop& stop)
                { return std::ranges::equal(stop.color, stops.front().color); });
        }
    };
    bakes::withPatternKind(kind, look);
    return flat;
}

std::string takeInside(const PropertyRow& row, std::array<float, 3>& value)
{
    if (row.kind != PropertyKind::Integer && row.kind != PropertyKind::Scalar)
        return {};
    const float given = value[0];
    value[0] = std::clamp(given, row.least, row.most);
    if (value[0] == given)
        return {};
    return fmt::format("{:g} is outside of {:g} to {:g}; taken as {:g}", given, row.least, row.most,
                       value[0]);
}

std::string unevenNumbers(const SchemaRow& schema, const bakes::PatternValues& values)
{
    std::optional<std::size_t> first;
    for (std::size_t i = 0; i < schema.propertyCount; ++i)
    {
        const std::size_t count = values.rows[i].size();
        if (!isNumbered(schema.properties[i]))
            continue;
        if (!first)
            first = i;
        else if (const std::size_t wanted = values.rows[*first].size(); count && count != wanted)
            return fmt::format("there are {} of {} for {} of {}; {}", count,
                               schema.properties[i].name, wanted, schema.properties[*first].name,
                               count < wanted ? "none of them counts" : "the rest is left out");
    }
    return {};
}

std::optional<std::size_t> choicePlace(const PropertyRow& row, std::string_view choice)
{
    std::istringstream names(row.choices);
    std::string name;
    for (std::size_t place = 0; names >> name; ++place)
        if (name == choice)
            return place;
    return std::nullopt;
}

std::string numbered(const PropertyRow& row, std::size_t number)
{
    std::string name = row.name;
    name.replace(name.find('#'), 1, std::to_string(number));
    return name;
}

bool isNumbered(const PropertyRow& row)
{
    return std::string_view(row.name).find('#') != std::string_view::npos;
}

namespace
{

/// The properties of a bake without a material, by name.
class GivenProperties
{
  public:
    explicit GivenProperties(const TextureBakeOptions& options)
        : _options(options), _used(options.properties.size())
    {
    }

    /// @throws std::invalid_argument for what is not known.
    bakes::PatternValues read(const SchemaRow& schema)
    {
        bakes::PatternValues values;
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
        {
            const PropertyRow& row = schema.properties[i];
            auto& list = values.rows.emplace_back();
            if (!isNumbered(row))
                list.push_back(find(row, row.name).value_or(row.fallback));
            else
                while (const auto value = find(row, numbered(row, list.size() + 1)))
                    list.push_back(*value);
        }
        if (const std::string done = unevenNumbers(schema, values); !done.empty())
            warnings.push_back(done);
        for (std::size_t i = 0; i < _used.size(); ++i)
            if (!_used[i])
                throw std::invalid_argument(_options.properties[i].name + ": not a property of " +
                                            schema.name);
        return values;
    }

    std::vector<std::string> warnings;

  private:
    std::optional<std::array<float, 3>> find(const PropertyRow& row, const std::string& name)
    {
        const auto given = std::ranges::find(_options.properties, name, &TextureProperty::name);
        if (given == _options.properties.end())
            return std::nullopt;
        _used[static_cast<std::size_t>(given - _options.properties.begin())] = true;
        std::array<float, 3> value = valueOf(row, *given);
        if (const std::string done = takeInside(row, value); !done.empty())
            warnings.push_back(name + ": " + done);
        return value;
    }

    static std::array<float, 3> valueOf(const PropertyRow& row, const TextureProperty& given)
    {
        if (row.kind == PropertyKind::Choice)
        {
            const auto place = choicePlace(row, given.choice);
            if (!place)
                throw std::invalid_argument(given.name + ": \"" + given.choice + "\" is none of " +
                                            row.choices);
            return {static_cast<float>(*place)};
        }
        const std::size_t count = row.kind == PropertyKind::Color ? 3 : 1;
        std::array<float, 3> value{};
        if (given.numbers.size() != count)
            throw std::invalid_argument(given.name + ": needs " + std::to_string(count) +
                                        (count == 1 ? " number" : " numbers"));
        for (const float number : given.numbers)
            if (!std::isfinite(number))
                throw std::invalid_argument(given.name + ": not a finite number");
        if (row.kind == PropertyKind::Integer && given.numbers[0] != std::trunc(given.numbers[0]))
            throw std::invalid_argument(given.name + ": not a whole number");
        std::ranges::copy(given.numbers, value.begin());
        return value;
    }

    const TextureBakeOptions& _options;
    std::vector<bool> _used;
};

bakes::PatternUse useOf(TextureOutput output)
{
    switch (output)
    {
    case TextureOutput::Color:
        return bakes::PatternUse::Color;
    case TextureOutput::Number:
        return bakes::PatternUse::Number;
    case TextureOutput::Normal:
        break;
    }
    return bakes::PatternUse::Relief;
}

} // namespace

} // namespace textures

const std::vector<SchemaRow>& proceduralTextures()
{
    static const std::vector<SchemaRow> rows =
        textures::schemasOf(static_cast<const bakes::PatternKinds*>(nullptr));
    return rows;
}

BakeResult bakeTextureFile(const std::filesystem::path& destination,
                           const TextureBakeOptions& options)
{
    using namespace textures;
    const std::string name = base::utf8FromPath(destination) + ": ";
    const auto kind = findPattern(options.schema);
    if (!kind)
        return {
            false, name + "no procedural texture has the schema \"" + options.schema + "\"", {}};
    GivenProperties properties(options);
    auto pattern = std::make_shared<bakes::Pattern>();
    pattern->kind = *kind;
    pattern->width = options.width;
    pattern->height = options.height;
    try
    {
        pattern->values = properties.read(proceduralTextures()[*kind]);
    }
    catch (const std::invalid_argument& error)
    {
        return {false, name + error.what(), {}};
    }
    bakes::BakeOutcome outcome =
        bakes::bakeForMaterial(bakes::PatternBake{std::move(pattern), useOf(options.output), {}},
                               {options.limits, options.threads}, destination);
    std::vector<std::string> warnings = std::move(properties.warnings);
    warnings.insert(warnings.end(), outcome.warnings.begin(), outcome.warnings.end());
    if (outcome.file.empty())
        return {false, outcome.message, std::move(warnings)};
    if (const auto error = base::writeFile(destination, base::textOf(outcome.file)).error)
        return {false, name + "cannot be written: " + error.message(), std::move(warnings)};
    return {true, {}, std::move(warnings)};
}

} // namespace vyr::MaterialTranslation
