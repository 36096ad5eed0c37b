#!/usr/bin/env python3
"""Measures the bakes beside the plain reference, the memory traffic alone and OpenCV, and prints the ratios.

Everything is measured in one run, so that ratios mean something on a machine that is busy or slow. OpenCV comes
from PyPI into a virtual environment of its own; without it, or with --no-opencv, its lines are left out.
"""

import argparse
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

OPENCV = "opencv-python-headless==4.10.0.84"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the built bench_baking")
    parser.add_argument("--sizes", type=int, nargs="+", choices=[64, 1024, 4096, 8192], default=[1024, 4096, 8192],
                        help="of those that the program measures")
    parser.add_argument("--threads", type=int, nargs="+", choices=[1, 2], default=[1, 2])
    parser.add_argument("--repeats", type=int, default=5, help="runs of the road; the fastest counts")
    parser.add_argument("--image", default=os.environ.get("VYR_BENCH_BUMP"),
                        help="a bump image (or VYR_BENCH_BUMP); without it one is generated")
    parser.add_argument("--venv", type=pathlib.Path, help="where OpenCV is, or is to be installed")
    parser.add_argument("--no-opencv", action="store_true")
    parser.add_argument("--opencv-worker", nargs=4, help=argparse.SUPPRESS)
    return parser.parse_args()


