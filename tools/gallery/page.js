// page.js <folder of a page>...: opens pages in Chromium and checks every picture; writes them to pictures/ in their
// folders.

import { mkdir, rm, writeFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage } from "./browser.js";
import { pictures } from "./cards.js";
import { verdict } from "./verdict.js";

const FALLBACK = [255, 0, 255];

// The check itself must tell a material from a failure.
function checkVerdict() {
    const plain = (r, g, b) => Uint8ClampedArray.from({ length: 4000 }, (_, i) => [r, g, b, 255][i % 4]);
    const studio = plain(120, 120, 120);
    const cases = [
        [plain(200, 180, 20), null],
        [plain(0, 0, 0), "black"],
        [plain(...FALLBACK), "the colour of failures"],
        [plain(121, 120, 119), "nothing but the studio"],
    ];
    for (const [pixels, expected] of cases) {
        const { problem } = verdict(pixels, studio, FALLBACK);
        if (problem !== expected) throw new Error(`the check says "${problem}" where "${expected}" is right`);
    }
}

/** Runs in the page, with the check in its text: the page lets no script make others. */
async function judgeIn(check, picture, empty, fallback) {
    const pixels = async (address) => {
        const image = Object.assign(new Image(), { src: address });
        await image.decode();
        const target = new OffscreenCanvas(image.width, image.height).getContext("2d");
        target.drawImage(image, 0, 0);
        return target.getImageData(0, 0, image.width, image.height).data;
    };
    return check(await pixels(picture), await pixels(empty), fallback);
}

const judge = (page, picture, empty) =>
    page.evaluate(`(${judgeIn})(${verdict}, ${JSON.stringify(picture)}, ${JSON.stringify(empty)}, ${JSON.stringify(FALLBACK)})`);

async function checkPage(page, folder, problems) {
    const target = path.join(folder, "pictures");
    await rm(target, { recursive: true, force: true });
    await mkdir(target);
    const empty = await page.evaluate(async () => {
        const reader = new FileReader();
        const read = new Promise((resolve) => (reader.onload = () => resolve(reader.result)));
        reader.readAsDataURL(await window.preview.empty());
        return read;
    });
    let count = 0;
    for await (const { name, picture, error } of pictures(page)) {
        ++count;
        if (!picture) {
            problems.push(`${name}: no picture: ${error.join(" ")}`);
            continue;
        }
        await writeFile(path.join(target, `${name}.png`), Buffer.from(picture.split(",")[1], "base64"));
        const { problem, changed, light } = await judge(page, picture, empty);
        console.log(`${name}: ${(100 * changed).toFixed(0)} % of the picture, mean ${light.toFixed(0)} of 255`);
        if (problem) problems.push(`${name}: ${problem}`);
    }
    return count;
}

checkVerdict();
const problems = [];
const started = performance.now();
let count = 0;
for (const folder of process.argv.slice(2)) {
    const url = pathToFileURL(path.resolve(folder, "index.html")).href;
    count += await withPage(url, "preview", problems, (page) => checkPage(page, folder, problems));
}
for (const problem of problems) console.error(`error: ${problem}`);
console.log(`${count} materials drawn in ${((performance.now() - started) / 1000).toFixed(0)} s, ${problems.length} problems`);
process.exitCode = problems.length ? 1 : 0;
