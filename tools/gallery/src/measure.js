// What a document says about the lengths and the brightness of its material.

const METRES = {
    nanometer: 1e-9, micron: 1e-6, millimeter: 1e-3, centimeter: 0.01, inch: 0.0254, foot: 0.3048, yard: 0.9144,
    meter: 1, kilometer: 1000, mile: 1609.344,
};
const UNTEXTURED = 0.3;
const NICE = [1, 1.5, 2, 3, 4, 5, 6, 8, 10];

const valueOf = (node, name) => node.querySelector(`:scope > input[name="${name}"]`)?.getAttribute("value");
const pairOf = (node, name) => (valueOf(node, name) ?? "1, 1").split(",").map((part) => Number(part) || 1);

function repeat(texture) {
    const unit = texture.querySelector(':scope > input[name="realworld_scale"]')?.getAttribute("unit");
    const metres = METRES[unit] ?? 1;
    const scale = pairOf(texture, "realworld_scale");
    const repeats = pairOf(texture, "uv_scale");
    return Math.max(...scale.map((length, axis) => Math.abs((length * metres) / repeats[axis])));
}

function nice(length) {
    const power = 10 ** Math.floor(Math.log10(length));
    return power * NICE.find((step) => step * power >= length * 0.999);
}

/**
 * Of a document's text: the width in metres that the tile should stand for, so that one and a half repeats of
 * the largest texture are seen, or one when it does not repeat; and whether there is a texture at all.
 */
export function tileSize(text) {
    // MaterialX declares no namespaces; XML would have them declared.
    const declared = text.replace("<materialx", '<materialx xmlns:kvor="kvor"');
    const xml = new DOMParser().parseFromString(declared, "application/xml");
    const textures = [...xml.querySelectorAll("*")].filter((node) => valueOf(node, "file") !== undefined);
    if (!textures.length) return { metres: UNTEXTURED, textured: false };
    const periodic = textures.every((texture) => valueOf(texture, "uaddressmode") !== "clamp" && valueOf(texture, "vaddressmode") !== "clamp");
    const largest = Math.max(...textures.map(repeat));
    return { metres: periodic ? nice(largest * 1.5) : largest, textured: true };
}
