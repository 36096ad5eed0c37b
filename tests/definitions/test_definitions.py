"""The kvor definitions: complete, valid, and able to generate shaders for every target."""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import kvor_library as kv
import MaterialX as mx
import MaterialX.PyMaterialXGenShader as mx_gen
from gl_picture import compiled

ROOT = pathlib.Path(__file__).resolve().parents[2]
UNITS = {"distance": "inch", "angle": "radians", "luminance": "footlambert"}
VALUES = {
    "filename": "image.png", "vector2": "0.5, 2", "vector3": "0, 0, 1", "color3": "0.2, 0.4, 0.6", "float": "0.5",
    "boolean": "true", "string": "clamp",
}  # fmt: skip


def nodes():
    """The definitions of what the converter writes."""
    return [d for d in kv.definitions() if d.getType() == "surfaceshader" or d.getInput("file")]


def every_document():
    """Documents with one node each, whose inputs all have values, units and colour spaces."""
    for definition in nodes():
        doc = kv.document("")
        element = doc.addNode(f"kvor:{definition.getNodeString()}", "node", definition.getType())
        for declared in definition.getInputs():
            value = element.addInput(declared.getName(), declared.getType())
            value.setValueString(VALUES[declared.getType()])
            if unit_type := declared.getUnitType():
                value.setUnitType(unit_type)
                value.setUnit(UNITS[unit_type])
            if declared.getType() in ("filename", "color3", "vector3"):
                value.setColorSpace("srgb_texture")
        yield definition.getName(), doc


class Definitions(unittest.TestCase):
    def test_library_is_valid(self):
        self.assertEqual(kv.both.validate(), (True, ""))

    def test_every_input_is_described(self):
        for definition in kv.definitions():
            self.assertTrue(definition.getDocString(), definition.getName())
            self.assertIsNotNone(definition.getImplementation(), definition.getName())
            for value in definition.getInputs():
                with self.subTest(definition=definition.getName(), input=value.getName()):
                    self.assertTrue(all(value.getAttribute(attribute) for attribute in ("uiname", "uifolder", "doc")))
                    self.assertTrue(value.hasValueString() or value.hasDefaultGeomPropString())
                    if value.getUnitType() in ("angle", "luminance"):
                        self.assertTrue(value.getUnit(), "MaterialX converts to the unit of the scene's lengths without one")

    def test_every_sample_has_a_line_on_its_page(self):
        page = (ROOT / "docs/samples.md").read_text()
        for file in (ROOT / "samples").glob("*.json"):
            library = json.loads(file.read_text())
            for sample in library.get("materials", []) + library.get("overlays", []):
                mark = f"(`{sample['id']}`)" if "id" in sample else f"| {sample['name']} |"
                self.assertTrue(mark in page, f"docs/samples.md has no line of {mark}, {file.name}")

    def test_every_input_has_an_effect_and_a_value_measured_and_every_node_a_picture(self):
        shown = (ROOT / "tools/gallery/src/examples.js").read_text()
        measured = set(re.findall(r"\w+", (ROOT / "tests/definitions/test_values.py").read_text()))
        for definition in nodes():
            node = definition.getNodeString()
            self.assertTrue(f'"{node}"' in shown, f"tools/gallery/src/examples.js has no row of {node}")
            self.assertTrue((ROOT / f"docs/pictures/node-{node}.webp").exists(), node)
            for value in definition.getInputs():
                name, type = value.getName(), value.getType()
                self.assertTrue(type == "float" or f"{name}: " not in shown or f'{name}: "{type}"' in shown,
                                f"TYPES in tools/gallery/src/examples.js has no {name} of type {type}")
            # MaterialX has no way to cull.
            used = {e.getInterfaceName() for e in definition.getImplementation().traverseTree() if e.isA(mx.Input)}
            for name in {value.getName() for value in definition.getInputs()} - {"glazing_backface_culling"}:
                self.assertIn(name, used, node)
                self.assertIn(name, measured, "has no row in test_values.py")


class Shaders(unittest.TestCase):
    def test_every_generator(self):
        for generator in kv.GENERATORS:
            for name, doc in every_document():
                with self.subTest(name, generator=generator):
                    self.assertEqual(doc.validate(), (True, ""))
                    shader = kv.generate(doc, "node", generator)
                    self.assertGreater(len(shader.getSourceCode("pixel")), 1000)
                    if generator == "glsl":
                        compiled(shader)

    def test_transparency_is_recognised(self):
        for definition in kv.definitions():
            if definition.getInput("surface_cutout"):
                node = definition.getNodeString()
                for cutout, transparent in ("1, 1, 1", node in ("transparent", "glazing")), ("0.5, 0.5, 0.5", True):
                    doc = kv.document("")
                    shader = doc.addNode(f"kvor:{node}", "node", "surfaceshader")
                    shader.setInputValue("surface_cutout", cutout, "color3")
                    self.assertEqual(mx_gen.isTransparentSurface(shader, "genglsl"), transparent, (node, cutout))

    def test_the_example_for_readers_knows_nodes_and_units(self):
        example = ROOT / "examples/python/read_document.py"
        self.assertIn(example.read_text().partition("\n\nfile, kvor")[2].strip(), (ROOT / "docs/programs.md").read_text())
        doc = kv.document("")
        shader = doc.addNode("kvor:transparent", "glass", "surfaceshader")
        for name, value, unit, kind in [("transparent_distance", "2", "inch", "distance"), ("surface_rotation", "1", "radians", "angle")]:
            measure = shader.setInputValue(name, value, "float")
            measure.setUnit(unit)
            measure.setUnitType(kind)
        doc.addMaterialNode("material", shader)
        with tempfile.NamedTemporaryFile("w", suffix=".mtlx") as file:
            file.write(mx.writeToXmlString(doc))
            file.flush()
            command = [sys.executable, example, file.name, ROOT / "libraries"]
            code = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        for factor in ("0.0254", "57.29"):
            self.assertIn(factor, code)


if __name__ == "__main__":
    unittest.main()
