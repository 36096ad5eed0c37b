// Draws documents for the page of `vyr-mtlx preview`. The one WebGL context of the page is here.

import { createGenerator } from "./generator.js";
import { stageOf } from "./stage.js";
import { Studio } from "./studio.js";

const WIDTH = 720;
const HEIGHT = 480;
/** What an image that is not there looks like: a checker of this width. */
const MISSING = "missing";
const CHECKER = 8;

function canvasOf(width, height) {
    return Object.assign(document.createElement("canvas"), { width, height });
}

function checker() {
    const canvas = canvasOf(CHECKER, CHECKER);
    const target = canvas.getContext("2d");
    for (let i = 0; i < CHECKER ** 2; ++i) {
        target.fillStyle = (i + Math.floor(i / CHECKER)) % 2 ? "#888" : "#555";
        target.fillRect(i % CHECKER, Math.floor(i / CHECKER), 1, 1);
    }
    return canvas.toDataURL();
}

class Painter {
    constructor(generator, imageOf) {
        this.generator = generator;
        this.studio = new Studio((name) => (name === MISSING ? checker() : imageOf(name)));
        this.canvas = canvasOf(WIDTH, HEIGHT);
    }

    /**
     * The picture of a document, and the stage that it is shown on.
     *
     * @param images names by which images are asked for, by those in the document
     */
    async draw(text, shape, images) {
        const stage = await stageOf(this.generator, text, shape);
        const material = await this.generator.material(text, (name) => images.get(name) ?? MISSING);
        await this.studio.draw(material, stage, this.canvas);
        return { blob: await this.#picture(), stage };
    }

    /** The studio without anything in it. */
    async drawEmpty() {
        await this.studio.drawEmpty(this.canvas);
        return this.#picture();
    }

    #picture() {
        return new Promise((resolve) => this.canvas.toBlob(resolve, "image/png"));
    }
}

/**
 * @param definitions as of createGenerator
 * @param imageOf as of Studio
 */
window.preview.createPainter = async (definitions, imageOf) => new Painter(await createGenerator(definitions), imageOf);
