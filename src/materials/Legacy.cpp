#include <algorithm>
#include <deque>
#include <iostream>
#include <string_view>

#include "materials/Translators.h"
#include "materials/legacy/Rows.h"
#include "textures/PropertyValues.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation
{

namespace materials
{

namespace
{

using textures::TextureRole;
using Value = std::array<float, 3>;

/// A row with the names that assets use.
struct NamedRow
{
    const legacy::Row* row;
    PropertyRow property;
};

/// A schema's table with the names that assets use.
class NamedSchema
{
  public:
    explicit NamedSchema(const legacy::Schema& schema) : _schema(&schema)
    {
        for (const auto group : schema.groups)
            for (const legacy::Row& row : group)
            {
                PropertyRow property = row.property;
                const std::string& name = _texts.emplace_back(nameOf(property.name));
                property.name = name.c_str();
                const std::string prefix = name.substr(0, name.find('_') + 1);
                std::string& choices = _texts.emplace_back();
                for (const legacy::Preset& preset : row.presets)
                    choices += (choices.empty() ? "" : " ") + prefix + preset.name;
                property.choices = choices.c_str();
                for (const legacy::Assignment& standard : schema.defaults)
                    if (standard.field == row.field && row.presets.empty())
                        property.fallback = standard.value;
                _rows.push_back({&row, property});
                _properties.push_back(property);
            }
    }

    const legacy::Schema& schema() const { return *_schema; }
    const std::vector<NamedRow>& rows() const { return _rows; }
    const std::vector<PropertyRow>& properties() const { return _properties; }

    /// The full name of what a table names.
    std::string nameOf(std::string_view name) const
    {
        return name.starts_with(':') ? std::string(name.substr(1))
                                     : std::string(_schema->prefix) + '_' + std::string(name);
    }

  private:
    const legacy::Schema* _schema;
    std::deque<std::string> _texts;
    std::vector<NamedRow> _rows;
    std::vector<PropertyRow> _properties;
};

const std::deque<NamedSchema>& namedSchemas()
{
    static const std::deque<NamedSchema> named = []
    {
        std::deque<NamedSchema> all;
        for (const legacy::Schema* schema : legacy::schemas())
            all.emplace_back(*schema);
        return all;
    }();
    return named;
}

void assign(StandardSurfaceParams& params, const legacy::Field& field, const Value& value)
{
    using Params = StandardSurfaceParams;
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

/// The shader input that shows a field; null for one that no texture may drive.
const StandardSurfaceInput* inputOf(const legacy::Row& row)
{
    const auto find = [](auto matches) -> const StandardSurfaceInput*
    {
        const auto* input = std::ranges::find_if(standardSurfaceInputs, matches);
        return input == std::end(standardSurfaceInputs) ? nullptr : input;
    };
    const auto named = [&](std::string_view name)
    { return find([=](const StandardSurfaceInput& input) { return input.name == name; }); };
    if (row.duty == legacy::Duty::ReliefTexture)
        return named("normal");
    if (row.duty == legacy::Duty::CutOut)
        return named("opacity");
    if (std::holds_alternative<std::monostate>(row.field))
        return nullptr;
    return find([&](const StandardSurfaceInput& input) { return input.field == row.field; });
}

/// Applies a schema's table to one material.
class LegacyRules : public legacy::LegacyValues
{
  public:
    LegacyRules(const assets::Asset& asset, const Translation& translation,
                const NamedSchema& schema)
        : _asset(asset), _log(translation.log), _colorMode(translation.options.colorMode),
          _schema(schema), _textures(asset, translation)
    {
    }

    StandardSurface read()
    {
        readValues();
        setParams();
        readTextures();
        readReliefs();
        _textures.bake();
        for (const auto& [input, property] : _driven)
            takeTexture(input, property);
        _textures.dropUnused();
        _asset.reportUnread(_log);
        stateColors();
        return std::move(_material);
    }

    float number(const char* row) const override { return valueOf(row)[0]; }
    Value color(const char* row) const override { return valueOf(row); }
    bool isGiven(const char* row) const override { return _values[placeOf(row)].has_value(); }

  private:
    std::size_t placeOf(std::string_view row) const
    {
        const auto& rows = _schema.rows();
        const auto found = std::ranges::find_if(rows, [&](const NamedRow& named)
                                                { return named.row->property.name == row; });
        return static_cast<std::size_t>(found - rows.begin());
    }

    Value valueOf(std::string_view row) const { return valueAt(placeOf(row)); }

    Value valueAt(std::size_t place) const
    {
        return _values[place].value_or(_schema.rows()[place].property.fallback);
    }

    /// The preset that a row's choice names; null for a row without presets.
    const legacy::Preset* presetAt(std::size_t place) const
    {
        const auto presets = _schema.rows()[place].row->presets;
        return presets.empty() ? nullptr : &presets[static_cast<std::size_t>(valueAt(place)[0])];
    }

    /// What the asset says in the row of a duty.
    std::optional<float> givenBy(legacy::Duty duty) const
    {
        for (std::size_t i = 0; i < _values.size(); ++i)
            if (_schema.rows()[i].row->duty == duty && _values[i])
                return (*_values[i])[0];
        return std::nullopt;
    }

    float reliefAmount(float standard) const
    {
        return givenBy(legacy::Duty::ReliefAmount).value_or(standard);
    }

    void readValues()
    {
        for (const NamedRow& row : _schema.rows())
        {
            auto& value = _values.emplace_back(textures::readPropertyValue(
                _asset, row.property, row.property.name, _colorMode, _log));
            if (!value || row.property.kind != PropertyKind::Color)
                continue;
            const Value given = *value;
            for (float& channel : *value)
                channel = std::clamp(channel, 0.0f, 1.0f);
            if (*value != given)
                _log.warning(
                    DiagnosticCode::ValueAdjusted, row.property.name,
                    "no surface gives more light than it gets; the colour is cut to 0 to 1");
        }
        for (std::size_t i = 0; i < _values.size(); ++i)
            if (_schema.rows()[i].row->duty == legacy::Duty::NamesColor)
                chooseColor(i);
    }

    /// A colour without a choice is a choice too: that of the colour.
    void chooseColor(std::size_t choice)
    {
        if (!isGiven("color"))
            return;
        if (!_values[choice])
            _values[choice] = {static_cast<float>(_schema.rows()[choice].row->presets.size() - 1)};
        else if (!takesColor(*presetAt(choice)))
            _log.warning(DiagnosticCode::ValueAdjusted, _schema.nameOf("color"),
                         std::string("not used: \"") + _schema.rows()[choice].property.name +
                             "\" names the colour");
    }

    static bool takesColor(const legacy::Preset& preset)
    {
        return std::holds_alternative<std::monostate>(preset.sets[0].field);
    }

    /// Whether the material's own properties make its pattern.
    bool isPatternMade() const
    {
        const legacy::Pattern* const pattern = _schema.schema().pattern;
        if (!pattern)
            return false;
        const std::size_t place = placeOf(pattern->property);
        if (_values[place])
            return valueAt(place)[0] != 0.0f;
        const auto& rows = _schema.rows();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern && _values[i])
                return true;
        return false;
    }

    void readTextures()
    {
        const auto& rows = _schema.rows();
        const bool isMade = isPatternMade();
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const legacy::Row& row = *rows[i].row;
            const char* const name = rows[i].property.name;
            const StandardSurfaceInput* const input = inputOf(row);
            if (!row.property.takesTexture || !input || !_asset[name].isConnected())
                continue;
            if (i + 1 < rows.size() && rows[i + 1].row->duty == legacy::Duty::Fade &&
                !doesShow(name, rows[i + 1].property.name, valueAt(i + 1)[0]))
                continue;
            // A texture of the base colour shows within the pattern.
            if (isMade && isColorOfPattern(row))
            {
                _isColorTextured = true;
                continue;
            }
            const bool isRelief = row.duty == legacy::Duty::ReliefTexture;
            _textures.read(name, isRelief ? TextureRole::AnyRelief : TextureRole::Value,
                           input->type, reliefAmount(1.0f));
            _driven.emplace_back(input->name, name);
        }
        if (isMade)
            makePattern();
    }

    /// Of a fade documents know all or nothing.
    bool doesShow(const char* property, const char* fadeProperty, float fade) const
    {
        if (fade <= 0.0f)
            _asset[property].settleConnection();
        else if (fade < 1.0f)
            _log.warning(DiagnosticCode::FadeIgnored, fadeProperty,
                         "the image is not blended with the plain value; it shows fully");
        return fade > 0.0f;
    }

    bool isColorOfPattern(const legacy::Row& row) const
    {
        return _schema.schema().pattern->color && std::string_view(row.property.name) == "color";
    }

    bool isDriven(std::string_view input) const
    {
        return std::ranges::any_of(_driven,
                                   [&](const auto& driven) { return driven.first == input; });
    }

    void makePattern()
    {
        const legacy::Pattern& pattern = *_schema.schema().pattern;
        textures::MadePattern made{pattern.schema, {}, {}};
        const auto add = [&](const legacy::Constant& constant)
        {
            if (constant.property)
                made.constants.push_back({constant.property, constant.value});
        };
        const auto& rows = _schema.rows();
        add(pattern.implied);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern)
            {
                made.links.push_back({rows[i].row->pattern, rows[i].property.name});
                if (_values[i] && rows[i].row->presets.empty())
                    add({rows[i].row->pattern, *_values[i]});
            }
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (const legacy::Preset* const preset = presetAt(i))
                std::ranges::for_each(preset->shapes, add);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->pattern && rows[i].row->presets.empty())
                add({rows[i].row->pattern, valueAt(i)});
        if (pattern.color)
        {
            const StandardSurfaceParams::Color& color = _material.params.base_color;
            add({pattern.color, {color[0], color[1], color[2]}});
            if (_isColorTextured)
                made.links.push_back({pattern.color, _schema.nameOf("color")});
        }
        std::ranges::for_each(pattern.constants, add);
        for (const char* input : pattern.inputs)
            if (input && !isDriven(input))
                make(input, pattern.property, made, reliefAmount(pattern.amount));
    }

    /// Reliefs that choices make, of which the last row's wins, where nothing else is the relief.
    void readReliefs()
    {
        for (std::size_t i = _schema.rows().size(); i-- > 0;)
        {
            const legacy::Preset* const preset = presetAt(i);
            if (!preset || !preset->relief)
                continue;
            const legacy::Relief& relief = *preset->relief;
            if (isDriven("normal"))
            {
                if (_values[i])
                    _log.warning(DiagnosticCode::ValueAdjusted, _schema.rows()[i].property.name,
                                 "its relief is not shown: the material has another one");
                continue;
            }
            textures::MadePattern made{relief.schema, {}, {}, relief.size};
            made.stretch =
                givenBy(legacy::Duty::ReliefSize).value_or(relief.feature) / relief.feature;
            for (const legacy::Constant& constant : relief.constants)
                if (constant.property)
                    made.constants.push_back({constant.property, constant.value});
            make("normal", _schema.rows()[i].row->property.name, made, reliefAmount(relief.amount));
        }
    }

    /// @param row  Names the texture's node, with the input.
    void make(const std::string& input, const char* row, const textures::MadePattern& pattern,
              float amount)
    {
        const std::string name = _schema.nameOf(row) + '_' + input;
        _textures.make(name.c_str(),
                       input == "normal" ? TextureRole::AnyRelief : TextureRole::Value,
                       shaderInputType(input), amount, pattern);
        _driven.emplace_back(input, name);
    }

    void takeTexture(const std::string& input, const std::string& property)
    {
        const assets::Property own = _asset[property.c_str()];
        std::optional<textures::Texture> texture =
            own ? _textures.take(own) : _textures.take(property);
        if (texture)
            _material.textures.insert_or_assign(input,
                                                DrivingTexture{property, std::move(*texture)});
    }

    /// What is given wins over what a choice brings, and that over what holds for the schema.
    void setParams()
    {
        StandardSurfaceParams& params = _material.params;
        const auto& rows = _schema.rows();
        for (const legacy::Assignment& standard : _schema.schema().defaults)
            assign(params, standard.field, standard.value);
        bool byObject = false;
        bool isOtherwise = false;
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const legacy::Duty duty = rows[i].row->duty;
            if (duty != legacy::Duty::Otherwise)
                assign(params, rows[i].row->field, valueAt(i));
            byObject = byObject || (duty == legacy::Duty::ColorByObject && valueAt(i)[0] != 0.0f);
            isOtherwise =
                isOtherwise || (duty == legacy::Duty::NamesColor && takesColor(*presetAt(i)));
        }
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (const legacy::Preset* const preset = presetAt(i))
                for (const legacy::Assignment& set : preset->sets)
                    assign(params, set.field, set.value);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].row->duty == legacy::Duty::Otherwise ? isOtherwise : _values[i].has_value())
                assign(params, rows[i].row->field, valueAt(i));
        if (_schema.schema().finish)
            _schema.schema().finish(params, *this);
        if (byObject)
            params.base_color = StandardSurfaceParams::Color(0.5f);
    }

    void stateColors()
    {
        StandardSurfaceParams& params = _material.params;
        for (const StandardSurfaceInput& input : standardSurfaceInputs)
            if (const auto* color =
                    std::get_if<StandardSurfaceParams::Color StandardSurfaceParams::*>(
                        &input.field))
                params.*(*color) = assets::statedColor(params.*(*color), _colorMode);
    }

    const assets::Asset& _asset;
    const Log& _log;
    std::int32_t _colorMode;
    const NamedSchema& _schema;
    textures::TextureSet _textures;
    /// For each row what the asset says.
    std::vector<std::optional<Value>> _values;
    /// Whether a texture shows in the colour of the pattern.
    bool _isColorTextured = false;
    /// Shader inputs and the textures that drive them.
    std::vector<std::pair<std::string, std::string>> _driven;
    StandardSurface _material;
};

} // namespace

