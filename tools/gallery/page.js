// page.js <folder of the page>: opens the page in Chromium and checks every picture; writes them to pictures/ in the
// folder.

import { mkdir, rm, writeFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage } from "./browser.js";
import { verdict } from "./verdict.js";

const FALLBACK = [255, 0, 255];
const WIDTH = 360;

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

function judge(page, picture) {
    return page.evaluate(
        async ([source, url, fallback]) => {
            const pixels = async (address) => {
                const image = await createImageBitmap(await (await fetch(address)).blob());
                const target = new OffscreenCanvas(image.width, image.height).getContext("2d");
                target.drawImage(image, 0, 0);
                return target.getImageData(0, 0, image.width, image.height).data;
            };
            const check = new Function(`return ${source}`)();
            return check(await pixels(url), await pixels(window.gallery.empty), fallback);
        },
        [verdict.toString(), picture, FALLBACK],
    );
}

async function checkPage(page, folder, problems) {
    const pictures = path.join(folder, "pictures");
    await rm(pictures, { recursive: true, force: true });
    await mkdir(pictures);
    const cards = await page.locator("article").all();
    for (const card of cards) {
        const id = await card.getAttribute("id");
        const screenshot = await card.locator("canvas").screenshot();
        await writeFile(path.join(pictures, `${id}.png`), screenshot);
        const picture = `data:image/png;base64,${screenshot.toString("base64")}`;
        const { problem, changed, light } = await judge(page, picture);
        console.log(`${id}: ${(100 * changed).toFixed(0)} % of the picture, mean ${light.toFixed(0)} of 255`);
        if (problem) problems.push(`${id}: ${problem}`);
    }
    return { count: cards.length, seconds: await page.evaluate(() => window.gallery.seconds) };
}

checkVerdict();
const folder = process.argv[2];
const problems = [];
const url = `${pathToFileURL(path.resolve(folder, "index.html"))}?width=${WIDTH}`;
const { count, seconds } = await withPage(url, "gallery", problems, (page) => checkPage(page, folder, problems));
for (const problem of problems) console.error(`error: ${problem}`);
console.log(`${count} materials drawn in ${seconds.toFixed(0)} s, ${problems.length} problems`);
process.exitCode = problems.length ? 1 : 0;
