#pragma once

#include <string>
#include <variant>
#include <vector>

#include <MaterialXCore/Document.h>

namespace vyr::benchmarks
{

/// The values of one material's document, as somebody knows them who writes it by hand.
struct HandMaterial
{
    std::string name;
    std::string id;
    std::string converter;
    /// Of the shader's inputs, in their order, which is the same for all.
    std::vector<std::variant<float, MaterialX::Color3, bool>> values;
};

/// Takes the values out of a document that the converter made.
HandMaterial valuesOf(const MaterialX::DocumentPtr& document);

/// Builds the document by MaterialX's interface and nothing else.
MaterialX::DocumentPtr buildByHand(const HandMaterial& material);

} // namespace vyr::benchmarks
