// The data of the page. A page from the file system may read no files, but load scripts: each piece is one, which
// calls "preview.take" with its name and its content.

const waiting = new Map();

window.preview = {
    take(name, content) {
        waiting.get(name)?.(content);
        waiting.delete(name);
    },
};

/** Runs a script and forgets it. */
function run(file) {
    return new Promise((resolve, reject) => {
        const script = document.createElement("script");
        const end = (action) => () => {
            script.remove();
            action();
        };
        script.onload = end(resolve);
        script.onerror = end(() => reject(new Error(`${file} is not there`)));
        script.src = file;
        document.head.append(script);
    });
}

/**
 * The content of a piece.
 *
 * @param fresh loads it again although it may have been loaded before
 */
async function piece(name, fresh = false) {
    const content = new Promise((resolve) => waiting.set(name, resolve));
    await run(`data/${name}.js${fresh ? `?${Date.now()}` : ""}`);
    if (waiting.delete(name)) throw new Error(`data/${name}.js is damaged`);
    return content;
}
