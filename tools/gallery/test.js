// test.js <folder of the page> [<contact sheet>]: opens the page in Chromium and checks every picture; writes them to
// pictures/ in the folder.

import { mkdir, rm, writeFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage } from "./browser.js";
import { SELECTION } from "./selection.js";
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

function chosen(drawn) {
    const missing = SELECTION.filter((id) => !drawn[id]);
    if (missing.length) throw new Error(`not among the samples: ${missing.join(", ")}`);
    return SELECTION.map((id) => drawn[id]);
}

/** Pictures with their names, side by side, as a WebP image. */
function contactSheet(page, entries, columns) {
    return page.evaluate(
        async ([sources, across]) => {
            const load = async ({ picture }) => createImageBitmap(await (await fetch(picture)).blob());
            const images = await Promise.all(sources.map(load));
            const { width, height } = images[0];
            const canvas = new OffscreenCanvas(width * across, height * Math.ceil(images.length / across));
            const target = canvas.getContext("2d");
            target.font = "13px sans-serif";
            images.forEach((image, i) => {
                const [x, y] = [width * (i % across), height * Math.floor(i / across)];
                target.drawImage(image, x, y);
                target.fillStyle = "#fffc";
                target.fillText(sources[i].name, x + 12, y + height - 12);
            });
            const reader = new FileReader();
            reader.readAsDataURL(await canvas.convertToBlob({ type: "image/webp", quality: 0.9 }));
            await new Promise((resolve) => (reader.onload = resolve));
            return reader.result;
        },
        [entries, columns],
    );
}

const bytes = (url) => Buffer.from(url.slice(url.indexOf(",") + 1), "base64");

async function checkPage(page, folder, problems, sheet) {
    const pictures = path.join(folder, "pictures");
    await rm(pictures, { recursive: true, force: true });
    await mkdir(pictures);
    const drawn = {};
    for (const card of await page.locator("article").all()) {
        const id = await card.getAttribute("id");
        const screenshot = await card.locator("canvas").screenshot();
        await writeFile(path.join(pictures, `${id}.png`), screenshot);
        const picture = `data:image/png;base64,${screenshot.toString("base64")}`;
        drawn[id] = { picture, name: await card.locator("h2").textContent() };
        const { problem, changed, light } = await judge(page, picture);
        console.log(`${id}: ${(100 * changed).toFixed(0)} % of the picture, mean ${light.toFixed(0)} of 255`);
        if (problem) problems.push(`${id}: ${problem}`);
    }
    if (sheet) await writeFile(sheet, bytes(await contactSheet(page, chosen(drawn), 4)));
    return { count: Object.keys(drawn).length, seconds: await page.evaluate(() => window.gallery.seconds) };
}

checkVerdict();
const [folder, sheet] = process.argv.slice(2);
const problems = [];
const url = `${pathToFileURL(path.resolve(folder, "index.html"))}?width=${WIDTH}`;
const { count, seconds } = await withPage(url, "gallery", problems, (page) => checkPage(page, folder, problems, sheet));
for (const problem of problems) console.error(`error: ${problem}`);
console.log(`${count} materials drawn in ${seconds.toFixed(0)} s, ${problems.length} problems`);
process.exitCode = problems.length ? 1 : 0;
