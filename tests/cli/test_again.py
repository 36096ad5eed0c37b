"""Runs that come again: only what is new is done, and only what the tool itself wrote is ever removed or replaced."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import unittest

from support import GREY, PIXEL, ToolTest, bitmap, material, textured

NOISE = {"type": "reference", "connected": {"schema": "NoiseSchema", "properties": {"noise_Size": 20.0}}}
WOOD = {"type": "reference", "connected": {"schema": "WoodSchema", "properties": {}}}
LONG_AGO = 10**18
KINDS = "checker", "gradient", "marble", "speckle", "tile", "wave", "wood"
PIXELS = {2: "dab1cff0986fe6dad1b5040b6b3938f68b191cec2d5d0c62e7bb021b124300e5"}  # by the version of the bakes


class Again(ToolTest):
    def setUp(self):
        super().setUp()
        self.image("images/grey.png")
        self.image("images/relief.png")
        self.properties = {
            "Noise": {"generic_bump_map": NOISE, "generic_bump_amount": 1.0},
            "Relief": {"generic_bump_map": bitmap("images/relief.png"), "generic_bump_amount": 1.0},
            "Photo": {"generic_diffuse": bitmap("images/grey.png")},
            "Wood": {"generic_diffuse": WOOD},
            "Plain": GREY,
        }

    def run_all(self, *options, names=None, file="lib.json", out="out", status=0):
        names = self.properties if names is None else names
        self.library(*(material(f"id-{name}", name, self.properties[name]) for name in names), file=file)
        return self.tool("convert", file, "-o", out, "--copy-textures", "--image-size", 16, "--report", "report.json",
                         *options, status=status)

    def state(self):
        return {str(path.relative_to(self.folder)): (path.stat().st_mtime_ns, path.read_bytes())
                for path in (self.folder / "out").rglob("*") if path.is_file()}

    def age(self):
        for path in (self.folder / "out").rglob("*"):
            os.utime(path, ns=(LONG_AGO, LONG_AGO))
        return self.state()

    def changed(self, before):
        """The files whose time or bytes changed, the lists left out, whose copies were given other times."""
        after = self.state()
        return sorted(name for name in before.keys() | after.keys()
                      if before.get(name) != after.get(name) and "/.vyr-mtlx-" not in name)

    def bakes(self):
        entries = self.report()
        return tuple(sum(entry["bakes"][kind] for entry in entries) for kind in ("made", "kept"))

    def test_only_what_is_new_is_written(self):
        self.run_all()
        self.assertEqual(self.bakes(), (3, 0))
        before = self.state()
        result = self.run_all()
        self.assertEqual(self.state(), before, "also the lists")
        self.assertEqual(self.bakes(), (0, 3))
        self.assertTrue(all(entry["unchanged"] for entry in self.report()))
        self.assertIn("5 converted, 0 failed, 0 with warnings, 5 unchanged\n", result.stderr)

        before = self.age()
        os.utime(self.image("images/relief.png"))
        os.utime(self.image("images/grey.png"))
        self.run_all()
        self.assertEqual(self.changed(before), [], "the same content")
        # Bytes behind the end change no pixel.
        (self.folder / "images/relief.png").write_bytes(PIXEL + b"more")
        (self.folder / "images/grey.png").write_bytes(PIXEL + b"more")
        self.properties["Noise"]["generic_bump_amount"] = 2.0
        self.properties["Wood"]["generic_glossiness"] = 0.9
        self.run_all()
        self.assertEqual(self.changed(before), ["out/Noise/generic_bump_map_16normal_map.png", "out/Photo/grey.png",
                                                "out/Relief/relief_normalmap.png", "out/Wood.mtlx"])
        before, contents = self.age(), self.written()
        self.run_all("--force")
        self.assertEqual(self.written(), contents)
        self.assertEqual(self.changed(before), sorted(f"out/{name}" for name in contents))
        self.assertEqual(self.bakes(), (3, 0))

    def test_torn_and_edited_images_are_baked_anew(self):
        self.run_all()
        image = self.folder / "out/Wood/generic_diffuse_16.png"
        whole = image.read_bytes()
        key = whole.index(b"vyr_bake") + 9
        for damaged in (b"", whole[:60], whole[:-1], whole + b"x", whole[:-20] + bytes([whole[-20] ^ 1]) + whole[-19:],
                        whole[:key] + b"0" * 32 + whole[key + 32:], whole[:key + 65] + b"...." + whole[key + 69:]):
            image.write_bytes(damaged)
            self.run_all()
            self.assertEqual((image.read_bytes() == whole, self.bakes()), (True, (1, 2)), damaged[:80])

    def test_other_pixels_have_another_version(self):
        header = pathlib.Path(__file__).resolve().parents[2] / "src/bakes/BakeKey.h"
        version = int(re.search(r"bakeVersion = (\d+)", header.read_text())[1])
        size = ["--resolution", 32]
        pixels = hashlib.sha256()
        (self.folder / "height.pgm").write_bytes(b"P5 16 16 255 " + bytes(i * 37 % 256 for i in range(256)))
        for arguments in ([["normal", "height.pgm", "--bump-amount", 1], ["noise", *size, "--type", "noise_fractal", "--levels", 3]] +
                          [[kind, *size, "--pixels", what] for kind in KINDS for what in ("color", "normal")]):
            self.tool("bake", *arguments, "--output", "baked.pfm")
            pixels.update((self.folder / "baked.pfm").read_bytes())
        self.assertEqual(pixels.hexdigest(), PIXELS.get(version), "bakeVersion in src/bakes/BakeKey.h has to be raised")

    def test_a_kept_bake_makes_room_for_an_image_of_the_user(self):
        self.run_all(names=["Relief"])
        bake = (self.folder / "out/Relief/relief_normalmap.png").read_bytes()
        self.properties["Relief"]["generic_diffuse"] = bitmap(self.image("images/relief_normalmap.png"))
        for _ in range(2):
            self.run_all(names=["Relief"])
            written = self.written("out/Relief")
            self.assertEqual(sorted(written), ["relief_normalmap-2.png", "relief_normalmap.png"])
            self.assertEqual((written["relief_normalmap-2.png"], written["relief_normalmap.png"]), (bake, PIXEL))

    def test_prune_removes_what_earlier_runs_wrote_and_nothing_else(self):
        os.makedirs(self.folder / "b")
        self.run_all()
        # Of another file with the same name, and of the user.
        self.run_all(names=["Plain"], out="out2")
        shutil.copytree(self.folder / "images", self.folder / "b/images")
        self.properties["Other"] = self.properties["Photo"]
        self.properties["Edited"] = self.properties["Photo"]
        self.run_all(names=["Other"], file="b/lib.json")
        self.run_all(names=["Edited", "Photo", "Noise", "Wood", "Plain"])
        own = {"out/Own.mtlx": (self.folder / "out/Plain.mtlx").read_bytes(), "out/Photo/mine.png": PIXEL}
        for name, content in own.items():
            (self.folder / name).write_bytes(content)
        with open(self.folder / "out/Edited.mtlx", "a") as document:
            document.write("<!-- mine -->\n")
        edited = self.folder / "out/Noise/generic_bump_map_16normal_map.png"
        edited.write_bytes(PIXEL)
        before = self.state()
        result = self.run_all("--prune", names=["Wood", "Plain"])
        gone = ["out/Noise.mtlx", "out/Photo.mtlx", "out/Photo/grey.png", "out/Relief.mtlx", "out/Relief/relief.png",
                "out/Relief/relief_normalmap.png"]
        gone = [name for name in gone if name in before]
        self.assertEqual(self.changed(before), gone)
        report = json.loads((self.folder / "report.json").read_text())
        self.assertEqual((sorted(report["removed"]), report["run"]), (gone, "complete"))
        self.assertIn("out/Edited.mtlx was changed since it was written, and stays\n", result.stderr)
        self.assertFalse((self.folder / "out/Relief").exists())
        before = self.state()
        self.run_all("--prune", names=["Wood", "Plain"])
        self.assertEqual(self.changed(before), [])
        for arguments in (["--prune", "--asset", "id-Wood"], ["--prune", "-"]):
            self.tool("convert", "lib.json", "-o", "out", *arguments, status=2)
        self.run_all("--prune", names=["Plain"], file="b/lib.json")
        self.assertEqual(self.changed(before), ["out/Other.mtlx", "out/Other/grey.png"])

    def test_pruned_images_that_are_sources_stay(self):
        self.run_all(names=["Photo"])
        self.properties["New"] = {"generic_diffuse": bitmap("out/Photo/grey.png")}
        self.run_all("--prune", names=["New"])
        self.assertEqual(sorted(self.written()), ["New.mtlx", "New/grey.png", "Photo/grey.png"])

    def test_documents_of_other_assets_stay(self):
        self.library(textured("one & only", "Wall", "images/grey.png"), file="a.json")
        self.image("more/grey.png").write_bytes(PIXEL + b"x")
        self.library(textured("two", "Wall", "more/grey.png"), file="b.json")
        self.convert("a.json", "--copy-textures")
        before = self.written()
        result = self.convert("b.json", "--copy-textures", status=1)
        self.assertEqual(result.stderr, 'b.json: material "two" (GenericSchema): out/Wall.mtlx is the document of the asset '
                                        '"one & only"; --replace replaces it\n')
        self.assertEqual(self.written(), before)
        self.convert("a.json", "--copy-textures", "--look")
        self.convert("b.json", "--copy-textures", "--replace")
        self.assertIn(b'vyr_asset="two"', self.written()["Wall.mtlx"])

    @unittest.skipUnless(os.name == "posix", "signals of POSIX")
    def test_interrupted_and_run_again_only_the_rest_is_done(self):
        count = 500
        self.library(*(material(f"m{i}", f"Wall {i}") for i in range(count)))
        command = ["convert", "lib.json", "-o", "out" + "t" * 200, "--report", "report.json"]
        process = self.start(*command, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130)
        states = [entry["status"] for entry in self.report()]
        done = states.count("converted")
        self.assertEqual(states, ["converted"] * done + ["not-tried"] * (count - done))
        self.assertEqual(json.loads((self.folder / "report.json").read_text())["run"], "interrupted")
        self.tool(*command)
        self.assertEqual([entry["unchanged"] for entry in self.report()], [True] * done + [False] * (count - done))


if __name__ == "__main__":
    unittest.main()
