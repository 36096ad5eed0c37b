// The converted materials that lie in a folder with one folder of each sample library, and their images.

import { readdir, readFile } from "node:fs/promises";
import path from "node:path";

const TYPES = { ".jpg": "image/jpeg", ".jpeg": "image/jpeg", ".png": "image/png", ".webp": "image/webp" };
const ENTITIES = { "&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;" };

export const escape = (text) => text.replace(/[&<>"]/g, (character) => ENTITIES[character]);
const unescape = (text) =>
    Object.entries(ENTITIES).reduceRight((result, [character, entity]) => result.replaceAll(entity, character), text);

/** The converted materials and overlays of all libraries, in the order of the reports; `shape` tells what they are. */
export async function materials(folder) {
    const found = [];
    for (const library of (await readdir(folder)).sort()) {
        const report = JSON.parse(await readFile(path.join(folder, library, "report.json"), "utf8"));
        for (const entry of report.materials ?? report.overlays) {
            if (!entry.document) continue;
            const file = path.resolve(folder, library, path.basename(entry.document));
            const { overlay: id, type: schema } = entry;
            found.push({ id, schema, shape: entry.type ?? "material", ...entry, key: `${library}-${entry.name}`, library, file, text: await readFile(file, "utf8") });
        }
    }
    return found;
}

const imageNames = (text) => [...text.matchAll(/type="filename"[^>]* value="([^"]+)"/g)].map((match) => unescape(match[1]));

/** The images that materials use, as data URLs by the names in their documents. */
export async function images(all) {
    const urls = {};
    for (const { file, text } of all) {
        for (const name of imageNames(text)) {
            const type = TYPES[path.extname(name).toLowerCase()];
            if (!type) throw new Error(`${file}: a browser cannot show ${name}`);
            const bytes = await readFile(path.resolve(path.dirname(file), name));
            const url = `data:${type};base64,${bytes.toString("base64")}`;
            if ((urls[name] ??= url) !== url) throw new Error(`two images are called ${name}`);
        }
    }
    return urls;
}
