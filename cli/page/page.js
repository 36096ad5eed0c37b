// The list of materials. What comes into view is loaded, and drawn one after the other, the nearest first.

const NEAR = "800px";
const POLL = 700;

const main = document.querySelector("main");
const progress = document.querySelector("#progress");
const filter = document.querySelector("#filter");
/** By the piece that has their documents, whose name changes with all that is shown of them. */
let cards = new Map();
const near = new Set();
let painter;
let drawing = false;

const observer = new IntersectionObserver(
    (entries) => {
        for (const { target, isIntersecting } of entries) {
            near[isIntersecting ? "add" : "delete"](target.card);
            if (isIntersecting) load(target.card);
        }
        drawAll();
    },
    { rootMargin: NEAR },
);

function distance({ element }) {
    const { top, bottom } = element.getBoundingClientRect();
    return Math.abs((top + bottom) / 2 - innerHeight / 2);
}

function next() {
    const waiting = [...near].filter(({ element, item }) => !element.classList.contains("drawn") && !item.failed);
    progress.textContent = waiting.length ? "drawing" : "";
    return waiting.sort((a, b) => distance(a) - distance(b))[0];
}

/** Between two pictures the page gets its turn. */
const breathe = () => new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve)));

function load(card) {
    card.content ??= piece(card.item.piece).then((content) => {
        card.text.textContent = content.text;
        return content;
    });
    return card.content;
}

async function drawnBy(painting, text, images, shape) {
    return painting.draw(text, shape, new Map(images.map(({ name, piece: key }) => [name, key])));
}

async function draw(card) {
    try {
        const { text, images } = await load(card);
        const painting = await painter;
        if (!painting) return card.element.classList.add("drawn");
        await breathe();
        const { blob, stage } = await drawnBy(painting, text, images, card.item.shape);
        card.show(blob, stage);
    } catch (error) {
        card.fail(error.message);
        console.error(`${card.item.name}: ${error.message}`);
    }
}

async function drawAll() {
    if (drawing) return;
    drawing = true;
    for (let card = next(); card; card = next()) {
        await draw(card);
        await breathe();
    }
    drawing = false;
}

function applyFilter() {
    const words = filter.value.toLowerCase().split(/\s+/);
    for (const card of cards.values()) card.element.hidden = !words.every((word) => card.words.includes(word));
}

/** Shows a list; cards whose materials are as before stay. */
function show({ about, items }) {
    document.querySelector("#about").textContent = about;
    const before = cards;
    cards = new Map(items.map((item) => [item.piece, before.get(item.piece) ?? new Card(item)]));
    for (const [key, card] of before) {
        if (cards.has(key)) continue;
        observer.unobserve(card.element);
        near.delete(card);
        card.forget();
    }
    // What is in its place already is not moved.
    [...cards.values()].forEach(({ element }, i) => {
        if (main.children[i] !== element) main.insertBefore(element, main.children[i] ?? null);
    });
    for (const [key, card] of cards) {
        if (before.has(key)) continue;
        card.element.card = card;
        observer.observe(card.element);
    }
    applyFilter();
}

function tell(problem) {
    const line = document.querySelector("#problem");
    line.textContent = problem;
    line.hidden = !problem;
}

/** Looks whether the tool has written another version; never ends. */
async function watch(version) {
    for (;;) {
        await new Promise((resolve) => setTimeout(resolve, POLL));
        const now = await piece("version", true).catch(() => null);
        if (!now || now.version === version) continue;
        version = now.version;
        tell(now.problem);
        if (!now.problem) show(await piece("list", true));
    }
}

async function createPainter() {
    await run("viewer/painter.js");
    const { files } = await piece("definitions");
    return window.preview.createPainter(files.map(({ name, text }) => [name, text]), piece);
}

async function start() {
    const held = holdPage();
    const list = await piece("list");
    if (list.draws) painter = createPainter();
    if (held) return writePictures(held, list.items, pictureOf);
    show(list);
    if (list.watch) watch(list.version);
}

async function pictureOf({ piece: name, shape }) {
    const { text, images } = await piece(name);
    return (await drawnBy(await painter, text, images, shape)).blob;
}

/** For tests: the studio without a material. */
window.preview.empty = async () => (await painter).drawEmpty();

filter.addEventListener("input", applyFilter);
start().catch((error) => tell(error.message));
