"""Documents in all forms, as the tool writes them: the shaders that MaterialX generates must give one picture."""

import itertools
import json
import os
import subprocess
import tempfile
import unittest
import zlib
from pathlib import Path

import kvor_library as kv
import MaterialX as mx
import numpy as np
from gl_picture import picture

SAMPLES = Path(__file__).resolve().parents[2] / "samples"
IDS = """tiles-diagonal plastic-worn lyrex-metal-brushed lyrex-metal-hammered-normal lyrex-opaque-leather lyrex-opaque-lightbox
    lyrex-transparent-amber lyrex-transparent-water lyrex-layered-rusting lyrex-layered-varnish lyrex-glazing-bronze
    lyrex-glazing-reeded""".split()
LIBRARIES = {"reference": kv.both, "embed": kv.standard, "standard": kv.standard}
LENGTHS = "nanometer micron millimeter centimeter inch foot yard meter kilometer mile".split()
SIZES = [1e-9, 1e-6, 1e-3, 0.01, 0.0254, 0.3048, 0.9144, 1, 1e3, 1609.344]


class Noise:
    """An image for any file name."""

    def __getitem__(self, name):
        return np.random.default_rng(zlib.crc32(Path(name).name.encode())).random((8, 8, 3))


def scalar(value, unit=None):
    return {"type": "scalar", "value": value} | ({"unit": unit} if unit else {})


def choice(value):
    return {"type": "choice", "value": value}


def connected(schema, image, **properties):
    return {"type": "reference", "connected": {"schema": schema, "properties": properties | {image: {"type": "uri", "value": "image.png"}}}}


def bitmap(**properties):
    return connected("UnifiedBitmapSchema", "unifiedbitmap_Bitmap", **properties)


def bump(kind, **properties):
    return connected("BumpMapSchema", "bumpmap_Bitmap", bumpmap_Type=choice(f"bumpmap_{kind}"), **properties)


def metals():
    """Metals by name, whose textures have every unit, colour space, amount and inversion."""
    for unit, size in zip(LENGTHS, SIZES):
        scale = {f"texture_RealWorldScale{axis}": scalar(0.2 / size, unit) for axis in "XY"}
        placed = scale | {"texture_WAngle": scalar(0.25, "radians"), "texture_URepeat": True}
        relief = bump("height_map", bumpmap_Depth=scalar(0.01 / size, unit), **placed)
        yield unit, {"surface_albedo": bitmap(**placed), "surface_normal": relief}
    for space, invert, amount in itertools.product(("", "linear", "sRGB_gamma24"), (False, True), (1, 0.5)):
        stored = bitmap(unifiedbitmap_Invert=invert, unifiedbitmap_RGBAmount=amount)
        declared = {"surface_albedo_colorspace": choice(f"colorspace_{space}")} if space else {}
        images = {"surface_albedo": stored, "surface_roughness": stored, "surface_normal": stored}
        yield f"{space}_{invert}_{amount}".replace(".", "_"), images | declared
    yield "turned", {"surface_normal": bump("normal_map", bumpmap_NormalScale=scalar(2), texture_WAngle=scalar(90, "degrees"))}


def converted(form, *arguments, command="convert"):
    """Documents in a form, with no more than the library that its readers need, by name."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            [os.environ["VYR_MTLX"], command, *arguments, "--nodes", form, "--output", folder, "--quiet"],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )  # fmt: skip
        documents = {}
        for path in Path(folder).glob("*.mtlx"):
            documents[path.stem] = kv.document("", LIBRARIES[form])
            mx.readFromXmlFile(documents[path.stem], str(path))
        return documents


class Forms(unittest.TestCase):
    def same(self, draw, *arguments):
        """The pictures of the documents by reference, which the other forms have to give, too."""
        forms = {form: converted(form, *arguments) for form in LIBRARIES}
        pictures = {name: draw(doc) for name, doc in forms.pop("reference").items()}
        for form, documents in forms.items():
            self.assertEqual(documents.keys(), pictures.keys())
            for name, doc in documents.items():
                with self.subTest(name, form=form):
                    self.assertGreater(np.ptp(pictures[name]), 0.05)
                    np.testing.assert_allclose(draw(doc), pictures[name], atol=3e-4)
        return pictures

    def test_samples_look_the_same(self):
        def draw(doc):
            return picture(doc, doc.getMaterialNodes()[0].getName(), Noise(), high=(0.3, 0.3))[..., :3]

        files = [SAMPLES / "lyrex.json", SAMPLES / "textured.json", "--image-size", "16"]
        pictures = self.same(draw, *files, *(f"--asset={id}" for id in IDS))
        self.assertEqual(len(pictures), len(IDS))
        for one, other in itertools.combinations(pictures, 2):
            self.assertGreater(np.abs(pictures[one] - pictures[other]).max(), 0.1, f"{one} and {other} look alike")

    def test_textures_compute_the_same(self):
        def draw(doc):
            outputs = doc.getNodeGraph(f"{doc.getMaterialNodes()[0].getName()}_inputGraph").getOutputs()
            return np.stack([picture(doc, output.getNamePath(), Noise(), high=(0.3, 0.3)) for output in outputs])

        materials = [{"id": name, "name": name, "schema": "LyrexMetalSchema", "properties": p} for name, p in metals()]
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            json.dump({"assetLibrary": 1, "materials": materials}, file)
            file.flush()
            pictures = self.same(draw, file.name)
        self.assertEqual(len(pictures), len(materials))
        for unit in LENGTHS:
            np.testing.assert_allclose(pictures[unit], pictures["meter"], atol=1e-3)


if __name__ == "__main__":
    unittest.main()
