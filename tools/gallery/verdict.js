// Whether a picture shows a material. Runs in a page: it must not use anything outside itself.

/**
 * Of RGBA pixels of a picture and of the same scene without the material: what is wrong, or null; and the figures.
 *
 * A picture is right when a good part of it differs from the empty scene, is not black and has no pixel to speak of
 * in the colour of failures.
 */
export function verdict(pixels, empty, fallback) {
    let changed = 0;
    let black = 0;
    let failed = 0;
    let light = 0;
    for (let i = 0; i < pixels.length; i += 4) {
        const [r, g, b] = pixels.subarray(i, i + 3);
        const difference = Math.max(Math.abs(r - empty[i]), Math.abs(g - empty[i + 1]), Math.abs(b - empty[i + 2]));
        if (difference <= 6) continue;
        ++changed;
        light += 0.2126 * r + 0.7152 * g + 0.0722 * b;
        if (Math.max(r, g, b) < 4) ++black;
        if (Math.abs(r - fallback[0]) + Math.abs(g - fallback[1]) + Math.abs(b - fallback[2]) < 30) ++failed;
    }
    const total = pixels.length / 4;
    const figures = { changed: changed / total, black: black / total, light: changed ? light / changed : 0 };
    let problem = null;
    if (failed > total * 0.01) problem = "the colour of failures";
    else if (figures.changed < 0.06) problem = "nothing but the studio";
    else if (black > changed * 0.7) problem = "black";
    return { problem, ...figures };
}
