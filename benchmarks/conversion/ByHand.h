#pragma once

#include <string>
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
    float base = 0;
    float metalness = 0;
    MaterialX::Color3 baseColor;
    float specular = 0;
    float diffuseRoughness = 0;
    float specularRoughness = 0;
    float ior = 0;
    float transmission = 0;
    MaterialX::Color3 transmissionColor;
    float subsurface = 0;
    float coat = 0;
    float coatRoughness = 0;
    float coatIor = 0;
    float emission = 0;
    MaterialX::Color3 emissionColor;
    MaterialX::Color3 opacity;
    bool thinWalled = false;
};

/// Takes the values out of a document that the converter made.
HandMaterial valuesOf(const MaterialX::DocumentPtr& document);

/// Builds the document by MaterialX's interface and nothing else.
MaterialX::DocumentPtr buildByHand(const HandMaterial& material);

} // namespace vyr::benchmarks
