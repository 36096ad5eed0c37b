// build.js <folder> <MaterialX's license>: packs what draws on the page of `vyr-mtlx preview` into one script, painter.js, and
// the licenses of its parts.

import { mkdir, readFile, writeFile } from "node:fs/promises";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { bundle } from "./bundle.js";

const here = path.dirname(fileURLToPath(import.meta.url));
const from = (name) => path.join(here, name);

const [folder, materialX] = process.argv.slice(2);
const to = (name) => path.join(folder, name);
const licenses = { "three.js": from("node_modules/three/LICENSE"), MaterialX: materialX };

await mkdir(folder, { recursive: true });
await bundle(from("src/painter.js"), to("painter.js"));
const texts = Object.entries(licenses).map(async ([name, file]) => `painter.js has parts of ${name}:\n\n${await readFile(file, "utf8")}`);
await writeFile(to("licenses.txt"), (await Promise.all(texts)).join("\n\n"));
