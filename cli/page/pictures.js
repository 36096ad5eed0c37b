// Pictures for the tool, which has the browser print the page when it is loaded: with "#pictures=<first>-<end>" in its
// address the page is not loaded until these materials are drawn, and then has nothing but their pictures in it.

const ASKED = /^#pictures=(\d+)-(\d+)$/;

/** Keeps the page from being loaded. Null when nobody asks for pictures. */
function holdPage() {
    const asked = ASKED.exec(location.hash);
    if (!asked) return null;
    const frame = document.createElement("iframe");
    document.body.append(frame);
    frame.contentDocument.open();
    return { first: Number(asked[1]), end: Number(asked[2]), release: () => frame.contentDocument.close() };
}

function base64(blob) {
    return new Promise((resolve) => {
        const reader = new FileReader();
        reader.onload = () => resolve(reader.result.split(",")[1]);
        reader.readAsDataURL(blob);
    });
}

/** @param draw makes the picture of an item */
async function writePictures({ first, end, release }, items, draw) {
    const main = document.querySelector("main");
    main.replaceChildren();
    for (const [i, item] of [...items.entries()].slice(first, end)) {
        if (item.failed) continue;
        const entry = document.createElement("i");
        entry.id = `picture-${i}`;
        try {
            entry.textContent = await base64(await draw(item));
        } catch (error) {
            entry.className = "failed";
            entry.textContent = error.message;
        }
        main.append(entry);
    }
    release();
}
