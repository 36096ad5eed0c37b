"""Nothing half-written, whatever happens to the files, the streams and the process."""

import os
import pty
import resource
import shutil
import signal
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from support import ToolTest, bitmap, material, textured


class Files(ToolTest):
    def test_output_folder(self):
        self.library(material("a", "Wall"))
        for folder in ("new/with/parents", "\u58c1 w\u00e4nde", "a'b\"c $x%20", "trailing/", "new/../up"):
            result = self.tool("convert", "lib.json", "-q", "-o", folder)
            self.assertEqual(result.stdout, os.path.join(folder, "Wall.mtlx") + "\n")
            self.assertEqual(self.whole(folder), 1)

    def test_names_from_files_are_no_paths_and_no_commands(self):
        evil = "../../up\n\x1b[2J\r"
        self.library(material(evil, evil), material("../..", "../.."), file="li\nb.json")
        result = self.convert("li\nb.json", "--asset", evil)
        self.assertEqual(list(self.written()), ["up2J.mtlx"])
        self.library(material(evil, "Bad", {"generic_glossiness": {"type": "text", "value": "\n"}}))
        result = self.convert("lib.json", status=1)
        self.assertEqual(result.stderr.count("\n"), 1)
        self.assertNotRegex(result.stderr[:-1], r"[\x00-\x1f\x7f]")

    def test_existing_files(self):
        self.library(material("a", "Wall"), material("b", "Gate"), material("c", "Roof"))
        out = self.folder / "out"
        (out / "Gate.mtlx").mkdir(parents=True)
        (out / "Wall.mtlx").write_text("old")
        elsewhere = self.folder / "elsewhere"
        elsewhere.write_text("mine")
        (out / "Roof.mtlx").symlink_to(elsewhere)
        result = self.convert("lib.json", "--report", "report.json", status=1)
        self.assertRegex(result.stderr, r'material "b" \(GenericSchema\): cannot write out/Gate.mtlx: .+\n$')
        self.assertEqual(self.whole(), 2)
        self.assertEqual(elsewhere.read_text(), "mine")
        self.assertEqual([entry["status"] for entry in self.report()], ["converted", "failed", "converted"])

    def test_links_hide_no_input(self):
        self.library(material("a", "Wall"))
        library = (self.folder / "lib.json").read_text()
        (self.folder / "current.json").symlink_to("lib.json")
        (self.folder / "link").symlink_to("/proc/self/fd/1")
        for report, reason in ("lib.json", "it is an input file"), ("link", "it is no ordinary file"):
            result = self.tool("convert", "current.json", "-o", "out", "--report", report, status=2)
            self.assertEqual(result.stderr, f"vyr-mtlx: --report {report}: {reason}\n")
        (self.folder / "lib.json").rename(self.folder / "Wall.mtlx")
        (self.folder / "lib.json").symlink_to("Wall.mtlx")
        self.tool("convert", "current.json", "-o", ".", status=2)
        self.assertEqual((self.folder / "Wall.mtlx").read_text(), library)

    def test_disks_without_room(self):
        self.library(*(material(f"m{i}", f"Wall {i}") for i in range(40)))
        (self.folder / "out").mkdir()
        # Only this process and its children see the mount.
        script = 'mount -t tmpfs -o "$0" none out && "$@"; status=$?; rm -rf copy; cp -r out copy; exit $status'
        tool = self.command("convert", "lib.json", "-q", "-o", "out")
        for options, some in ("size=32k", True), ("ro", False):
            try:
                result = subprocess.run(
                    ["unshare", "--mount", "--map-root-user", "sh", "-c", script, options, *tool],
                    cwd=self.folder, capture_output=True, encoding="utf-8",
                )
            except FileNotFoundError:
                self.skipTest("no program to make mounts of one's own")
            # Only the script makes the copy, and only after it could mount.
            if result.returncode not in (0, 1) or not (self.folder / "copy").exists():
                self.skipTest("mounting is not allowed here")
            self.assertEqual(result.returncode, 1)
            written = self.whole("copy")
            self.assertLess(written, 40)
            self.assertEqual(written > 0, some)
            if options == "ro":
                self.assertEqual(result.stderr.count(": cannot write out/"), 40)
            else:
                self.assertEqual(result.stderr.count(": cannot write out/"), 1)
                self.assertIn(f"vyr-mtlx: {39 - written} more materials failed because the disk is full\n", result.stderr)
            self.assertEqual(len(result.stdout.splitlines()), written)

    def test_folders_that_nothing_can_be_put_into_are_gone_again(self):
        self.image("grey.png")
        relief = {"generic_bump_map": bitmap("grey.png"), "generic_bump_amount": 1.0}
        self.library(textured("a", "Wall", "grey.png"), textured("b", "Gate", "grey.png"), material("c", "Roof", relief))
        (self.folder / "out" / "Gate").mkdir(parents=True)
        result = subprocess.run(
            self.command("convert", "lib.json", "--copy-textures", "--quiet", "--output", "out"), cwd=self.folder,
            capture_output=True, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (64, 64)),
        )
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, rb'material "c" \(GenericSchema\): \S+/grey_normalmap.png: cannot be written: ')
        self.assertEqual([path.name for path in (self.folder / "out").rglob("*")], ["Gate"])


