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

from support import ToolTest, bitmap, material, textured

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


@unittest.skipUnless(MaterialX, "no Python package of MaterialX")
class Moved(ToolTest):
    def check(self, files):
        """Converts, moves the result, removes the sources, and lets MaterialX look for every image."""
        self.convert(files, "--copy-textures")
        shutil.rmtree(self.folder / "src")
        moved = self.folder / "moved to \u00fcb%20er" / "there"
        moved.parent.mkdir()
        (self.folder / "out").rename(moved)
        search = MaterialX.FileSearchPath(str(moved))
        images = []
        for path in sorted(moved.glob("*.mtlx")):
            document = MaterialX.createDocument()
            MaterialX.readFromXmlFile(document, path.name, search)
            for element in document.traverseTree():
                if element.isA(MaterialX.Input) and element.getType() == "filename":
                    value = element.getResolvedValueString(element.createStringResolver())
                    self.assertFalse(pathlib.PurePath(value).is_absolute(), value)
                    images.append(pathlib.Path(search.find(value).asString()))
                    self.assertTrue(images[-1].is_file(), f"{path.name}: {value}")
                    self.assertTrue(images[-1].is_relative_to(moved), f"{path.name}: {value}")
        return images

    def test_samples(self):
        shutil.copytree(SAMPLES, self.folder / "src")
        self.assertGreater(len(self.check("src/textured.json")), 15)

    def test_names_of_all_kinds(self):
        names = ["a b.png", "100%.png", "a%20b.png", "\u6728.png", "\u00e9.png", "e\u0301.png", "#x&y+z'(1).png",
                 "[a]{b}<c>.png", "$HOME~.png", "x.tar.png", "semi;colon,.png", ".hidden.png", "q?*.png", "-o.png",
                 "%2e%2e", "e\u0301" * 80 + ".png", "trailing ", "dot."]
        (self.folder / "src").mkdir()
        for name in names:
            (self.folder / "src" / name).write_text(name)
        self.library(*(textured(f"m{i}", f"Wall {i:02}", f"src/{name}") for i, name in enumerate(names)))
        self.assertEqual([image.read_text() for image in self.check("lib.json")], names)


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
        self.library(*(material(f"m{i}", f"Wall {i}", {
            "generic_diffuse": bitmap(f"large{i % 6}.png"),
            "generic_cutout_opacity": bitmap(f"large{(i + 1) % 6}.png"),
            "generic_glossiness": bitmap("tile_gloss.png"),
            "generic_bump_amount": 1.0,
            "generic_bump_map": bitmap(["brick_height.png", "tile_height.png"][i % 2])})
            for i in range(8)), texturePaths=["textures"])

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
            if process.poll() is not None:
                duration *= 0.9  # it was slower when it was measured
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
        self.assertGreater(halves, self.rounds // 12, "it was killed too early or too late to mean much")


if __name__ == "__main__":
    unittest.main()
