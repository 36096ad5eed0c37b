"""What the graphs of decals and threads compute, in all forms, against plain formulas."""

import itertools
import json
import tempfile
import unittest

import kvor_library as kv
import numpy as np
from gl_picture import SIZE, picture, texture_coordinates
from test_pictures import LIBRARIES, converted

INCH = 0.0254
RNG = np.random.default_rng(14)
# To the colours around a key, for each pixel of an image.
STEPS = np.resize(list(itertools.product((0, 1, -1, 2, -4, 16), repeat=3)), (SIZE * SIZE, 3))


def linear(stored):
    return np.where(stored > 0.04045, ((stored + 0.055) / 1.055) ** 2.4, stored / 12.92)


def texture(name="image", **placement):
    return {"path": name, "realWorldScale": [1, 1], "unit": "meter"} | placement


def documents(overlays):
    """The document of each overlay in each form: (form, name, document)."""
    with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
        json.dump({"assetLibrary": 1, "overlays": [{"name": name} | content for name, content in overlays.items()]}, file)
        file.flush()
        for form in LIBRARIES:
            made = converted(form, file.name, command="overlay")
            assert made.keys() == overlays.keys(), made.keys()
            yield from ((form, name, doc) for name, doc in made.items())


def driven(doc, target, *where, **images):
    """What drives an input of the shader, or None."""
    output = doc.getNodes("standard_surface")[0].getInput(target)
    output = output and output.getConnectedOutput()
    return output and picture(doc, output.getNamePath(), images, *where)[..., :3]


class Documents(unittest.TestCase):
    def test_are_valid_and_generate_for_every_target(self):
        thread = {"type": "thread", "flag": True, "threadTexture": texture(), "normalTexture": texture(), "endClippingPlane": [0, 0, 1, 1]}
        decals = {f"Decal{kind}": {"type": "decal", "kind": kind, "texture": texture(rotation=3)} for kind in (1, 2)}
        for form, name, doc in documents(decals | {"Thread": thread, "Based": thread | {"baseMaterialColor": [1, 1, 1, 1]}}):
            self.assertEqual(doc.validate(), (True, ""), (name, form))
            for generator in kv.GENERATORS:
                with self.subTest(name, form=form, generator=generator):
                    self.assertTrue(kv.generate(doc, name, generator).getSourceCode("pixel"))


class Decals(unittest.TestCase):
    def test_show_what_alpha_shows(self):
        image = RNG.random((SIZE, SIZE, 4))
        image[:4, :, 3] = np.repeat([0, 0.5, 1, 1 / 255], 4)[None]
        for form, name, doc in documents({f"K{kind}": {"type": "decal", "kind": kind, "texture": texture()} for kind in (1, 0, 4)}):
            with self.subTest(name, form=form):
                np.testing.assert_allclose(driven(doc, "opacity", image=image), image[..., [3, 3, 3]], atol=1e-5)
                np.testing.assert_allclose(driven(doc, "base_color", image=image), linear(image[..., :3]), atol=2e-5)

    def test_hide_the_key_and_its_next_neighbours(self):
        keys = [(0, 0, 0), (1, 2, 3), (10, 0, 10), (255, 255, 255), (0, 255, 0), (255, 0, 255), (128, 128, 128), (37, 200, 90), (252, 251, 250)]
        overlays = {f"Key{i}": {"type": "decal", "kind": 2 + i % 2, "texture": texture()} | dict(zip(("value0", "value1", "value2"), key))
                    for i, key in enumerate(keys)}  # fmt: skip
        for form, name, doc in documents(overlays):
            key = np.array(keys[int(name[3:])])
            stored = np.clip(key + STEPS, 0, 255)
            steps = np.abs(stored - key)
            shown = (steps**2).sum(1) > 6.5  # 0.01 of the range, in steps of 255
            self.assertFalse(shown[steps.max(1) <= 1].any() or not shown[steps.max(1) >= 4].all())
            with self.subTest(key=key, form=form):
                opacity = driven(doc, "opacity", image=stored.reshape(SIZE, SIZE, 3) / 255)
                np.testing.assert_array_equal(opacity.reshape(-1, 3), np.repeat(shown[:, None], 3, 1))

    def test_end_with_their_image(self):
        placements = {
            "Plain": ({}, (0, 0), (1, 1), (0, 0), (1, 1), 0),
            "Inches": (dict(unit="inch", realWorldOffset=[10, -5], realWorldScale=[20, 10]), (10 * INCH, -5 * INCH), (20 * INCH, 10 * INCH), (0, 0), (1, 1), 0),
            "Turned": (dict(rotation=30, realWorldScale=[0.5, 0.75]), (0, 0), (0.5, 0.75), (0, 0), (1, 1), 30),
            "All": (dict(rotation=-100, realWorldOffset=[0.2, 0.7], uvOffset=[0.25, -0.5], uvScale=[2, 0.7]), (0.2, 0.7), (1, 1), (0.25, -0.5), (2, 0.7), -100),
        }  # fmt: skip
        overlays = {f"{name}{kind}": {"type": "decal", "kind": kind, "value0": 255, "texture": texture(**row[0])}
                    for name, row in placements.items() for kind in (1, 2)}  # fmt: skip
        low, high = (-0.83, -0.79), (1.31, 1.27)
        for form, name, doc in documents(overlays):
            _, corner, size, shift, repeats, angle = placements[name[:-1]]
            cos, sin = np.cos(np.radians(angle)), np.sin(np.radians(angle))
            place = (texture_coordinates(low, high) - corner) @ [[cos, -sin], [sin, cos]] / size * repeats - shift
            inside = ((place > 0) & (place < 1)).all(-1)
            with self.subTest(name, form=form):
                self.assertTrue(5 < inside.sum() < SIZE * SIZE - 5)
                opacity = driven(doc, "opacity", low, high, image=np.ones((2, 2, 4)))
                np.testing.assert_allclose(opacity, np.repeat(inside[..., None], 3, -1), atol=1e-5)


