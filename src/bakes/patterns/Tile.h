#pragma once

#include "bakes/patterns/Pattern.h"

namespace vyr::MaterialTranslation::bakes
{

/// Tiles of one size in a bond, with joints between them.
struct Tile
{
    static constexpr const char* schema = "TileSchema";
    static constexpr const char* meaning = "tiles or bricks in a bond, with joints";
    static constexpr PropertyRow rows[] = {
        {.name = "tile_Bond",
         .kind = PropertyKind::Choice,
         .meaning = "how the tiles lie; custom shifts every second row by tile_Offset",
         .choices = "tile_stack tile_running tile_third tile_herringbone tile_basket tile_custom"},
        {.name = "tile_Color",
         .kind = PropertyKind::Color,
         .meaning = "of the tiles",
         .fallback = {0.5f, 0.45f, 0.38f},
         .takesTexture = true},
        {.name = "tile_JointColor",
         .kind = PropertyKind::Color,
         .meaning = "of the joints",
         .fallback = {0.15f, 0.15f, 0.15f},
         .takesTexture = true},
        {.name = "tile_Width",
         .kind = PropertyKind::Scalar,
         .meaning =
             "of a tile; in herringbone and basket the longer side, taken as the nearest whole "
             "number of shorter ones, at least two",
         .fallback = {0.2f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "tile_Height",
         .kind = PropertyKind::Scalar,
         .meaning = "of a tile",
         .fallback = {0.2f},
         .unit = "meter",
         .least = 1e-6f,
         .most = 1e6f},
        {.name = "tile_Columns",
         .kind = PropertyKind::Integer,
         .meaning = "tiles side by side in the image (herringbone and basket: shorter sides), made "
                    "more where the "
                    "bond needs it to repeat",
         .fallback = {8.0f},
         .least = 1.0f,
         .most = 256.0f},
        {.name = "tile_Rows",
         .kind = PropertyKind::Integer,
         .meaning = "rows of tiles in the image, made more where the bond needs it to repeat",
         .fallback = {8.0f},
         .least = 1.0f,
         .most = 256.0f},
        {.name = "tile_Offset",
         .kind = PropertyKind::Scalar,
         .meaning = "shift of every second row in the custom bond, as a share of a tile",
         .fallback = {0.25f},
         .least = 0.0f,
         .most = 1.0f},
        {.name = "tile_JointWidth",
         .kind = PropertyKind::Scalar,
         .meaning = "width of the joints",
         .fallback = {0.005f},
         .unit = "meter",
         .least = 0.0f,
         .most = 1e6f},
        {.name = "tile_Bevel",
         .kind = PropertyKind::Scalar,
         .meaning = "width of the slope at a tile's edges, as relief",
         .fallback = {0.002f},
         .unit = "meter",
         .least = 0.0f,
         .most = 1e6f},
        {.name = "tile_Rounding",
         .kind = PropertyKind::Scalar,
         .meaning = "of the corners: 0 sharp, 1 the shorter sides are half circles",
         .least = 0.0f,
         .most = 1.0f},
        {.name = "tile_Variation",
         .kind = PropertyKind::Scalar,
         .meaning = "how much darker than its colour a tile may be",
         .least = 0.0f,
         .most = 1.0f},
        {.name = "tile_Missing",
         .kind = PropertyKind::Scalar,
         .meaning = "share of the tiles that are missing",
         .least = 0.0f,
         .most = 1.0f},
        {.name = "tile_Seed",
         .kind = PropertyKind::Integer,
         .meaning = "another number varies other tiles",
         .least = 0.0f,
         .most = 1000000.0f},
    };
    static constexpr std::array colors{rowOf(rows, "tile_Color"), rowOf(rows, "tile_JointColor")};
    /// Tiles are high and joints low, whatever their colours.
    static constexpr bool hasOwnHeights = true;

    /// In the order of the choices.
    enum class Bond
    {
        Stack,
        Running,
        Third,
        Herringbone,
        Basket,
        Custom,
    };

    explicit Tile(const Values& values)
        : bond(static_cast<Bond>(values.integer(rowOf(rows, "tile_Bond")))),
          variation(values.number(rowOf(rows, "tile_Variation"))),
          missing(values.number(rowOf(rows, "tile_Missing"))),
          seed(static_cast<std::uint32_t>(values.integer(rowOf(rows, "tile_Seed"))) * 2U)
    {
        const float joint = values.number(rowOf(rows, "tile_JointWidth"));
        const float tileWidth = values.number(rowOf(rows, "tile_Width"));
        const float tileHeight = values.number(rowOf(rows, "tile_Height"));
        const bool interlocks = bond == Bond::Herringbone || bond == Bond::Basket;
        const float side = tileWidth < tileHeight ? tileWidth : tileHeight;
        const float longSide = tileWidth < tileHeight ? tileHeight : tileWidth;
        const float ratio = (longSide + joint) / (side + joint) + 0.5f;
        length = ratio < 2.0f ? 2.0f
                              : static_cast<float>(static_cast<int>(ratio < 64.0f ? ratio : 64.0f));
        const int inBond = interlocks ? 2 * static_cast<int>(length) : 1;
        const int rowsInBond = bond == Bond::Third                             ? 3
                               : bond == Bond::Running || bond == Bond::Custom ? 2
                                                                               : inBond;
        const auto upTo = [](int count, int of)
        { return static_cast<float>((count + of - 1) / of * of); };
        columns = upTo(values.integer(rowOf(rows, "tile_Columns")), inBond);
        rowCount = upTo(values.integer(rowOf(rows, "tile_Rows")), rowsInBond);
        width = columns * ((interlocks ? side : tileWidth) + joint);
        height = rowCount * ((interlocks ? side : tileHeight) + joint);
        halfJoint = 0.5f * joint;
        bevel = values.number(rowOf(rows, "tile_Bevel"));
        radius = values.number(rowOf(rows, "tile_Rounding")) * 0.5f * side;
        shift = bond == Bond::Running  ? 0.5f
                : bond == Bond::Third  ? 1.0f / 3.0f
                : bond == Bond::Custom ? values.number(rowOf(rows, "tile_Offset"))
                                       : 0.0f;
        rowsInShift = bond == Bond::Third ? 3.0f : 2.0f;
    }

    std::array<float, 2> period() const { return {width, height}; }

    /// Where a pixel lies in its tile: which one that is, and how far its nearest edges are, in tiles and cells.
    template <class L> struct Place
    {
        typename L::Floats column;
        typename L::Floats row;
        typename L::Floats fromSide;
        typename L::Floats fromEnd;
    };

    template <class L> Sample<L> sample(const Pixels<L>& p) const
    {
        using M = Math<L>;
        const auto x = M::mul(p.x, columns);
        const auto y = M::mul(p.y, rowCount);
        const Place<L> place = bond == Bond::Herringbone ? inHerringbone<L>(x, y)
                               : bond == Bond::Basket    ? inBasket<L>(x, y)
                                                         : inRows<L>(x, y);
        // From the joints, in metres.
        const auto inX = M::sub(M::mul(place.fromSide, width / columns), halfJoint);
        const auto inY = M::sub(M::mul(place.fromEnd, height / rowCount), halfJoint);
        const auto share = [&](typename L::Floats inside, float pixel)
        {
            // A slope at least a pixel wide keeps edges smooth, and a joint that is narrower than a pixel counts by its
            // share of it.
            if (p.heights && bevel > pixel)
                return M::clamp01(M::div(inside, M::all(bevel)));
            const auto tile = M::clamp01(M::add(M::div(inside, M::all(pixel)), 0.5f));
            return M::max(tile, M::all(1.0f - 2.0f * halfJoint / pixel));
        };
        const float pixelX = width * p.sizeX;
        const float pixelY = height * p.sizeY;
        auto tile = radius > 0.0f ? share(inRounded<L>(inX, inY), pixelX < pixelY ? pixelY : pixelX)
                                  : M::min(share(inX, pixelX), share(inY, pixelY));
        if (missing > 0.0f)
            tile = M::less(M::random(place.column, place.row, seed), missing, M::all(0.0f), tile);
        if (p.heights || variation == 0.0f)
            return {M::sub(1.0f, tile)};
        const auto darker = M::mul(M::random(place.column, place.row, seed + 1U), variation);
        return {M::sub(1.0f, tile), M::sub(1.0f, darker)};
    }

    template <class L> Place<L> inRows(typename L::Floats x, typename L::Floats y) const
    {
        using M = Math<L>;
        const auto row = M::floor(y);
        const auto shifted = M::add(x, M::mul(M::modulo(row, rowsInShift), shift));
        const auto column = M::floor(shifted);
        return {M::modulo(column, columns), M::modulo(row, rowCount),
                fromEdge<L>(M::sub(shifted, column), 1.0f), fromEdge<L>(M::sub(y, row), 1.0f)};
    }

    /// A tile of n cells starts one cell further right in each row above; between two of a row, upright ones
    /// stand.
    template <class L> Place<L> inHerringbone(typename L::Floats x, typename L::Floats y) const
    {
        using M = Math<L>;
        const auto column = M::floor(x);
        const auto row = M::floor(y);
        const auto inX = M::sub(x, column);
        const auto inY = M::sub(y, row);
        const auto turn = M::modulo(M::sub(column, row), 2.0f * length);
        const auto lies = [&](typename L::Floats lying, typename L::Floats standing)
        { return M::less(turn, length, lying, standing); };
        const auto below = M::sub(2.0f * length - 1.0f, turn);
        return {lies(M::modulo(M::sub(column, turn), columns),
                     M::add(M::modulo(column, columns), upright)),
                lies(M::modulo(row, rowCount), M::modulo(M::sub(row, below), rowCount)),
                lies(fromEdge<L>(M::add(turn, inX), length), fromEdge<L>(inX, 1.0f)),
                lies(fromEdge<L>(inY, 1.0f), fromEdge<L>(M::add(below, inY), length))};
    }

    /// Squares of n lying and n upright tiles by turns.
    template <class L> Place<L> inBasket(typename L::Floats x, typename L::Floats y) const
    {
        using M = Math<L>;
        const auto column = M::floor(x);
        const auto row = M::floor(y);
        const auto squareX = M::floor(M::div(x, M::all(length)));
        const auto squareY = M::floor(M::div(y, M::all(length)));
        const auto turn = M::modulo(M::add(squareX, squareY), 2.0f);
        const auto lies = [&](typename L::Floats lying, typename L::Floats standing)
        { return M::less(turn, 0.5f, lying, standing); };
        return {lies(M::modulo(squareX, columns), M::add(M::modulo(column, columns), upright)),
                lies(M::modulo(row, rowCount), M::modulo(squareY, rowCount)),
                lies(fromEdge<L>(M::sub(x, M::mul(squareX, length)), length),
                     fromEdge<L>(M::sub(x, column), 1.0f)),
                lies(fromEdge<L>(M::sub(y, row), 1.0f),
                     fromEdge<L>(M::sub(y, M::mul(squareY, length)), length))};
    }

    /// The distance to the edge of a box with round corners, from the distances to its sides.
    template <class L>
    typename L::Floats inRounded(typename L::Floats inX, typename L::Floats inY) const
    {
        using M = Math<L>;
        const auto cornerX = M::max(M::sub(radius, inX), M::all(0.0f));
        const auto cornerY = M::max(M::sub(radius, inY), M::all(0.0f));
        const auto corner =
            L::squareRoot(M::add(M::mul(cornerX, cornerX), M::mul(cornerY, cornerY)));
        return M::add(M::sub(radius, corner),
                      M::max(M::sub(M::min(inX, inY), radius), M::all(0.0f)));
    }

    template <class L>
    static typename L::Floats fromEdge(typename L::Floats inside, float whole)
    {
        return Math<L>::min(inside, Math<L>::sub(whole, inside));
    }

    /// Keeps the lots of upright tiles apart from those of lying ones.
    static constexpr float upright = 4096.0f;

    Bond bond;
    float variation;
    float missing;
    std::uint32_t seed;
    float length; ///< of a tile in shorter sides, in bonds that interlock
    float columns;
    float rowCount;
    float width; ///< of the image, metres
    float height;
    float halfJoint; ///< metres
    float bevel;     ///< metres
    float radius;    ///< of the corners, metres
    float shift;     ///< of a row against the one below, in tiles
    float rowsInShift;
};

} // namespace vyr::MaterialTranslation::bakes
