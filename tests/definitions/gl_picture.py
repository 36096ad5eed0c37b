"""Runs generated GLSL in OpenGL without a window, and gives back what it computes."""

import functools
import os

# Pictures are small and shaders large: the driver that compiles least is by far the fastest. It can do all that the
# shaders use of OpenGL 4.0.
os.environ |= {"LIBGL_ALWAYS_SOFTWARE": "1", "EGL_PLATFORM": "surfaceless", "GALLIUM_DRIVER": "softpipe",
               "MESA_GL_VERSION_OVERRIDE": "4.0", "MESA_GLSL_VERSION_OVERRIDE": "400"}  # fmt: skip

import moderngl  # noqa: E402 (the driver reads the environment when it is loaded)
import numpy as np  # noqa: E402

from kvor_library import generate  # noqa: E402

SIZE = 16
_WRAPS = {"1": False, "2": True}  # the generators' numbers for "clamp" and "periodic"
_FRAME = {"i_normal": (0, 0, 1), "i_tangent": (1, 0, 0), "i_bitangent": (0, 1, 0)}
_CORNERS = np.array([(0, 0), (1, 0), (0, 1), (1, 1)], "f4")
# Light from all around, rows of the sky from below: nothing is black, and no two directions are alike.
_SKY = 0.2 + np.random.default_rng(1).random((8, 16, 3)) * [2.0, 1.5, 1.0]


@functools.cache
def context():
    return moderngl.create_context(standalone=True, backend="egl", require=400)


def texture_coordinates(low, high):
    """Those of the pixels' centres, as an array of SIZE x SIZE x 2, v upwards."""
    steps = [low[i] + (np.arange(SIZE) + 0.5) / SIZE * (high[i] - low[i]) for i in (0, 1)]
    return np.stack(np.meshgrid(*steps), axis=-1)


def compiled(shader):
    return _program(shader.getSourceCode("vertex"), shader.getSourceCode("pixel"))


@functools.cache
def _program(vertex, pixel):
    return context().program(vertex_shader=vertex, fragment_shader=pixel)


def picture(doc, path, images=None, low=(0, 0), high=(1, 1)):
    """What the element at a path computes on a flat square with the texture coordinates low to high.

    The square lies in the xy plane, its normal is z, its tangent x. `images` are arrays of rows from
    the bottom up, by file name. The result is SIZE x SIZE x 4 floats, from the bottom up.
    """
    shader = generate(doc, path)
    program = compiled(shader)
    _bind_values(program, shader)
    _bind_images(program, shader, {} if images is None else images)
    _bind_light(program)
    for name in program:
        if isinstance(member := program[name], moderngl.Uniform) and member.dimension == 16:
            member.write(np.eye(4, dtype="f4").tobytes())
    target = context().framebuffer([context().texture((SIZE, SIZE), 4, dtype="f4")])
    target.use()
    _square(program, low, high).render(moderngl.TRIANGLE_STRIP)
    return np.frombuffer(target.read(components=4, dtype="f4"), "f4").reshape(SIZE, SIZE, 4)


def _bind_values(program, shader):
    """Sets the uniforms as renderers do: the text of the shader rounds small numbers to nothing."""
    for port in shader.getStage("pixel").getUniformBlock("PublicUniforms"):
        if port.getVariable() in program and port.getType().getName() in ("float", "vector2", "vector3", "color3"):
            data = port.getValue().getData()
            program[port.getVariable()].value = data if isinstance(data, float) else tuple(data)


def _bind_images(program, shader, images):
    ports = {port.getVariable(): port for port in shader.getStage("pixel").getUniformBlock("PublicUniforms")}
    files = [port for port in ports.values() if port.getType().getName() == "filename"]
    for unit, port in enumerate(files, start=2):
        texture = _bind_texture(program, port.getVariable(), images[port.getValue().getValueString()], unit)
        root = port.getVariable().removesuffix("file")
        texture.repeat_x, texture.repeat_y = (
            _WRAPS[ports[f"{root}{axis}addressmode"].getValue().getValueString()] for axis in "uv"
        )


def _bind_light(program):
    """Of the shading models: where they are seen from, and their surroundings, sharp and soft."""
    if "u_viewPosition" in program:
        program["u_viewPosition"].value = (0.5, 1.5, 2)
    _bind_texture(program, "u_envRadiance", _SKY, 0)
    _bind_texture(program, "u_envIrradiance", _SKY[::4, ::4], 1)


def _bind_texture(program, variable, pixels, unit):
    pixels = np.atleast_3d(np.asarray(pixels, "f4"))
    texture = context().texture(pixels.shape[1::-1], pixels.shape[2], pixels.tobytes(), dtype="f4")
    texture.use(unit)
    if variable in program:
        program[variable].value = unit
    return texture


def _square(program, low, high):
    attributes = {"i_position": np.pad(_CORNERS * 2 - 1, ((0, 0), (0, 1)))}
    attributes["i_texcoord_0"] = low + _CORNERS * (np.subtract(high, low))
    attributes |= {name: np.tile(value, (4, 1)) for name, value in _FRAME.items()}
    buffers = [(context().buffer(values.astype("f4").tobytes()), f"{values.shape[1]}f", name)
               for name, values in attributes.items() if name in program]  # fmt: skip
    return context().vertex_array(program, buffers)
