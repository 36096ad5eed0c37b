"""The kvor definitions: complete, valid, and able to generate shaders for every target."""

import unittest

import kvor_library as kv
import MaterialX as mx
import MaterialX.PyMaterialXGenShader as mx_gen
from gl_picture import compiled

PLACEMENT = {
    "file": "filename", "realworld_offset": "vector2", "realworld_scale": "vector2", "uv_offset": "vector2",
    "uv_scale": "vector2", "uaddressmode": "string", "vaddressmode": "string", "rotation_angle": "float",
}  # fmt: skip
SURFACE = {
    "surface_albedo": "color3", "surface_roughness": "float", "surface_anisotropy": "float",
    "surface_rotation": "float", "surface_normal": "vector3", "surface_cutout": "color3",
}  # fmt: skip
BITMAP = PLACEMENT | {"rgbamount": "float", "invert": "boolean"}

# What the converter writes: (node, type of the node) and its inputs.
WRITTEN = {
    ("bitmap", "color3"): BITMAP, ("bitmap", "color4"): BITMAP, ("bitmap", "float"): BITMAP, ("bitmap", "vector3"): BITMAP,
    ("height_map", "vector3"): PLACEMENT | {"depth": "float"},
    ("normal_map", "vector3"): PLACEMENT | {"normal_scale": "float"},
    ("metal", "surfaceshader"): SURFACE | {"metal_f0": "color3"},
    ("opaque", "surfaceshader"): SURFACE | {
        "opaque_albedo": "color3", "opaque_f0": "float", "opaque_translucency": "boolean", "opaque_mfp_modifier": "color3",
        "opaque_mfp": "float", "opaque_emission": "boolean", "opaque_luminance": "float", "opaque_luminance_modifier": "color3"},
    ("transparent", "surfaceshader"): SURFACE | {
        "transparent_ior": "float", "transparent_color": "color3", "transparent_distance": "float"},
    ("layered", "surfaceshader"): SURFACE | {
        "layered_f0": "float", "layered_roughness": "float", "layered_anisotropy": "float", "layered_rotation": "float",
        "layered_diffuse": "color3", "layered_bottom_f0": "color3", "layered_fraction": "float",
        "layered_fraction_invert": "boolean", "layered_normal": "vector3"},
    ("glazing", "surfaceshader"): SURFACE | {
        "glazing_transmission_color": "color3", "glazing_transmission_roughness": "float", "glazing_f0": "color3",
        "glazing_backface_culling": "boolean"},
}  # fmt: skip
UNITS = {
    "distance": "nanometer micron millimeter centimeter inch foot yard meter kilometer mile".split(),
    "angle": ["degrees", "radians"],
    "luminance": ["candelapersquaremeter", "footlambert", "candelapersquarefoot"],
}
VALUES = {
    "filename": "image.png", "vector2": "0.5, 2", "vector3": "0, 0, 1", "color3": "0.2, 0.4, 0.6", "float": "0.5",
    "boolean": "true", "string": "clamp",
}  # fmt: skip


def written(node, type, inputs, unit_names):
    """A document with one node whose inputs all have values, units and colour spaces."""
    doc = kv.document("")
    element = doc.addNode(f"kvor:{node}", "node", type)
    definition = next(d for d in kv.definitions() if d.getNodeString() == node and d.getType() == type)
    for name, input_type in inputs.items():
        value = element.addInput(name, input_type)
        value.setValueString(VALUES[input_type])
        unit_type = definition.getInput(name).getUnitType()
        if unit_type:
            value.setUnitType(unit_type)
            value.setUnit(unit_names[unit_type])
        if input_type in ("filename", "color3", "vector3"):
            value.setColorSpace("srgb_texture")
    return doc


