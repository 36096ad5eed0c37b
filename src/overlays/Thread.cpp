#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "graph/Nodes.h"
#include "overlays/Overlay.h"

namespace vyr::MaterialTranslation::overlays
{

namespace mx = MaterialX;

namespace
{

using FourNumbers = std::shared_ptr<std::array<float, 4>>;

/// Where a plane of the record is read from, and what its nodes are called.
struct PlaneRow
{
    FourNumbers ThreadInfo::* plane;
    const char* field;
    const char* constant;
    const char* product;
    const char* cutoff;
};

constexpr PlaneRow planeRows[] = {
    {&ThreadInfo::startClippingPlane, "startClippingPlane", "start_clipping_plane", "dotproduct1",
     "opacity_mask_cutoff1"},
    {&ThreadInfo::endClippingPlane, "endClippingPlane", "end_clipping_plane", "dotproduct2",
     "opacity_mask_cutoff2"},
};

/// A plane that clips, and its row.
struct Plane
{
    const PlaneRow* row;
    mx::Vector4 coefficients;
};

/// What a thread says.
struct ThreadReading
{
    TextureInfo image;
    std::optional<TextureInfo> normalMap;
    std::optional<mx::Color3> base;
    std::vector<Plane> planes;
    /// Whether the image's alpha counts.
    bool usesAlpha = false;
};

std::optional<TextureInfo> readOptional(const std::shared_ptr<TextureInfo>& texture,
                                        const char* field, const Log& log)
{
    return texture ? readTexture(*texture, field, log) : std::nullopt;
}

std::optional<mx::Color3> readBase(const FourNumbers& color, const Log& log)
{
    if (!color)
        return std::nullopt;
    const auto& [red, green, blue, unused] = *color;
    if (areFinite({red, green, blue, 0.0f}))
        return mx::Color3(red, green, blue);
    log.warning(DiagnosticCode::ValueAdjusted, "baseMaterialColor",
                "the colour is not finite; it is left out");
    return std::nullopt;
}

/// The plane with a normal of length 1, so that generators which write few decimals keep it. Nothing for
/// numbers that are no plane.
std::optional<mx::Vector4> normalised(const std::array<float, 4>& plane)
{
    const double a = plane[0], b = plane[1], c = plane[2], d = plane[3];
    const double length = std::hypot(a, b, c);
    std::array<float, 4> unit{};
    const double exact[] = {a / length, b / length, c / length, d / length};
    for (std::size_t i = 0; i < unit.size(); ++i)
        unit[i] = static_cast<float>(exact[i]) + 0.0f; // no "-0"
    if (length == 0.0 || !areFinite(plane) || !areFinite(unit))
        return std::nullopt;
    return mx::Vector4(unit[0], unit[1], unit[2], unit[3]);
}

std::vector<Plane> readPlanes(const ThreadInfo& thread, const Log& log)
{
    std::vector<Plane> planes;
    for (const PlaneRow& row : planeRows)
    {
        const FourNumbers& given = thread.*row.plane;
        if (!given)
            continue;
        if (const auto plane = normalised(*given))
            planes.push_back({&row, *plane});
        else
            log.warning(DiagnosticCode::PlaneIgnored, row.field,
                        "these numbers are no plane; it is left out");
    }
    return planes;
}

std::optional<ThreadReading> readThread(const ThreadInfo& thread, const Log& log)
{
    std::optional<TextureInfo> image = readOptional(thread.threadTexture, "threadTexture", log);
    if (!image)
    {
        log.warning(DiagnosticCode::NothingToBuild, "", "the thread has no image");
        return std::nullopt;
    }
    return ThreadReading{
        std::move(*image), readOptional(thread.normalTexture, "normalTexture", log),
        readBase(thread.baseMaterialColor, log), readPlanes(thread, log), thread.flag};
}

/// Builds the nodes of one thread.
class ThreadBuilder
{
  public:
    ThreadBuilder(const ThreadReading& reading, OverlayMaterial& material)
        : _reading(reading), _material(material), _graph(material.graph())
    {
    }

    void build()
    {
        const mx::NodePtr image = addImage("image", graph::typeStringOf<mx::Color3>());
        if (_reading.usesAlpha)
        {
            const mx::NodePtr stored = addImage("stored_image", graph::typeStringOf<mx::Color4>());
            readAsStored(stored->getInput("file"));
            _alpha = addAlpha(_graph, stored);
        }
        _material.drive("base_color", addColor(image));
        // An opacity that is connected makes renderers blend.
        if (!_reading.planes.empty() || isSeeThrough())
            _material.drive("opacity", addOpacity());
        _material.drive("normal", addNormal());
    }

  private:
    mx::NodePtr addImage(const char* name, const std::string& type) const
    {
        return graph::addPlacedTextureNode(_graph, "kvor:bitmap", name, _reading.image, type,
                                           false);
    }

