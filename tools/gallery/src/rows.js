// Draws a row of pictures for every kvor node.

import { caption, EXAMPLES, IMAGES } from "./examples.js";
import definitions from "../../../libraries/kvor?files";
import { createGenerator } from "./generator.js";
import { Studio } from "./studio.js";

const SIDE = 220;
const LINE = 15;
const MARGIN = 8;
const TILE = 0.6;

async function drawRow(generator, studio, { document: write, view, row }) {
    const captions = row.map((values) => caption(values, row));
    const lines = Math.max(...captions.map((each) => each.length));
    const canvas = document.createElement("canvas");
    canvas.width = SIDE * row.length;
    canvas.height = SIDE + LINE * lines + 2 * MARGIN;
    const target = canvas.getContext("2d");
    target.fillStyle = "#232427";
    target.fillRect(0, 0, canvas.width, canvas.height);
    target.font = "11px sans-serif";
    target.fillStyle = "#dfe2e6";
    for (const [i, values] of row.entries()) {
        const picture = document.createElement("canvas");
        picture.width = picture.height = SIDE;
        const material = await generator.material(write(values));
        await studio.draw(material, { metres: TILE, view }, picture);
        target.drawImage(picture, i * SIDE, 0);
        captions[i].forEach((text, line) => target.fillText(text, i * SIDE + MARGIN, SIDE + MARGIN + LINE * (line + 0.8), SIDE - 2 * MARGIN));
        const mark = document.createElement("i");
        mark.className = "drawn";
        document.body.append(mark);
    }
    return canvas.toDataURL("image/webp", 0.9);
}

async function drawAll() {
    const generator = await createGenerator(Object.entries(definitions));
    const studio = new Studio((name) => IMAGES[name]);
    const rows = {};
    for (const [node, example] of Object.entries(EXAMPLES)) rows[node] = await drawRow(generator, studio, example);
    window.rows = rows;
}

drawAll().catch((error) => {
    console.error(error.stack);
    window.rows = {};
});
