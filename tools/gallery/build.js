// build.js <folder of the page>: writes the page of the documents that lie in folders beside it, each with the
// report of their conversion.

import { mkdir, readFile, writeFile } from "node:fs/promises";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { bundle } from "./bundle.js";
import { escape, images, materials } from "./documents.js";

const here = path.dirname(fileURLToPath(import.meta.url));

function warning({ property, text }) {
    return `<p class="warning">${escape(property ? `${property}: ${text}` : text)}</p>`;
}

function card({ key, id, name, schema, shape, library, warnings, text }) {
    const nodes = [...new Set(text.match(/kvor:\w+/g) ?? [])].sort();
    const words = [id, name, schema, library, ...nodes].join(" ").toLowerCase();
    return `<article id="${escape(key)}" data-shape="${shape}" data-words="${escape(words)}">
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
