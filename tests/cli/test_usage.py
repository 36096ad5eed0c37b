"""Wrong usage and unreadable input: exit status 2, a message, and nothing written."""

import unittest

from support import ToolTest, material


class Usage(ToolTest):
    def setUp(self):
        super().setUp()
        self.library(material("a", "Wall"))

    def refused(self, message, *arguments):
        before = self.written(".")
        with self.subTest(arguments):
            result = self.tool(*arguments, status=2)
            self.assertEqual(result.stdout, "")
            self.assertIn(message, result.stderr)
            self.assertEqual(self.written("."), before)
            self.assertFalse((self.folder / "out").exists())

    def test_wrong_arguments(self):
        self.refused("subcommand is required")
        self.refused("--output is required", "convert", "lib.json")
        self.refused('did you mean "WaveSchema"', "schema", "WavesSchema")
        self.refused("FILE is required", "convert", "--output", "out")
        self.refused('looks like an option ("./-x"', "convert", "lib.json", "--output", "out", "--report=-x")
        for option in ("--bogus", "--output=other", "--report=", "--asset=", "--texture-path=", "--jobs=0", "--jobs=1025",
                       "--jobs=nan", "--jobs=1.5", "--jobs=-1", "--image-size=0", "--image-size=99999999999999999999",
                       "--color-mode=2x", "--color-mode=0x2", "--roughness-mode=3000000000", "--nodes=flat"):  # fmt: skip
            self.refused(option.split("=")[0], "convert", "lib.json", "--output", "out", option)
        for output in ("--output=-x", "--output=", "-o-x"):
            self.refused("--output", "convert", "lib.json", output)
        for message, *arguments in [
            ("--resolution, or --width and --height", "noise", "--width", 8),
            ("--resolution", "noise", "--resolution", 0),
            ("--phase", "noise", "--resolution", 8, "--phase", "inf"),
            ("--color1", "noise", "--resolution", 8, "--color1", 1, 0),
            ("--type", "noise", "--resolution", 8, "--type", "white"),
            ("--bump-scale", "normal", "lib.json", "--bump-scale", 1),
            ('"tile_brick" is none of tile_stack', "tile", "--bond", "tile_brick"),
            ("--color", "gradient", "--color", 1, 0),
            ("IMAGE is required", "normal"),
            ("missing.png: ", "normal", "missing.png"),
        ]:
            self.refused(message, "bake", *arguments, "--output", "out.png")

    def test_unreadable_input(self):
        (self.folder / "truncated.json").write_text('{"assetLibrary": 1, "materials": [')
        (self.folder / "latin.json").write_bytes(b'{"assetLibrary": 1, "$schema": "\xe9"}')
        self.library({"schema": "GenericSchema"}, material("a", "Wall"), file="twice.json")
        for command, *messages in [
            (["convert", "--output", "out", "missing.json", "lib.json", "lost.json"], "missing.json: ", "lost.json: "),
            (["overlay", "--output", "out", "truncated.json"], "truncated.json:1:"),
            (["list", "lib.json", "latin.json", "twice.json"], "latin.json:", "twice.json:", "/materials/0", "/materials/1"),
        ]:
            for message in messages:
                self.refused(message, *command)

    def test_places_that_cannot_be_written(self):
        (self.folder / "file").touch()
        (self.folder / "docs").mkdir()
        self.library(material("a", "Wall"), file="docs/Wall.mtlx")
        for message, *arguments in [
            ("file: ", "lib.json", "--output", "file"),
            ("it is a folder", "lib.json", "--output", "out", "--report", "docs"),
            ("no such folder", "lib.json", "--output", "out", "--report", "missing/report.json"),
            ("it is an input file", "lib.json", "--output", "out", "--report", "docs/../lib.json"),
            ("would replace the report", "lib.json", "--output", "out", "--report", "./out/Wall.mtlx"),
            ("would replace an input file", "docs/Wall.mtlx", "--output", "docs"),
            ('"nope"', "lib.json", "--output", "out", "--asset", "a", "--asset", "nope"),
        ]:
            self.refused(message, "convert", *arguments)

    def test_help_and_version(self):
        self.assertRegex(self.tool("--version").stdout, r"^vyr-mtlx \d+\.\d+\.\d+\n$")
        for command in ([], ["convert"], ["bake", "noise"]):
            self.assertIn("--output" if command else "convert", self.tool(*command, "--help").stdout)

    def test_names_that_look_like_options(self):
        self.library(material("-a", "Odd"), file="-x.json")
        self.tool("convert", "--output", "./-out", "--asset=-a", "--", "-x.json")
        self.assertEqual(list(self.written("./-out")), ["Odd.mtlx"])


if __name__ == "__main__":
    unittest.main()
