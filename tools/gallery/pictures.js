// pictures.js <folder of the page> <folder>: draws the pictures of the documentation into the folder: gallery.webp, a
// selection of the materials on the page, overlays.webp, and node-<name>.webp of every kvor node.

import { writeFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage, withScript } from "./browser.js";
import { OVERLAYS, SELECTION } from "./selection.js";

const [gallery, folder] = process.argv.slice(2);
const problems = [];

const save = (name, url) => writeFile(path.join(folder, `${name}.webp`), Buffer.from(url.split(",")[1], "base64"));

/** The pictures on a page with their names, side by side. Runs in the page. */
function contactSheet([ids, columns]) {
    const cards = ids.map((id) => document.getElementById(id));
    const missing = ids.filter((_, i) => !cards[i]);
    if (missing.length) throw new Error(`not among the samples: ${missing.join(", ")}`);
    const { width, height } = cards[0].querySelector("canvas");
    const sheet = document.createElement("canvas");
    sheet.width = width * columns;
    sheet.height = height * Math.ceil(cards.length / columns);
    const target = sheet.getContext("2d");
    target.font = "13px sans-serif";
    for (const [i, card] of cards.entries()) {
        const [x, y] = [width * (i % columns), height * Math.floor(i / columns)];
        target.drawImage(card.querySelector("canvas"), x, y);
        target.fillStyle = "#fffc";
        target.textAlign = "left";
        target.fillText(card.querySelector("h2").textContent, x + 12, y + height - 12);
        target.textAlign = "right";
        target.fillText(card.querySelector(".size").textContent, x + width - 12, y + height - 12);
    }
    return sheet.toDataURL("image/webp", 0.88);
}

async function drawSheet(name, selection) {
    const page = `${pathToFileURL(path.resolve(gallery, "index.html"))}?width=360&only=${selection.join(",")}`;
    await save(name, await withPage(page, "gallery", problems, (opened) => opened.evaluate(contactSheet, [selection, 4])));
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
