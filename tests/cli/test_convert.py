"""What a conversion writes, prints and reports."""

import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import unittest
import zlib
from unittest import mock

from support import BROKEN, GREY, MISSPELT, TOOL, ToolTest, bitmap, material, textured


class Convert(ToolTest):
    def test_documents(self):
        self.library(material("m-1", "Brick Wall"), material("m-2", "3D Grid"), file="a.json")
        self.library(material("m-3", "\u58c1"), file="b.json")
        result = self.convert("b.json", "a.json")
        self.assertEqual(result.stdout, "out/XID__m3.mtlx\nout/BrickWall.mtlx\nout/M3DGrid.mtlx\n")
        self.assertEqual(result.stderr, "")
        # A selection keeps the order of the input.
        result = self.convert("--asset", "m-2", "a.json", "--asset=m-1", "--asset", "m-2")
        self.assertEqual(result.stdout, "out/BrickWall.mtlx\nout/M3DGrid.mtlx\n")

    def test_report_and_strict(self):
        self.library(material("a", "One", MISSPELT), material("b", "Two", BROKEN), material("c", "one"))
        (self.folder / "out").mkdir()
        (self.folder / "out/Two.mtlx").write_text("of an earlier run")
        self.convert("lib.json", "--report", "report.json", status=1)
        self.assertEqual((len(self.written()), self.written()["Two.mtlx"]), (2, b"of an earlier run"))
        (self.folder / "out/Two.mtlx").unlink()
        one, two, three = self.report()
        warning = one["warnings"].pop()
        self.assertEqual((warning["code"], warning["property"]), ("property-unread", "generic_difuse"))
        self.assertTrue(warning["text"])
        same = {"schema": "GenericSchema", "file": "lib.json", "textures": [], "warnings": [], "unchanged": False,
                "bakes": {"made": 0, "kept": 0}}  # fmt: skip
        self.assertEqual(one, {"id": "a", "name": "One", **same, "status": "converted", "document": "out/One.mtlx", "message": None})
        for part in ('"one"', 'material "a" (GenericSchema) of lib.json', "--id-names"):
            self.assertIn(part, three["message"])
        two_failed = {"id": "b", "name": "Two", **same, "status": "failed", "document": None}
        self.assertEqual(two, {**two_failed, "message": "ePropertyType_Scalar: generic_glossiness"})
        self.assertEqual(three, {**two_failed, "id": "c", "name": "one", "message": three["message"]})
        for options, status in ([], 0), (["--strict"], 1):
            self.convert("lib.json", "--asset", "a", *options, status=status)
            self.assertEqual(list(self.written()), ["One.mtlx"])

    def test_names_that_identifiers_keep_apart_or_not(self):
        # Cleaning can make one name of two identifiers; only the third has one that helps.
        self.library(*(material(id, "Wall") for id in ("a.b", "AB", "c")), material("?", ""), material("!", ""))
        lines = self.convert("lib.json", status=1).stderr.splitlines()
        self.assertEqual([line.split('"')[1] for line in lines if "--id-names" in line], ["c"])
        self.assertEqual(self.convert("lib.json", "--id-names", status=1).stderr.count("even with --id-names"), 2)

    def test_jobs_change_nothing(self):
        kinds = [GREY, BROKEN, MISSPELT]
        self.library(textured("t", "Oak", "oak.png"), *(material(f"m{i}", f"Wall {i % 97}", kinds[i % 3]) for i in range(120)))
        for form in "reference", "embed", "standard":
            runs = []
            for jobs in 1, 2, 7:
                shutil.rmtree(self.folder / "out", ignore_errors=True)
                result = self.convert("lib.json", "--jobs", jobs, "--report", "report.json", "--nodes", form, status=1)
                runs.append((result.stdout, result.stderr, self.written(), self.report()))
            self.assertEqual(len(runs[0][2]), 66)
            self.assertTrue(runs[0] == runs[1] == runs[2])


