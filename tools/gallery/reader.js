// reader.js <folder of the page>: loads the flattened documents, which are in forms/standard of the folder, in
// three.js's MaterialXLoader, and says what that leaves out.

import path from "node:path";
import { forEachMaterial, withScript } from "./browser.js";
import { images, materials } from "./documents.js";

// What the loader is known to lack: a node for the transform of an image's colours behind an amount or an inversion.
const KNOWN = /Unsupported MaterialX node category "\w+_to_lin_rec709"/;

/** Lines of the loader's log without the names of nodes. */
const lines = (log) => [...new Set(log.map(({ severity, message }) => `${severity}: ${message.replace(/ on "[^"]*"/, "")}`))];

async function read(page, all, problems) {
    const saying = new Map();
    let loaded = 0;
    await forEachMaterial(all, problems, async ({ key, text }) => {
        const { log, problem } = await page.evaluate((document) => window.reader.read(document), text);
        const errors = log.filter(({ severity }) => severity === "error");
        for (const line of lines(log)) saying.set(line, [...(saying.get(line) ?? []), key]);
        for (const { message } of errors) if (!KNOWN.test(message)) problems.push(`${key}: ${message}`);
        if (errors.length) return; // What is drawn without the node that is missing can be anything.
        ++loaded;
        if (problem) problems.push(`${key}: ${problem}`);
    });
    return { loaded, saying };
}

const all = await materials(path.join(process.argv[2], "forms/standard"));
const problems = [];
const { loaded, saying } = await withScript("src/reader.js", "reader", problems, async (page) => {
    await page.evaluate((urls) => window.reader.open(urls), await images(all));
    return read(page, all, problems);
});
for (const [line, keys] of [...saying].sort(([, some], [, others]) => others.length - some.length)) {
    console.log(`${keys.length} documents: ${line}${line.startsWith("error") ? ` (${keys.join(", ")})` : ""}`);
}
for (const problem of problems) console.error(`error: ${problem}`);
console.log(`${loaded} of ${all.length} flattened documents loaded in three.js's MaterialXLoader, ${problems.length} problems`);
process.exitCode = problems.length ? 1 : 0;
