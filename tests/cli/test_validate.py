"""Documents that are checked, and documents in the three forms."""

import unittest

from support import ToolTest, bitmap, material, textured

BAD = """<?xml version="1.0"?>
<materialx version="1.39">
  <nodegraph name="NG_oak">
    <kvor:bitmap name="color" type="color3">
      <input name="file" type="filename" value="gone.png" colorspace="sRGB" />
    </kvor:bitmap>
    <output name="out" type="color3" nodename="color" />
  </nodegraph>
</materialx>
"""


class Validate(ToolTest):
    def test_messages_name_file_and_element(self):
        (self.folder / "bad.mtlx").write_text(BAD)
        (self.folder / "broken.mtlx").write_text(BAD[:100])
        self.library(material("m", "Wall"))
        self.convert("lib.json")
        result = self.tool("validate", "bad.mtlx", "out/Wall.mtlx", "broken.mtlx", status=1)
        self.assertEqual(result.stdout, "out/Wall.mtlx\n")
        lines = result.stderr.splitlines()
        self.assertRegex(lines[0], r'^bad.mtlx: NG_oak/color/file: unknown colour space "sRGB"; known are ')
        self.assertEqual(lines[1], 'bad.mtlx: NG_oak/color/file: there is no file "gone.png"')
        self.assertRegex(lines[2], "^broken.mtlx: line 4, column ")
        self.assertEqual(len(lines), 3)
        self.assertRegex(self.tool("validate", "none.mtlx", status=2).stderr, "^vyr-mtlx: none.mtlx: ")
        self.tool("validate", status=2)


class Forms(ToolTest):
    def setUp(self):
        super().setUp()
        self.image("grey.png")
        self.library(textured("m-1", "Wall", "grey.png"), material("m-2", "Plain"))

    def test_every_form_is_valid(self):
        documents = {}
        for form in ("reference", "embed", "standard"):
            self.convert("lib.json", "--nodes", form, "--validate", "--copy-textures")
            documents[form] = self.written()["Wall.mtlx"]
            self.tool("validate", "out/Wall.mtlx", "out/Plain.mtlx")
        self.convert("lib.json", "--copy-textures")
        self.assertEqual(documents["reference"], self.written()["Wall.mtlx"])
        self.assertIn(b"<kvor:bitmap", documents["embed"])
        self.assertIn(b'<nodedef name="kvor:ND_bitmap_color3"', documents["embed"])
        self.assertNotIn(b"kvor", documents["standard"])
        self.assertIn(b"<image ", documents["standard"])

    def test_an_invalid_document_fails_and_leaves_nothing(self):
        relief = {"generic_bump_map": bitmap("grey.png"), "generic_bump_amount": 1.0, "generic_diffuse": bitmap("gone.png")}
        self.library(material("m-1", "Wall", relief), material("m-2", "Plain"))
        result = self.convert("lib.json", "--validate", status=1)
        self.assertEqual(result.stdout, "out/Plain.mtlx\n")
        self.assertRegex(result.stderr, r'material "m-1" \(GenericSchema\): invalid document: \S+/file: there is no file')
        self.assertEqual(list(self.written()), ["Plain.mtlx"])
        self.assertFalse((self.folder / "out/Wall").exists())
        # What was there before stays.
        self.convert("lib.json")
        before = self.written()
        self.assertEqual(sorted(before), ["Plain.mtlx", "Wall.mtlx", "Wall/grey_normalmap.png"])
        self.convert("lib.json", "--validate", status=1)
        self.assertEqual(self.written(), before)


if __name__ == "__main__":
    unittest.main()
