// Reads documents with three.js's own loader and draws them: no code of MaterialX takes part.

import { EquirectangularReflectionMapping, LoadingManager, Mesh, PerspectiveCamera, Scene, WebGPURenderer } from "three/webgpu";
import { MaterialXLoader } from "three/addons/loaders/MaterialXLoader.js";
import { verdict } from "../verdict.js";
import { createEnvironment } from "./environment.js";
import { createSphere, setSize } from "./shapes.js";

const SIZE = 120;
const DOCUMENT = "document.mtlx";
const METRES = 0.3;

class Reader {
    async open(images) {
        const manager = new LoadingManager();
        manager.setURLModifier((name) => (name === DOCUMENT ? this.document : (images[name] ?? name)));
        this.loader = new MaterialXLoader(manager);
        this.renderer = new WebGPURenderer({ forceWebGL: true });
        await this.renderer.init();
        this.renderer.setSize(SIZE, SIZE, false);
        this.sphere = new Mesh(createSphere());
        setSize(this.sphere.geometry, METRES);
        this.scene = new Scene();
        this.scene.add(this.sphere);
        this.scene.environment = createEnvironment().radianceTexture;
        this.scene.environment.mapping = EquirectangularReflectionMapping;
        this.camera = new PerspectiveCamera(14, 1, 0.1, 100);
        this.camera.position.z = 5;
        this.sphere.visible = false;
        this.empty = await this.#pixels();
        this.sphere.visible = true;
    }

    /** What the loader says of a document, and what is wrong with the picture of its material. */
    async read(text) {
        this.document = `data:text/xml,${encodeURIComponent(text)}`;
        const { materials, log } = await this.loader.loadAsync(DOCUMENT, { throwOnErrors: false });
        const [material] = Object.values(materials);
        if (!material) return { log, problem: "no material" };
        this.sphere.material = material;
        const pixels = await this.#pixels();
        material.dispose();
        return { log, problem: verdict(pixels, this.empty, [255, 0, 255]).problem };
    }

    async #pixels() {
        await this.renderer.renderAsync(this.scene, this.camera);
        const copy = new OffscreenCanvas(SIZE, SIZE).getContext("2d");
        copy.drawImage(this.renderer.domElement, 0, 0);
        return copy.getImageData(0, 0, SIZE, SIZE).data;
    }
}

window.reader = new Reader();
