#pragma once

#include <cstdint>

namespace kelvor::platform::assets
{

/// The kind of a property, as IProperty::GetType reports it. The names of the first six are also the
/// texts by which the converter names an expected type in its exceptions.
enum PropertyType : std::uint32_t
{
    /// One text: IStringValue.
    ePropertyType_String = 2,
    /// A reference to a file, usually an image: IUriValue.
    ePropertyType_URI = 4,
    /// IValue::GetBoolean.
    ePropertyType_Boolean = 5,
    /// IIntegerValue.
    ePropertyType_Integer = 6,
    /// One or more real numbers of one unit: IScalarValue.
    ePropertyType_Scalar = 7,
    /// IValue::GetColor.
    ePropertyType_Color = 8,
    /// Carries connected assets only, no value.
    ePropertyType_Reference = 9,
    /// Named choices, of which some are selected: IChoiceListValue.
    ePropertyType_ChoiceList = 10,
    /// One text of the library's own use, such as "VersionGUID": IStringValue.
    ePropertyType_Text = 11,
    /// Carries a list of connected assets only, no value; treated like ePropertyType_Reference.
    ePropertyType_ReferenceList = 12,
};

} // namespace kelvor::platform::assets