@unittest.skipUnless(os.name == "posix", "signals and terminals of POSIX")
class Process(ToolTest):
    def setUp(self):
        super().setUp()
        self.count = 500
        self.library(*(material(f"m{i}", f"Wall {i}") for i in range(self.count)))
        # Names so long that the pipe is full long before the end: the tool waits for its reader.
        self.out = "out" + "t" * 200

    def test_interruption(self):
        for sent in signal.SIGINT, signal.SIGTERM:
            with self.subTest(sent):
                shutil.rmtree(self.folder / self.out, ignore_errors=True)
                process = self.start("convert", "lib.json", "-o", self.out, "--jobs", 4, "--report", "report.json",
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                process.stdout.readline()
                process.send_signal(sent)
                process.send_signal(sent)
                output, messages = process.communicate(timeout=60)
                self.assertEqual(process.returncode, 130)
                self.assertIn(b"interrupted", messages)
                self.assertEqual(self.whole(self.out), 1 + output.count(b"\n"))
                self.assertLess(self.whole(self.out), self.count)
                self.assertIn("not-tried", [entry["status"] for entry in self.report()])

    def test_interruption_before_anything_is_written(self):
        os.mkfifo(self.folder / "never.json")
        process = self.start("list", "never.json", stderr=subprocess.DEVNULL)
        with open(self.folder / "never.json", "w"):
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=60), 130)

    def test_reader_that_goes_away(self):
        process = self.start("convert", "lib.json", "-q", "-o", self.out, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual((process.stderr.read(), process.wait(timeout=60)), (b"", 1))
        process.stderr.close()
        self.assertEqual(self.whole(self.out), self.count)

    @unittest.skipUnless(os.path.exists("/dev/full"), "no device that is always full")
    def test_results_that_cannot_be_delivered(self):
        for arguments in ["list", "lib.json"], ["--help"], ["convert", "lib.json", "--asset", "m1", "-o", "out"]:
            with open("/dev/full", "w") as full, self.subTest(arguments):
                result = self.start(*arguments, stdout=full, stderr=subprocess.PIPE)
                self.assertIn(b"standard output: ", result.communicate(timeout=60)[1])
                self.assertEqual(result.returncode, 1)

    def test_progress_only_on_a_terminal(self):
        for options, shown in ([], True), (["--quiet"], False):
            reader, terminal = pty.openpty()
            process = self.start("convert", "lib.json", "-o", f"out{shown}", *options, stdout=subprocess.DEVNULL, stderr=terminal,
                                 env={**os.environ, "TERM": "xterm"})
            os.close(terminal)
            seen = b""
            try:
                while block := os.read(reader, 65536):
                    seen += block
            except OSError:
                pass  # how Linux tells that the other side is closed
            os.close(reader)
            self.assertEqual(process.wait(timeout=60), 0)
            self.assertEqual(b"\r[" in seen, shown)
        self.assertNotIn("\r", self.tool("convert", "lib.json", "-o", "new").stderr)


if __name__ == "__main__":
    unittest.main()
