// Draws documents for comparison with others that must look the same.

import { difference } from "../difference.js";
import definitions from "../../../libraries/kvor?files";
import { createGenerator } from "./generator.js";
import { stageOf } from "./stage.js";
import { Studio } from "./studio.js";

// Compiling the shaders takes most of the time; this is large enough for textures to be seen.
const WIDTH = 120;
const HEIGHT = 80;

class Comparison {
    async open(images) {
        this.generator = await createGenerator(Object.entries(definitions));
        this.studio = new Studio((name) => images[name], Infinity);
    }

    /** How the pictures of other documents differ from that of the first. */
    async differences(text, others, shape) {
        const stage = await stageOf(this.generator, text, shape);
        const own = await this.#pixels(text, stage);
        const found = [];
        for (const other of others) found.push(difference(own, await this.#pixels(other, stage)));
        return found;
    }

    async #pixels(text, stage) {
        const canvas = document.createElement("canvas");
        Object.assign(canvas, { width: WIDTH, height: HEIGHT });
        await this.studio.draw(await this.generator.material(text), stage, canvas);
        return canvas.getContext("2d").getImageData(0, 0, WIDTH, HEIGHT).data;
    }
}

window.comparison = new Comparison();
