#pragma once

#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/Validation.h>

namespace vyr::MaterialTranslation
{

/// How a document uses the kvor nodes. All forms look the same.
enum class NodeForm
{
    /// By their names: the reader has their definitions.
    Reference,
    /// With the definitions that it needs copied into it, for a reader that knows namespaces.
    Embed,
    /// Replaced by the standard nodes that they are made of, for any reader.
    Standard,
};

/// Brings a document into a form. The converter makes documents by reference.
///
/// Embed and Standard validate with MaterialX's standard library alone. Units that it lacks are
/// converted: angles to "degree"; luminances to candela per square metre, stated without a unit. Standard
/// also converts all lengths to "meter" and all angles to "degree", so that a reader without units takes
/// them for that.
///
/// The names of all elements stay: in Standard, the last of the nodes that replace a kvor node has its
/// name. Definitions that an earlier call embedded are taken out again where they are not needed. Nodes that
/// were replaced and units that were converted do not come back.
///
/// The result depends on the document and the definitions alone.
/// @param document not null; changed in place. Its data library stays what it was.
/// @return what cannot be brought into the form and was left as it is: kvor nodes without a fitting
///         definition, units that are not known, and values beyond a 32-bit float in the unit of the form.
///         Where elements inherit from themselves, or through more than 100 others, nothing is changed.
/// @throws what definitionLibrary throws, before anything is changed.
VYR_MTLX_API std::vector<ValidationMessage> applyNodeForm(const MaterialX::DocumentPtr& document,
                                                          NodeForm form);

} // namespace vyr::MaterialTranslation
