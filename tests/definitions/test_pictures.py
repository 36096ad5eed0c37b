"""Samples of every family in all forms of their documents: the shaders that MaterialX generates must give one picture."""

import itertools
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
FAMILIES = {
    "generic": "tiles-diagonal plastic-worn",
    "metal": "lyrex-metal-brushed lyrex-metal-hammered-normal",
    "opaque": "lyrex-opaque-leather lyrex-opaque-lightbox",
    "transparent": "lyrex-transparent-amber lyrex-transparent-water",
    "layered": "lyrex-layered-rusting lyrex-layered-varnish",
    "glazing": "lyrex-glazing-bronze lyrex-glazing-reeded",
}
IDS = " ".join(FAMILIES.values()).split()
LIBRARIES = {"reference": kv.both, "embed": kv.standard, "standard": kv.standard}


class Noise:
    """An image for any file name."""

    def __getitem__(self, name):
        return np.random.default_rng(zlib.crc32(Path(name).name.encode())).random((8, 8, 3))


def pictures(form):
    """Of the samples in a form, as a reader with no more than the library that it needs draws them; by name."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            [os.environ["VYR_MTLX"], "convert", SAMPLES / "lyrex.json", SAMPLES / "textured.json", "--nodes", form]
            + ["--output", folder, "--quiet", "--image-size", "16", *(f"--asset={id}" for id in IDS)],
            check=True,
            stdout=subprocess.DEVNULL,
        )
        drawn = {}
        for path in Path(folder).glob("*.mtlx"):
            doc = mx.createDocument()
            mx.readFromXmlFile(doc, str(path))
            doc.setDataLibrary(LIBRARIES[form])
            drawn[path.stem] = picture(doc, doc.getMaterialNodes()[0].getName(), Noise(), high=(0.3, 0.3))[..., :3]
        return drawn


class Forms(unittest.TestCase):
    def test_look_the_same(self):
        forms = {form: pictures(form) for form in LIBRARIES}
        reference = forms.pop("reference")
        self.assertEqual(len(reference), len(IDS))
        for one, other in itertools.combinations(reference, 2):
            self.assertGreater(np.abs(reference[one] - reference[other]).max(), 0.1, f"{one} and {other} look alike")
        for form, drawn in forms.items():
            self.assertEqual(drawn.keys(), reference.keys())
            for name in drawn:
                with self.subTest(name, form=form):
                    self.assertGreater(np.ptp(reference[name]), 0.05)
                    np.testing.assert_allclose(drawn[name], reference[name], atol=3e-4)


if __name__ == "__main__":
    unittest.main()