def every_document(unit_names):
    for (node, type), inputs in WRITTEN.items():
        yield f"{node} {type}", written(node, type, inputs, unit_names)


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

        textures = [d for d in kv.definitions() if d.getInput("file")]
        self.assertEqual(len(textures), 6)
        for definition in textures:
            for name in PLACEMENT:
                self.assertEqual(attributes(definition, name), attributes(textures[0], name), definition.getName())

    def test_units_convert(self):
        converters = {t: mx.LinearUnitConverter.create(kv.both.getUnitTypeDef(t)) for t in UNITS}
        ratios = [
            ("angle", "radians", "degree", 57.29578), ("angle", "degrees", "radian", 0.01745329), ("distance", "micron", "meter", 1e-6),
            ("luminance", "footlambert", "candelapersquaremeter", 3.426259), ("luminance", "candelapersquarefoot", "footlambert", 3.141593),
        ]  # fmt: skip
        for unit_type, source, target, ratio in ratios:
            self.assertAlmostEqual(converters[unit_type].convert(1.0, source, target) / ratio, 1, 5, source)


class Documents(unittest.TestCase):
    def test_documents_validate_with_every_unit(self):
        for i in range(max(map(len, UNITS.values()))):
            names = {unit_type: units[i % len(units)] for unit_type, units in UNITS.items()}
            for name, doc in every_document(names):
                with self.subTest(name, units=names):
                    valid, message = doc.validate()
                    self.assertTrue(valid, message)
                    self.assertIsNotNone(doc.getNode("node").getNodeDef())

    def test_wrong_documents_do_not(self):
        for unit_type, unit in (("distance", "degrees"), ("angle", "meter"), ("luminance", "lux"), ("distance", "")):
            doc = kv.document('<kvor:bitmap name="b" type="float"><input name="rgbamount" type="float" value="1" /></kvor:bitmap>')
            value = doc.getNode("b").getInput("rgbamount")
            value.setAttribute("unittype", unit_type)
            value.setAttribute("unit", unit)
            self.assertFalse(doc.validate()[0], (unit_type, unit))

    def test_other_forms_validate_with_the_standard_library_alone(self):
        for name, doc in every_document({"distance": "mile", "angle": "radians", "luminance": "footlambert"}):
            for form, change in kv.FORMS.items():
                if form == "reference":
                    continue
                with self.subTest(name, form=form):
                    changed = change(doc)
                    self.assertIs(changed.getDataLibrary().getNodeDef("kvor:ND_bitmap_color3"), None)
                    valid, message = changed.validate()
                    self.assertTrue(valid, message)
                    for node in changed.getNodes():
                        self.assertIsNotNone(node.getNodeDef(), node.getName())


class Shaders(unittest.TestCase):
    def test_every_generator(self):
        names = {"distance": "inch", "angle": "radians", "luminance": "footlambert"}
        for generator in kv.GENERATORS:
            for name, doc in every_document(names):
                with self.subTest(name, generator=generator):
                    shader = kv.generate(doc, "node", generator)
                    self.assertGreater(len(shader.getSourceCode("pixel")), 1000)

    def test_glsl_compiles(self):
        for name, doc in every_document({"distance": "foot", "angle": "degrees", "luminance": "footlambert"}):
            with self.subTest(name):
                compiled(kv.generate(doc, "node"))

    def test_transparency_is_recognised(self):
        cases = [
            ("metal", "1, 1, 1", False), ("opaque", "1, 1, 1", False), ("layered", "1, 1, 1", False),
            ("opaque", "0.5, 0.5, 0.5", True), ("transparent", "1, 1, 1", True), ("glazing", "1, 1, 1", True),
        ]  # fmt: skip
        for node, cutout, transparent in cases:
            doc = kv.document(
                f'<kvor:{node} name="node" type="surfaceshader"><input name="surface_cutout" type="color3" value="{cutout}" /></kvor:{node}>'
            )
            self.assertEqual(mx_gen.isTransparentSurface(doc.getNode("node"), "genglsl"), transparent, (node, cutout))


if __name__ == "__main__":
    unittest.main()