class Images(ToolTest):
    def test_paths_inside_the_output_folder_are_relative(self):
        inside = self.image("out/maps/brick 50%.png")
        outside = self.image("outer/brick.png")
        self.library(textured("a", "Inside", inside), textured("b", "Outside", "outer/brick.png"))
        for options, first in ([], "maps/brick 50%.png"), (["--absolute-paths"], inside.as_posix()):
            self.convert("lib.json", "--report", "report.json", *options)
            self.assertEqual([entry["textures"] for entry in self.report()], [[first], [outside.as_posix()]])
            self.assertIn(f'value="{first}"'.encode(), self.written()["Inside.mtlx"])
        # The same folder by another way: through a link, and with a step up.
        (self.folder / "link").symlink_to("out")
        self.tool("convert", "lib.json", "-o", "outer/../link", "--report", "report.json", "-q")
        self.assertEqual(self.report()[0]["textures"], ["maps/brick 50%.png"])

    def test_texture_folders_and_gathering(self):
        found = self.image("far/brick.png")
        self.library(textured("a", "Wall", "brick.png"))
        for options, expected in ([], found.as_posix()), (["--copy-textures"], "Wall/brick.png"):
            self.convert("lib.json", "--texture-path", "far", "--report", "report.json", *options)
            self.assertEqual(self.report()[0]["textures"], [expected])
        # Another image of the same size and time.
        kept = found.stat().st_mtime_ns
        found.write_bytes(found.read_bytes()[::-1])
        os.utime(found, ns=(kept, kept))
        self.convert("lib.json", "--texture-path", "far", "--copy-textures")
        self.assertEqual(self.written()["Wall/brick.png"], found.read_bytes())

    def test_images_are_inputs_too(self):
        inside = self.image("out/Gate/brick.png")
        (self.folder / "link.png").symlink_to(inside)
        self.library(textured("a", "Wall", "link.png"), material("b", "Gate"))
        (self.folder / "out/Wall").mkdir()
        for options, reason in ([], "lies in the folder of another material"), (["--report", "out/Wall/report.json"], "the report would lie in the folder"):
            self.assertIn(reason, self.convert("lib.json", *options, status=2).stderr)

        # Of what is not converted, too, and a document is no image.
        other = self.image("other.png")
        self.library(textured("a", "Wall", inside), material("b", "Gate"), textured("c", "Roof", other))
        for asset, options, reason in ("b", [], "lies in the folder of another material"), ("c", [], ""), \
                ("c", ["--report", other], "the report would replace"):  # fmt: skip
            self.assertIn(reason, self.convert("lib.json", "--asset", asset, *options, status=2 if reason else 0).stderr)
        self.library(material("b", "Gate"), overlays=[{"name": "Logo", "type": "decal", "texture": {"path": "out/Gate.mtlx"}}])
        self.assertIn("a document would replace its image", self.convert("lib.json", status=2).stderr)

    def test_warnings_of_loading_join_the_material(self):
        self.image("Brick.PNG")
        if (self.folder / "brick.png").exists():
            self.skipTest("the file system does not tell upper from lower case")
        shared = {"schema": "UnifiedBitmapSchema", "id": "t",
                  "properties": {"unifiedbitmap_Bitmap": {"type": "uri", "value": "brick.png"}}}
        user = {"generic_diffuse": {"type": "color", "value": [1, 1, 1], "connected": "t"}}
        self.library(material("a", "Plain"), material("b", "Wall", user), textures=[shared])
        self.convert("lib.json", "--report", "report.json")
        plain, wall = self.report()
        self.assertEqual(plain["warnings"], [])
        self.assertIn(("texture-case-differs", "unifiedbitmap_Bitmap"),
                      [(warning["code"], warning["property"]) for warning in wall["warnings"]])