    /// Whether the alpha makes the thread transparent, since there is no colour to show under it.
    bool isSeeThrough() const { return _alpha && !_reading.base; }

    mx::NodePtr addColor(const mx::NodePtr& image) const
    {
        if (!_reading.base)
            return image;
        const mx::NodePtr base = graph::addConstant(_graph, "base_material_color", *_reading.base);
        return _alpha ? graph::addMix(_graph, "mix_base_color", image, base, _alpha)
                      : graph::addBinary(_graph, "multiply", "multiply_base_color", image, base);
    }

    mx::NodePtr addNormal() const
    {
        const std::string& type = graph::typeStringOf<mx::Vector3>();
        const mx::NodePtr geometry = addInSpace("normal", "geometry_normal", "world");
        if (!_reading.normalMap)
            return graph::addSwitch(_graph, "normal_switch", geometry, geometry, 0);
        const mx::NodePtr map = graph::addPlacedTextureNode(
            _graph, "kvor:normal_map", "thread_normal", *_reading.normalMap, type, true);
        return graph::addSwitch(_graph, "normal_switch", geometry, map, 1);
    }

    mx::NodePtr addOpacity() const
    {
        const mx::NodePtr whole = addWholeOpacity();
        const mx::NodePtr clipped = addClippedOpacity(whole);
        return graph::addSwitch(_graph, "opacity_switch", whole, clipped ? clipped : whole,
                                clipped ? 1 : 0);
    }

    /// The opacity without clipping planes.
    mx::NodePtr addWholeOpacity() const
    {
        constexpr const char* name = "opacityWithoutCP";
        if (!isSeeThrough())
            return graph::addConstant(_graph, name, mx::Color3(1.0f));
        return addGrey(_graph, name, _alpha);
    }

    /// What is left of an opacity between the planes; null without planes.
    mx::NodePtr addClippedOpacity(mx::NodePtr opacity) const
    {
        if (_reading.planes.empty())
            return nullptr;
        const mx::NodePtr point =
            graph::addUnary(_graph, "convert", "position_vector4",
                            addInSpace("position", "object_position", "object"),
                            graph::typeStringOf<mx::Vector4>());
        mx::NodePtr clipped;
        for (const Plane& plane : _reading.planes)
        {
            const mx::NodePtr mask = addMask(point, plane);
            clipped = clipped ? graph::addBinary(_graph, "multiply", "opacity_mask", clipped, mask)
                              : mask;
        }
        return isSeeThrough()
                   ? graph::addBinary(_graph, "multiply", "opacity_clipped", opacity, clipped)
                   : clipped;
    }

    /// White on the side of the plane that is kept and on the plane itself, else black.
    mx::NodePtr addMask(const mx::NodePtr& point, const Plane& plane) const
    {
        const mx::NodePtr coefficients =
            graph::addConstant(_graph, plane.row->constant, plane.coefficients);
        // All digits of the numbers: six would move a plane that is far from the origin.
        const mx::Vector4& p = plane.coefficients;
        coefficients->getInput("value")->setValueString(
            fmt::format("{}, {}, {}, {}", p[0], p[1], p[2], p[3]));
        const mx::NodePtr product =
            _graph->addNode("dotproduct", plane.row->product, graph::typeStringOf<float>());
        graph::addSourceInput(product, "in1", point, point->getType());
        graph::addSourceInput(product, "in2", coefficients, point->getType());
        return graph::addComparison(_graph, "ifgreatereq", plane.row->cutoff, product, 0.0f,
                                    mx::Color3(1.0f), mx::Color3(0.0f));
    }

    /// A node that reads the geometry.
    mx::NodePtr addInSpace(const char* category, const char* name, const char* space) const
    {
        mx::NodePtr node = _graph->addNode(category, name, graph::typeStringOf<mx::Vector3>());
        graph::addTypedInput(node, "space", std::string(space));
        return node;
    }

    const ThreadReading& _reading;
    OverlayMaterial& _material;
    const mx::NodeGraphPtr& _graph;
    /// Of type "float"; null where it does not count.
    mx::NodePtr _alpha;
};

} // namespace

mx::DocumentPtr buildThread(const ThreadInfo& thread, const OverlayRequest& request)
{
    const std::optional<ThreadReading> reading = readThread(thread, request.log);
    if (!reading)
        return nullptr;
    std::optional<OverlayMaterial> material = OverlayMaterial::make(request);
    if (!material)
        return nullptr;
    ThreadBuilder(*reading, *material).build();
    materials::StandardSurfaceParams metal;
    metal.metalness = 1.0f;
    metal.specular_roughness = 0.35f; // cut or rolled, not polished
    return material->finish(metal);
}

} // namespace vyr::MaterialTranslation::overlays
