// The light of the studio, drawn rather than photographed: a grey room with softboxes.

import { DataTexture, DataUtils, HalfFloatType, LinearFilter, LinearMipmapLinearFilter, RepeatWrapping, RGBAFormat, Vector3 } from "three";

/** Radiance of the backdrop, relative to the white of the studio. */
export const BACKDROP = 0.24;

const UP = new Vector3(0, 1, 0);

// Lamps by the direction of their centre, half width and half height at distance 1, softness of the edge,
// and radiance.
const LAMPS = [
    { at: [-0.8, 0.95, 0.7], size: [0.46, 0.36], edge: 0.06, light: [7.2, 7.0, 6.7] }, // key
    { at: [1, 0.35, 0.35], size: [0.16, 0.75], edge: 0.05, light: [3.6, 3.8, 4.1] }, // strip on the right
    { at: [0.15, 1, -0.35], size: [0.6, 0.25], edge: 0.1, light: [3.2, 3.2, 3.2] }, // overhead
    { at: [-1, 0.25, -0.7], size: [0.12, 0.6], edge: 0.05, light: [4.5, 4.6, 4.8] }, // rim on the left
    { at: [-0.2, 0.37, 0.9], size: [0.6, 0.13], edge: 0.06, light: [0.85, 0.85, 0.85] }, // strip above the camera
].map((lamp) => {
    const centre = new Vector3(...lamp.at).normalize();
    const right = new Vector3().crossVectors(UP, centre).normalize();
    return { ...lamp, centre, right, top: new Vector3().crossVectors(centre, right) };
});

function smoothstep(low, high, x) {
    const t = Math.min(Math.max((x - low) / (high - low), 0), 1);
    return t * t * (3 - 2 * t);
}

function lampShare({ centre, right, top, size, edge }, direction) {
    const depth = direction.dot(centre);
    if (depth <= 0) return 0;
    const x = Math.abs(direction.dot(right) / depth);
    const y = Math.abs(direction.dot(top) / depth);
    return smoothstep(size[0] + edge, size[0], x) * smoothstep(size[1] + edge, size[1], y);
}

// The room: a floor as bright as the backdrop, darker walls, a lighter ceiling. The walls to the sides are
// black flags, which give metals their contrast.
function room(direction) {
    const height = direction.y;
    const wall = BACKDROP * (1 - 0.75 * smoothstep(0.25, 0.9, Math.abs(direction.x)) * smoothstep(0.9, 0.2, Math.abs(height)));
    const ceiling = smoothstep(0.15, 1, height) * 0.35;
    const floor = smoothstep(0, -0.3, height) * 0.1;
    return wall + ceiling + floor;
}

function radiance(direction) {
    const base = room(direction);
    const colour = [base * 0.99, base, base * 1.02];
    for (const lamp of LAMPS) {
        const share = lampShare(lamp, direction);
        if (share > 0) lamp.light.forEach((value, channel) => (colour[channel] += share * value));
    }
    return colour;
}

// Directions in the order that MaterialX reads latitude-longitude images: up first, -z in the middle.
function directionAt(column, row, width, height, result) {
    const latitude = (0.5 - (row + 0.5) / height) * Math.PI;
    const longitude = ((column + 0.5) / width - 0.5) * 2 * Math.PI;
    const ring = Math.cos(latitude);
    return result.set(Math.sin(longitude) * ring, Math.sin(latitude), -Math.cos(longitude) * ring);
}

function draw(width, height, colourAt) {
    const pixels = new Float32Array(width * height * 3);
    const direction = new Vector3();
    for (let row = 0; row < height; ++row) {
        for (let column = 0; column < width; ++column) {
            pixels.set(colourAt(directionAt(column, row, width, height, direction)), (row * width + column) * 3);
        }
    }
    return { width, height, pixels };
}

// Light that a white matt surface of each direction throws back: cosine-weighted mean of the radiance.
function irradiance({ width, height, pixels }, toWidth, toHeight) {
    const direction = new Vector3();
    const lights = [];
    for (let row = 0; row < height; ++row) {
        const solidAngle = Math.cos((0.5 - (row + 0.5) / height) * Math.PI) * (Math.PI / height) * ((2 * Math.PI) / width);
        for (let column = 0; column < width; ++column) {
            const { x, y, z } = directionAt(column, row, width, height, direction);
            const at = (row * width + column) * 3;
            const weight = solidAngle / Math.PI;
            lights.push([x, y, z, pixels[at] * weight, pixels[at + 1] * weight, pixels[at + 2] * weight]);
        }
    }
    return draw(toWidth, toHeight, (normal) => {
        const sum = [0, 0, 0];
        for (const [x, y, z, r, g, b] of lights) {
            const cosine = normal.x * x + normal.y * y + normal.z * z;
            if (cosine <= 0) continue;
            sum[0] += cosine * r;
            sum[1] += cosine * g;
            sum[2] += cosine * b;
        }
        return sum;
    });
}

function texture({ width, height, pixels }) {
    const halves = new Uint16Array(width * height * 4);
    for (let pixel = 0; pixel < width * height; ++pixel) {
        for (let channel = 0; channel < 3; ++channel) {
            halves[pixel * 4 + channel] = DataUtils.toHalfFloat(pixels[pixel * 3 + channel]);
        }
        halves[pixel * 4 + 3] = DataUtils.toHalfFloat(1);
    }
    const result = new DataTexture(halves, width, height, RGBAFormat, HalfFloatType);
    result.wrapS = RepeatWrapping;
    result.magFilter = LinearFilter;
    result.minFilter = LinearMipmapLinearFilter;
    result.generateMipmaps = true;
    result.needsUpdate = true;
    return result;
}

/** The studio's light as MaterialX's shaders read it. */
export function createEnvironment() {
    return {
        radianceTexture: texture(draw(1024, 512, radiance)),
        irradianceTexture: texture(irradiance(draw(128, 64, radiance), 64, 32)),
    };
}
