"""Gathered folders as others meet them: moved elsewhere and read by MaterialX's own package, and left behind by
a tool that was killed."""

import hashlib
import json
import pathlib
import random
import shutil
import signal
import subprocess
import time
import unittest

from support import ToolTest, material

try:
    import MaterialX
except ImportError:
    MaterialX = None

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"


def hashes(folder):
    """All files below a folder with hashes of their bytes; links and hidden files included."""
    return {
        str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in sorted(folder.rglob("*")) if path.is_file()
    }


def bitmap(image):
    return {"type": "reference", "connected": {"schema": "UnifiedBitmapSchema", "properties": {
        "unifiedbitmap_Bitmap": {"type": "uri", "value": image}}}}


@unittest.skipUnless(MaterialX, "no Python package of MaterialX")
class Moved(ToolTest):
    def images_of(self, path, folder):
        """The images of a document, found as MaterialX finds them with the document's folder as search path."""
        document = MaterialX.createDocument()
        MaterialX.readFromXmlFile(document, path.name, MaterialX.FileSearchPath(str(folder)))
        search = MaterialX.FileSearchPath(str(folder))
        images = []
        for element in document.traverseTree():
            if element.isA(MaterialX.Input) and element.getType() == "filename":
                value = element.getResolvedValueString(element.createStringResolver())
                self.assertFalse(pathlib.PurePath(value).is_absolute(), value)
                images.append(pathlib.Path(search.find(value).asString()))
        return images

    def check(self, moved):
        found = 0
        for path in sorted(moved.glob("*.mtlx")):
            for image in self.images_of(path, moved):
                self.assertTrue(image.is_file(), f"{path.name}: {image}")
                self.assertTrue(image.is_relative_to(moved), f"{path.name}: {image}")
                found += 1
        return found

    def move(self):
        moved = self.folder / "moved to \u00fcb%20er" / "there"
        moved.parent.mkdir()
        (self.folder / "out").rename(moved)
        return moved

    def test_samples(self):
        shutil.copytree(SAMPLES, self.folder / "samples")
        self.convert("samples/textured.json", "--copy-textures")
        shutil.rmtree(self.folder / "samples")
        self.assertGreater(self.check(self.move()), 15)

    def test_names_of_all_kinds(self):
        names = ["a b.png", "100%.png", "a%20b.png", "\u6728.png", "\u00e9.png", "e\u0301.png", "#x&y+z'(1).png",
                 "[a]{b}<c>.png", "$HOME~.png", "x.tar.png", "semi;colon,.png", ".hidden.png", "q?*.png", "-o.png",
                 "e\u0301" * 80 + ".png", "trailing ", "dot."]
        (self.folder / "src").mkdir()
        materials = []
        for i, name in enumerate(names):
            (self.folder / "src" / name).write_text(name)
            materials.append(material(f"m{i}", f"Wall {i}", {"generic_diffuse": bitmap(f"src/{name}")}))
        self.library(*materials)
        before = hashes(self.folder / "src")
        self.convert("lib.json", "--copy-textures", "--report", "report.json")
        self.assertEqual(hashes(self.folder / "src"), before)
        shutil.rmtree(self.folder / "src")
        moved = self.move()
        self.assertEqual(self.check(moved), len(names))
        for i, name in enumerate(names):
            image, = self.images_of(moved / f"Wall{i}.mtlx", moved)
            self.assertEqual(image.read_text(), name)


class Killed(ToolTest):
    """After a second, undisturbed run everything is as if the tool had never been killed."""

    rounds = 36

    def setUp(self):
        super().setUp()
        textures = self.folder / "textures"
        textures.mkdir()
        for name in "brick_height.png", "tile_height.png", "tile_gloss.png":
            shutil.copy2(SAMPLES / "textures" / name, textures)
        for i in range(6):
            # Large enough to be killed in the middle of a copy.
            (textures / f"large{i}.png").write_bytes(random.Random(i).randbytes(3_000_000))
        materials = []
        for i in range(8):
            relief = ["brick_height.png", "tile_height.png"][i % 2]
            materials.append(material(f"m{i}", f"Wall {i}", {
                "generic_diffuse": bitmap(f"large{i % 6}.png"),
                "generic_cutout_opacity": bitmap(f"large{(i + 1) % 6}.png"),
                "generic_glossiness": bitmap("tile_gloss.png"),
                "generic_bump_amount": 1.0,
                "generic_bump_map": bitmap(relief)}))
        self.library(*materials, texturePaths=["textures"])

    def arguments(self, out):
        return "convert", "lib.json", "--copy-textures", "--quiet", "--output", out, "--jobs", 2

    def test_killed_while_gathering(self):
        sources = hashes(self.folder / "textures")
        started = time.monotonic()
        self.tool(*self.arguments("undisturbed"))
        duration = time.monotonic() - started
        undisturbed = hashes(self.folder / "undisturbed")
        self.assertEqual(len(undisturbed), 8 * 5)
        chance = random.Random(20)
        halves = 0
        for round in range(self.rounds):
            out = self.folder / "out"
            # Every third time what an earlier kill left behind is killed again.
            if round % 3 != 1:
                shutil.rmtree(out, ignore_errors=True)
            process = self.start(*self.arguments("out"), stdout=subprocess.DEVNULL)
            time.sleep(chance.uniform(0.0, duration))
            process.send_signal(signal.SIGKILL)
            process.wait(timeout=60)
            left = hashes(out) if out.exists() else {}
            halves += 0 < len(left) and left != undisturbed
            for name, content in left.items():
                if not pathlib.PurePath(name).name.startswith(".vyr-"):
                    # A baked file may still wait for its move.
                    self.assertIn(content, undisturbed.values(), name)
            if round % 3 != 0:
                self.tool(*self.arguments("out"))
                self.assertEqual(hashes(out), undisturbed)
            self.assertEqual(hashes(self.folder / "textures"), sources)
        self.assertGreater(halves, self.rounds // 4, "it was killed too early or too late to mean much")


if __name__ == "__main__":
    unittest.main()
