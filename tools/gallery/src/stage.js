// What the material of a document is shown on: overlays need something below them.

import { plateOf, tileSize } from "./measure.js";

const plain = (inputs) => `<?xml version="1.0"?><materialx version="1.39" colorspace="lin_rec709">
    <standard_surface name="wearer_shader" type="surfaceshader">${inputs}</standard_surface>
    <surfacematerial name="wearer" type="material"><input name="surfaceshader" type="surfaceshader" nodename="wearer_shader" /></surfacematerial>
    </materialx>`;
const input = (name, type, value) => `<input name="${name}" type="${type}" value="${value}" />`;

const BASES = {
    decal: plain(input("base_color", "color3", "0.32, 0.4, 0.46") + input("specular_roughness", "float", 0.45)),
    thread: plain(input("base_color", "color3", "0.62, 0.61, 0.6") + input("metalness", "float", 1) + input("specular_roughness", "float", 0.32)),
};

/**
 * Where the studio is to show the material of a document by reference.
 *
 * @param shape "material", "decal" or "thread"
 */
export async function stageOf(generator, text, shape) {
    if (shape === "material") return tileSize(text);
    const base = await generator.material(BASES[shape]);
    const size = shape === "decal" ? { ...plateOf(text), textured: true } : { metres: 1, textured: false };
    return { ...size, view: shape, base };
}
