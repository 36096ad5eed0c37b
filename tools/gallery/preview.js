// preview.js <vyr-mtlx>: a page of 1,000 materials, made by the tool and opened in Chromium from the file system. It must open in
// time, stay responsive while pictures are drawn, run nothing that a library says, and follow its library.

import { spawn, spawnSync } from "node:child_process";
import { mkdtemp, readdir, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { pathToFileURL } from "node:url";
import { withPage } from "./browser.js";

const COUNT = 1000;
/** Milliseconds until all materials are listed and the first can be read, and until the page answers to what is typed. */
const OPEN = 3000;
const ANSWER = 500;
const HOSTILE = ['<img src=x onerror="window.hacked=1">', "</script><script>window.hacked=1</script>", '"><svg onload=window.hacked=1>'];

const tool = path.resolve(process.argv[2]);
const problems = [];
const check = (holds, problem) => holds || problems.push(problem);

function library(count, color = [0.2, 0.4, 0.6]) {
    const materials = Array.from({ length: count }, (_, i) => ({
        id: `m${i}${HOSTILE[i] ?? ""}`,
        schema: "GenericSchema",
        displayName: `Material ${i} ${HOSTILE[i] ?? ""}`,
        properties: { generic_diffuse: [color[0], color[1], (i % 100) / 100], generic_glossiness: (i % 7) / 10 },
    }));
    return JSON.stringify({ assetLibrary: 1, materials });
}

function until(page, condition, argument, patience) {
    return page.waitForFunction(condition, argument, { timeout: patience, polling: 20 });
}

/** How long the page takes to do something. */
async function timed(action) {
    const started = performance.now();
    await action();
    return performance.now() - started;
}

const textOf = (i) => document.querySelectorAll("article")[i]?.querySelector("pre").textContent.includes("<materialx");

async function checkList(page) {
    check((await page.locator("article").count()) === COUNT, "some materials are not listed");
    check(await page.evaluate(() => !("hacked" in window)), "text of a library was run");
    check((await page.locator("article script, article svg, article [onerror]").count()) === 0, "text of a library became markup");
    for (const text of HOSTILE) check((await page.locator("h2").allTextContents()).some((name) => name.includes(text)), `the name ${text} is not shown`);
}

/** What a person does while pictures are drawn. */
async function checkAnswers(page) {
    const typed = await timed(async () => {
        await page.fill("#filter", "material 777");
        await until(page, () => document.querySelectorAll("article:not([hidden])").length === 1, null, 30_000);
    });
    await page.fill("#filter", "");
    const scrolled = await timed(async () => {
        await page.evaluate(() => scrollTo(0, document.body.scrollHeight));
        await until(page, textOf, COUNT - 1, 30_000);
    });
    console.log(`typed text is answered after ${typed.toFixed(0)} ms, the end of the page is there after ${scrolled.toFixed(0)} ms`);
    check(typed < ANSWER && scrolled < 2 * ANSWER, "the page is slow while pictures are drawn");
    const loaded = await page.evaluate(() => [...document.querySelectorAll("pre")].filter((text) => text.textContent).length);
    check(loaded < COUNT / 4, `${loaded} documents are loaded, most of which nobody has looked at`);
    await until(page, () => document.querySelectorAll("article")[999].querySelector("img"), null, 170_000);
}

async function checkThousand(folder) {
    await writeFile(path.join(folder, "thousand.json"), library(COUNT));
    const made = spawnSync(tool, ["preview", "thousand.json", "-o", "thousand", "-q"], { cwd: folder, encoding: "utf8" });
    check(made.status === 0, `preview failed: ${made.stderr}`);
    const ready = () => {
        const articles = document.querySelectorAll("article");
        if (articles.length < 1000 || !articles[0].querySelector("pre").textContent) return false;
        window.listed ??= performance.now();
        return true;
    };
    await withPage(`${pathToFileURL(path.join(folder, "thousand/index.html"))}`, "preview", problems, async (page) => {
        await until(page, ready, null, 60_000);
        const opened = await page.evaluate(() => window.listed);
        console.log(`${COUNT} materials are listed, and the first can be read, after ${opened.toFixed(0)} ms`);
        check(opened < OPEN, "the page opens slowly");
        await checkList(page);
        await checkAnswers(page);
    });
}

async function checkWatch(folder) {
    const file = path.join(folder, "few.json");
    await writeFile(file, library(3));
    const watching = spawn(tool, ["preview", "few.json", "-o", "few", "-q", "--watch"], { cwd: folder, stdio: ["ignore", "pipe", "inherit"] });
    try {
        await new Promise((resolve) => watching.stdout.once("data", resolve));
        await withPage(`${pathToFileURL(path.join(folder, "few/index.html"))}`, "preview", problems, async (page) => {
            await until(page, () => document.querySelectorAll("article img").length === 3, null, 170_000);
            await page.evaluate(() => (document.querySelectorAll("article")[2].kept = true));
            await writeFile(file, library(3).replace('"Material 1 ', '"Changed 1 '));
            await until(page, () => document.querySelectorAll("h2")[1]?.textContent.startsWith("Changed"), null, 30_000);
            check(await page.evaluate(() => document.querySelectorAll("article")[2].kept), "a material that did not change was made anew");
            await writeFile(file, "{");
            await until(page, () => document.querySelector("#problem").textContent, null, 30_000);
        });
    } finally {
        watching.kill();
    }
}

async function checkPictures(folder) {
    await writeFile(path.join(folder, "four.json"), library(4));
    const drawn = spawnSync(tool, ["preview", "four.json", "-o", "four", "-q", "--pictures"], { cwd: folder, encoding: "utf8" });
    check(drawn.status === 0, `--pictures failed: ${drawn.stderr}`);
    const names = await readdir(path.join(folder, "four/pictures"));
    check(names.length === 4 && names.every((name) => name.endsWith(".png")), `pictures are ${names}`);
}

const folder = await mkdtemp(path.join(tmpdir(), "preview-"));
try {
    await checkThousand(folder);
    await checkWatch(folder);
    await checkPictures(folder);
} finally {
    await rm(folder, { recursive: true });
}
for (const problem of problems) console.error(`error: ${problem}`);
process.exitCode = problems.length ? 1 : 0;
