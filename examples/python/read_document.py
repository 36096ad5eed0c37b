"""Reads a document with MaterialX's own Python package, with the kvor nodes, and makes a shader of it: units included.

    python read_document.py oak.mtlx /usr/share/vyr_mtlx_converter/libraries > oak.glsl
"""

import sys

import MaterialX as mx
from MaterialX import PyMaterialXGenGlsl as glsl
from MaterialX import PyMaterialXGenShader as gen

file, kvor = sys.argv[1:]
standard, library, document = mx.getDefaultDataSearchPath(), mx.createDocument(), mx.createDocument()
mx.loadLibraries(mx.getDefaultDataLibraryFolders(), standard, library)
mx.loadLibraries(["kvor"], mx.FileSearchPath(kvor), library)
mx.readFromXmlFile(document, file)
document.setDataLibrary(library)
generator = glsl.GlslShaderGenerator.create()
converters, units = mx.UnitConverterRegistry.create(), gen.UnitSystem.create(generator.getTarget())
for unit_type in library.getUnitTypeDefs():
    converters.addUnitConverter(unit_type, mx.LinearUnitConverter.create(unit_type))
units.loadLibrary(library)
units.setUnitConverterRegistry(converters)
generator.setUnitSystem(units)
colors = gen.DefaultColorManagementSystem.create(generator.getTarget())
colors.loadLibrary(library)
generator.setColorManagementSystem(colors)
context = gen.GenContext(generator)
context.registerSourceCodeSearchPath(standard)
context.getOptions().targetDistanceUnit = "meter"
[material] = document.getMaterialNodes()
print(generator.generate(material.getName(), material, context).getSourceCode("pixel"))
