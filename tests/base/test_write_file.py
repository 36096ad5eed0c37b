"""Whole-file writing under faults: a file is always one of the contents that somebody wrote, and nothing temporary
blocks the next run."""

import errno
import os
import pathlib
import resource
import signal
import stat
import subprocess
import tempfile
import time
import unittest

PROGRAM, FAULTS = os.environ["VYR_WRITE_FILE"], os.environ["VYR_FAULTS_LIBRARY"]
IS_ROOT = os.geteuid() == 0


def temporary_name(name, attempt):
    value = 0xCBF29CE484222325
    for byte in name.encode():
        value = (value ^ byte) * 0x100000001B3 % 2**64
    return f".vyr-{value:x}-{attempt}.tmp"


class WriteFile(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "file.txt"

    def start(self, *arguments, faults="", **more):
        environment = {**os.environ, "LD_PRELOAD": FAULTS, "VYR_FAULTS": faults} if faults else None
        process = subprocess.Popen([PROGRAM, *map(str, arguments)], stdout=subprocess.PIPE, text=True, env=environment,
                                   **more)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def run_program(self, *arguments, **more):
        """The number of the error; 0 for none."""
        process = self.start(*arguments, **more)
        text = process.communicate(timeout=60)[0].strip("X\n")
        self.assertEqual(process.returncode, 1 if text else 0)
        return int(text or 0)

    def entries(self):
        return sorted(path.name for path in self.folder.iterdir())

    def check_faults(self, cases, arguments, new, others=()):
        for faults, expected in cases:
            for old in None, "old":
                with self.subTest(faults=faults, old=old):
                    self.file.unlink(missing_ok=True)
                    if old:
                        self.file.write_text(old)
                    error = self.run_program(*arguments, faults=faults)
                    self.assertEqual(error, expected)
                    left = old if expected else new
                    self.assertEqual(self.file.read_text() if self.file.exists() else None, left)
                    self.assertEqual(self.entries(), sorted([*others, *(["file.txt"] if left else [])]))

    def test_faults_of_writing(self):
        unnamed = f"tmpfile={errno.EOPNOTSUPP}"
        self.check_faults([
            ("none", 0), (unnamed, 0), ("short", 0), (f"short {unnamed}", 0), (f"linkat={errno.EPERM}", 0),
            (f"{unnamed} flock={errno.ENOLCK}", 0), (f"{unnamed} fstat={errno.EIO} lstat={errno.EIO}", 0),
            (f"{unnamed} rename={errno.EIO}", errno.EIO),
            (f"write={errno.ENOSPC}", errno.ENOSPC), (f"{unnamed} write={errno.EIO}", errno.EIO),
            (f"dup={errno.EIO}", errno.EIO),
        ], ("write", self.file, "new", 3), "new")

    def test_faults_of_copying(self):
        source = self.folder / "source"
        source.write_text("new")
        os.utime(source, ns=(10**18, 10**18 + 5))
        self.check_faults([
            ("none", 0), ("short", 0), (f"copy_file_range={errno.EXDEV}", 0),
            (f"copy_file_range={errno.EIO} short", 0),
            (f"copy_file_range={errno.EXDEV} write={errno.ENOSPC}", errno.ENOSPC),
            (f"rename={errno.EIO}", errno.EIO), (f"flock={errno.ENOLCK}", 0),
        ], ("copy", source, self.file), "new", ["source"])
        self.assertEqual(self.file.stat().st_mtime_ns, source.stat().st_mtime_ns)
        self.assertNotEqual(self.run_program("copy", self.folder / "nothing", self.file), 0)
        self.assertEqual((self.file.read_text(), self.entries()), ("new", ["file.txt", "source"]))

    @unittest.skipUnless("VYR_MTLX" in os.environ, "without the tool")
    def test_a_run_that_does_not_reach_the_disk_fails(self):
        self.file.write_text('{"assetLibrary": 1, "materials": [{"id": "a", "schema": "GenericSchema", "name": "A", "properties": {}}]}')
        environment = {**os.environ, "LD_PRELOAD": FAULTS, "VYR_FAULTS": f"syncfs={errno.EIO}"}
        for options, status in ([], 1), (["--no-sync"], 0):
            command = [os.environ["VYR_MTLX"], "convert", self.file, "-q", "-o", self.folder / "out", *options]
            self.assertEqual(subprocess.run(command, env=environment, capture_output=True).returncode, status)

    def test_limits_of_size(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))

        for old in None, "old":
            if old:
                self.file.write_text(old)
            self.assertEqual(self.run_program("write", self.file, "x", 5000, preexec_fn=limit), errno.EFBIG)
            self.assertEqual(self.entries(), ["file.txt"] if old else [])
        self.assertEqual(self.file.read_text(), "old")

    def test_read_only_folder(self):
        self.file.write_text("old")
        self.folder.chmod(0o555)
        nobody = {"preexec_fn": lambda: os.setuid(65534)} if IS_ROOT else {}
        self.assertEqual(self.run_program("write", self.file, "x", 10, **nobody), errno.EACCES)
        self.folder.chmod(0o755)
        self.assertEqual((self.file.read_text(), self.entries()), ("old", ["file.txt"]))

    def test_killed_in_the_middle(self):
        """The old content or the new one; what is left is taken over by the next run."""
        halves, deadline = 0, time.monotonic() + 60
        while halves < 3:
            self.assertLess(time.monotonic(), deadline, "hardly ever killed while a file was written")
            self.file.write_text("old")
            process = self.start("write", self.file, "n", 2_000_000, 1000)
            while process.poll() is None and self.entries() == ["file.txt"]:
                pass
            process.kill()
            process.wait()
            halves += self.entries() != ["file.txt"]
            self.assertIn(self.file.read_text()[:3], ("old", "nnn"))
            self.assertIn(self.file.stat().st_size, (3, 2_000_000))
            self.assertEqual(self.run_program("write", self.file, "next", 4), 0)
            self.assertEqual((self.file.read_text(), self.entries()), ("next", ["file.txt"]))

    def test_side_by_side(self):
        """Nobody reads anything but one of the contents, and nobody fails."""
        whole = {letter: letter * 300_000 for letter in "ab"}
        self.file.write_text(whole["a"])
        writers = [self.start("write", self.file, letter, 300_000, 60) for letter in whole]
        while any(process.poll() is None for process in writers):
            self.assertIn(self.file.read_text(), whole.values())
        self.assertEqual([process.returncode for process in writers], [0, 0])
        self.assertEqual(self.entries(), ["file.txt"])

    def test_what_stands_at_temporary_names(self):
        precious = self.folder / "precious"
        precious.write_text("mine")
        *names, leftover = [self.folder / temporary_name("file.txt", attempt) for attempt in range(5)]
        names[0].mkdir()
        names[1].symlink_to(precious)
        os.link(precious, names[2])
        os.mkfifo(names[3])
        self.file.write_text("old")
        before = self.entries()
        leftover.touch(0o600)
        self.assertEqual(self.run_program("write", self.file, "new", 3), 0)
        self.assertEqual((self.file.read_text(), precious.read_text()), ("new", "mine"))
        self.assertEqual((self.entries(), self.file.stat().st_mode & 0o077), (before, 0o044))

    def test_closed_descriptors(self):
        """What the process prints does not get into the file."""
        for closed in [0], [1], [2], [0, 1, 2]:
            close = lambda: [os.close(descriptor) for descriptor in closed]
            for content in "new.", "next":
                self.run_program("write", self.file, content, 4, preexec_fn=close, faults="noisy",
                                 stderr=subprocess.DEVNULL)
                self.assertEqual(self.file.read_text(), content, closed)

    def test_links_and_permissions(self):
        other, link, target = self.folder / "other", self.folder / "link", self.folder / "target"
        self.file.write_text("old")
        os.link(self.file, other)
        target.write_text("target")
        link.symlink_to(target)
        for path in self.file, link, self.folder / "new":
            self.assertEqual(self.run_program("write", path, "new", 3, preexec_fn=lambda: os.umask(0o027)), 0)
            self.assertTrue(stat.S_ISREG(path.lstat().st_mode))
            self.assertEqual((path.read_text(), stat.S_IMODE(path.stat().st_mode)), ("new", 0o640))
        self.assertEqual((other.read_text(), target.read_text()), ("old", "target"))

    def test_what_is_no_file(self):
        os.mkfifo(self.folder / "pipe")
        (self.folder / "null").symlink_to("/dev/null")
        (self.folder / "folder").mkdir()
        before = self.entries()
        for path in "/dev/null", "/dev/stdout", "/dev/stdin", self.folder / "pipe", self.folder / "null":
            self.assertEqual(self.run_program("write", path, "x", 3), errno.EPERM, path)
        for path in self.folder / "folder", self.folder / "missing" / "file", self.folder / "null" / "file":
            self.assertNotEqual(self.run_program("write", path, "x", 3), 0, path)
        self.assertEqual(self.entries(), before)
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))


if __name__ == "__main__":
    unittest.main()
