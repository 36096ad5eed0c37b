// What the page shows of one material. All that comes from libraries is text, never markup.

function add(parent, tag, className, text) {
    const element = document.createElement(tag);
    if (className) element.className = className;
    if (text) element.textContent = text;
    parent.append(element);
    return element;
}

function label(metres) {
    const [value, unit] = metres < 0.01 ? [metres * 1000, "mm"] : metres < 1 ? [metres * 100, "cm"] : [metres, "m"];
    return `${Number(value.toPrecision(3))} ${unit}`;
}

class Card {
    /** @param item entry of the list: piece, name, id, schema, file, shape, failed, messages */
    constructor(item) {
        this.item = item;
        this.words = [item.name, item.id, item.schema, item.file, item.nodes, ...item.messages].join(" ").toLowerCase();
        this.element = document.createElement("article");
        this.element.dataset.name = item.name;
        const figure = add(this.element, "figure");
        this.picture = add(figure, "div", "picture");
        this.size = add(figure, "span", "size");
        const caption = add(figure, "figcaption");
        add(caption, "h2", "", item.name);
        add(caption, "p", "about", `${item.schema} · ${item.id} · ${item.file}`);
        add(caption, "p", "about", item.nodes);
        for (const message of item.messages) add(caption, "p", item.failed ? "error" : "warning", message);
        this.error = add(caption, "p", "error");
        this.text = add(this.element, "pre");
        if (item.failed) this.element.classList.add("drawn");
    }

    /** Shows the picture, and how wide its tile is. */
    show(blob, { metres, textured }) {
        const image = document.createElement("img");
        image.alt = "";
        image.src = URL.createObjectURL(blob);
        this.picture.replaceChildren(image);
        this.size.textContent = textured ? `tile ${label(metres)}` : "";
        this.element.classList.add("drawn");
    }

    fail(message) {
        this.error.textContent = message;
        this.element.classList.add("drawn", "failed");
    }

    forget() {
        const image = this.picture.querySelector("img");
        if (image) URL.revokeObjectURL(image.src);
        this.element.remove();
    }
}
