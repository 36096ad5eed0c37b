"""Gathered folders that a killed tool left behind."""

import hashlib
import pathlib
import random
import shutil
import signal
import subprocess
import time
import unittest

from support import ToolTest, bitmap, material

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"


def hashes(folder):
    """All files below a folder with hashes of their bytes; links and hidden files included, but not the list of them."""
    return {
        str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in sorted(folder.rglob("*")) if path.is_file() and not path.match(".vyr-mtlx-*.json")
    }


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
