"""Attacks the tool from outside: scripts/attack builds what this needs and starts it."""

import argparse
import concurrent.futures
import itertools
import os
import pathlib
import shutil
import signal
import sys
import tempfile
import threading
import time

import faults
import fuzz
import hostile
from runs import Place, Settings

# Kinds of attacks on the tool: what is tried, for ever the same for one seed, and the check of one.
KINDS = {
    "faults": (faults.fault_specs, faults.check_fault),
    "kills": (faults.kill_specs, faults.check_kill),
    "pairs": (faults.pair_specs, faults.check_pair),
    "hostile": (hostile.specs, hostile.check),
}
# Shares of the time of "all", and those that a command stands for.
SHARES = {"faults": 27, "kills": 15, "pairs": 8, "hostile": 5, "fuzz": 45}
COMMANDS = {"all": list(SHARES), "kills": ["kills", "pairs"]}


class Result:
    def __init__(self, kind):
        self.kind, self.tried, self.failures, self.inside = kind, 0, [], {}


def places(count):
    return [Place(f"place{number}") for number in range(count)]


def attack(kind, places, specs, end):
    """Tries them until the time is over, side by side in the places."""
    result, lock = Result(kind), threading.Lock()

    def work(place):
        while time.monotonic() < end and not Settings.stopped:
            with lock:
                spec = next(specs, None)
            if spec is None:
                return
            try:
                wrong, crash = KINDS[kind][1](place, spec)
            except OSError as error:
                wrong, crash = [f"cannot be checked: {error}"], None
            if Settings.stopped:  # which the tool was told too
                return
            stack = faults.stack_of(place, spec) if crash and kind == "faults" else ""
            with lock:
                result.tried += 1
                if stack and faults.ends_in_dependency(stack):
                    result.inside.setdefault(faults.deciding_frame(stack), []).append((spec, stack))
                elif wrong:
                    result.failures.append((spec, "; ".join(wrong), stack))
                    print(f"{kind}: {spec}: {'; '.join(wrong)}", flush=True)

    with concurrent.futures.ThreadPoolExecutor(len(places)) as pool:
        for done in [pool.submit(work, place) for place in places]:
            done.result()
    return result


def report(results):
    print(f"\n{'kind':10} {'tried':>9} {'survived':>9} {'failed':>7} {'in a dependency':>16}")
    for result in results:
        inside = sum(len(found) for found in result.inside.values())
        failed = len(result.failures)
        print(f"{result.kind:10} {result.tried:9} {result.tried - failed - inside:9} {failed:7} {inside:16}")
    for result in results:
        for spec, what, stack in result.failures:
            print(f"\n{result.kind}: {what}\n  repeat: scripts/attack {result.kind.split()[0]} --only '{spec}'")
            if stack:
                print("  " + stack.replace("\n", "\n  "))
    for result in results:
        for key, found in sorted(result.inside.items(), key=lambda item: -len(item[1])):
            spec, stack = found[0]
            print(f"\n{result.kind}: {len(found)} times inside a dependency: {key}\n  repeat: scripts/attack {result.kind.split()[0]} --only '{spec}'")
            print("  " + stack.replace("\n", "\n  "))


def stop(*_):
    """Ctrl-C ends the attack; what was tried until then is reported."""
    Settings.stopped = True


def main():
    parser = argparse.ArgumentParser(prog="scripts/attack", description=__doc__)
    parser.add_argument("kind", nargs="?", default="all", choices=["all", "fuzz", *KINDS])
    parser.add_argument("--minutes", type=float, default=10, help="for all kinds together (default: 10)")
    parser.add_argument("--seed", type=int, default=1, help="the same seed gives the same sequence")
    parser.add_argument("--count", type=int, help="of each kind; ends earlier than the minutes")
    parser.add_argument("--only", help="this one, as the table tells it, or those of a file, one a line")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--tool", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--library", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--fuzzers", help=argparse.SUPPRESS)
    options = parser.parse_args()
    Settings.tool, Settings.library = (str(pathlib.Path(path).resolve()) for path in (options.tool, options.library))
    # What is killed and torn need not reach a disk.
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    Settings.work = pathlib.Path(tempfile.mkdtemp(prefix="vyr-attack-", dir=memory))
    kinds = COMMANDS.get(options.kind, [options.kind])
    total = sum(SHARES[kind] for kind in kinds)
    results = []
    try:
        where = places(options.jobs) if set(kinds) & set(KINDS) else []
        signal.signal(signal.SIGINT, stop)
        for kind in kinds:
            if Settings.stopped:
                break
            minutes = options.minutes * SHARES[kind] / total
            end = time.monotonic() + 60 * minutes
            print(f"attack: {kind}, {minutes:.1f} minutes", flush=True)
            if kind == "fuzz":
                results += fuzz.attack(options, end, Result)
                continue
            specs = KINDS[kind][0](where[0], options.seed)
            if options.only:
                file = pathlib.Path(options.only)
                specs = iter(file.read_text().splitlines() if file.is_file() else [options.only])
            results.append(attack(kind, where, itertools.islice(specs, options.count), end))
        report(results)
    finally:
        shutil.rmtree(Settings.work, ignore_errors=True)
    return 1 if any(result.failures for result in results) else 0


if __name__ == "__main__":
    sys.exit(main())
