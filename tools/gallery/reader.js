// reader.js <folder>: loads the flattened documents, which are in "standard" of the folder, in
// three.js's MaterialXLoader, and says what that leaves out.

import path from "node:path";
import { forEachMaterial, withScript } from "./browser.js";
import { images, materials } from "./documents.js";

// What the loader is known to lack: a node for the transform of an image's colours behind an amount or an inversion.
const KNOWN = /Unsupported MaterialX node category "\w+_to_lin_rec709"/;

/** Lines of the loader's log without the names of nodes. */
const lines = (log) => [...new Set(log.map(({ severity, message }) => `${severity}: ${message.replace(/ on "[^"]*"/, "")}`))];

const KEY = /(name="difference_image_with_chromekey"[^]*?name="in2"[^>]* value=")[^"]*/;
// What decals must show of the pixels of their image, for other key colours too.
const OPACITIES = {
    "overlays-DirectionArrow": [
        { pixels: [[200, 120, 40, 0], [200, 120, 40, 64], [200, 120, 40, 128], [200, 120, 40, 255]], shown: [0, 64 / 255, 128 / 255, 1] },
    ],
    "overlays-InspectionLabel": [
        [255, 0, 255],
        [10, 3, 0],
        [128, 128, 128],
    ].map((key) => ({
        key,
        pixels: [[0, 0, 0], [1, 1, 1], [4, 0, 0], [0, 4, 0], [0, 0, 16]].map((step) => [
            ...key.map((value, i) => (value < 128 ? value + step[i] : value - step[i])),
            255,
        ]),
        shown: [0, 0, 1, 1, 1],
    })),
};
const OPACITY_TOLERANCE = 0.01;

/** Compares the opacity of pixels with what it must be. */
async function measure(page, all, problems) {
    for (const [key, cases] of Object.entries(OPACITIES)) {
        const { text, reference } = all.find((each) => each.key === key);
        for (const { key: keyColor, pixels, shown } of cases) {
            const keyed = keyColor ? text.replace(KEY, `$1${keyColor.map((value) => value / 255).join(", ")}`) : text;
            const found = await page.evaluate((question) => window.reader.show(...question), [keyed, reference, pixels]);
            const opacities = found.map(({ opacity }) => opacity);
            console.log(`${key} ${keyColor ?? ""}: opacities ${opacities.map((each) => each.toFixed(3)).join(" ")}`);
            if (opacities.some((each, i) => !(Math.abs(each - shown[i]) <= OPACITY_TOLERANCE))) problems.push(`${key}: the opacities should be ${shown}`);
            if (keyColor) continue;
            const [, quarter, half, whole] = found.map(({ color }) => color[0]);
            console.log(`${key}: the red of pixels that show a quarter and a half is ${(quarter / whole).toFixed(2)} and ${(half / whole).toFixed(2)} of that of whole ones`);
        }
    }
}

async function read(page, all, problems) {
    const saying = new Map();
    let loaded = 0;
    await forEachMaterial(all, problems, async ({ key, text, reference, shape }) => {
        const { log, problem } = await page.evaluate((question) => window.reader.read(...question), [text, reference, shape]);
        const errors = log.filter(({ severity }) => severity === "error");
        for (const line of lines(log)) saying.set(line, [...(saying.get(line) ?? []), key]);
        for (const { message } of errors) if (!KNOWN.test(message)) problems.push(`${key}: ${message}`);
        if (errors.length) return; // What is drawn without the node that is missing can be anything.
        ++loaded;
        if (problem) problems.push(`${key}: ${problem}`);
    });
    return { loaded, saying };
}

const all = await materials(path.join(process.argv[2], "standard"));
const references = new Map((await materials(path.join(process.argv[2], "reference"))).map(({ key, text }) => [key, text]));
for (const material of all) material.reference = references.get(material.key);
const problems = [];
const { loaded, saying } = await withScript("src/reader.js", "reader", problems, async (page) => {
    await page.evaluate((urls) => window.reader.open(urls), await images(all));
    const found = await read(page, all, problems);
    await measure(page, all, problems);
    return found;
});
for (const [line, keys] of [...saying].sort(([, some], [, others]) => others.length - some.length)) {
    console.log(`${keys.length} documents: ${line}${line.startsWith("error") ? ` (${keys.join(", ")})` : ""}`);
}
for (const problem of problems) console.error(`error: ${problem}`);
console.log(`${loaded} of ${all.length} flattened documents loaded in three.js's MaterialXLoader, ${problems.length} problems`);
process.exitCode = problems.length ? 1 : 0;
