#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialXCore/Document.h>

namespace vyr::MaterialTranslation::graph
{

inline constexpr const char* defaultLookName = "default";

std::string shaderName(const std::string& material);
std::string nodeGraphName(const std::string& material);
/// The node graph of a material of the "Lyrex" family.
std::string inputGraphName(const std::string& material);

/// Whether a text can be the base of element names: ASCII letters, digits and "_", not empty, and
/// no digit first. MaterialX's own check lets empty names and leading digits through.
bool isIdentifier(std::string_view name);

/// The first of `names` that the document already uses, or, with `addLook`, that the look "default"
/// needs; empty when all are free. The look itself may be there already: several materials share
/// it.
std::string takenName(const MaterialX::DocumentPtr& document, const std::vector<std::string>& names,
                      bool addLook);

/// `name`, or `name` with the smallest number from 2 behind it that is not taken.
std::string freeName(const std::string& name,
                     const std::function<bool(const std::string&)>& isTaken);
/// The same, free in `parent`.
std::string freeName(const MaterialX::ConstElementPtr& parent, const std::string& name);

} // namespace vyr::MaterialTranslation::graph
