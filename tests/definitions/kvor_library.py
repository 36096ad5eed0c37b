"""The kvor definitions as a MaterialX program sees them."""

from importlib import import_module
from pathlib import Path

import MaterialX as mx
import MaterialX.PyMaterialXGenShader as mx_gen

LIBRARIES = mx.FileSearchPath(str(Path(__file__).resolve().parents[2] / "libraries"))
STANDARD_SEARCH_PATH = mx.getDefaultDataSearchPath()

# Module and class of a generator by the name that it goes by here; some of them share the target "genglsl".
GENERATORS = {"glsl": "Glsl Glsl", "essl": "Glsl Essl", "vulkan": "Glsl Vk", "wgsl": "Glsl Wgsl", "osl": "Osl Osl",
              "mdl": "Mdl Mdl", "msl": "Msl Msl", "slang": "Slang Slang"}  # fmt: skip


def load(*more):
    library = mx.createDocument()
    for folders, path in ((mx.getDefaultDataLibraryFolders(), STANDARD_SEARCH_PATH), *more):
        mx.loadLibraries(folders, path, library)
    return library


standard = load()
both = load((["kvor"], LIBRARIES))


def definitions():
    return [d for d in both.getNodeDefs() if d.getNamespace() == "kvor"]


def document(xml, library=both):
    """A document with `xml` as its content."""
    doc = mx.createDocument()
    mx.readFromXmlString(doc, f'<?xml version="1.0"?><materialx version="1.39">{xml}</materialx>')
    doc.setDataLibrary(library)
    return doc


def generate(doc, path, generator="glsl"):
    """Shader of the element at a path, lengths in metres, colours in lin_rec709."""
    library = doc.getDataLibrary()
    module, name = GENERATORS[generator].split()
    gen = getattr(import_module(f"MaterialX.PyMaterialXGen{module}"), f"{name}ShaderGenerator").create()
    colors = mx_gen.DefaultColorManagementSystem.create(gen.getTarget())
    colors.loadLibrary(library)
    gen.setColorManagementSystem(colors)
    converters = mx.UnitConverterRegistry.create()
    for unit_type in both.getUnitTypeDefs():
        converters.addUnitConverter(unit_type, mx.LinearUnitConverter.create(unit_type))
    units = mx_gen.UnitSystem.create(gen.getTarget())
    units.loadLibrary(library)
    units.setUnitConverterRegistry(converters)
    gen.setUnitSystem(units)
    context = mx_gen.GenContext(gen)
    context.registerSourceCodeSearchPath(STANDARD_SEARCH_PATH)
    context.getOptions().targetDistanceUnit = "meter"
    context.getOptions().targetColorSpaceOverride = "lin_rec709"
    context.getOptions().hwMaxActiveLightSources = 0  # There are none, and shaders compile in half the time.
    return gen.generate("shader", doc.getDescendant(path), context)


def flattened(doc):
    """The document with the graphs of its kvor nodes in their place."""
    for graph in (doc, *(child for child in doc.getChildren() if child.isA(mx.NodeGraph))):
        graph.flattenSubgraphs("", lambda node: node.getCategory().startswith("kvor:"))
    return doc