class ListAndOverlay(ToolTest):
    def setUp(self):
        super().setUp()
        self.library(
            textured("m-1", "Brick Wall", "b.png"), material("w\u00e4nd\n\x1b", "Wand"), file="lib.json",
            overlays=[{"name": "Logo", "type": "decal", "texture": {"path": "logo.png"}},
                      {"name": "logo!", "type": "thread"}, {"name": "?", "type": "decal"}],
        )

    def test_list(self):
        lines = self.tool("list", "lib.json").stdout.splitlines()
        self.assertEqual([line.split() for line in lines], [
            ["ID", "NAME", "SCHEMA", "TEXTURES"],
            ["m-1", "BrickWall", "GenericSchema", "b.png"],
            ["w\u00e4nd\\n\\x1b", "Wand", "GenericSchema"],
            ["-", "Logo", "(decal)", "logo.png"], ["-", "logo!", "(thread)"], ["-", "?", "(decal)"]])
        self.assertEqual({line.index("GenericSchema") for line in lines[1:3]}, {lines[0].index("SCHEMA")})
        text = self.tool("list", "lib.json", "--json").stdout
        content = json.loads(text)
        self.assertEqual(text, json.dumps(content, indent=2, ensure_ascii=False) + "\n")
        self.assertEqual(list(content["materials"][0].items()), [
            ("id", "m-1"), ("name", "BrickWall"), ("schema", "GenericSchema"), ("file", "lib.json"), ("textures", ["b.png"])])
        self.assertEqual(list(content["overlays"][0].items()), [
            ("name", "Logo"), ("type", "decal"), ("file", "lib.json"), ("textures", ["logo.png"])])

    @unittest.skipUnless(sys.platform == "linux", "names of files are any bytes")
    def test_names_that_are_no_text(self):
        self.library(material("a", "Wall"), file=os.fsdecode(b"br\xe9ok.json"))
        content = json.loads(self.tool("list", os.fsdecode(b"br\xe9ok.json"), "--json").stdout)
        self.assertEqual(content["materials"][0]["file"], "br\ufffdok.json")

    def test_a_long_chain_of_textures(self):
        count = 30000
        bitmaps = [{"schema": "UnifiedBitmapSchema", "id": f"t{i}", "properties": {
            "unifiedbitmap_Bitmap": {"type": "uri", "value": f"{i}.png", "connected": f"t{i + 1}"}}} for i in range(count)]
        del bitmaps[-1]["properties"]["unifiedbitmap_Bitmap"]["connected"]
        properties = {"generic_diffuse": {"type": "reference", "connected": "t0"}, "generic_bump_amount": 1,
                      "generic_bump_map": {"type": "reference", "connected": {"schema": "NoiseSchema"}}}
        self.library(material("m", "Wall", properties), textures=bitmaps)
        images = json.loads(self.tool("list", "lib.json", "--json").stdout)["materials"][0]["textures"]
        self.assertEqual(images, [f"{i}.png" for i in range(count)])
        # A bake might take the name of one of them.
        done = self.tool("convert", "lib.json", "--output", "out")
        self.assertIn("more assets are connected than can be looked through", done.stderr)
        self.assertFalse((self.folder / "out/Wall").exists())

    def test_overlays_in_a_report(self):
        self.tool("overlay", "lib.json", "--output", "out", "--report", "report.json", status=1)
        logo, clash, nameless = json.loads((self.folder / "report.json").read_text())["overlays"]
        self.assertEqual((logo["overlay"], logo["name"], logo["type"], logo["textures"]), ("Logo", "Logo", "decal", ["logo.png"]))
        self.assertRegex(clash["message"] + nameless["message"], r'"Logo" \(decal\) of lib.json.* no ASCII letter or digit')


