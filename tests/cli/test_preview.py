"""The page of one's own materials, as files: `scripts/gallery --test preview` looks at it in a browser."""

import base64
import json
import re
import struct
import time
import unittest
import zlib

from support import GREY, PIXEL, ToolTest, bitmap, material, textured

HOSTILE = ['<img src=x onerror="hacked=1">', "</script><script>hacked=1</script>", "\u2028`${hacked=1}`", '");hacked=1;//', "__proto__"]
PIECE = re.compile(r'preview\.take\("([a-z0-9]+)", (.*)\);\n', re.DOTALL)


def png(width, height):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    rows = b"".join(b"\0" + bytes(x % 256 for x in range(width)) for _ in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def jpeg_size(data):
    at = 2
    while data[at + 1] not in (0xC0, 0xC2):
        at += 2 + int.from_bytes(data[at + 2 : at + 4], "big")
    return struct.unpack(">HH", data[at + 5 : at + 9])[::-1]


class Preview(ToolTest):
    def preview(self, *arguments, status=0):
        return self.tool("preview", "lib.json", "--output", "page", "--quiet", *arguments, status=status)

    def piece(self, name):
        match = PIECE.fullmatch((self.folder / "page/data" / f"{name}.js").read_text(encoding="utf-8"))
        self.assertEqual(match[1], name)
        return json.loads(match[2])

    def items(self):
        return {item["id"]: item for item in self.piece("list")["items"]}

    def test_what_libraries_say_stays_data(self):
        self.image("__proto__.png")
        self.library(
            *(material(f"{i}{text}", f"n{i} {text}", description=text) for i, text in enumerate(HOSTILE)),
            textured("image", "Textured", "__proto__.png"), material("bad", "Bad", {"generic_glossiness": {"type": "string", "value": HOSTILE[1]}}),
        )  # fmt: skip
        self.assertEqual(self.preview(status=1).stdout, "page/index.html\n")
        items = self.items()
        self.assertEqual([key for key in items][: len(HOSTILE)], [f"{i}{text}" for i, text in enumerate(HOSTILE)])
        self.assertTrue(items["bad"]["failed"] and items["bad"]["messages"])
        [image] = self.piece(items["image"]["piece"])["images"]
        self.assertTrue(image["name"].endswith("__proto__.png"))
        self.assertEqual(self.piece(image["piece"]), "data:image/png;base64," + base64.b64encode(PIXEL).decode())
        # Nothing of theirs is in what a browser takes for markup or for code.
        for name, content in self.written("page").items():
            if name.startswith("data/"):
                self.assertIsNotNone(PIECE.fullmatch(content.decode()), name)
            elif not name.startswith("documents/"):
                self.assertNotIn(b"hacked", content, name)

    def test_images_are_small_and_made_once(self):
        (self.folder / "wide.png").write_bytes(png(3000, 30))
        (self.folder / "broken.png").write_bytes(b"no picture")
        self.library(textured("a", "A", "wide.png"), textured("b", "B", "wide.png"), textured("c", "C", "broken.png"), material("d", "D"))
        self.preview()
        items = self.items()
        [image] = self.piece(items["a"]["piece"])["images"]
        self.assertEqual(self.piece(items["b"]["piece"])["images"][0]["piece"], image["piece"])
        kind, data = self.piece(image["piece"]).split(",")
        self.assertEqual((kind, jpeg_size(base64.b64decode(data))), ("data:image/jpeg;base64", (1024, 10)))
        self.assertIn("broken.png", " ".join(items["c"]["messages"]))

        pieces = self.folder / "page/data"
        (pieces / "mine.js").touch()
        times = {path.name: path.stat().st_mtime_ns for path in pieces.glob("[im]0*.js")}
        self.library(textured("a", "A", "wide.png"))
        self.preview()
        names = {path.name for path in pieces.iterdir()}
        kept = {f"{name}.js" for name in (image["piece"], items["a"]["piece"])}
        self.assertEqual(names, kept | {"list.js", "version.js", "definitions.js", "mine.js"})
        for name in kept & set(times):
            self.assertEqual((pieces / name).stat().st_mtime_ns, times[name])

    def test_what_is_not_ours_stays(self):
        (self.folder / "page").mkdir()
        (self.folder / "page/index.html").write_text("my own")
        self.library(material("a", "A"))
        self.assertIn("not of this program", self.preview(status=2).stderr)
        self.assertEqual(list(self.written("page")), ["index.html"])

    def test_a_page_that_watches(self):
        self.library(material("a", "A"))
        process = self.start("preview", "lib.json", "-o", "page", "--watch", "--quiet", stdout=-1, stderr=-3)
        self.assertEqual(process.stdout.readline(), b"page/index.html\n")

        def wait_for(condition):
            end = time.monotonic() + 60
            while not condition():
                self.assertLess(time.monotonic(), end)
                time.sleep(0.05)

        self.library(material("a", "A"), material("b", "B", GREY))
        wait_for(lambda: "b" in self.items())
        wait_for(lambda: self.piece("version") == {"version": self.piece("list")["version"], "problem": ""})
        (self.folder / "lib.json").write_text("{")
        wait_for(lambda: self.piece("version")["problem"])
        self.library(material("b", "B"))
        wait_for(lambda: list(self.items()) == ["b"] and not self.piece("version")["problem"])
        process.terminate()
        self.assertEqual(process.wait(60), 0)

    def test_pictures_need_a_browser(self):
        self.library(material("a", "A"))
        result = self.preview("--pictures", "--browser", "/no/browser", status=1)
        self.assertRegex(result.stderr, "--pictures: .*(/no/browser|not installed)")
        self.assertTrue((self.folder / "page/index.html").exists())


if __name__ == "__main__":
    unittest.main()
