// build.js <folder of the page>: writes the page of the documents that lie in folders beside it, each with the
// report of their conversion.

import { mkdir, readdir, readFile, writeFile } from "node:fs/promises";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { bundle } from "./bundle.js";

const here = path.dirname(fileURLToPath(import.meta.url));
const TYPES = { ".jpg": "image/jpeg", ".jpeg": "image/jpeg", ".png": "image/png", ".webp": "image/webp" };
const ENTITIES = { "&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;" };

const escape = (text) => text.replace(/[&<>"]/g, (character) => ENTITIES[character]);
const unescape = (text) =>
    Object.entries(ENTITIES).reduceRight((result, [character, entity]) => result.replaceAll(entity, character), text);

/** The converted materials of all libraries, in the order of the reports. */
async function materials(folder) {
    const found = [];
    for (const library of (await readdir(folder)).sort()) {
        const report = JSON.parse(await readFile(path.join(folder, library, "report.json"), "utf8"));
        for (const entry of report.materials ?? report) {
            if (!entry.document) continue;
            const file = path.resolve(folder, library, path.basename(entry.document));
            found.push({ ...entry, library, file, text: await readFile(file, "utf8") });
        }
    }
    return found;
}

const imageNames = (text) => [...text.matchAll(/type="filename"[^>]* value="([^"]+)"/g)].map((match) => unescape(match[1]));

async function images(all) {
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

function warning({ property, text }) {
    return `<p class="warning">${escape(property ? `${property}: ${text}` : text)}</p>`;
}

function card({ id, name, schema, library, warnings, text }) {
    const nodes = [...new Set(text.match(/kvor:\w+/g) ?? [])].sort();
    const words = [id, name, schema, library, ...nodes].join(" ").toLowerCase();
    return `<article id="${escape(`${library}-${name}`)}" data-words="${escape(words)}">
<figure>
<canvas width="720" height="480"></canvas><span class="size"></span>
<figcaption>
<h2>${escape(name)}</h2>
<p class="about">${escape(schema ?? "")} &middot; ${escape(id)} &middot; ${escape(library)}</p>
<p class="about">${escape(nodes.join(" "))}</p>
${warnings.map(warning).join("\n")}
<div class="error"></div>
</figcaption>
</figure>
<pre>${escape(text)}</pre>
</article>`;
}

const folder = process.argv[2];
const all = await materials(path.join(folder, "documents"));
const template = await readFile(path.join(here, "page.html"), "utf8");
const parts = {
    style: await readFile(path.join(here, "page.css"), "utf8"),
    count: String(all.length),
    cards: all.map(card).join("\n"),
};
await mkdir(folder, { recursive: true });
await writeFile(path.join(folder, "index.html"), template.replace(/\{\{(\w+)\}\}/g, (_, part) => parts[part]));
await writeFile(path.join(folder, "images.js"), `window.galleryImages = ${JSON.stringify(await images(all))};\n`);
await bundle(path.join(here, "src/page.js"), path.join(folder, "gallery.js"));
console.log(`${all.length} materials`);
