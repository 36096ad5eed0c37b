"""What programs read: reports, standard input and output, and lines of JSON."""

import json
import os
import subprocess
import unittest

from support import ToolTest, bitmap, material

try:
    import fcntl
    import pty
    import struct
    import termios
except ImportError:
    pty = None


class Streams(ToolTest):
    def test_wrong_usage_leaves_no_report_of_its_own(self):
        self.library(material("a", "Wall"))
        (self.folder / "bad.json").write_text("{")
        report = self.folder / "report.json"
        for arguments in (["bad.json", "-o", "out"], ["lib.json", "-o", "out", "--asset", "no"], ["lib.json", "--wrong"],
                          ["lib.json", "-o", "lib.json"]):
            self.convert("lib.json", "--report", "report.json")
            self.tool("convert", *arguments, "--report", "report.json", status=2)
            self.assertEqual(json.loads(report.read_text()).get("run"), "refused", arguments)
        for own in '{"converter": "mine"}', "":
            report.write_text(own)
            self.tool("convert", "bad.json", "-o", "out", "--report", "report.json", status=2)
            self.assertEqual(report.read_text(), own)

    def test_standard_input_and_output(self):
        image = self.image("grey.png")
        file = self.folder / self.library(material("a", "Wall", {"generic_diffuse": bitmap("grey.png"), "nobody": 1.0}))
        with open(file) as library:
            result = subprocess.run(self.command("convert", "-", "-o", "out", "--report", "-", "--copy-textures"), stdin=library,
                                    cwd=self.folder, capture_output=True, encoding="utf-8")
        entry, = json.loads(result.stdout)["materials"]
        self.assertEqual((entry["file"], entry["document"], entry["textures"]), ("-", "out/Wall.mtlx", ["Wall/grey.png"]))
        self.assertRegex(result.stderr, r"^-: warning: .*nobody\n.*1 converted")
        self.assertEqual(sorted(path.name for path in (self.folder / "out").rglob("*") if path.is_file()),
                         ["Wall.mtlx", image.name], "no list of what cannot be told again")
        self.tool("convert", "lib.json", "-o", "out", "--report", "-", "--verbose", status=2)
        result = subprocess.run(self.command("list", "-"), input=b"{", capture_output=True)
        self.assertRegex(result.stderr, rb"^-:1:\d+: broken JSON")

    def test_validation_as_json(self):
        self.library(material("a", "Wall"))
        self.convert("lib.json")
        (self.folder / "bad.mtlx").write_text("<nothing")
        result = self.tool("validate", "--json", "out/Wall.mtlx", "bad.mtlx", status=1)
        good, bad = json.loads(result.stdout)["documents"]
        self.assertEqual((good, result.stderr), ({"file": "out/Wall.mtlx", "valid": True, "messages": []}, ""))
        self.assertEqual((bad["file"], bad["valid"], set(bad["messages"][0])), ("bad.mtlx", False, {"code", "path", "text"}))

    def test_all_of_standard_error_as_json(self):
        self.library(material("a", "Wall", {"generic_glossiness": {"type": "string", "value": "\"x\"\n"}}), material("b", "Gate"))
        result = self.tool("convert", "lib.json", "-o", "out", "--progress", "json", status=1)
        lines = [json.loads(line) for line in result.stderr.splitlines()]
        self.assertEqual(lines[-2]["progress"], {"done": 2, "total": 2, "failed": 1})
        self.assertIn("generic_glossiness", lines[0]["message"])
        self.assertIn("1 converted, 1 failed", lines[-1]["message"])
        result = self.tool("convert", "missing.json", "-o", "out", "--progress", "json", status=2)
        self.assertEqual(json.loads(result.stderr)["message"], "missing.json: no such file")

    @unittest.skipUnless(pty, "terminals of POSIX")
    def test_the_bar_fits_the_terminal_and_keeps_still_on_a_dumb_one(self):
        self.library(*(material(f"m{i}", f"Wall {i}") for i in range(300)))
        for kind, columns in ("xterm", 80), ("xterm", 20), ("xterm", 12), ("dumb", 80):
            reader, terminal = pty.openpty()
            fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
            process = self.start("convert", "lib.json", "-o", f"out{kind}{columns}", stdout=subprocess.DEVNULL, stderr=terminal,
                                 env={**os.environ, "TERM": kind})
            os.close(terminal)
            seen = b""
            try:
                while block := os.read(reader, 65536):
                    seen += block
            except OSError:
                pass  # how Linux tells that the other side is closed
            os.close(reader)
            self.assertEqual(process.wait(timeout=60), 0)
            drawn = [part.split(b"\x1b")[0] for part in seen.split(b"\r")[1:] if b"/300" in part or b"[" in part.split(b"\x1b")[0]]
            self.assertEqual(bool(drawn), kind != "dumb")
            self.assertEqual(b"\x1b" in seen, kind != "dumb")
            self.assertTrue(all(len(part) < columns for part in drawn), drawn)
            if columns == 80 and drawn:
                self.assertRegex(drawn[0], rb"^\[[# ]{30}\] \d+/300")


if __name__ == "__main__":
    unittest.main()
