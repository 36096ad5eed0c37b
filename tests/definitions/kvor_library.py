"""The kvor definitions as a MaterialX program sees them, and the forms that a document can take."""

from importlib import import_module
from pathlib import Path

import MaterialX as mx
import MaterialX.PyMaterialXGenShader as mx_gen

LIBRARIES = Path(__file__).resolve().parents[2] / "libraries"
STANDARD_SEARCH_PATH = mx.getDefaultDataSearchPath()

# Generator class by the name that it goes by here; two of them share the target "genglsl".
GENERATORS = {
    "glsl": "PyMaterialXGenGlsl.GlslShaderGenerator",
    "essl": "PyMaterialXGenGlsl.EsslShaderGenerator",
    "vulkan": "PyMaterialXGenGlsl.VkShaderGenerator",
    "wgsl": "PyMaterialXGenGlsl.WgslShaderGenerator",
    "osl": "PyMaterialXGenOsl.OslShaderGenerator",
    "mdl": "PyMaterialXGenMdl.MdlShaderGenerator",
    "msl": "PyMaterialXGenMsl.MslShaderGenerator",
    "slang": "PyMaterialXGenSlang.SlangShaderGenerator",
}


def load(*folders_and_paths):
    library = mx.createDocument()
    for folders, path in folders_and_paths:
        mx.loadLibraries(folders, path, library)
    return library


_STANDARD = (mx.getDefaultDataLibraryFolders(), STANDARD_SEARCH_PATH)
_KVOR = (["kvor"], mx.FileSearchPath(str(LIBRARIES)))
standard = load(_STANDARD)
kvor = load(_KVOR)
both = load(_STANDARD, _KVOR)


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
    module, name = GENERATORS[generator].split(".")
    gen = getattr(import_module("MaterialX." + module), name).create()
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
    return gen.generate("shader", doc.getDescendant(path), context)


def embedded(doc):
    """The document with the definitions inside, for programs with the standard library only."""
    copy = mx.createDocument()
    copy.copyContentFrom(doc)
    copy.importLibrary(kvor)
    _use_standard_units(copy)
    text = mx.writeToXmlString(copy)
    result = mx.createDocument()
    mx.readFromXmlString(result, text)
    result.setDataLibrary(standard)
    return result


def flattened(doc):
    """The document in standard nodes only."""
    copy = mx.createDocument()
    copy.copyContentFrom(doc)
    copy.setDataLibrary(both)
    for graph in (*copy.getNodeGraphs(), copy):
        for node in graph.getNodes("kvor:bitmap"):
            _transform_after(graph, node)
        graph.flattenSubgraphs("", lambda node: node.getCategory().startswith("kvor:"))
    _use_standard_units(copy)
    copy.setDataLibrary(standard)
    return copy


def _use_standard_units(doc):
    names = {"degrees": "degree", "radians": "radian"}
    for element in doc.traverseTree():
        if element.hasAttribute("unit"):
            element.setAttribute("unit", names.get(element.getAttribute("unit"), element.getAttribute("unit")))


def _transform_after(graph, bitmap):
    """Makes the colour transform of an altered image a node of its own, behind amount and inversion.

    MaterialX transforms what a node with a colour-managed file gives: the result of a kvor:bitmap,
    but, once that is flattened, the stored colour, before amount and inversion.
    """
    space = bitmap.getInput("file").getColorSpace()
    inverted = bitmap.getInputValue("invert")
    amount = bitmap.getInputValue("rgbamount")
    altered = inverted or (amount is not None and amount != 1)
    if not altered or not bitmap.isColorType() or space in ("", "none", "lin_rec709"):
        return
    readers = bitmap.getDownstreamPorts()
    transform = graph.addNode(f"{space}_to_lin_rec709", bitmap.getName() + "_linear", bitmap.getType())
    for reader in readers:
        reader.setNodeName(transform.getName())
    transform.addInput("in", bitmap.getType()).setNodeName(bitmap.getName())
    bitmap.getInput("file").setColorSpace("none")
