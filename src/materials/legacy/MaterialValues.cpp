#include "materials/legacy/MaterialValues.h"

#include <algorithm>

#include "textures/PropertyValues.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

using Value = std::array<float, 3>;

void assign(Params& params, const Field& field, const Value& value)
{
    struct Setter
    {
        Params& params;
        const Value& value;

        void operator()(std::monostate /*none*/) const {}
        void operator()(float Params::* number) const { params.*number = value[0]; }
        void operator()(bool Params::* flag) const { params.*flag = value[0] != 0.0f; }
        void operator()(Params::Color Params::* color) const
        {
            params.*color = {value[0], value[1], value[2]};
        }
    };
    std::visit(Setter{params, value}, field);
}

/// Whether a choice leaves the colour to the property.
bool takesColor(const Preset& preset)
{
    return std::holds_alternative<std::monostate>(preset.sets[0].field);
}

} // namespace

MaterialValues::MaterialValues(const assets::Asset& asset, const NamedSchema& schema,
                               std::int32_t colorMode, const Log& log)
    : _schema(schema)
{
    for (const NamedRow& row : schema.rows())
    {
        auto& value = _values.emplace_back(
            textures::readPropertyValue(asset, row.property, row.property.name, colorMode, log));
        if (!value || row.property.kind != PropertyKind::Color)
            continue;
        const Value given = *value;
        for (float& channel : *value)
            channel = std::clamp(channel, 0.0f, 1.0f);
        if (*value != given)
            log.warning(DiagnosticCode::ValueAdjusted, row.property.name,
                        "no surface gives more light than it gets; the colour is cut to 0 to 1");
    }
    for (std::size_t i = 0; i < _values.size(); ++i)
        if (schema.rows()[i].row->duty == Duty::NamesColor)
            chooseColor(i, log);
}

std::size_t MaterialValues::placeOf(std::string_view row) const
{
    const auto& rows = _schema.rows();
    const auto found = std::ranges::find_if(rows, [&](const NamedRow& named)
                                            { return named.row->property.name == row; });
    return static_cast<std::size_t>(found - rows.begin());
}

std::optional<float> MaterialValues::givenBy(Duty duty) const
{
    for (std::size_t i = 0; i < _values.size(); ++i)
        if (_schema.rows()[i].row->duty == duty && _values[i])
            return (*_values[i])[0];
    return std::nullopt;
}

const Preset* MaterialValues::presetAt(std::size_t place) const
{
    const auto presets = _schema.rows()[place].row->presets;
    return presets.empty() ? nullptr : &presets[static_cast<std::size_t>(at(place)[0])];
}

/// A colour without a choice is a choice too: that of the colour.
void MaterialValues::chooseColor(std::size_t choice, const Log& log)
{
    if (!isGiven("color"))
        return;
    if (!_values[choice])
        _values[choice] = {static_cast<float>(_schema.rows()[choice].row->presets.size() - 1)};
    else if (!takesColor(*presetAt(choice)))
        log.warning(DiagnosticCode::ValueAdjusted, _schema.nameOf("color"),
                    std::string("not used: \"") + _schema.rows()[choice].property.name +
                        "\" names the colour");
}

Params MaterialValues::params() const
{
    Params params;
    const auto& rows = _schema.rows();
    for (const Assignment& standard : _schema.schema().defaults)
        assign(params, standard.field, standard.value);
    bool byObject = false;
    bool isOtherwise = false;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const Duty duty = rows[i].row->duty;
        if (duty != Duty::Otherwise)
            assign(params, rows[i].row->field, at(i));
        byObject = byObject || (duty == Duty::ColorByObject && at(i)[0] != 0.0f);
        isOtherwise = isOtherwise || (duty == Duty::NamesColor && takesColor(*presetAt(i)));
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (const Preset* const preset = presetAt(i))
            for (const Assignment& set : preset->sets)
                assign(params, set.field, set.value);
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].row->duty == Duty::Otherwise ? isOtherwise : _values[i].has_value())
            assign(params, rows[i].row->field, at(i));
    if (_schema.schema().finish)
        _schema.schema().finish(params, *this);
    if (byObject)
        params.base_color = Params::Color(0.5f);
    return params;
}

Params MaterialValues::paramsWith(std::size_t place, float value) const
{
    MaterialValues changed = *this;
    changed._values[place] = {value};
    return changed.params();
}

} // namespace vyr::MaterialTranslation::materials::legacy
