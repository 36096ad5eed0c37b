"""What the kvor nodes compute: the GLSL that MaterialX generates for them, run and measured."""

import itertools
import unittest

import kvor_library as kv
import numpy as np
from gl_picture import picture, texture_coordinates

INCH = 0.0254
OUTPUT = "graph/out"
CHECKER = np.array([[[0.1, 0.2, 0.3], [0.9, 0.8, 0.7]], [[0.4, 0.6, 0.5], [0.25, 0.75, 1.0]]])


def inputs(**values):
    """Input elements: name = (type, value) or (type, value, unit, unit type)."""

    def element(name, type, value, unit=None, unit_type=None):
        units = f' unit="{unit}" unittype="{unit_type}"' if unit else ""
        return f'<input name="{name}" type="{type}" value="{value}"{units} />'

    return "".join(element(name, *value) for name, value in values.items())


def length(x, y, unit="meter"):
    return "vector2", f"{x}, {y}", unit, "distance"


def angle(value, unit="degrees"):
    return "float", value, unit, "angle"


def numbers(x, y):
    return "vector2", f"{x}, {y}"


def texture(node, type, space="", **values):
    """The document of one texture node that reads the file "image", with the output "graph/out"."""
    color_space = f' colorspace="{space}"' if space else ""
    doc = kv.document(
        f'<nodegraph name="graph"><kvor:{node} name="node" type="{type}">'
        f'<input name="file" type="filename" value="image"{color_space} />{inputs(**values)}</kvor:{node}>'
        f'<output name="out" type="{type}" nodename="node" /></nodegraph>'
    )
    assert doc.validate() == (True, "")
    return doc


class Placement(unittest.TestCase):
    def test_follows_the_formula(self):
        low, high = (-0.5, 0.25), (2.0, 1.5)
        cases = {
            "real-world lengths": (
                dict(realworld_offset=length(2, -4, "inch"), realworld_scale=length(1, 2, "foot")),
                (2 * INCH, -4 * INCH), (12 * INCH, 24 * INCH), (0, 0), (1, 1), 0),
            "everything, in degrees": (
                dict(realworld_offset=length(10, 20, "centimeter"), realworld_scale=length(500, 250, "millimeter"),
                     uv_offset=numbers(0.25, -0.5), uv_scale=numbers(2, 3), rotation_angle=angle(30)),
                (0.1, 0.2), (0.5, 0.25), (0.25, -0.5), (2, 3), np.pi / 6),
            "radians": (dict(rotation_angle=angle(-1.25, "radians")), (0, 0), (1, 1), (0, 0), (1, 1), -1.25),
            "angle without a unit": (dict(rotation_angle=("float", 90)), (0, 0), (1, 1), (0, 0), (1, 1), np.pi / 2),
            "scales of zero count as one": (
                dict(realworld_scale=length(0, 2), uv_scale=numbers(3, 0)), (0, 0), (1, 2), (0, 0), (3, 1), 0),
        }  # fmt: skip
        for name, (values, corner, size, shift, repeats, turn) in cases.items():
            with self.subTest(name):
                cos, sin = np.cos(turn), np.sin(turn)
                along = (texture_coordinates(low, high) - corner) @ np.array([[cos, -sin], [sin, cos]])
                expected = along / size * repeats - shift
                doc = kv.document(f'<kvor:placement name="p" type="vector2">{inputs(**values)}</kvor:placement>')
                np.testing.assert_allclose(picture(doc, "p", low=low, high=high)[..., :2], expected, atol=2e-5)


