"""libFuzzer programs, one after the other or side by side, and what they find."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import time

from runs import ROOT, Settings

TARGETS = ["json", "image", "mtlx", "host"]
KEPT = ROOT / "tests" / "fuzz" / "inputs"
LARGEST = {"json": 8192, "image": 4096, "mtlx": 3072, "host": 2048}
# What the decoders may take before the limits of ours count.
OPTIONS = ["-timeout=20", "-rss_limit_mb=2500", "-malloc_limit_mb=2000", "-print_final_stats=1", "-verbosity=0", "-close_fd_mask=1"]
ENVIRONMENT = {"ASAN_OPTIONS": "malloc_context_size=8:allocator_may_return_null=1:handle_abort=1",
               "LSAN_OPTIONS": f"print_suppressions=0:suppressions={pathlib.Path(__file__).parent / 'fuzz' / 'leaks.supp'}",
               "UBSAN_OPTIONS": "print_stacktrace=1", "ASAN_SYMBOLIZER_PATH": "/usr/bin/llvm-symbolizer-16", "OIIO_DISABLE_OCIO": "1", "OPENIMAGEIO_THREADS": "1"}


def seeds_of(target, folder):
    """What fuzzing begins with: the files of the samples and of the tests, and the inputs that were kept."""
    folder.mkdir(parents=True)
    patterns = {
        "json": ["samples/*.json", "tests/cases/*/assets.json", "tests/assetlib/cases/**/*.json", "tools/attack/*.json"],
        "mtlx": ["tests/cases/*/expected/**/*.mtlx", "tests/definitions/cases/**/*.mtlx"],
        "image": ["tests/cases/images/*"], "host": [],
    }[target]
    files = [path for pattern in patterns for path in sorted(ROOT.glob(pattern)) if path.stat().st_size <= LARGEST[target]]
    for number, path in enumerate(files):
        start = b"T" if path.suffix == ".tga" else b"F" if target == "image" else b""
        (folder / f"seed-{number}").write_bytes(start + path.read_bytes())
    if target == "image":
        (folder / "pixels").write_bytes(b"P\x02\x01\x20\x30\x00" + bytes(range(256)))
    if target == "host":
        for number in range(4):
            (folder / f"bytes-{number}").write_bytes(bytes((i * 37 + number) % 251 for i in range(600)))
    for path in (KEPT / target).glob("*"):
        shutil.copy(path, folder)


def stack_in(text):
    """The frames of a sanitizer's report, without those of the fuzzer itself."""
    frames = re.findall(r"^ +#\d+ 0x[0-9a-f]+ (?:in )?(.*)$", text, re.MULTILINE)
    skipped = ("__", "raise", "abort", "gsignal", "std::terminate", "fuzzer::", "main ", "_start", "operator new", "malloc", "(/lib")
    return [frame for frame in frames if not frame.startswith(skipped)][:12]


def summary_of(text, status):
    found = re.search(r"SUMMARY: (.*)", text) or re.search(r"ERROR: (.*)", text)
    return found[1] if found else f"status {status}"


def fuzz(target, options, end, result):
    """One target until its time is over; it goes on after each finding."""
    program = pathlib.Path(options.fuzzers).resolve() / f"fuzz_{target}"
    folder = Settings.work / f"fuzz-{target}"
    corpus, found = folder / "corpus", ROOT / "build" / "found" / target
    found.mkdir(parents=True, exist_ok=True)
    seeds_of(target, corpus)
    dictionary = pathlib.Path(__file__).parent / "fuzz" / f"{target}.dict"
    more = [f"-dict={dictionary}"] if dictionary.is_file() else []
    environment = {**os.environ, **ENVIRONMENT, "TMPDIR": str(folder)}
    seed, known, round_ = options.seed, set(), 0
    while time.monotonic() < end - 1 and round_ < 200 and not Settings.stopped:
        limit = [f"-max_total_time={int(end - time.monotonic()) + 1}"]
        if options.count:
            limit.append(f"-runs={max(options.count - result.tried, 1)}")
        process = subprocess.run([program, *OPTIONS, *more, *limit, f"-seed={seed + round_}", f"-max_len={LARGEST[target]}",
                                  f"-artifact_prefix={found}/", corpus], env=environment, capture_output=True, cwd=folder)
        text = process.stderr.decode(errors="replace")
        runs = re.search(r"stat::number_of_executed_units: (\d+)", text)
        result.tried += int(runs[1]) if runs else 0
        if process.returncode == 0:
            if options.count and result.tried >= options.count:
                break
            continue
        if Settings.stopped:
            break
        round_ += 1
        artifact = re.search(r"Test unit written to (\S+)", text)
        stack = stack_in(text)
        wrong = re.findall(r"^(?:wrong: |terminate called|  what\(\):|.*Assertion|.*runtime error:).*$", text, re.MULTILINE)
        what = summary_of(text, process.returncode) + "".join(": " + line[:200] for line in wrong[:2])
        if not artifact or what in known:
            continue
        known.add(what)
        path = minimised(program, pathlib.Path(artifact[1]), environment, folder)
        entry = (str(path), what, "\n".join(stack))
        if stack and re.search(r"libOpenImageIO|libMaterialX", stack[0]):
            result.inside.setdefault(stack[0], []).append((entry[0], what + "\n" + entry[2]))
        else:
            result.failures.append(entry)
            print(f"fuzz {target}: {what}: {path}", flush=True)
    return result


def minimised(program, artifact, environment, folder):
    """The same finding in fewer bytes, beside the first."""
    small = artifact.with_name("small-" + artifact.name)
    subprocess.run([program, "-minimize_crash=1", "-runs=20000", "-max_total_time=20", f"-exact_artifact_path={small}", "-verbosity=0",
                    "-timeout=20", artifact], env=environment, capture_output=True, cwd=folder)
    return small if small.is_file() and small.stat().st_size else artifact


def attack(options, end, make_result):
    """All targets share the time; as many at once as there are processors."""
    targets = [options.only] if options.only in TARGETS else TARGETS
    if options.only and options.only not in TARGETS:
        return [replay(options, make_result)]
    begin, rounds = time.monotonic(), -(-len(targets) // options.jobs)
    results = {target: make_result(f"fuzz {target}") for target in targets}
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for number in range(rounds):
            some = targets[number * options.jobs:(number + 1) * options.jobs]
            until = begin + (end - begin) * (number + 1) / rounds
            for done in [pool.submit(fuzz, target, options, until, results[target]) for target in some]:
                done.result()
    return list(results.values())


def replay(options, make_result):
    """One input again; the folder that it is in names its target."""
    path = pathlib.Path(options.only)
    target = path.parent.name
    result = make_result(f"fuzz {target}")
    process = subprocess.run([pathlib.Path(options.fuzzers) / f"fuzz_{target}", path], env={**os.environ, **ENVIRONMENT}, capture_output=True)
    text = process.stderr.decode(errors="replace")
    result.tried = 1
    if process.returncode != 0:
        result.failures.append((str(path), summary_of(text, process.returncode), text))
    return result