class Bake(ToolTest):
    def setUp(self):
        super().setUp()
        # A colour configuration that nobody ever writes into.
        os.mkfifo(self.folder / "pipe")
        self.enterContext(mock.patch.dict(os.environ, OCIO=str(self.folder / "pipe")))

    def size(self, file):
        """Width, height and number of channels of a PNG image."""
        width, height, _, kind = struct.unpack(">IIBB", (self.folder / file).read_bytes()[16:26])
        return width, height, {0: 1, 2: 3}[kind]

    def test_noise_and_its_normal_map(self):
        for options, size in [
            (["--resolution", 16, "--width", 8], (8, 16, 1)),
            (["--width", 8, "--height", 4, "--color2", 1, 0, 0], (8, 4, 3)),
        ]:
            self.assertEqual(self.tool("bake", "noise", "-o", "noise.png", *options).stdout, "noise.png\n")
            self.assertEqual(self.size("noise.png"), size)
        seen = set()
        for options in [], ["--type", "noise_turbulence"], ["--size", 3], ["--threshold-low", 0.5], ["--threshold-high", 0.5], \
                ["--phase", "-1.5e-1"], ["--color1", 0, 0, 1]:  # fmt: skip
            self.tool("bake", "noise", "-o", "other.png", "--resolution", 32, *options)
            seen.add((self.folder / "other.png").read_bytes())
        self.assertEqual(len(seen), 7)
        self.tool("bake", "noise", "-o", "noise.png", "--resolution", 32)
        plain = (self.folder / "noise.png").read_bytes()
        # Not black or white only, as thresholds of 0 would make it.
        self.assertGreater(len(set(zlib.decompress(plain[plain.index(b"IDAT") + 4 :]))), 50)
        maps = set()
        for amount, *options in (0.25,), (-0.25,), (0.25, "--real-world-scale", 2, 1), (0.25, "--bump-scale", 1, 0.5):
            self.tool("bake", "normal", "noise.png", "-o", "map.png", "--bump-amount", amount, *options)
            self.assertEqual(self.size("map.png"), (32, 32, 3))
            maps.add((self.folder / "map.png").read_bytes())
        self.assertEqual(len(maps), 4)

    def test_a_failure(self):
        (self.folder / "text.png").write_text("no picture")
        result = self.tool("bake", "normal", "text.png", "-o", "out.png", status=1)
        self.assertIn("text.png", result.stderr)
        self.assertEqual((result.stdout, list(self.written("."))), ("", ["text.png"]))

    @unittest.skipUnless(sys.platform == "linux", "asks and leads the loader of programs")
    def test_the_library_of_the_bakes(self):
        """It lies beside the converter's, and nothing but bakes needs it."""
        needed = subprocess.run(["ldd", TOOL], capture_output=True, text=True, check=True).stdout
        self.assertNotIn("OpenImageIO", needed)
        converter = pathlib.Path(re.search(r"=> (\S+libvyr_mtlx_converter\S+)", needed)[1])
        bakes = (converter.parent / "libvyr_mtlx_bakes.so").read_bytes()
        place = self.folder / "libraries" / "libvyr_mtlx_bakes.so"
        place.parent.mkdir()
        shutil.copy(converter, place.parent)
        self.enterContext(mock.patch.dict(os.environ, LD_LIBRARY_PATH=str(place.parent)))
        self.image("grey.png")
        relief = {"generic_bump_map": bitmap("grey.png"), "generic_bump_amount": 1.0}
        self.library(material("p", "Plain"), material("r", "Relief", relief))
        for content, reason in (
            (None, "cannot be loaded: .*No such file"),
            (converter.read_bytes(), "cannot be loaded: .*undefined symbol"),
            (re.sub(rb"(\d\.\d\.\d )\w{12} ", rb"\1elsewhere--- ", bakes), "is of another build: .*elsewhere"),
            (bakes, None),
        ):
            if content:
                place.write_bytes(content)
            result = self.convert("lib.json")
            documents = [name for name in self.written() if name.endswith(".mtlx")]
            self.assertEqual(sorted(documents), ["Plain.mtlx", "Relief.mtlx"])
            why = f"without relief: .*grey_normalmap.png: the library of the bakes, {re.escape(str(place.resolve()))}, {reason}"
            self.assertRegex(result.stderr, f"{why}.*\n$" if reason else "^$")
            result = self.tool("bake", "normal", "grey.png", "-o", "map.png", status=1 if reason else 0)
            self.assertRegex(result.stderr, f"map.png: .*{reason}" if reason else "^$")


if __name__ == "__main__":
    unittest.main()
