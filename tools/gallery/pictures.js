// pictures.js <folder of the page> <folder>: draws the pictures of the documentation into the folder: gallery.webp, a
// selection of the materials on the page, overlays.webp, and node-<name>.webp of every kvor node.

import { writeFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage, withScript } from "./browser.js";
import { pictures } from "./cards.js";
import { OVERLAYS, SELECTION } from "./selection.js";

const [gallery, folder] = process.argv.slice(2);
const problems = [];

const save = (name, url) => writeFile(path.join(folder, `${name}.webp`), Buffer.from(url.split(",")[1], "base64"));

const WIDTH = 360;
const HEIGHT = 240;

/** Pictures with their names, side by side. Runs in the page. */
async function contactSheet([cards, columns, width, height]) {
    const sheet = document.createElement("canvas");
    sheet.width = width * columns;
    sheet.height = height * Math.ceil(cards.length / columns);
    const target = sheet.getContext("2d");
    target.font = "13px sans-serif";
    for (const [i, { title, size, picture }] of cards.entries()) {
        const [x, y] = [width * (i % columns), height * Math.floor(i / columns)];
        const image = Object.assign(new Image(), { src: picture });
        await image.decode();
        target.drawImage(image, x, y, width, height);
        target.fillStyle = "#fffc";
        target.textAlign = "left";
        target.fillText(title, x + 12, y + height - 12);
        target.textAlign = "right";
        target.fillText(size, x + width - 12, y + height - 12);
    }
    return sheet.toDataURL("image/webp", 0.88);
}

async function drawSheet(name, selection) {
    const address = pathToFileURL(path.resolve(gallery, "index.html")).href;
    const draw = async (page) => {
        const found = new Map();
        for await (const card of pictures(page, selection)) found.set(card.name, { ...card, title: card.name });
        const missing = selection.filter((material) => !found.get(material)?.picture);
        if (missing.length) throw new Error(`not among the pictures: ${missing.join(", ")}`);
        return page.evaluate(contactSheet, [selection.map((material) => found.get(material)), 4, WIDTH, HEIGHT]);
    };
    await save(name, await withPage(address, "preview", problems, draw));
}

async function drawNodes() {
    const rows = await withScript("src/rows.js", "rows", problems, (opened) => opened.evaluate(() => window.rows));
    for (const [node, url] of Object.entries(rows)) await save(`node-${node}`, url);
}

await drawNodes();
await drawSheet("gallery", SELECTION);
await drawSheet("overlays", OVERLAYS);
for (const problem of problems) console.error(`error: ${problem}`);
process.exitCode = problems.length ? 1 : 0;
