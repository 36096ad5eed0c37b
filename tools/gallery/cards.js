// The materials on a page of `vyr-mtlx preview`.

/** What is shown of a card, as a data URL. Runs in the page. */
function pictureOf(card) {
    const image = card.querySelector("img");
    if (!image) return null;
    const canvas = Object.assign(document.createElement("canvas"), { width: image.naturalWidth, height: image.naturalHeight });
    canvas.getContext("2d").drawImage(image, 0, 0);
    return canvas.toDataURL();
}

/**
 * The pictures on a page, one after the other: brought into view, a material is drawn.
 *
 * @param names of the wanted materials; null: all
 */
export async function* pictures(page, names = null) {
    for (const card of await page.locator("article").all()) {
        const name = await card.getAttribute("data-name");
        if (names && !names.includes(name)) continue;
        await card.scrollIntoViewIfNeeded();
        await card.and(page.locator(".drawn")).waitFor({ timeout: 180_000 });
        await card.locator("img").first().waitFor({ timeout: 10_000 }).catch(() => {});
        const size = await card.locator(".size").textContent();
        yield { name, size, picture: await card.evaluate(pictureOf), error: await card.locator(".error").allTextContents() };
    }
}