class Bitmap(unittest.TestCase):
    def test_turns_counter_clockwise(self):
        upright = picture(texture("bitmap", "color3"), OUTPUT, {"image": CHECKER})
        doc = texture("bitmap", "color3", rotation_angle=angle(90))
        turned = picture(doc, OUTPUT, {"image": CHECKER}, low=(-1, 0), high=(0, 1))
        np.testing.assert_allclose(turned, np.rot90(upright, -1), atol=1e-5)

    def test_address_modes(self):
        ramp = np.linspace(0, 1, 4)[None, :, None] * [1, 0, 0] + np.linspace(0, 1, 4)[:, None, None] * [0, 1, 0]
        # Standard nodes say which mode the image itself reads.
        doc = kv.flattened(texture("bitmap", "color3", uaddressmode=("string", "clamp"), vaddressmode=("string", "periodic")))
        corners = (0.25, 0.25), (0.25, 1.25), (1.25, 0.25)
        inside, above, right = (picture(doc, OUTPUT, {"image": ramp}, low, np.add(low, 0.5)) for low in corners)
        np.testing.assert_allclose(above, inside, atol=1e-5)
        np.testing.assert_allclose(right[..., 0], 1, atol=1e-5)
        np.testing.assert_allclose(right[..., 1], inside[..., 1], atol=1e-5)

    def test_amount_and_inversion_act_on_stored_values(self):
        stored = np.array([0.2, 0.5, 0.7, 0.4])
        decoders = {
            **dict.fromkeys(("", "lin_rec709"), lambda x: x),
            "srgb_texture": lambda x: np.where(x > 0.04045, ((x + 0.055) / 1.055) ** 2.4, x / 12.92),
            "g22_rec709": lambda x: x**2.2,
            "rec709_display": lambda x: x**2.4,
        }
        types = {"float": 1, "vector3": 3, "color3": 3, "color4": 4}
        for type, space, invert, amount in itertools.product(types, decoders, (False, True), (1, 0.5)):
            with self.subTest(type=type, space=space, invert=invert, amount=amount):
                color = (1 - stored if invert else stored) * amount
                expected = decoders[space](color) if type.startswith("color") else color
                expected = np.append(expected[:3], stored[3])[: types[type]]
                doc = texture("bitmap", type, space, rgbamount=("float", amount), invert=("boolean", str(invert).lower()))
                result = picture(doc, OUTPUT, {"image": np.tile(stored[: types[type]], (2, 2, 1))})
                np.testing.assert_allclose(result[8, 8, : types[type]], expected, atol=2e-5)


class Relief(unittest.TestCase):
    def check(self, node, image, direction, **values):
        clamp = dict(uaddressmode=("string", "clamp"), vaddressmode=("string", "clamp"))
        doc = texture(node, "vector3", "srgb_texture", **clamp, **values)
        normal = picture(doc, OUTPUT, {"image": image}, (-0.02, 0.01), (0.02, 0.02))[8, 2, :3]
        np.testing.assert_allclose(normal, direction / np.linalg.norm(direction), atol=2e-3)

    def test_height_map_slopes_as_depth_over_length(self):
        ramp = np.tile(((np.arange(64) + 0.5) / 64)[None, :, None], (64, 1, 1))
        across = dict(realworld_scale=length(10, 5, "centimeter"), realworld_offset=length(-5, -2, "centimeter"))
        depth = ("float", 25, "millimeter", "distance")
        self.check("height_map", ramp, (-0.25, 0, 1), depth=depth, **across)
        self.check("height_map", ramp, (-0.125, 0, 1), depth=depth, uv_scale=numbers(0.5, 1), **across)
        self.check("height_map", ramp, (INCH / 0.1, 0, 1), depth=("float", -1, "inch", "distance"), **across)
        upwards = dict(across, realworld_offset=length(5, -2, "centimeter"), rotation_angle=angle(90))
        self.check("height_map", ramp, (0, -0.25, 1), depth=depth, **upwards)

    def test_normal_map_scales_and_turns(self):
        tilted = np.tile([0.8, 0.6, 0.9], (2, 2, 1))
        self.check("normal_map", tilted, (0.6, 0.2, 0.8))
        self.check("normal_map", tilted, (1.2, 0.4, 0.8), normal_scale=("float", 2))
        self.check("normal_map", tilted, (0, 0, 1), normal_scale=("float", 0))
        self.check("normal_map", tilted, (-0.2, 0.6, 0.8), rotation_angle=angle(90))


