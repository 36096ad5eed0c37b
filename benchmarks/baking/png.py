#!/usr/bin/env python3
"""Measures the road from a height file to a PNG normal map beside OpenCV's, turn by turn, with the files' sizes.

The programs and OpenCV take turns, so that all meet the same machine. On Linux a turn counts only when other
processes had little of the processors meanwhile; how many turns counted is printed.
"""

import argparse
import json
import os
import pathlib
import statistics
import subprocess
import tempfile
import time

import compare


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", action="append", required=True, metavar="[NAME=]PATH",
                        help="a built bench_baking; several, such as one of before and one of after a change")
    parser.add_argument("--images", nargs="*", default=[], help="bump images besides the generated one")
    parser.add_argument("--size", type=int, default=4096, choices=[64, 1024, 4096, 8192])
    parser.add_argument("--threads", type=int, nargs="+", choices=[1, 2], default=[2, 1])
    parser.add_argument("--turns", type=int, default=10)
    parser.add_argument("--others", type=float, default=0.1,
                        help="share of all processors that others may have in a turn that counts")
    parser.add_argument("--venv", type=pathlib.Path, help="where OpenCV is, or is to be installed")
    parser.add_argument("--no-opencv", action="store_true")
    return parser.parse_args()


def busy_seconds():
    """Of all processes on all processors together; None where the system does not say."""
    try:
        fields = pathlib.Path("/proc/stat").read_text().split("\n", 1)[0].split()[1:]
    except OSError:
        return None
    return (sum(map(int, fields[:8])) - int(fields[3]) - int(fields[4])) / os.sysconf("SC_CLK_TCK")


def children_seconds():
    times = os.times()
    return times.children_user + times.children_system


def watched(work):
    """The work's result, and the share of the processors that others had meanwhile."""
    begin, busy, own = time.perf_counter(), busy_seconds(), children_seconds()
    result = work()
    if busy is None:
        return result, 0.0
    others = busy_seconds() - busy - (children_seconds() - own)
    return result, max(0.0, others) / (time.perf_counter() - begin) / os.cpu_count()


def by_program(program, environment, what, size, threads):
    """Milliseconds by the clock, the fastest of a few."""
    answer = subprocess.run([program, f"--benchmark_filter=Road/{what}/{size}/{threads}/",
                             "--benchmark_min_time=0.001", "--benchmark_format=json",
                             f"--benchmark_repetitions={1 if what == 'plain' else 3}"],
                            check=True, env=environment, capture_output=True, text=True).stdout
    return min(run["real_time"] for run in json.loads(answer)["benchmarks"] if run["run_type"] == "iteration")


def measure(options, makers):
    """All counting times by name, and how many turns there were."""
    times = {name: [] for name in makers}
    every = {name: [] for name in makers}
    for _ in range(options.turns):
        for name, maker in makers.items():
            value, others = watched(maker)
            every[name].append(value)
            if others <= options.others:
                times[name].append(value)
    return {name: (times[name] or every[name], len(times[name])) for name in makers}


def main():
    options = arguments()
    programs = dict(given.split("=", 1) if "=" in given else ("ours", given) for given in options.program)
    with tempfile.TemporaryDirectory(prefix="vyr-bench-") as name:
        base = pathlib.Path(name)
        python = None if options.no_opencv else compare.opencv_python(options.venv or base / "venv")
        for image in [None, *options.images]:
            folder = base / (pathlib.Path(image).name if image else "generated")
            environment = dict(os.environ, VYR_BENCH_FOLDER=str(folder))
            environment.pop("VYR_BENCH_BUMP", None)
            if image:
                environment["VYR_BENCH_BUMP"] = image
            by_program(next(iter(programs.values())), environment, "plain", options.size, 1)
            sizes = {"default": (folder / "plain.png").stat().st_size}
            print(f"\n{folder.name}, {options.size} x {options.size}")
            for threads in options.threads:
                makers = {whose: lambda program=program: by_program(program, environment, "ours", options.size, threads)
                          for whose, program in programs.items()}
                if python:
                    makers["OpenCV"] = lambda: compare.run_opencv(
                        argparse.Namespace(repeats=3), python, folder, options.size, threads)["Road", "opencv"]
                for whose, (times, counted) in measure(options, makers).items():
                    print(f"  {threads} thread{'s' if threads > 1 else ' '} {whose:12}{min(times):8.0f} ms fastest"
                          f"{statistics.median(times):8.0f} median, {counted} of {options.turns} turns count")
            for whose, program in programs.items():
                by_program(program, environment, "ours", options.size, 1)
                sizes[whose] = (folder / "ours.png").stat().st_size
            if python:
                sizes["OpenCV"] = (folder / "opencv.png").stat().st_size
            print("  bytes: " + ", ".join(f"{whose} {size} ({size / sizes['default']:.3f})"
                                          for whose, size in sizes.items()))


if __name__ == "__main__":
    main()
