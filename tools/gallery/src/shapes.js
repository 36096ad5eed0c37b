// What the materials are shown on. Texture coordinates are lengths: those of the shapes, which are one unit
// across, times the size that the picture is to have in metres.

import { BufferAttribute, CylinderGeometry, ExtrudeGeometry, PlaneGeometry, Shape, SphereGeometry, Vector3 } from "three";

export const RADIUS = 0.5;
export const TILE_DEPTH = 0.05;
const BEVEL = 0.012;

/**
 * Sphere whose texture lies on it as on a flat disc seen from the front: true to scale in the middle and along
 * every line from there, and without a seam. The back has the same picture mirrored.
 */
export function createSphere() {
    const geometry = new SphereGeometry(RADIUS, 160, 112);
    return withMapping(geometry, (point, normal) => {
        const ring = Math.hypot(normal.x, normal.y);
        const angle = Math.asin(Math.min(ring, 1));
        const [cosine, sine] = ring > 1e-6 ? [normal.x / ring, normal.y / ring] : [1, 0];
        const front = normal.z < 0 ? -1 : 1;
        const outward = new Vector3(cosine * normal.z * front, sine * normal.z * front, -ring * front);
        const around = new Vector3(-sine, cosine, 0);
        const spread = angle > 1e-6 ? ring / angle : 1;
        return {
            u: RADIUS * (1 + angle * cosine),
            v: RADIUS * (1 + angle * sine),
            tangent: outward.multiplyScalar(cosine).addScaledVector(around, -spread * sine),
        };
    });
}

/** Square tile with rounded corners and edges; the texture's origin is its lower left corner. */
export function createTile() {
    const half = 0.5 - BEVEL;
    const round = 0.05;
    const outline = new Shape();
    outline.moveTo(round - half, -half);
    for (const [x, y] of [[1, -1], [1, 1], [-1, 1], [-1, -1]]) {
        const turn = x * y < 0; // Whether the side before this corner is horizontal.
        outline.lineTo(x * (half - (turn ? round : 0)), y * (half - (turn ? 0 : round)));
        outline.quadraticCurveTo(x * half, y * half, x * (half - (turn ? 0 : round)), y * (half - (turn ? round : 0)));
    }
    const geometry = new ExtrudeGeometry(outline, {
        depth: TILE_DEPTH - 2 * BEVEL,
        bevelSize: BEVEL,
        bevelThickness: BEVEL,
        bevelSegments: 6,
        curveSegments: 16,
    });
    geometry.translate(0, 0.5, BEVEL - TILE_DEPTH);
    return withMapping(geometry, (point, normal) => {
        const along = Math.abs(normal.x) > 0.99 ? new Vector3(0, 0, -normal.x) : new Vector3(1, 0, 0);
        return { u: point.x + 0.5, v: point.y, tangent: along.addScaledVector(normal, -along.dot(normal)) };
    });
}

/** The part of the tile's front that a decal may lie on, a hair before it. */
export function createSticker() {
    const geometry = new PlaneGeometry(1 - 5 * BEVEL, 1 - 5 * BEVEL).translate(0, 0.5, 0.002);
    return withMapping(geometry, (point) => ({ u: point.x + 0.5, v: point.y, tangent: new Vector3(1, 0, 0) }));
}

// A screw of metres, since clipping planes are in the object's own unit: along z, the head below 0.
const SHANK = { radius: 0.004, length: 0.04, head: 0.0065, height: 0.0053 };
/** Metres to units of the scene. */
export const SCREW_SCALE = 34;

/** A cylinder along z, from a height to another. */
function shaft(radius, sides, low, high) {
    return new CylinderGeometry(radius, radius, high - low, sides).rotateX(Math.PI / 2).translate(0, 0, (low + high) / 2);
}

/** What the thread is on: shank and head. */
export const createScrew = () => [
    withMapping(shaft(SHANK.radius, 160, 0, SHANK.length), aroundScrew),
    withMapping(shaft(SHANK.head, 6, -SHANK.height, 0), aroundScrew),
];

/** The skin of the shank, a hair above it. Texture coordinates are metres around and along. */
export function createThread() {
    const { radius, length } = SHANK;
    const geometry = new CylinderGeometry(radius * 1.01, radius * 1.01, length, 160, 1, true);
    return withMapping(geometry.rotateX(Math.PI / 2).translate(0, 0, length / 2), aroundScrew);
}

function aroundScrew(point, normal, turn) {
    return { u: turn * 2 * Math.PI * SHANK.radius, v: point.z, tangent: new Vector3(-normal.y, normal.x, 0) };
}

function withMapping(geometry, mapping) {
    const { position, normal, uv } = geometry.attributes;
    const lengths = new Float32Array(position.count * 2);
    const tangents = new Float32Array(position.count * 4);
    for (let i = 0; i < position.count; ++i) {
        const { u, v, tangent } = mapping(new Vector3().fromBufferAttribute(position, i), new Vector3().fromBufferAttribute(normal, i), uv.getX(i));
        lengths.set([u, v], i * 2);
        tangents.set([...tangent.normalize(), 1], i * 4);
    }
    geometry.setAttribute("uv", new BufferAttribute(lengths.slice(), 2));
    geometry.setAttribute("tangent", new BufferAttribute(tangents, 4));
    geometry.userData.lengths = lengths;
    return geometry;
}

/** Sets how many metres one unit of the shape stands for, and the texture coordinates of its origin. */
export function setSize(geometry, metres, origin = [0, 0]) {
    const { uv } = geometry.attributes;
    geometry.userData.lengths.forEach((length, i) => (uv.array[i] = length * metres + origin[i % 2]));
    uv.needsUpdate = true;
}