class Shading(unittest.TestCase):
    """What each shading node hands to the standard surface."""

    def given(self, node, target, values):
        doc = kv.flattened(kv.document(f'<kvor:{node} name="s" type="surfaceshader">{inputs(**values)}</kvor:{node}>'))
        given = doc.getNodes("standard_surface")[0].getInput(target)
        if given.getNodeName() == "":
            return np.atleast_1d(np.array(given.getValueString().split(","), "f4"))
        source = doc.getNode(given.getNodeName())
        return picture(doc, source.getName())[8, 8, : 1 if source.getType() == "float" else 3]

    def test_hands_on_physical_values(self):
        cases = [
            ("metal", dict(metal_f0=("color3", "1, 0.8, 0.5"), surface_albedo=("color3", "0.5, 0.5, 1")), "base_color", (0.5, 0.4, 0.5)),
            ("metal", dict(surface_rotation=angle(45)), "tangent", (np.sqrt(0.5), np.sqrt(0.5), 0)),
            ("metal", dict(surface_rotation=angle(np.pi / 4, "radians")), "tangent", (np.sqrt(0.5), np.sqrt(0.5), 0)),
            ("metal", dict(surface_normal=("vector3", "0, 0, 0")), "normal", (0, 0, 1)),
            ("metal", dict(surface_anisotropy=("float", 0.5)), "specular_anisotropy", 0.5),
            ("metal", dict(surface_cutout=("color3", "0.5, 0.25, 1")), "opacity", (0.5, 0.25, 1)),
            ("opaque", dict(opaque_albedo=("color3", "0.2, 0.4, 0.6")), "subsurface_color", (0.2, 0.4, 0.6)),
            ("opaque", dict(opaque_mfp=("float", 0.5)), "subsurface_scale", 0.5),
            ("opaque", dict(opaque_mfp_modifier=("color3", "1, 0.5, 0.25")), "subsurface_radius", (1, 0.5, 0.25)),
            ("opaque", dict(opaque_f0=("float", 0.04)), "specular_IOR", 1.5),
            ("opaque", dict(opaque_emission=("boolean", "true"), opaque_luminance_modifier=("color3", "1, 0.5, 0")), "emission_color", (0.001, 0.0005, 0)),
            ("opaque", dict(opaque_luminance_modifier=("color3", "1, 0.5, 0")), "emission_color", (0, 0, 0)),
            ("opaque", dict(opaque_luminance=("float", 2, "candelapersquaremeter", "luminance")), "emission", 2),
            ("opaque", dict(opaque_translucency=("boolean", "true")), "subsurface", 1),
            ("transparent", dict(transparent_ior=("float", 1.7)), "specular_IOR", 1.7),
            ("transparent", dict(transparent_color=("color3", "0.2, 0.4, 0.6")), "transmission_color", (0.2, 0.4, 0.6)),
            ("transparent", dict(transparent_distance=("float", 0.5)), "transmission_depth", 0.5),
            ("layered", dict(layered_roughness=("float", 0.3)), "specular_roughness", 0.3),
            ("layered", dict(layered_anisotropy=("float", 0.3)), "specular_anisotropy", 0.3),
            ("layered", dict(layered_normal=("vector3", "0, 0, 0")), "normal", (0, 0, 1)),
            ("layered", dict(layered_fraction=("float", 0.3), layered_fraction_invert=("boolean", "true")), "metalness", 0.7),
            ("layered", dict(layered_fraction=("float", 0.25), layered_diffuse=("color3", "0, 0.4, 1"), layered_bottom_f0=("color3", "1, 0.8, 0")), "base_color", (0.25, 0.5, 0.75)),
            ("layered", dict(surface_rotation=angle(30), layered_rotation=angle(120)), "coat_rotation", 0.25),
            ("layered", dict(layered_f0=("float", 1 / 9)), "coat_IOR", 2),
            ("glazing", dict(glazing_f0=("color3", "0.04, 0.02, 0")), "specular_IOR", 1.5),
            ("glazing", dict(glazing_f0=("color3", "0.04, 0.02, 0")), "specular_color", (1, 0.5, 0)),
            ("glazing", dict(glazing_transmission_color=("color3", "0.2, 0.4, 0.6")), "transmission_color", (0.2, 0.4, 0.6)),
            ("glazing", dict(glazing_transmission_roughness=("float", 0.7), surface_roughness=("float", 0.2)), "transmission_extra_roughness", 0.5),
        ]  # fmt: skip
        for node, values, target, expected in cases:
            with self.subTest(node=node, target=target, values=values):
                np.testing.assert_allclose(self.given(node, target, values), np.atleast_1d(expected), atol=1e-5)

    def test_coat_lies_along_the_direction_asked_for(self):
        """The standard surface turns the coat from the tangent it is given; both must cancel out."""
        values = dict(surface_rotation=angle(30), layered_rotation=angle(120))
        tangent = self.given("layered", "tangent", values)
        turns = self.given("layered", "coat_rotation", values)[0]
        axes = {"in": ("vector3", ", ".join(map(str, tangent))), "axis": ("vector3", "0, 0, 1")}
        doc = kv.document(f'<rotate3d name="r" type="vector3">{inputs(amount=("float", turns * 360), **axes)}</rotate3d>')
        np.testing.assert_allclose(picture(doc, "r")[8, 8, :2], (np.cos(np.pi / 6), np.sin(np.pi / 6)), atol=1e-5)


if __name__ == "__main__":
    unittest.main()