def opencv_worker(source, destination, threads, repeats):
    """Runs in OpenCV's environment: prints the fastest times of the kernel, the bake and the road, in ms."""
    import cv2
    import numpy

    cv2.setNumThreads(int(threads))

    def normals(heights, image):
        """Strips, so that what is in between stays in the cache."""
        rows = max(1, (1 << 18) // heights.shape[1])
        for begin in range(0, heights.shape[0], rows):
            end = min(begin + rows, heights.shape[0])
            first, last = max(begin - 1, 0), min(end + 1, heights.shape[0])
            strip = heights[first:last]
            inner = slice(begin - first, begin - first + end - begin)
            dx = cv2.Sobel(strip, cv2.CV_32F, 1, 0, ksize=3, borderType=cv2.BORDER_REPLICATE)[inner]
            dy = cv2.Sobel(strip, cv2.CV_32F, 0, 1, ksize=3, borderType=cv2.BORDER_REPLICATE)[inner]
            four = numpy.full_like(dx, 4.0)
            scale = cv2.divide(0.5, cv2.sqrt(dx * dx + dy * dy + 16.0))
            cv2.merge([cv2.multiply(-dx, scale), cv2.multiply(dy, scale), cv2.multiply(four, scale)],
                      image[begin:end])
            image[begin:end] += 0.5

    def fastest(work):
        best = float("inf")
        for _ in range(int(repeats)):
            begin = time.perf_counter()
            work()
            best = min(best, time.perf_counter() - begin)
        return best * 1e3

    def read():
        return cv2.imread(source, cv2.IMREAD_GRAYSCALE).astype(numpy.float32) / 255.0

    def bake(heights):
        image = numpy.empty((*heights.shape, 3), numpy.float32)
        normals(heights, image)
        return image

    def road():
        image = bake(read())
        cv2.imwrite(destination, cv2.convertScaleAbs(image[:, :, ::-1], alpha=255.0))

    heights = read()
    ready = numpy.empty((*heights.shape, 3), numpy.float32)
    times = {
        "NormalKernel": fastest(lambda: normals(heights, ready)),
        "NormalBake": fastest(lambda: bake(heights)),
        "Road": fastest(road),
    }
    print(json.dumps({"times": times, "version": cv2.__version__}))


def opencv_python(venv):
    """The interpreter that has OpenCV, installed when it is missing; None when it cannot be had."""
    python = venv / ("Scripts/python.exe" if os.name == "nt" else "bin/python")
    try:
        if not python.exists():
            subprocess.run([sys.executable, "-m", "venv", str(venv)], check=True)
        if subprocess.run([str(python), "-c", "import cv2"], capture_output=True).returncode != 0:
            subprocess.run([str(python), "-m", "pip", "install", "--quiet", OPENCV], check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        print(f"OpenCV is left out: {error}")
        return None
    return python


def run_ours(options, folder, size, threads):
    """Fastest milliseconds by (what, by whom)."""
    environment = dict(os.environ, VYR_BENCH_FOLDER=str(folder))
    environment.pop("VYR_BENCH_BUMP", None)
    if options.image:
        environment["VYR_BENCH_BUMP"] = options.image
    times = {}
    for kind, repeats in (("(memory|portable|avx2|avx512|ours)", options.repeats), ("plain", 1)):
        result = folder / "result.json"
        subprocess.run([options.program, f"--benchmark_filter=/{kind}/{size}/{threads}/",
                        f"--benchmark_repetitions={repeats}", "--benchmark_min_time=0.1",
                        f"--benchmark_out={result}", "--benchmark_out_format=json"],
                       check=True, env=environment, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        for run in json.loads(result.read_text())["benchmarks"]:
            if run["run_type"] == "iteration":
                what, whom = run["name"].split("/")[:2]
                times[what, whom] = min(times.get((what, whom), float("inf")), run["real_time"])
    return times


def run_opencv(options, python, folder, size, threads):
    command = [str(python), __file__, "--program", "-", "--opencv-worker",
               str(folder / f"bump_{size}.jpg"), str(folder / "opencv.png"), str(threads),
               str(options.repeats)]
    answer = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    return {(what, "opencv"): value for what, value in answer["times"].items()}


def floor_of(what):
    """Whose memory traffic a benchmark is measured against."""
    if what.startswith("Normal"):
        return "NormalKernel"
    return "NoiseKernel" if what.startswith("Noise") else None


def print_table(size, threads, times):
    print(f"\n{size} x {size}, {threads} thread{'s' if threads > 1 else ''}")
    print(f"{'':28}{'ms':>10}{'Mpixel/s':>10}{'x plain':>9}{'x memory':>9}{'x OpenCV':>9}")
    for (what, whom), value in sorted(times.items()):
        if whom in ("plain", "memory", "opencv"):
            continue

        def ratio(other, value=value):
            return f"{other / value:9.1f}" if other else " " * 9

        memory = times.get((floor_of(what), "memory"))
        print(f"{what + ' ' + whom:28}{value:10.2f}{size * size / value / 1e3:10.0f}"
              f"{ratio(times.get((what, 'plain')))}"
              + (f"{value / memory:9.1f}" if memory else " " * 9)
              + ratio(times.get((what, "opencv") if whom == "ours" or what != "NormalKernel"
                                else ("NormalKernel", "opencv"))))
    for whom in ("plain", "memory", "opencv"):
        listed = ", ".join(f"{what} {value:.1f}" for (what, by), value in sorted(times.items()) if by == whom)
        if listed:
            print(f"  {whom}, ms: {listed}")


def main():
    options = arguments()
    if options.opencv_worker:
        opencv_worker(*options.opencv_worker)
        return
    print(f"bump image: {options.image or 'generated, since neither --image nor VYR_BENCH_BUMP is given'}")
    if hasattr(os, "getloadavg"):
        print(f"load before: {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
    with tempfile.TemporaryDirectory(prefix="vyr-bench-") as name:
        folder = pathlib.Path(name)
        python = None
        if not options.no_opencv:
            python = opencv_python(options.venv or pathlib.Path(name) / "venv")
        for size in options.sizes:
            for threads in options.threads:
                times = run_ours(options, folder, size, threads)
                if python:
                    times.update(run_opencv(options, python, folder, size, threads))
                print_table(size, threads, times)
                if threads == options.threads[-1]:
                    listed = {path.stem: path.stat().st_size for path in folder.glob("*.png")}
                    print("  bytes of the PNG files: "
                          + ", ".join(f"{by} {size}" for by, size in sorted(listed.items())))
    if hasattr(os, "getloadavg"):
        print(f"\nload after: {os.getloadavg()[0]:.1f}")


if __name__ == "__main__":
    main()
