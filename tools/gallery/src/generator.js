// MaterialX itself, compiled for the browser: documents in, GLSL out.

import MaterialX from "../node_modules/@needle-tools/materialx/bin/JsMaterialXGenShader.js";
import wasm from "../node_modules/@needle-tools/materialx/bin/JsMaterialXGenShader.wasm?url";
import standardLibraries from "../node_modules/@needle-tools/materialx/bin/JsMaterialXGenShader.data.txt?url";

const LUMINANCE = "luminance";
const PLAIN = "material";

/**
 * Loads MaterialX with its standard libraries and the kvor definitions.
 *
 * @param definitions pairs of the names of these files and their texts
 */
export async function createGenerator(definitions) {
    const mx = await MaterialX({
        locateFile: (name) => (name.endsWith(".wasm") ? wasm : standardLibraries),
    });
    // The definitions join the standard libraries in MaterialX's own file system before anything is
    // loaded: it keeps the units that it finds at the first load.
    mx.FS_createPath("/libraries", "kvor", true, true);
    for (const [name, text] of definitions) {
        mx.FS_createDataFile("/libraries/kvor", name, new TextEncoder().encode(text), true, false, true);
    }
    const essl = mx.EsslShaderGenerator.create();
    const context = new mx.GenContext(essl);
    const library = mx.loadStandardLibraries(context);
    const options = context.getOptions();
    options.targetDistanceUnit = "meter";
    options.shaderInterfaceType = mx.ShaderInterfaceType.SHADER_INTERFACE_COMPLETE;
    options.hwSpecularEnvironmentMethod = mx.HwSpecularEnvironmentMethod.SPECULAR_ENVIRONMENT_FIS;
    options.hwSrgbEncodeOutput = false; // left to three.js
    options.hwMaxActiveLightSources = 1;
    const luminances = luminanceScales(library);
    for (const definition of library.getNodeDefs()) definition.getInputs().forEach(forgetLuminance);
    return new Generator(mx, essl, context, library, luminances);
}

class Generator {
    constructor(mx, essl, context, library, luminances) {
        Object.assign(this, { mx, essl, context, library, luminances });
    }

    /**
     * Of the material of a document: shader of both stages, and whether the surface has holes or lets the
     * background through.
     *
     * @param nameOf gives the name that an image is asked for by
     */
    async material(text, nameOf = (name) => name) {
        const document = this.mx.createDocument();
        await this.#reported(() => this.mx.readFromXmlString(document, text, ""));
        document.setDataLibrary(this.library);
        this.#convertLuminances(document);
        renameImages(document, nameOf);
        const [node] = document.getMaterialNodes();
        if (!node) throw new Error("the document has no material");
        usePlainNames(document, node.getName());
        return this.#reported(() => this.#generate(node));
    }

    #generate(node) {
        const transparent = this.mx.isTransparentSurface(node, this.essl.getTarget());
        this.context.getOptions().hwTransparency = transparent;
        const shader = this.essl.generate(node.getName(), node, this.context);
        return { shader, transparent };
    }

    // MaterialX converts lengths and angles itself. Its build for browsers has no way to add a converter
    // for a further type of unit, and refuses to generate anything that has one, so luminances are brought
    // to candela per square metre before.
    #convertLuminances(document) {
        for (const element of document.traverseTree()) {
            if (element.getAttribute("unittype") !== LUMINANCE) continue;
            const scale = this.luminances.get(element.getAttribute("unit")) ?? 1;
            element.setAttribute("value", String(Number(element.getAttribute("value")) * scale));
            forgetLuminance(element);
        }
    }

    // An exception of the compiled code arrives as a number that only the module can explain.
    async #reported(action) {
        try {
            return await action();
        } catch (error) {
            throw typeof error === "number" ? new Error(this.mx.getExceptionMessage(error)) : error;
        }
    }
}

// Names of nodes become names of variables. With "material" in place of the name that the nodes of a document begin
// with, documents that differ by values only can share a compiled shader.
function usePlainNames(document, name) {
    const plain = (text) => (text === name || text.startsWith(`${name}_`) ? PLAIN + text.slice(name.length) : text);
    for (const element of document.traverseTree()) {
        element.setName(plain(element.getName()));
        for (const reference of ["nodename", "nodegraph"]) {
            const value = element.getAttribute(reference);
            if (value) element.setAttribute(reference, plain(value));
        }
    }
}

function renameImages(document, nameOf) {
    for (const element of document.traverseTree()) {
        const name = element.getAttribute("type") === "filename" && element.getAttribute("value");
        if (name) element.setAttribute("value", nameOf(name));
    }
}

function luminanceScales(library) {
    const scales = new Map();
    for (const definition of library.getUnitDefs()) {
        if (definition.getAttribute("unittype") !== LUMINANCE) continue;
        for (const unit of definition.getUnits()) scales.set(unit.getName(), Number(unit.getAttribute("scale")));
    }
    return scales;
}

function forgetLuminance(input) {
    if (input.getAttribute("unittype") !== LUMINANCE) return;
    input.removeAttribute("unit");
    input.removeAttribute("unittype");
}
