// The scene of every picture: a sphere and a tile on the floor of a small studio, or what wears an overlay.

import {
    Group, Mesh, NeutralToneMapping, PerspectiveCamera, PlaneGeometry, Scene,
    ShaderMaterial, SRGBColorSpace, TextureLoader, Vector3, WebGLRenderer,
} from "three";
import { BACKDROP, createEnvironment } from "./environment.js";
import { createMaterial } from "./material.js";
import { createScrew, createSphere, createSticker, createThread, createTile, RADIUS, SCREW_SCALE, setSize } from "./shapes.js";
import floorVertex from "./floor.vert?text";
import floorFragment from "./floor.frag?text";

export const FALLBACK = [255, 0, 255];

/** Luminance of the studio's white: that of paper beside a window, in which a display still looks lit. */
const WHITE_LUMINANCE = 500;
// Candela per square metre of one unit of radiance in the shaders, as the documents count emission.
const LUMINANCE_OF_RADIANCE_ONE = 1000;
const REFLECTION_SAMPLES = 24;
/** Compiled shaders live as long as a material that uses them. */
const KEPT_MATERIALS = 24;
/** Images that stay decoded for materials to come. */
const KEPT_IMAGES = 24;
/** Share of the shade on the floor that things with holes cast. */
const THIN_SHADE = 0.4;

// What is in the picture, where the camera looks from side to side, and its field of view in degrees.
const VIEWS = {
    both: { shown: ["sphere", "tile"], at: -0.01, field: 18.4 },
    sphere: { shown: ["sphere"], at: -0.6, field: 13.5 },
    tile: { shown: ["tile"], at: 0.6, field: 13.5 },
    decal: { shown: ["plate", "sticker"], at: 0.6, field: 13.5 },
    thread: { shown: ["screw"], at: 0, field: 13.5 },
};

export class Studio {
    /**
     * @param imageOf gives the data URL of an image, or a promise of it, by the name that documents use
     * @param limit how many materials are kept for others to share their shaders
     */
    constructor(imageOf, limit = KEPT_MATERIALS) {
        this.imageOf = imageOf;
        this.limit = limit;
        this.textures = new Map();
        this.errors = [];
        this.kept = [];
        this.renderer = new WebGLRenderer({ antialias: true, alpha: false, preserveDrawingBuffer: true });
        this.renderer.toneMapping = NeutralToneMapping;
        this.renderer.outputColorSpace = SRGBColorSpace;
        this.renderer.debug.onShaderError = (gl, program, vertex, fragment) => {
            this.errors.push(gl.getShaderInfoLog(fragment) || gl.getShaderInfoLog(vertex) || gl.getProgramInfoLog(program));
        };
        this.#buildScene();
    }

    #buildScene() {
        this.sphere = new Mesh(createSphere());
        this.sphere.position.set(-0.6, RADIUS, 0.1);
        this.tile = new Mesh(createTile());
        this.tile.position.set(0.6, 0.004, 0.12);
        this.tile.rotation.set(-0.16, -0.24, 0, "YXZ");
        this.plate = new Mesh(createTile());
        this.sticker = new Mesh(createSticker());
        for (const mesh of [this.plate, this.sticker]) {
            mesh.position.copy(this.tile.position);
            mesh.rotation.copy(this.tile.rotation);
        }
        this.#buildScrew();
        this.floor = new Mesh(new PlaneGeometry(60, 60), this.#floorMaterial());
        this.floor.rotation.x = -Math.PI / 2;
        this.shapes = [this.sphere, this.tile, this.sticker, this.thread];
        this.bases = [this.plate, ...this.solids];
        this.scene = new Scene();
        this.wall = new Mesh(new PlaneGeometry(60, 30), this.floor.material);
        this.wall.position.z = -12;
        this.scene.add(this.floor, this.wall, this.sphere, this.tile, this.plate, this.sticker, this.screw);

        this.light = createEnvironment();
    }

