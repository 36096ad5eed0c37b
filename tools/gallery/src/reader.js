// Reads documents with three.js's own loader and draws them: no code of MaterialX takes part.

import { Color, EquirectangularReflectionMapping, LoadingManager, Mesh, PerspectiveCamera, Scene, WebGPURenderer } from "three/webgpu";
import { MaterialXLoader } from "three/addons/loaders/MaterialXLoader.js";
import { verdict } from "../verdict.js";
import { createEnvironment } from "./environment.js";
import { plateOf } from "./measure.js";
import { createSphere, createSticker, createThread, SCREW_SCALE, setSize } from "./shapes.js";

const SIZE = 120;
const DOCUMENT = "document.mtlx";
const METRES = 0.3;
const STRIPE = 16;

/** An image with a stripe of each pixel, as a URL. */
function stripes(pixels) {
    const canvas = document.createElement("canvas");
    [canvas.width, canvas.height] = [pixels.length * STRIPE, STRIPE];
    const target = canvas.getContext("2d");
    const image = target.createImageData(canvas.width, canvas.height);
    for (let i = 0; i < canvas.width * canvas.height; ++i) {
        image.data.set(pixels[Math.floor((i % canvas.width) / STRIPE)], i * 4);
    }
    target.putImageData(image, 0, 0);
    return canvas.toDataURL("image/png");
}

function linear(stored) {
    const value = stored / 255;
    return value > 0.04045 ? ((value + 0.055) / 1.055) ** 2.4 : value / 12.92;
}

class Reader {
    async open(images) {
        const manager = new LoadingManager();
        manager.setURLModifier((name) => (name === DOCUMENT ? this.document : (this.image ?? images[name] ?? name)));
        this.loader = new MaterialXLoader(manager);
        this.renderer = new WebGPURenderer({ forceWebGL: true });
        await this.renderer.init();
        this.renderer.setSize(SIZE, SIZE, false);
        this.shapes = { material: new Mesh(createSphere()), decal: new Mesh(createSticker()), thread: new Mesh(createThread()) };
        this.shapes.decal.position.y = -0.5;
        this.shapes.thread.scale.setScalar(SCREW_SCALE);
        this.shapes.thread.rotation.y = Math.PI / 2;
        this.shapes.thread.position.x = -0.68;
        this.scene = new Scene();
        this.scene.add(...Object.values(this.shapes));
        this.scene.environment = createEnvironment().radianceTexture;
        this.scene.environment.mapping = EquirectangularReflectionMapping;
        this.camera = new PerspectiveCamera(14, 1, 0.1, 100);
        this.camera.position.z = 5;
        this.empty = await this.#pixels(null);
    }

    /**
     * What the loader says of a document, and what is wrong with the picture of its material.
     *
     * @param reference the document by reference
     */
    async read(text, reference, shape) {
        const { material, log } = await this.#load(text);
        if (!material) return { log, problem: "no material" };
        const { metres, origin } = shape === "decal" ? plateOf(reference) : { metres: shape === "thread" ? 1 : METRES };
        setSize(this.shapes[shape].geometry, metres, origin);
        this.shapes[shape].material = material;
        const pixels = await this.#pixels(shape);
        material.dispose();
        return { log, problem: verdict(pixels, this.empty, [255, 0, 255]).problem };
    }

    /**
     * What a decal shows of pixels of its image: for each, its opacity and its colour, which is linear, lit, and as if
     * it covered all.
     *
     * @param pixels rows of red, green, blue and alpha, 0 to 255
     */
    async show(text, reference, pixels) {
        this.image = stripes(pixels);
        const { material } = await this.#load(text);
        this.image = null;
        const { geometry } = this.shapes.decal;
        geometry.computeBoundingBox();
        const { min, max } = geometry.boundingBox;
        const { metres } = plateOf(reference, max.x - min.x);
        setSize(geometry, metres, [-(min.x + 0.5) * metres, -min.y * metres]); // The image begins where the shape does.
        this.shapes.decal.material = material;
        const sides = [];
        for (const side of [0, 1]) {
            this.scene.background = new Color().setScalar(side);
            sides.push(await this.#pixels("decal"));
        }
        this.scene.background = null;
        material.dispose();
        const place = (length) => Math.floor((0.5 + length / (10 * Math.tan((7 * Math.PI) / 180))) * SIZE);
        const row = place(0.5 - min.y - 0.25 * (max.y - min.y));
        return pixels.map((_, i) => {
            const at = (row * SIZE + place(min.x + ((i + 0.5) / pixels.length) * (max.x - min.x))) * 4;
            const [black, white] = sides.map((side) => [...side.subarray(at, at + 3)].map(linear));
            const opacity = 1 - (white[0] - black[0] + white[1] - black[1] + white[2] - black[2]) / 3;
            return { opacity, color: black.map((value) => value / opacity) };
        });
    }

    async #load(text) {
        this.document = `data:text/xml,${encodeURIComponent(text)}`;
        const { materials, log } = await this.loader.loadAsync(DOCUMENT, { throwOnErrors: false });
        return { material: Object.values(materials)[0], log };
    }

    async #pixels(shape) {
        for (const [name, mesh] of Object.entries(this.shapes)) mesh.visible = name === shape;
        await this.renderer.renderAsync(this.scene, this.camera);
        const copy = new OffscreenCanvas(SIZE, SIZE).getContext("2d");
        copy.drawImage(this.renderer.domElement, 0, 0);
        return copy.getImageData(0, 0, SIZE, SIZE).data;
    }
}

window.reader = new Reader();
