// What a document says about the lengths and the brightness of its material.

const METRES = {
    nanometer: 1e-9, micron: 1e-6, millimeter: 1e-3, centimeter: 0.01, inch: 0.0254, foot: 0.3048, yard: 0.9144,
    meter: 1, kilometer: 1000, mile: 1609.344,
};
const UNTEXTURED = 0.3;
/** A tile is no smaller, so that the finest textures are seen as what they make up. */
const LEAST = 0.05;
const NICE = [1, 1.5, 2, 3, 4, 5, 6, 8, 10];

/** Share of the plate's width that a decal takes. */
const DECAL_SHARE = 0.75;

const valueOf = (node, name) => node.querySelector(`:scope > input[name="${name}"]`)?.getAttribute("value");
const pairOf = (node, name) => (valueOf(node, name) ?? "1, 1").split(",").map((part) => Number(part) || 1);

function unitOf(texture) {
    const unit = texture.querySelector(':scope > input[name="realworld_scale"]')?.getAttribute("unit");
    return METRES[unit] ?? 1;
}

/** Both sides of the image, in metres. */
function sidesOf(texture) {
    const metres = unitOf(texture);
    const scale = pairOf(texture, "realworld_scale");
    const repeats = pairOf(texture, "uv_scale");
    return scale.map((length, axis) => Math.abs((length * metres) / repeats[axis]));
}

function nice(length) {
    const power = 10 ** Math.floor(Math.log10(length));
    return power * NICE.find((step) => step * power >= length * 0.999);
}

function texturesOf(text) {
    // MaterialX declares no namespaces; XML would have them declared.
    const declared = text.replace("<materialx", '<materialx xmlns:kvor="kvor"');
    const xml = new DOMParser().parseFromString(declared, "application/xml");
    return [...xml.querySelectorAll("*")].filter((node) => valueOf(node, "file") !== undefined);
}

/**
 * Of the text of a decal's document by reference: the lower left corner and the width in metres of the square that
 * the plate should stand for, with the decal in its middle.
 *
 * @param share of the plate's width that the decal takes
 */
export function plateOf(text, share = DECAL_SHARE) {
    const [image] = texturesOf(text);
    const pair = (name) => (valueOf(image, name) ?? "0, 0").split(",").map(Number);
    const metres = unitOf(image);
    const repeats = pairOf(image, "uv_scale");
    const size = pairOf(image, "realworld_scale").map((length, axis) => (length * metres) / repeats[axis]);
    const angle = (Number(valueOf(image, "rotation_angle")) * Math.PI) / 180;
    const corners = [[0, 0], [1, 0], [0, 1], [1, 1]].map((corner) => {
        const [x, y] = corner.map((place, axis) => (place + pair("uv_offset")[axis]) * size[axis]);
        const turned = [x * Math.cos(angle) - y * Math.sin(angle), x * Math.sin(angle) + y * Math.cos(angle)];
        return turned.map((length, axis) => length + pair("realworld_offset")[axis] * metres);
    });
    const ends = [0, 1].map((axis) => [Math.min, Math.max].map((end) => end(...corners.map((corner) => corner[axis]))));
    const width = Math.max(...ends.map(([low, high]) => high - low)) / share;
    return { metres: width, origin: ends.map(([low, high]) => (low + high - width) / 2) };
}

/**
 * Of a document's text: the width in metres that the tile should stand for, so that one and a half repeats of
 * the shorter side of the largest texture are seen, or one of its longer side when it does not repeat; and whether
 * there is a texture at all.
 */
export function tileSize(text) {
    const textures = texturesOf(text);
    if (!textures.length) return { metres: UNTEXTURED, textured: false };
    const periodic = textures.every((texture) => valueOf(texture, "uaddressmode") !== "clamp" && valueOf(texture, "vaddressmode") !== "clamp");
    const largest = (side) => Math.max(...textures.map((texture) => side(...sidesOf(texture))));
    return { metres: periodic ? nice(Math.max(largest(Math.min) * 1.5, LEAST)) : largest(Math.max), textured: true };
}
