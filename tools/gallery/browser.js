// The Chromium of the machine, without a window, a graphics card or a network.

import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { chromium } from "playwright-core";
import { bundle } from "./bundle.js";

const FLAGS = [
    "--no-sandbox", "--disable-gpu", "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
    "--disable-quic", "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
];
/** Longest wait for one picture. */
const PATIENCE = 180_000;
/** Longest wait for an answer, which takes up to three pictures. */
const ANSWER = 3 * PATIENCE;

/** The browser hangs: there is no use in asking it for more. */
class Unresponsive extends Error {}

function withinTime(promise, milliseconds) {
    let timer;
    const late = new Promise((_, reject) => {
        const error = new Unresponsive(`the browser gave no answer within ${milliseconds / 1000} s`);
        timer = setTimeout(reject, milliseconds, error);
    });
    return Promise.race([promise, late]).finally(() => clearTimeout(timer));
}

/** Playwright itself waits without end for what a page evaluates. */
function limitAnswers(page) {
    const evaluate = page.evaluate.bind(page);
    page.evaluate = (...question) => withinTime(evaluate(...question), ANSWER);
}

/** Does something with each material. What fails is added to `problems`; a browser that hangs ends it. */
export async function forEachMaterial(materials, problems, action) {
    for (const material of materials) {
        try {
            await action(material);
        } catch (error) {
            problems.push(`${material.key}: ${error.message}`);
            if (error instanceof Unresponsive) return;
        }
    }
}

/**
 * Opens a page from the file system in a fresh profile and waits until it has set `ready`, a property of its
 * window. What goes wrong there, a request to anywhere else included, is added to `problems`.
 */
export async function withPage(url, ready, problems, action) {
    const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: FLAGS });
    try {
        const page = await browser.newPage({ viewport: { width: 1560, height: 1000 } });
        limitAnswers(page);
        page.on("console", (message) => {
            if (message.type() === "error") problems.push(`console: ${message.text()}`);
        });
        page.on("pageerror", (error) => problems.push(`page: ${error.message}`));
        page.on("request", (request) => {
            if (!/^(file|data|blob):/.test(request.url())) problems.push(`request: ${request.url()}`);
        });
        await page.goto(url, { timeout: PATIENCE });
        await untilReady(page, ready);
        return await action(page);
    } finally {
        await browser.close();
    }
}

/** The same with a page that has nothing but a script of this folder in it. */
export async function withScript(script, ready, problems, action) {
    const work = await mkdtemp(path.join(tmpdir(), "gallery-"));
    try {
        await bundle(path.join(path.dirname(fileURLToPath(import.meta.url)), script), path.join(work, "script.js"));
        const page = path.join(work, "page.html");
        await writeFile(page, '<!doctype html><meta charset="utf-8"><link rel="icon" href="data:,"><body><script src="script.js"></script>');
        return await withPage(pathToFileURL(page).href, ready, problems, action);
    } finally {
        await rm(work, { recursive: true });
    }
}

async function untilReady(page, ready) {
    for (let drawn = -1; ; ) {
        const state = await page.evaluate((name) => [name in window, document.querySelectorAll(".drawn").length], ready);
        if (state[0]) return;
        if (state[1] === drawn) throw new Error(`no picture within ${PATIENCE / 1000} s after the first ${drawn}`);
        drawn = state[1];
        const next = ([name, count]) => name in window || document.querySelectorAll(".drawn").length > count;
        await page.waitForFunction(next, [ready, drawn], { timeout: PATIENCE, polling: 500 }).catch(() => {});
    }
}
