"""Runs of the tool in folders of their own, and what has to hold after each of them."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import xml.parsers.expat

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parent.parent
LONGEST = 20  # seconds of a processor, or of waiting, for a run that takes a fraction of one
# What a report tells of files that were there already.
HISTORY = re.compile(rb'"unchanged": (true|false)|"(made|kept)": \d+')
TEMPORARY = re.compile(r"\.vyr-[0-9a-f]+-\d+\.tmp$")

# What is attacked: the arguments, and whether the run writes into "out". It is new, or has the output of
# another edition of the same materials.
CONVERT = ["convert", "src/assets.json", "-o", "out", "-j", "1", "--image-size", "8", "--strict"]
CASES = {
    "convert": [*CONVERT, "--no-sync"],
    "gather": [*CONVERT, "--copy-textures", "--report", "out/report.json"],
    "embed": [*CONVERT, "--copy-textures", "--nodes", "embed", "--validate", "--no-sync"],
    "overlay": ["overlay", "src/overlays.json", "-o", "out", "--copy-textures", "--nodes", "standard", "--strict", "--no-sync"],
    "normal": ["bake", "normal", "src/images/relief.png", "--output", "out/normal.png"],
    "noise": ["bake", "noise", "--output", "out/noise.exr", "--resolution", "16"],
    "list": ["list", "src/assets.json", "src/overlays.json", "--json"],
    "validate": ["validate", "src/Relief.mtlx", "src/Metal.mtlx"],
}
WRITING = [case for case in CASES if case not in ("list", "validate")]


class Settings:
    tool = library = work = None
    stopped = False


def run(arguments, folder, faults=None, **variables):
    """The exit status (None when it did not end), standard output and standard error."""
    environment = {**os.environ, "OPENIMAGEIO_THREADS": "1", "LC_ALL": "C.UTF-8"}
    if faults is not None:
        environment.update(LD_PRELOAD=str(Settings.library), VYR_FAULTS=faults, **variables)
    process = subprocess.Popen([Settings.tool, *arguments], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    waiting, before = 0, 0.0
    while True:
        try:
            out, error = process.communicate(timeout=1)
            return process.returncode, out, error.decode(errors="replace")
        except subprocess.TimeoutExpired:
            runs, used = progress_of(process.pid)
            # On a busy machine it may be long until a run gets a processor.
            waiting = 0 if runs or used > before else waiting + 1
            before = used
            if max(waiting, used) >= LONGEST:
                process.kill()
                out, error = process.communicate()
                return None, out, error.decode(errors="replace")


def progress_of(process):
    """Whether it runs or would, and the seconds of a processor that it used."""
    try:
        fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    except OSError:
        return True, 0.0
    return fields[0] in "RDZ", (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def snapshot(folder):
    """Every entry below a folder: the hash of a file, the target of a link, the kind of all else. Not the lists of what
    was written, which hold times of copies."""
    entries = {}
    for path in sorted(folder.rglob("*")):
        if path.match(".vyr-mtlx-*.json"):
            continue
        name = str(path.relative_to(folder))
        if path.is_symlink():
            entries[name] = "-> " + os.readlink(path)
        elif path.is_file():
            content = path.read_bytes()
            if path.name == "report.json":
                content = HISTORY.sub(b"", content)
            entries[name] = hashlib.sha256(content).hexdigest()
        else:
            entries[name] = oct(path.stat().st_mode)
    return entries


def filesOf(entries):
    return {name: content for name, content in entries.items() if not content.startswith("0o")}


def images_named(document):
    """The files that a document names; an exception when it is no XML."""
    files = []

    def start(_, attributes):
        if attributes.get("type") == "filename" and attributes.get("value"):
            files.append(attributes["value"])

    parser = xml.parsers.expat.ParserCreate()
    parser.StartElementHandler = start
    parser.Parse(document.read_bytes(), True)
    return files


def torn(folder, known):
    """What is wrong with the files of an output folder. Known are the hashes of all whole files that the runs
    could write; a document that is none of them has to be one, with all its images there."""
    wrong = []
    for path in folder.glob(".vyr-mtlx-*.json"):
        try:
            json.loads(path.read_bytes())
        except ValueError as error:
            wrong.append(f"{path.name} is torn: {error}")
    entries = filesOf(snapshot(folder))
    for name, content in entries.items():
        if TEMPORARY.search(name):
            continue
        if name.endswith(".mtlx"):
            try:
                for image in images_named(folder / name):
                    # Absolute ones are those of the sources; those that were not found stay as they were written.
                    if not (folder / image).is_file() and not image.startswith("images/"):
                        wrong.append(f"{name} names {image}, which is not there")
            except xml.parsers.expat.ExpatError as error:
                wrong.append(f"{name} is torn: {error}")
        elif content not in known and name != "report.json":
            wrong.append(f"{name} is torn")
        if (folder / name).stat().st_size == 0:
            wrong.append(f"{name} is empty")
    return wrong


def temporaries(folder):
    return [str(path.relative_to(folder)) for path in folder.rglob("*") if TEMPORARY.search(path.name)]


def write_sources(folder, edition="new"):
    """The same materials in two editions, whose documents and images all differ."""
    images = folder / "images"
    (images / "more").mkdir(parents=True)
    shutil.copy(HERE / "overlays.json", folder)
    cases = ROOT / "tests" / "cases" / "images"
    wood, relief = cases / "wood.png", cases / "relief.png"
    text = (HERE / "assets.json").read_text()
    if edition == "old":
        text = text.replace("0.5", "0.75").replace('"noise_Size": 20', '"noise_Size": 15')
        overlays = folder / "overlays.json"
        overlays.write_text(overlays.read_text().replace("0.5", "0.75").replace("30", "60"))
        wood, relief = relief, wood
    (folder / "assets.json").write_text(text)
    shutil.copy(wood, images / "wood.png")
    shutil.copy(relief, images / "relief.png")
    # Of the same name, and another image.
    shutil.copy(relief, images / "more" / "wood.png")


class Place:
    """A folder with sources, in which runs take place one after the other."""

    def __init__(self, name):
        self.folder = Settings.work / name
        self.out, self.src = self.folder / "out", self.folder / "src"
        self.references = {}
        self.old = {}
        write_sources(self.src, "old")
        for case in WRITING:
            self.old[case] = self.folder / "old" / case
            self.prepare(case, False)
            if case in ("normal", "noise"):
                extra = ["--bump-amount", "0.7"] if case == "normal" else ["--size", "30"]
            else:
                extra = []
            status, _, error = run(CASES[case] + extra, self.folder)
            assert status == 0, (case, error)
            shutil.copytree(self.out, self.old[case])
        shutil.rmtree(self.src)
        write_sources(self.src)
        self.prepare("convert", False)
        run(CASES["convert"], self.folder)
        for name in "Relief.mtlx", "Metal.mtlx":
            # The images of the documents to validate are not to change.
            shutil.copy(self.out / name, self.src)
        shutil.copytree(self.out / "Relief", self.src / "Relief")
        self.sources, self.pristine = snapshot(self.src), self.folder / "pristine"
        shutil.copytree(self.src, self.pristine)
        for case in CASES:
            for existing in (False, True) if case in WRITING else (False,):
                self.prepare(case, existing)
                counts = self.folder / "counts"
                status, out, error = run(CASES[case], self.folder, "", VYR_FAULTS_COUNTS=str(counts))
                assert status == 0, (case, error)
                calls = {name: int(count) for name, count in (line.split() for line in counts.read_text().splitlines())}
                self.references[case, existing] = (snapshot(self.out), out, calls)
        images = [snapshot(folder) for folder in (self.src, *self.old.values())] + [
            reference[0] for reference in self.references.values()]
        self.known = {content for entries in images for content in entries.values()}

    def prepare(self, case, existing):
        shutil.rmtree(self.out, ignore_errors=True)
        if existing:
            shutil.copytree(self.old[case], self.out)
        else:
            self.out.mkdir()

    def check_files(self):
        wrong = torn(self.out, self.known)
        if snapshot(self.src) != self.sources:
            wrong.append("a source was touched")
            shutil.rmtree(self.src)
            shutil.copytree(self.pristine, self.src)
        return wrong

    def check_repair(self, case, existing):
        """A run that nothing happens to makes everything as it should be."""
        status, _, error = run(CASES[case], self.folder)
        if status != 0:
            return [f"the next run fails: {error.strip()}"]
        left = temporaries(self.out)
        wrong = [f"the next run leaves {name}" for name in left]
        entries = snapshot(self.out)
        for name, content in self.references[case, existing][0].items():
            if entries.get(name) != content:
                wrong.append(f"the next run leaves a wrong {name}")
        return wrong


def crash_of(status):
    """A signal, also one that a shell would tell; None for a status that the tool documents."""
    if status is None:
        return f"no end after {LONGEST} s"
    return None if status in (0, 1, 2, 130) else f"status {status}"
