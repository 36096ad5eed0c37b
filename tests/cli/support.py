"""Runs the tool as a person or a script would, in a folder of its own for each test."""

import base64
import json
import os
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

TOOL = os.environ["VYR_MTLX"]

PIXEL = base64.b64decode("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==")
GREY = {"generic_diffuse": [0.5, 0.5, 0.5]}
# The rule of this property asks for a number.
BROKEN = {"generic_glossiness": {"type": "string", "value": "shiny"}}
# No rule reads it.
MISSPELT = {**GREY, "generic_difuse": [1, 0, 0]}


def material(identifier, name, properties=None, **more):
    properties = GREY if properties is None else properties
    return {"id": identifier, "schema": "GenericSchema", "name": name, "properties": properties, **more}


def bitmap(image):
    """A property that is connected to an image."""
    return {"type": "reference", "connected": {"schema": "UnifiedBitmapSchema", "properties": {
        "unifiedbitmap_Bitmap": {"type": "uri", "value": str(image)}}}}


def textured(identifier, name, image):
    return material(identifier, name, {"generic_diffuse": bitmap(image)})


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def library(self, *materials, file="lib.json", **more):
        """Writes an asset library file and returns its name."""
        content = {"assetLibrary": 1, "materials": materials, **more}
        path = self.folder / file
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(json.dumps(content, ensure_ascii=False), encoding="utf-8")
        return file

    def command(self, *arguments):
        return [TOOL, *map(str, arguments)]

    def image(self, path):
        """Writes a picture of one grey pixel and returns where."""
        path = self.folder / path
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(PIXEL)
        return path.resolve()

    def start(self, *arguments, **streams):
        process = subprocess.Popen(self.command(*arguments), cwd=self.folder, bufsize=0, **streams)
        self.addCleanup(process.kill)
        return process

    def tool(self, *arguments, status=0):
        """Runs the tool and expects an exit status."""
        result = subprocess.run(
            self.command(*arguments), cwd=self.folder, capture_output=True, encoding="utf-8", timeout=120
        )
        self.assertEqual(result.returncode, status, result.stderr)
        return result

    def convert(self, *arguments, status=0):
        return self.tool("convert", *arguments, "--output", "out", "--quiet", status=status)

    def written(self, folder="out"):
        """All files below a folder with their bytes, hidden ones included but for the lists of what was written."""
        root = self.folder / folder
        return {str(path.relative_to(root)): path.read_bytes() for path in root.rglob("*")
                if path.is_file() and not path.match(".vyr-mtlx-*.json")}

    def whole(self, folder="out"):
        """Expects that only whole documents are there, and returns how many."""
        documents = self.written(folder)
        for name, content in documents.items():
            self.assertRegex(name, r"^[A-Za-z0-9_]+\.mtlx$")
            ElementTree.fromstring(content)
        return len(documents)

    def report(self, file="report.json"):
        return json.loads((self.folder / file).read_text(encoding="utf-8"))["materials"]
