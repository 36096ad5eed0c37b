#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "materials/StandardSurface.h"

/// @file
/// Overlay materials, from the records of a host to documents. A record is read first: what cannot be used
/// is told and counts as absent. Only then is a document made, and nothing fails from there on.
namespace vyr::MaterialTranslation::overlays
{

/// The document of one overlay, and what its builder shares with others. Everything is borrowed.
struct OverlayRequest
{
    /// Base of the element names, an identifier.
    const std::string& name;
    bool addLook;
    const Log& log;
};

/// The material of a decal: its image, and nothing where the image is transparent or shows the key colour.
/// @return null, with a warning, when the decal names no image that a document can hold.
MaterialX::DocumentPtr buildDecal(const DecalInfo& decal, const OverlayRequest& request);

/// The material of a thread: metal that its images shade and raise, between two planes.
/// @return null, with a warning, when the thread names no image that a document can hold.
MaterialX::DocumentPtr buildThread(const ThreadInfo& thread, const OverlayRequest& request);

/// A texture as it can be used: the image's name is one that documents hold, and all numbers are finite.
/// @param field of the record, for messages.
/// @return nothing when there is no image.
std::optional<TextureInfo> readTexture(const TextureInfo& texture, const char* field,
                                       const Log& log);

/// Whether all numbers are finite.
bool areFinite(const std::array<float, 4>& numbers);

/// A document with a standard surface whose inputs nodes of one graph drive.
class OverlayMaterial
{
  public:
    /// @return nothing, with an error, when the look needs the material's name.
    static std::optional<OverlayMaterial> make(const OverlayRequest& request);

    const MaterialX::NodeGraphPtr& graph() const { return _graph; }

    /// Lets a node of the graph drive an input of the shader.
    void drive(const char* input, const MaterialX::NodePtr& node);

    /// Writes the inputs of the shader.
    MaterialX::DocumentPtr finish(const materials::StandardSurfaceParams& params);

  private:
    explicit OverlayMaterial(MaterialX::DocumentPtr document, materials::Skeleton skeleton);

    MaterialX::DocumentPtr _document;
    materials::Skeleton _skeleton;
    MaterialX::NodeGraphPtr _graph;
    std::map<std::string, MaterialX::OutputPtr, std::less<>> _drivers;
};

/// Lets the input of a file, or a value beside one, stand for stored values, which no colour transform may change.
void readAsStored(const MaterialX::InputPtr& input);

/// Adds the node "extract_alpha".
/// @param image of four channels, as stored.
MaterialX::NodePtr addAlpha(const MaterialX::GraphElementPtr& graph,
                            const MaterialX::NodePtr& image);

/// Adds a node that gives a number as a grey.
MaterialX::NodePtr addGrey(const MaterialX::GraphElementPtr& graph, const std::string& name,
                           const MaterialX::NodePtr& number);

} // namespace vyr::MaterialTranslation::overlays
