// Shaders that MaterialX has generated, as materials of three.js.

import { ClampToEdgeWrapping, DoubleSide, FrontSide, GLSL3, Matrix4, MirroredRepeatWrapping, RepeatWrapping, ShaderMaterial, Vector3 } from "three";

// By the numbers that MaterialX gives address modes; what lies beyond an image is "constant" in no browser.
const WRAPPINGS = [RepeatWrapping, ClampToEdgeWrapping, RepeatWrapping, MirroredRepeatWrapping];

// The attributes that MaterialX reads, by those of three.js; of the last, three.js has no declaration of its own.
const DECLARED = { i_position: "position", i_normal: "normal", i_texcoord_0: "uv" };
const NAMED = { ...DECLARED, i_tangent: "tangent" };

/** Without what three.js writes into every shader itself. */
const body = (source) => source.replace(/^#version .*$/m, "").replace(/^precision .*$/gm, "");

function vertexShader(shader) {
    const names = Object.entries(NAMED).map(([name, own]) => `#define ${name} ${own}\n`);
    const declarations = new RegExp(`^in \\w+ (${Object.keys(DECLARED).join("|")});$`, "gm");
    return names.join("") + body(shader.getSourceCode("vertex")).replace(declarations, "");
}

function fragmentShader(shader) {
    const source = body(shader.getSourceCode("pixel"));
    const end = source.lastIndexOf("}");
    return `${source.slice(0, end)}out1 = linearToOutputTexel(vec4(toneMapping(out1.rgb), out1.a));\n}`;
}

/** All uniforms of a stage but structures, with their types and values. */
function* variablesOf(stage) {
    for (const [block, variables] of Object.entries(stage.getUniformBlocks())) {
        if (block === "LightData") continue;
        for (let i = 0; i < variables.size(); ++i) {
            const variable = variables.get(i);
            yield { name: variable.getVariable(), type: variable.getType().getName(), value: variable.getValue()?.getData() };
        }
    }
}

const SIZES = { vector2: 2, vector3: 3, color3: 3, vector4: 4, color4: 4 };

function plainValue({ type, value }) {
    if (type in SIZES) return value ? [...value.data()] : new Array(SIZES[type]).fill(0);
    return value;
}

/** A texture for one material, since images have their address modes at the node that reads them. */
function placedTexture(image, name, modes) {
    const texture = image.clone();
    const stem = name.slice(0, name.lastIndexOf("_"));
    for (const [side, axis] of [["wrapS", "u"], ["wrapT", "v"]]) {
        texture[side] = WRAPPINGS[modes.get(`${stem}_${axis}addressmode`)] ?? RepeatWrapping;
    }
    return texture;
}

/**
 * The material of a shader.
 *
 * @param imageOf gives a promise of the texture of an image by its name
 * @param light textures of the light: radianceTexture, irradianceTexture
 * @param samples of it for each pixel
 */
export async function createMaterial({ shader, transparent }, imageOf, light, samples) {
    const uniforms = {};
    const textures = [];
    const variables = ["vertex", "pixel"].flatMap((stage) => [...variablesOf(shader.getStage(stage))]);
    const modes = new Map(variables.map(({ name, value }) => [name, value]));
    for (const variable of variables) {
        const { name, type, value } = variable;
        uniforms[name] = { value: type === "filename" ? null : plainValue(variable) };
        if (type !== "filename" || !value) continue;
        const texture = imageOf(value).then((image) => (uniforms[name].value = placedTexture(image, name, modes)));
        textures.push(texture);
    }
    const set = (name, value) => (uniforms[name] = { value });
    set("u_envMatrix", new Matrix4()); // The light is drawn as MaterialX reads it.
    set("u_envRadiance", light.radianceTexture);
    set("u_envIrradiance", light.irradianceTexture);
    set("u_envRadianceMips", Math.floor(Math.log2(Math.max(light.radianceTexture.image.width, light.radianceTexture.image.height))) + 1);
    set("u_envRadianceSamples", samples);
    set("u_numActiveLightSources", 0);
    set("u_worldMatrix", new Matrix4());
    set("u_viewProjectionMatrix", new Matrix4());
    set("u_worldInverseTransposeMatrix", new Matrix4());
    set("u_viewPosition", new Vector3());

    const material = new ShaderMaterial({
        glslVersion: GLSL3,
        vertexShader: vertexShader(shader),
        fragmentShader: fragmentShader(shader),
        uniforms,
        transparent,
        premultipliedAlpha: true,
        side: transparent ? DoubleSide : FrontSide,
        forceSinglePass: false,
    });
    material.onBeforeRender = (renderer, scene, camera, geometry, object) => {
        uniforms.u_worldMatrix.value.copy(object.matrixWorld);
        uniforms.u_viewProjectionMatrix.value.multiplyMatrices(camera.projectionMatrix, camera.matrixWorldInverse);
        uniforms.u_worldInverseTransposeMatrix.value.copy(object.matrixWorld).invert().transpose();
        uniforms.u_viewPosition.value.setFromMatrixPosition(camera.matrixWorld);
        material.uniformsNeedUpdate = true;
    };
    material.userData.textures = await Promise.all(textures);
    return material;
}