    #buildScrew() {
        this.screw = new Group();
        this.solids = createScrew().map((geometry) => new Mesh(geometry));
        this.thread = new Mesh(createThread());
        this.screw.add(...this.solids, this.thread);
        this.screw.scale.setScalar(SCREW_SCALE);
        this.screw.position.set(-0.58, 0.4, 0);
        this.screw.rotation.set(-0.12, Math.PI / 2 - 0.35, 0, "YXZ");
    }

    #floorMaterial() {
        this.tile.updateMatrixWorld();
        const corners = [[-0.5, 0], [0.5, 0], [0.5, 1], [-0.5, 1]];
        return new ShaderMaterial({
            vertexShader: floorVertex,
            fragmentShader: floorFragment,
            uniforms: {
                backdrop: { value: BACKDROP },
                sphere: { value: this.sphere.position },
                radius: { value: RADIUS },
                tile: { value: corners.map(([x, y]) => this.tile.localToWorld(new Vector3(x, y, 0))) },
                sphereShade: { value: 1 },
                tileShade: { value: 1 },
            },
        });
    }

    /**
     * Draws a material into a canvas, at the size of the canvas.
     *
     * @param material of `Generator.material`
     * @param metres width of the tile
     * @param view "both", "sphere" or "tile"; "decal" or "thread" with
     * @param base the material that wears the overlay, and
     * @param origin texture coordinates of the lower left corner
     */
    async draw(material, { metres, origin, view = "both", base }, canvas) {
        const shading = await this.#shading(material);
        const intensity = WHITE_LUMINANCE / LUMINANCE_OF_RADIANCE_ONE;
        shading.uniforms.u_envLightIntensity.value = intensity;
        for (const shape of this.shapes) {
            setSize(shape.geometry, metres, origin);
            shape.material = shading;
        }
        const below = base && (await this.#shading(base));
        if (below) {
            below.uniforms.u_envLightIntensity.value = intensity;
            for (const solid of this.bases) solid.material = below;
        }
        await this.#show(VIEWS[view], intensity, material.transparent && !base ? THIN_SHADE : 1, canvas);
        for (const used of [shading, below]) if (used) this.#keep(used);
        while (this.textures.size > KEPT_IMAGES) this.textures.delete(this.textures.keys().next().value);
        if (this.errors.length) throw new Error(this.errors.splice(0).join("\n"));
    }

    /** Draws the studio without anything in it. */
    drawEmpty(canvas) {
        return this.#show({ ...VIEWS.both, shown: [] }, 1, 1, canvas);
    }

    async #show({ shown, at, field }, intensity, shade, canvas) {
        const { backdrop, sphereShade, tileShade } = this.floor.material.uniforms;
        for (const name of ["sphere", "tile", "plate", "sticker", "screw"]) this[name].visible = shown.includes(name);
        sphereShade.value = this.sphere.visible ? shade : 0;
        tileShade.value = this.tile.visible || this.plate.visible ? shade : 0;
        backdrop.value = BACKDROP * intensity;
        this.renderer.toneMappingExposure = 1 / intensity;
        this.renderer.setSize(canvas.width, canvas.height, false);
        const camera = new PerspectiveCamera(field, canvas.width / canvas.height, 0.1, 100);
        camera.position.set(at, 1.15, 5.2);
        camera.lookAt(at, 0.47, 0);
        // Otherwise the page would stand still until the shaders are there.
        await this.renderer.compileAsync(this.scene, camera);
        this.renderer.render(this.scene, camera);
        canvas.getContext("2d").drawImage(this.renderer.domElement, 0, 0);
    }

    #shading(material) {
        return createMaterial(material, (name) => this.#texture(name), this.light, REFLECTION_SAMPLES);
    }

    // The shader is kept, the memory of its textures is not.
    #keep(shading) {
        for (const texture of shading.userData.textures) texture.dispose();
        this.kept.push(shading);
        if (this.kept.length > this.limit) this.kept.shift().dispose();
    }

    #texture(name) {
        if (!this.textures.has(name)) this.textures.set(name, this.#loadTexture(name));
        return this.textures.get(name);
    }

    async #loadTexture(name) {
        const url = await this.imageOf(name);
        if (!url) throw new Error(`no image ${name}`);
        const texture = await new TextureLoader().loadAsync(url);
        texture.anisotropy = this.renderer.capabilities.getMaxAnisotropy();
        return texture;
    }
}
