"""Golden cases: all that the tool writes and says about the asset file of a case, compared with what is kept.

A case is a folder with

    assets.json    the materials
    options        a run a line, "NAME: options of vyr-mtlx convert" or "NAME: overlay" and the options of that; without
                   the file one run, "default"
    files          what is made beside assets.json, each later than the one before: "PATH: text", "PATH = image of
                   images/", "PATH => PATH of a hard link", "PATH -> target of a link" or "PATH/"
    expected/RUN/  the documents of a run, and "messages": exit status, standard output and error, other files

The folder where a case runs is written {CASE}, the library's version {VERSION}.

    run.py                     fails with the differences
    run.py [--accept] [NAME]   shows them for the cases of these names, or makes what the tool does now the expectation
"""

import argparse
import concurrent.futures
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

CASES = pathlib.Path(__file__).resolve().parent
IMAGES = CASES / "images"


def tool_version(tool):
    return subprocess.run([tool, "--version"], capture_output=True, encoding="utf-8", check=True).stdout.split()[-1]


def runs(case):
    """Names and options of the runs of a case."""
    options = case / "options"
    lines = options.read_text(encoding="utf-8").splitlines() if options.exists() else ["default:"]
    return {name.strip(): text.split() for name, _, text in (line.partition(":") for line in lines if line.strip())}


def make_files(case, folder):
    """Fills the folder where a case runs."""
    shutil.copy(case / "assets.json", folder)
    listing = case / "files"
    lines = listing.read_text(encoding="utf-8").splitlines() if listing.exists() else []
    for time, line in enumerate(lines):
        name, mark, content = re.fullmatch(r"(.*?)(?:(/)|(?:(: | = | -> | => )(.*)))", line).group(1, 3, 4)
        path = folder / name
        (path if mark is None else path.parent).mkdir(parents=True, exist_ok=True)
        if mark == " -> ":
            path.symlink_to(content)
        elif mark == " => ":
            os.link(folder / content, path)
        elif mark == " = ":
            shutil.copyfile(IMAGES / content, path)
        elif mark:
            path.write_text(content, encoding="utf-8")
        if mark in (": ", " = "):
            os.utime(path, (1_700_000_000 + time,) * 2)


def contents(folder):
    """The files below a folder with their bytes, without the list of them; none of a link that leads nowhere."""
    return {path: path.read_bytes() if path.exists() else b"" for path in sorted(folder.rglob("*"))
            if not path.is_dir() and not path.match(".vyr-mtlx-*.json")}


def other_files(folder, written, sources):
    """Lines of the files that are no documents, each with the first file of the same content, whatever it was baked of."""
    first = {content: name for name, content in reversed(sources.items())}
    for path, content in written.items():
        name = path.relative_to(folder).as_posix()
        content = re.sub(rb"\0\0\0JtEXtvyr_bake\0.{65}.{4}", b"", content, flags=re.DOTALL)
        same = first.setdefault(content, name)
        if path.suffix != ".mtlx":
            yield name + (f" -> {os.readlink(path)}" if path.is_symlink() else f" = {same}" if same != name else "")


def run_tool(tool, folder, *arguments):
    return subprocess.run([tool, *arguments], cwd=folder, capture_output=True, timeout=300)


def result(tool, case, options):
    """What a run of the tool yields: texts by the name of the file that keeps them."""
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary).resolve()
        make_files(case, folder)
        sources = {path.relative_to(folder).as_posix(): path.read_bytes()
                   for path in sorted(folder.rglob("*")) if path.is_file()}  # no device
        command, *options = options if options[:1] == ["overlay"] else ["convert", *options]
        arguments = [command, "assets.json", "--output", "out", "--quiet", "--jobs", "1", *options]
        done = run_tool(tool, folder, *arguments)
        written = contents(folder / "out")
        documents = [path for path in written if path.suffix == ".mtlx"]
        invalid = run_tool(tool, folder, "validate", *documents).stderr if documents else b""
        parts = {"exit status": str(done.returncode), "standard output": done.stdout, "standard error": done.stderr,
                 "invalid documents": invalid, "other files": "\n".join(other_files(folder, written, sources))}
        run_tool(tool, folder, *arguments)
        again = contents(folder / "out")
        parts["changed by a second run"] = "\n".join(str(path) for path in sorted(written.keys() | again.keys())
                                                     if written.get(path) != again.get(path))
        parts["changed sources"] = "\n".join(name for name, source in sources.items()
                                             if (folder / name).read_bytes() != source)
        parts = {name: part.encode() if isinstance(part, str) else part for name, part in parts.items()}
        texts = {path.name: written[path] for path in documents}
        texts["messages"] = b"".join(b"== %s\n%s\n" % (name.encode(), part.rstrip(b"\n"))
                                     for name, part in parts.items() if part)
        version = f'vyr_converter="{tool_version(tool)}"'.encode()
        return {name: text.replace(os.fsencode(folder), b"{CASE}").replace(version, b'vyr_converter="{VERSION}"')
                for name, text in texts.items()}


def expectation(folder):
    return {path.name: path.read_bytes() for path in sorted(folder.iterdir())} if folder.is_dir() else {}


def difference(name, before, after):
    lines = [text.decode("utf-8", "backslashreplace").splitlines() for text in (before, after)]
    return list(difflib.unified_diff(*lines, f"expected {name}", f"actual {name}", lineterm="", n=2)) or [f"ends: {name}"]


def check(tool, case, accept):
    """The differences of one case; when they are accepted, they are the expectation from now on."""
    if not (case / "assets.json").is_file():
        return [f"{case.name} has no assets.json"]
    lines = []
    kept = case / "expected"
    for name in sorted({path.name for path in kept.glob("*")} - runs(case).keys()):
        lines.append(f"{case.name} has no run {name}")
        if accept:
            shutil.rmtree(kept / name)
    for run, options in runs(case).items():
        before, after = expectation(kept / run), result(tool, case, options)
        for name in sorted(before.keys() | after.keys()):
            if before.get(name) != after.get(name):
                lines += difference(f"{case.name}/{run}/{name}", before.get(name, b""), after.get(name, b""))
        if accept:
            shutil.rmtree(kept / run, ignore_errors=True)
            (kept / run).mkdir(parents=True)
            for name, text in after.items():
                (kept / run / name).write_bytes(text)
    return lines


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("names", nargs="*", metavar="NAME", help="cases; all without")
    parser.add_argument("--accept", action="store_true", help="the results are the expectations from now on")
    arguments = parser.parse_args()
    tool = os.path.abspath(os.environ["VYR_MTLX"])
    cases = [path for path in sorted(CASES.iterdir())
             if path.is_dir() and path != IMAGES and path.name != "__pycache__"]
    unknown = set(arguments.names) - {case.name for case in cases}
    if unknown or not cases:
        sys.exit(f"no case {', '.join(sorted(unknown))}")
    chosen = [case for case in cases if not arguments.names or case.name in arguments.names]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda case: check(tool, case, arguments.accept), chosen))
    for case, lines in zip(chosen, results):
        print(f"{case.name}: {'accepted' if lines and arguments.accept else 'differs' if lines else 'as expected'}")
        print("".join(f"    {line}\n" for line in lines), end="")
    sys.exit(any(results) and not arguments.accept)


if __name__ == "__main__":
    main()
