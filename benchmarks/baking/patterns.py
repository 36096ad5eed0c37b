#!/usr/bin/env python3
"""Measures the patterns beside the plain reference, a copy of the same bytes and what one would take instead.

That is numpy and OpenCV in strips of rows that stay in the cache, on as many threads as ours, and for noise
FastNoise2, whose shared library --fastnoise names (built from the crate fastnoise2-sys 0.1, say). All write
colours as floats. The peers leave edges jagged and do not distort distances so that they repeat: they do less.
"""

import argparse
import concurrent.futures
import ctypes
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import compare


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the built bench_baking")
    parser.add_argument("--sizes", type=int, nargs="+", choices=[64, 1024, 2048, 4096, 8192], default=[2048, 4096])
    parser.add_argument("--threads", type=int, nargs="+", choices=[1, 2], default=[1, 2])
    parser.add_argument("--repeats", type=int, default=5, help="runs of each; the fastest counts")
    parser.add_argument("--venv", type=pathlib.Path, help="where OpenCV is, or is to be installed")
    parser.add_argument("--fastnoise", type=pathlib.Path, default=os.environ.get("VYR_BENCH_FASTNOISE"),
                        help="FastNoise2's shared library (or VYR_BENCH_FASTNOISE)")
    parser.add_argument("--worker", nargs=3, help=argparse.SUPPRESS)
    return parser.parse_args()


class FastNoise:
    """Nodes of FastNoise2 by its C interface."""

    def __init__(self, path):
        self.library = ctypes.CDLL(str(path))
        pointer, integer, number = ctypes.c_void_p, ctypes.c_int, ctypes.c_float
        for name, result, given in (
                ("fnNewFromMetadata", pointer, [integer, ctypes.c_uint]),
                ("fnGetMetadataName", ctypes.c_char_p, [integer]),
                ("fnGetMetadataVariableName", ctypes.c_char_p, [integer, integer]),
                ("fnSetNodeLookup", ctypes.c_bool, [pointer, integer, pointer]),
                ("fnSetVariableIntEnum", ctypes.c_bool, [pointer, integer, integer]),
                ("fnGenUniformGrid2D", None, [pointer, pointer] + 4 * [integer] + [number, integer, pointer])):
            function = getattr(self.library, name)
            function.restype, function.argtypes = result, given
        self.ids = {self.library.fnGetMetadataName(i).decode().replace(" ", ""): i
                    for i in range(self.library.fnGetMetadataCount())}

    def perlin(self, octaves):
        source = self.library.fnNewFromMetadata(self.ids["Perlin"], 0)
        if octaves == 1:
            return source
        kind = self.ids["FractalFBm"]
        fractal = self.library.fnNewFromMetadata(kind, 0)
        names = [self.library.fnGetMetadataVariableName(kind, i).decode()
                 for i in range(self.library.fnGetMetadataVariableCount(kind))]
        if not (self.library.fnSetNodeLookup(fractal, 0, source)
                and self.library.fnSetVariableIntEnum(fractal, names.index("Octaves"), octaves)):
            raise RuntimeError("FastNoise2 has other nodes")
        return fractal

    def fill(self, node, target, begin, frequency):
        rows, columns = target.shape
        self.library.fnGenUniformGrid2D(node, target.ctypes.data, 0, begin, columns, rows, frequency, 1, None)


