"""The kvor definitions as a MaterialX program sees them, and the forms that a document can take."""

import atexit
import os
import subprocess
import tempfile
from importlib import import_module
from pathlib import Path

import MaterialX as mx
import MaterialX.PyMaterialXGenShader as mx_gen

LIBRARIES = Path(__file__).resolve().parents[2] / "libraries"
STANDARD_SEARCH_PATH = mx.getDefaultDataSearchPath()

# Module and class of a generator by the name that it goes by here; some of them share the target "genglsl".
GENERATORS = {"glsl": "Glsl Glsl", "essl": "Glsl Essl", "vulkan": "Glsl Vk", "wgsl": "Glsl Wgsl", "osl": "Osl Osl",
              "mdl": "Mdl Mdl", "msl": "Msl Msl", "slang": "Slang Slang"}  # fmt: skip


def load(*folders_and_paths):
    library = mx.createDocument()
    for folders, path in folders_and_paths:
        mx.loadLibraries(folders, path, library)
    return library


standard = load((mx.getDefaultDataLibraryFolders(), STANDARD_SEARCH_PATH))
both = load((mx.getDefaultDataLibraryFolders(), STANDARD_SEARCH_PATH), (["kvor"], mx.FileSearchPath(str(LIBRARIES))))


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


class NodeForms:
    """The program that brings documents into one of their forms, running as long as the tests do."""

    def __init__(self, form, library):
        self._library = library
        self._command = [os.environ["VYR_NODE_FORMS"], form]
        self._process = None

    def __call__(self, doc):
        """The document in that form, as a reader with only `library` gets it."""
        if self._process is None:
            self._process = subprocess.Popen(self._command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
            atexit.register(self._process.communicate)
        with tempfile.TemporaryDirectory() as folder:
            source, target = f"{folder}/source.mtlx", f"{folder}/target.mtlx"
            mx.writeToXmlFile(doc, source)
            self._process.stdin.write(f"{source}\t{target}\n")
            self._process.stdin.flush()
            if self._process.stdout.readline() != "done\n":
                raise RuntimeError(f"no result from {self._command}")
            result = mx.createDocument()
            mx.readFromXmlString(result, Path(target).read_text(encoding="utf-8"))
        result.setDataLibrary(self._library)
        return result


flattened = NodeForms("standard", standard)
FORMS = {"reference": NodeForms("reference", both), "embed": NodeForms("embed", standard), "standard": flattened}
