// Fills the pictures of the page, those in view first.

import { createGenerator } from "./generator.js";
import { stageOf } from "./stage.js";
import { FALLBACK, Studio } from "./studio.js";

// "?width=" is the width of the pictures, "?only=" their choice.
const wishes = new URLSearchParams(location.search);
const width = wishes.get("width");
const only = wishes.get("only")?.split(",");

const cards = [...document.querySelectorAll("article")].filter((card) => {
    if (only && !only.includes(card.id)) card.remove();
    return card.isConnected;
});
const canvases = cards.map((card) => card.querySelector("canvas"));
const progress = document.querySelector("#progress");

function inView(card) {
    const { top, bottom, height } = card.getBoundingClientRect();
    return height > 0 && bottom > 0 && top < innerHeight;
}

function label(metres) {
    const [value, unit] = metres < 0.01 ? [metres * 1000, "mm"] : metres < 1 ? [metres * 100, "cm"] : [metres, "m"];
    return `${Number(value.toPrecision(3))} ${unit}`;
}

function fail(card, canvas, error) {
    card.classList.add("failed");
    card.querySelector(".error").textContent = error.message;
    const target = canvas.getContext("2d");
    target.fillStyle = `rgb(${FALLBACK})`;
    target.fillRect(0, 0, canvas.width, canvas.height);
    console.error(`${card.id}: ${error.message}`);
}

async function fill(card, generator, studio) {
    const text = card.querySelector("pre").textContent;
    const stage = await stageOf(generator, text, card.dataset.shape);
    const material = await generator.material(text);
    const canvas = card.querySelector("canvas");
    await studio.draw(material, stage, canvas);
    if (stage.textured) card.querySelector(".size").textContent = `tile ${label(stage.metres)}`;
}

async function fillAll() {
    const started = performance.now();
    const studio = new Studio(window.galleryImages);
    const generator = await createGenerator();
    const waiting = [...cards];
    if (width) canvases.forEach((canvas) => Object.assign(canvas, { width, height: width / 1.5 }));
    while (waiting.length) {
        const next = Math.max(waiting.findIndex(inView), 0);
        const [card] = waiting.splice(next, 1);
        try {
            await fill(card, generator, studio);
        } catch (error) {
            fail(card, card.querySelector("canvas"), error);
        }
        card.classList.add("drawn");
        progress.textContent = waiting.length ? `${waiting.length} to draw` : "";
        await new Promise((resolve) => setTimeout(resolve));
    }
    const empty = document.createElement("canvas");
    ({ width: empty.width, height: empty.height } = canvases[0]);
    studio.drawEmpty(empty);
    window.gallery = { empty: empty.toDataURL(), seconds: (performance.now() - started) / 1000 };
}

document.querySelector("#filter").addEventListener("input", (event) => {
    const words = event.target.value.toLowerCase().split(/\s+/);
    for (const card of cards) card.hidden = !words.every((word) => card.dataset.words.includes(word));
});

fillAll();
