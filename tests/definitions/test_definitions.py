"""The kvor definitions: complete, valid, and able to generate shaders for every target."""

import unittest

import kvor_library as kv
import MaterialX.PyMaterialXGenShader as mx_gen
from gl_picture import compiled

UNITS = {
    "distance": "nanometer micron millimeter centimeter inch foot yard meter kilometer mile".split(),
    "angle": ["degrees", "radians"],
    "luminance": ["candelapersquaremeter", "footlambert", "candelapersquarefoot"],
}
VALUES = {
    "filename": "image.png", "vector2": "0.5, 2", "vector3": "0, 0, 1", "color3": "0.2, 0.4, 0.6", "float": "0.5",
    "boolean": "true", "string": "clamp",
}  # fmt: skip


def nodes():
    """The definitions of what the converter writes."""
    return [d for d in kv.definitions() if d.getType() == "surfaceshader" or d.getInput("file")]


def every_document(unit_names):
    """Documents with one node each, whose inputs all have values, units and colour spaces."""
    for definition in nodes():
        doc = kv.document("")
        element = doc.addNode(f"kvor:{definition.getNodeString()}", "node", definition.getType())
        for declared in definition.getInputs():
            value = element.addInput(declared.getName(), declared.getType())
            value.setValueString(VALUES[declared.getType()])
            if unit_type := declared.getUnitType():
                value.setUnitType(unit_type)
                value.setUnit(unit_names[unit_type])
            if declared.getType() in ("filename", "color3", "vector3"):
                value.setColorSpace("srgb_texture")
        yield definition.getName(), doc


class Definitions(unittest.TestCase):
    def test_library_is_valid(self):
        valid, message = kv.both.validate()
        self.assertTrue(valid, message)

    def test_every_input_is_described(self):
        for definition in kv.definitions():
            self.assertTrue(definition.getDocString(), definition.getName())
            self.assertIsNotNone(definition.getImplementation(), definition.getName())
            for value in definition.getInputs():
                with self.subTest(definition=definition.getName(), input=value.getName()):
                    for attribute in ("uiname", "uifolder", "doc"):
                        self.assertTrue(value.getAttribute(attribute), attribute)
                    self.assertTrue(value.hasValueString() or value.hasDefaultGeomPropString())
                    if value.getUnitType() in ("angle", "luminance"):
                        self.assertTrue(value.getUnit(), "MaterialX converts to the unit of the scene's lengths without one")

    def test_placement_is_the_same_on_every_texture(self):
        def attributes(definition, name):
            value = definition.getInput(name)
            return {a: value.getAttribute(a) for a in value.getAttributeNames() if (name, a) != ("file", "doc")}

        first, *others = [d for d in nodes() if d.getInput("file")]
        self.assertEqual((len(nodes()), len(others)), (11, 5))
        placement = [i.getName() for i in first.getInputs() if all(d.getInput(i.getName()) for d in others)]
        self.assertEqual(len(placement), 8)
        for definition in others:
            for name in placement:
                self.assertEqual(attributes(definition, name), attributes(first, name), definition.getName())


class Documents(unittest.TestCase):
    def test_documents_validate_with_every_unit(self):
        for i in range(max(map(len, UNITS.values()))):
            names = {unit_type: units[i % len(units)] for unit_type, units in UNITS.items()}
            for name, doc in every_document(names):
                with self.subTest(name, units=names):
                    valid, message = doc.validate()
                    self.assertTrue(valid, message)
                    self.assertIsNotNone(doc.getNode("node").getNodeDef())


class Shaders(unittest.TestCase):
    def test_every_generator(self):
        names = {"distance": "inch", "angle": "radians", "luminance": "footlambert"}
        for generator in kv.GENERATORS:
            for name, doc in every_document(names):
                with self.subTest(name, generator=generator):
                    shader = kv.generate(doc, "node", generator)
                    self.assertGreater(len(shader.getSourceCode("pixel")), 1000)
                    if generator == "glsl":
                        compiled(shader)

    def test_transparency_is_recognised(self):
        white, half = "1, 1, 1", "0.5, 0.5, 0.5"
        cases = [("metal", white, False), ("opaque", white, False), ("layered", white, False), ("opaque", half, True),
                 ("transparent", white, True), ("glazing", white, True)]  # fmt: skip
        for node, cutout, transparent in cases:
            doc = kv.document(
                f'<kvor:{node} name="node" type="surfaceshader"><input name="surface_cutout" type="color3" value="{cutout}" /></kvor:{node}>'
            )
            self.assertEqual(mx_gen.isTransparentSurface(doc.getNode("node"), "genglsl"), transparent, (node, cutout))


if __name__ == "__main__":
    unittest.main()
