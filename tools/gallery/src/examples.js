// Documents that show what the inputs of the kvor nodes do: of each node, a row of materials.

import brick from "../../../samples/textures/brick_color.jpg?url";
import hammered from "../../../samples/textures/hammered_height.png?url";
import dents from "../../../samples/textures/hammered_normal.png?url";

export const IMAGES = { brick, hammered, dents };

const TYPES = {
    metal_f0: "color3", surface_albedo: "color3", opaque_albedo: "color3", opaque_mfp_modifier: "color3",
    opaque_luminance_modifier: "color3", transparent_color: "color3", layered_diffuse: "color3", layered_bottom_f0: "color3",
    glazing_f0: "color3", glazing_transmission_color: "color3", realworld_scale: "vector2", uv_offset: "vector2",
    uv_scale: "vector2", invert: "boolean", opaque_emission: "boolean", opaque_translucency: "boolean",
    uaddressmode: "string", vaddressmode: "string",
};

function input(name, value, attributes = "") {
    return `<input name="${name}" type="${TYPES[name] ?? "float"}" value="${value}" ${attributes} />`;
}

const inputs = (values) => Object.entries(values).map(([name, value]) => input(name, value)).join("");

function materialOf(shader) {
    return `<?xml version="1.0"?><materialx version="1.39" colorspace="lin_rec709">${shader}
        <surfacematerial name="material" type="material">
            <input name="surfaceshader" type="surfaceshader" nodename="shader" />
        </surfacematerial></materialx>`;
}

const shading = (node) => (values) =>
    materialOf(`<kvor:${node} name="shader" type="surfaceshader">${inputs(values)}</kvor:${node}>`);

/** A texture node whose result goes to an input of a shading node. */
const texture = ({ node, type, image, space, into, shader, others }) => (values) =>
    materialOf(`<kvor:${node} name="texture" type="${type}">
            <input name="file" type="filename" value="${image}" ${space ? `colorspace="${space}"` : ""} />
            ${inputs(values)}</kvor:${node}>
        <kvor:${shader} name="shader" type="surfaceshader">
            <input name="${into}" type="${type}" nodename="texture" />${inputs(others)}</kvor:${shader}>`);

const gold = "1, 0.78, 0.34";
const steel = "0.66, 0.65, 0.62";
const copper = "0.93, 0.62, 0.52";

/** By node: what makes a document of some inputs, the view, and the inputs of each picture of the row. */
export const EXAMPLES = {
    metal: {
        document: shading("metal"),
        view: "sphere",
        row: [
            { metal_f0: gold, surface_roughness: 0.05 },
            { metal_f0: gold, surface_roughness: 0.3 },
            { metal_f0: gold, surface_roughness: 0.6 },
            { metal_f0: steel, surface_roughness: 0.35, surface_anisotropy: 0.9 },
            { metal_f0: steel, surface_roughness: 0.35, surface_anisotropy: 0.9, surface_rotation: 90 },
        ],
    },
    opaque: {
        document: shading("opaque"),
        view: "sphere",
        row: [
            { opaque_albedo: "0.02, 0.12, 0.45", surface_roughness: 0.05 },
            { opaque_albedo: "0.02, 0.12, 0.45", surface_roughness: 0.5 },
            { opaque_albedo: "0.02, 0.12, 0.45", surface_roughness: 0.05, opaque_f0: 0.2 },
            { opaque_albedo: "0.85, 0.62, 0.4", opaque_translucency: true, opaque_mfp: 0.05 },
            { opaque_albedo: "0.1, 0.1, 0.1", opaque_emission: true, opaque_luminance: 300, opaque_luminance_modifier: "1, 0.5, 0.1" },
        ],
    },
    transparent: {
        document: shading("transparent"),
        view: "sphere",
        row: [
            { transparent_ior: 1.33 },
            { transparent_ior: 1.52 },
            { transparent_ior: 2.4 },
            { transparent_ior: 1.52, transparent_color: "0.25, 0.75, 0.45" },
            { transparent_ior: 1.52, surface_roughness: 0.35 },
        ],
    },
    layered: {
        document: shading("layered"),
        view: "sphere",
        row: [0, 0.25, 0.5, 0.75, 1].map((layered_fraction) => ({
            layered_fraction,
            layered_diffuse: "0.35, 0.01, 0.02",
            layered_bottom_f0: "0.9, 0.35, 0.3",
            layered_roughness: 0.45,
            surface_roughness: 0.02,
        })),
    },
    glazing: {
        document: shading("glazing"),
        view: "tile",
        row: [
            {},
            { glazing_transmission_color: "0.35, 0.62, 0.55" },
            { glazing_transmission_roughness: 0.6 },
            { glazing_f0: "0.35, 0.35, 0.35" },
            { glazing_f0: "0.5, 0.32, 0.16" },
        ],
    },
    bitmap: {
        document: texture({ node: "bitmap", type: "color3", image: "brick", space: "srgb_texture", shader: "opaque", into: "opaque_albedo", others: { surface_roughness: 0.8 } }),
        view: "tile",
        row: [
            { realworld_scale: "0.4, 0.4" },
            { realworld_scale: "0.2, 0.2" },
            { realworld_scale: "0.4, 0.4", rotation_angle: 30 },
            { realworld_scale: "0.4, 0.4", rgbamount: 0.4 },
            { realworld_scale: "0.4, 0.4", invert: true },
        ],
    },
    height_map: {
        document: texture({ node: "height_map", type: "vector3", image: "hammered", shader: "metal", into: "surface_normal", others: { metal_f0: copper, surface_roughness: 0.3 } }),
        view: "sphere",
        row: [0, 0.001, 0.002, 0.004, -0.004].map((depth) => ({ depth, realworld_scale: "0.3, 0.3" })),
    },
    normal_map: {
        document: texture({ node: "normal_map", type: "vector3", image: "dents", shader: "opaque", into: "surface_normal", others: { opaque_albedo: "0.1, 0.3, 0.25", surface_roughness: 0.25 } }),
        view: "sphere",
        row: [0, 0.5, 1, 2, -1].map((normal_scale) => ({ normal_scale, realworld_scale: "0.3, 0.3" })),
    },
};

/** Inputs as they stand below a picture: those that differ within the row. */
export function caption(values, row) {
    const names = [...new Set(row.flatMap(Object.keys))].filter((name) => new Set(row.map((each) => String(each[name]))).size > 1);
    return names.filter((name) => name in values).map((name) => `${name} ${values[name]}`);
}