class Threads(unittest.TestCase):
    COLOR = [0.6, 0.3, 0.9, 0.1]

    def thread(self, **more):
        return {"type": "thread", "threadTexture": texture()} | more

    def test_color_and_alpha(self):
        image = RNG.random((SIZE, SIZE, 4))
        color, alpha = linear(image[..., :3]), image[..., 3:]
        base = np.array(self.COLOR[:3])
        cases = {
            "Alone": (self.thread(), color, None),
            "AloneWithAlpha": (self.thread(flag=True), color, np.repeat(alpha, 3, -1)),
            "Shaded": (self.thread(baseMaterialColor=self.COLOR), color * base, None),
            "Covered": (self.thread(baseMaterialColor=self.COLOR, flag=True), color * alpha + base * (1 - alpha), None),
        }
        for form, name, doc in documents({name: case[0] for name, case in cases.items()}):
            with self.subTest(name, form=form):
                np.testing.assert_allclose(driven(doc, "base_color", image=image), cases[name][1], atol=3e-5)
                opacity, expected = driven(doc, "opacity", image=image), cases[name][2]
                self.assertTrue(opacity is expected or np.allclose(opacity, expected, atol=1e-5))

    def test_planes_keep_their_side_and_themselves(self):
        """The places 1/16 and 13/16 lie on the planes."""
        start, end, slanted = [3, 0, 0, -3 / 16], [-1e-20, 0, 0, 13e-20 / 16], [0.3, 0.4, 0, 0.02]
        image = RNG.random((SIZE, SIZE, 4))
        x, y = np.meshgrid(*[(np.arange(SIZE) * 2 + 1) / SIZE - 1] * 2)
        after, before, above = x >= 1 / 16, x <= 13 / 16, 0.6 * x + 0.8 * y + 0.04 >= 0
        self.assertEqual([(plane == 0).any() for plane in (x - 1 / 16, x - 13 / 16)], [True, True])
        cases = {
            "Start": (dict(startClippingPlane=start), after),
            "End": (dict(endClippingPlane=end), before),
            "Both": (dict(startClippingPlane=start, endClippingPlane=end, baseMaterialColor=self.COLOR, flag=True), after & before),
            "Slanted": (dict(startClippingPlane=slanted), above),
            "AlphaBetween": (dict(startClippingPlane=start, endClippingPlane=slanted, flag=True), after * above * image[..., 3]),
        }
        for form, name, doc in documents({name: self.thread(**case[0]) for name, case in cases.items()}):
            with self.subTest(name, form=form):
                opacity = driven(doc, "opacity", image=image)
                np.testing.assert_allclose(opacity, np.repeat(cases[name][1][..., None], 3, -1), atol=1e-5)

    def test_normals(self):
        tilted = np.tile([0.8, 0.6, 0.9], (2, 2, 1))
        normals = {"Flat": (self.thread(), (0, 0, 1)), "Mapped": (self.thread(normalTexture=texture("map")), (0.6, 0.2, 0.8))}
        for form, name, doc in documents({name: case[0] for name, case in normals.items()}):
            with self.subTest(name, form=form):
                expected = np.array(normals[name][1]) / np.linalg.norm(normals[name][1])
                np.testing.assert_allclose(driven(doc, "normal", map=tilted)[8, 8], expected, atol=2e-3)


if __name__ == "__main__":
    unittest.main()
