// Packs a script and all that it needs, the compiled MaterialX and the kvor definitions included, into one file
// that a page can load from the file system.

import { readdir, readFile } from "node:fs/promises";
import path from "node:path";
import { build } from "esbuild";

// MaterialX also comes as a smaller module without shader generation; the page has no use for it.
const UNUSED = "JsMaterialXCore";

const kinds = {
    async url(file) {
        return file.includes(UNUSED) ? { contents: "", loader: "text" } : { contents: await readFile(file), loader: "dataurl" };
    },
    async text(file) {
        return { contents: await readFile(file), loader: "text" };
    },
    /** The MaterialX documents of a folder, by name. */
    async files(folder) {
        const names = (await readdir(folder)).filter((name) => name.endsWith(".mtlx")).sort();
        const texts = names.map(async (name) => [name, await readFile(path.join(folder, name), "utf8")]);
        return { contents: JSON.stringify(Object.fromEntries(await Promise.all(texts))), loader: "json" };
    },
};

// Imports of the form "file?kind".
const embedding = {
    name: "embedding",
    setup(bundler) {
        bundler.onResolve({ filter: /\?(url|text|files)$/ }, ({ path: name, resolveDir }) => {
            const [file, kind] = name.split("?");
            return { path: path.resolve(resolveDir, file), namespace: kind };
        });
        for (const [kind, load] of Object.entries(kinds)) {
            bundler.onLoad({ filter: /./, namespace: kind }, (file) => load(file.path));
        }
    },
};

export async function bundle(from, to) {
    await build({
        entryPoints: [from],
        outfile: to,
        bundle: true,
        format: "iife",
        minify: true,
        logLevel: "warning",
        plugins: [embedding],
        external: ["fs", "path", "crypto", "module", "process", "node:*"], // Reached only outside a browser.
    });
}