bool translateLegacy(const Translation& translation)
{
    const assets::Asset described(translation.asset);
    const std::string schema = described.schema();
    if (schema == assets::genericSchema)
        return translateGeneric(translation);
    if (translation.options.verbose)
        assets::writeMaterialDescription(described, std::cout);
    const auto named = std::ranges::find_if(namedSchemas(), [&](const NamedSchema& s)
                                            { return s.schema().name == schema; });
    if (named == namedSchemas().end())
    {
        translation.log.error(DiagnosticCode::LegacyUnavailable, "",
                              "the schema \"" + schema + "\" is none of the legacy family");
        return false;
    }
    std::ostream* const trace = translation.options.verbose ? &std::cout : nullptr;
    return translateStandardSurface(
        translation,
        [&]
        {
            const assets::Asset asset(translation.asset, trace);
            StandardSurface material = LegacyRules(asset, translation, *named).read();
            material.tint =
                readTint(schema, {asset, translation.options.colorMode, translation.log});
            return material;
        });
}

} // namespace materials

const std::vector<SchemaRow>& legacyMaterials()
{
    static const std::vector<SchemaRow> rows = []
    {
        std::vector<SchemaRow> all;
        for (const materials::NamedSchema& named : materials::namedSchemas())
            all.push_back({named.schema().name, named.schema().meaning, named.properties().data(),
                           named.properties().size()});
        return all;
    }();
    return rows;
}

} // namespace vyr::MaterialTranslation