def worker(size, threads, repeats, fastnoise):
    """Runs in OpenCV's environment: prints the fastest times by the names of the cases, in ms."""
    import cv2
    import numpy as np

    cv2.setNumThreads(1)  # the strips are on threads already
    f = np.float32
    x = ((np.arange(size, dtype=f) + f(0.5)) / f(size))[None, :]
    y = x.T
    full_x = np.broadcast_to(x, (64, size)).copy()
    light, dark = np.array([.8, .8, .77], f), np.array([.12, .13, .14], f)
    noise = FastNoise(fastnoise) if fastnoise else None

    def shade(mix, out):
        for c in range(3):
            out[..., c] = mix * (dark[c] - light[c]) + light[c]

    def shade_cv(mix, out):
        cv2.merge([cv2.addWeighted(mix, float(dark[c] - light[c]), mix, 0, float(light[c])) for c in range(3)], out)

    def columns(begin, end):
        return full_x[:end - begin], np.repeat(y[begin:end], size, axis=1)

    def checker(begin, end, out):
        for half in (0, 1):
            rows = slice(max(begin, half * size // 2) - begin, max(min(end, (half + 1) * size // 2) - begin, 0))
            out[rows, :size // 2] = dark if half else light
            out[rows, size // 2:] = light if half else dark

    def gradient(begin, end, out):
        out[:] = (x[0, :, None] * (dark - light) + light)[None]

    def radial(begin, end, out):
        a, b = columns(begin, end)
        shade_cv(cv2.min(cv2.magnitude(2 * a - 1, 2 * b - 1), 1.0), out)

    def sweep(begin, end, out):
        a, b = columns(begin, end)
        shade_cv(cv2.phase(2 * a - 1, 2 * b - 1) * f(1 / (2 * np.pi)), out)

    def noisy(begin, end, octaves, cells):
        values = np.empty((end - begin, size), f)
        noise.fill(nodes[octaves], values, begin, cells / size)
        return values

    nodes = {octaves: noise.perlin(octaves) for octaves in (1, 2, 3, 6)} if noise else {}

    def distorted(begin, end, out):
        shade_cv(np.clip(x + noisy(begin, end, 1, 4) * f(.2), 0, 1), out)

    def plain_noise(begin, end, out):
        shade_cv(noisy(begin, end, 1, 16) * f(.5) + f(.5), out)

    def marble(begin, end, out):
        t = noisy(begin, end, 6, 3) * f(1.5) + x * f(7) + y[begin:end] * f(4)
        t -= np.floor(t)
        t = np.clip(1 - np.abs(t * 2 - 1) * f(1 / .6), 0, 1)
        shade_cv(t * t * (3 - 2 * t) * np.clip(noisy(begin, end, 2, 5) * f(1.5) + f(.5), 0, 1), out)

    def wood(begin, end, out, rings):
        t = noisy(begin, end, 3, 4) * f(1.5) + rings
        t -= np.floor(t)
        t = np.where(t < .85, t * t * f(1 / .7225), (1 - t) * f(1 / .15))
        shade_cv(np.clip(t + noisy(begin, end, 2, 128) * f(.3), 0, 1), out)

    def plank(begin, end, out):
        wood(begin, end, out, x * f(16) + np.sin(y[begin:end] * f(2 * np.pi)))

    def trunk(begin, end, out):
        a, b = columns(begin, end)
        wood(begin, end, out, cv2.magnitude(a - f(.5), b - f(.5)) * f(16))

    def tiles(begin, end, out):
        def edge(t):
            t = t * 8 % 1
            return np.clip((np.minimum(t, 1 - t) * f(.205) - f(.0025)) * f(size / 1.64) + f(.5), 0, 1)
        shade_cv(1 - np.minimum(edge(y[begin:end]), edge(x)), out)

    def herringbone(begin, end, out):
        a, b = x * 8, y[begin:end] * 8
        column, row = np.floor(a), np.floor(b)
        in_x, in_y = a - column, b - row
        turn = (column - row) % 4
        lies = turn < 2
        side = np.where(lies, turn + in_x, in_x)
        top = np.where(lies, in_y, 3 - turn + in_y)
        whole_x, whole_y = np.where(lies, f(2), f(1)), np.where(lies, f(1), f(2))
        near = np.minimum(np.minimum(side, whole_x - side), np.minimum(top, whole_y - top))
        shade_cv(1 - np.clip((near * f(.205) - f(.0025)) * f(size / 1.64) + f(.5), 0, 1).astype(f), out)

    points = [(.2, .7), (.6, .3), (.8, .9)]

    def circles(begin, end, out):
        a, b = columns(begin, end)
        t = sum(np.sin(cv2.magnitude(a - f(u), b - f(v)) * f(16 * np.pi)) for u, v in points)
        shade_cv(t * f(1 / 6) + f(.5), out)

    def fronts(begin, end, out):
        t = sum(np.sin(x * f(2 * np.pi * u) + y[begin:end] * f(2 * np.pi * v)) for u, v in ((8, 0), (6, 6), (-3, 7)))
        shade_cv(t * f(1 / 6) + f(.5), out)

    lots = np.random.default_rng(1).random((1024, 4))

    def speckle(begin, end, out):
        mask = np.zeros((end - begin, size), np.uint8)
        cell = size / 32
        for i, (u, v, w, there) in enumerate(lots):
            top = (i // 32 + v) * cell - begin
            radius = cell / 2 * (1 - .8 * w)
            if there < .7 and -radius - 1 < top < end - begin + radius + 1:
                cv2.circle(mask, (int((i % 32 + u) * cell * 16), int(top * 16)), int(radius * 16), 255, -1,
                           cv2.LINE_AA, 4)
        shade_cv(mask.astype(f) * f(1 / 255), out)

    cases = {"checker": checker, "gradient": gradient, "gradient_radial": radial, "gradient_sweep": sweep,
             "speckle": speckle, "tile": tiles, "tile_herringbone": herringbone, "wave": circles, "wave_plane": fronts}
    if noise:
        cases.update({"gradient_distorted": distorted, "marble": marble, "noise": plain_noise, "wood": plank,
                      "wood_end": trunk})
    times = {}
    with concurrent.futures.ThreadPoolExecutor(threads) as pool:
        for name, case in cases.items():
            rows = size // threads if name == "speckle" else 64  # spots are looked through for each strip

            def bake(case=case, rows=rows):
                image = np.empty((size, size, 3), f)
                strips = [(i, min(i + rows, size)) for i in range(0, size, rows)]
                if threads == 1:
                    for begin, end in strips:
                        case(begin, end, image[begin:end])
                else:
                    list(pool.map(lambda s: case(*s, image[s[0]:s[1]]), strips))

            best = float("inf")
            for _ in range(repeats):
                begin = time.perf_counter()
                bake()
                best = min(best, time.perf_counter() - begin)
            times[name] = best * 1e3
    print(json.dumps(times))


def run_ours(options, folder, size, threads):
    times = {}
    for kind, repeats in (("(copy|portable|avx2|avx512|srgb)", options.repeats), ("plain", 1)):
        result = folder / "result.json"
        subprocess.run([options.program, f"--benchmark_filter=PatternBake.*/{kind}/{size}/{threads}/",
                        f"--benchmark_repetitions={repeats}", "--benchmark_min_time=0.01",
                        f"--benchmark_out={result}", "--benchmark_out_format=json"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for run in json.loads(result.read_text())["benchmarks"]:
            if run["run_type"] == "iteration":
                what, whom = run["name"].split("/")[:2]
                what = what.removeprefix("PatternBake").removeprefix("_")
                times[what, whom] = min(times.get((what, whom), float("inf")), run["real_time"])
    return times


def main():
    options = arguments()
    if options.worker:
        worker(*map(int, options.worker), options.fastnoise)
        return
    with tempfile.TemporaryDirectory(prefix="vyr-bench-") as name:
        folder = pathlib.Path(name)
        python = compare.opencv_python(options.venv or folder / "venv")
        for size in options.sizes:
            for threads in options.threads:
                times = run_ours(options, folder, size, threads)
                peers = {}
                if python:
                    command = [str(python), __file__, "--program", "-", "--worker", str(size), str(threads),
                               str(options.repeats)]
                    if options.fastnoise:
                        command += ["--fastnoise", str(options.fastnoise)]
                    peers = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
                copy = times.pop(("", "copy"))
                print(f"\n{size} x {size}, {threads} thread{'s' if threads > 1 else ''}; a copy {copy:.1f} ms")
                print(f"{'':20}{'portable':>10}{'avx2':>8}{'avx512':>8}{'sRGB':>8}"
                      f"{'x plain':>9}{'x copy':>8}{'peer ms':>9}{'x peer':>8}")
                for what in sorted({what for what, _ in times}):
                    sets = [times.get((what, whom)) for whom in ("portable", "avx2", "avx512")]
                    ours = [value for value in sets if value][-1]
                    line = f"{what:20}" + "".join(f"{value:{width}.1f}" if value else " " * width
                                                  for value, width in zip(sets, (10, 8, 8)))
                    line += f"{times[what, 'srgb']:8.1f}{times[what, 'plain'] / ours:9.1f}{ours / copy:8.2f}"
                    if what in peers:
                        line += f"{peers[what]:9.1f}{peers[what] / ours:8.2f}"
                    print(line, flush=True)


if __name__ == "__main__":
    sys.path.insert(0, str(pathlib.Path(__file__).parent))
    main()
