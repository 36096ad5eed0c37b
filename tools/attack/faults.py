"""Runs in which calls of the system fail, runs that are killed, and pairs of runs side by side."""

import functools
import random
import re
import signal
import subprocess
import time

from runs import CASES, WRITING, Settings, crash_of, images_named, run, snapshot, temporaries, torn, write_sources

EACCES, EINTR, EIO, EMFILE, ENOENT, ENOLCK, ENOMEM, ENOSPC = 13, 4, 5, 24, 2, 37, 12, 28
EPERM, EXDEV, EOPNOTSUPP, EROFS, EDQUOT, ENOSYS, EMLINK, ELOOP, EINVAL = 1, 18, 95, 30, 122, 38, 31, 40, 22

# The errors that a call may fail with; the first one is also tried with all calls that follow.
ERRORS = {
    "open": [EACCES, EMFILE, EIO, ENOSPC, EROFS, ELOOP], "tmpfile": [EOPNOTSUPP, ENOSPC, EIO], "fopen": [EMFILE, EIO],
    "opendir": [EACCES, EMFILE], "readdir": [EIO], "read": [EIO, EINTR], "pread": [EIO, EINTR], "write": [ENOSPC, EIO, EINTR, EDQUOT],
    "pwrite": [ENOSPC, EIO], "writev": [ENOSPC, EIO, EINTR], "lseek": [EIO], "close": [EIO, ENOSPC, EINTR], "fstat": [EIO, ENOMEM],
    "lstat": [EIO, EACCES], "stat": [EIO, EACCES, ENOENT], "fstatat": [EIO], "access": [EACCES], "readlink": [EIO, EACCES],
    "realpath": [EACCES, ELOOP], "getcwd": [ENOENT], "rename": [EIO, EACCES, ENOSPC, EXDEV],
    "renameat2": [EINVAL, EIO, EACCES], "link": [EPERM, EMLINK, ENOSPC],
    "linkat": [EPERM, ENOSPC, ENOENT], "unlink": [EACCES, EIO], "remove": [EACCES, EIO], "rmdir": [EIO], "mkdir": [ENOSPC, EACCES],
    "ftruncate": [EIO], "futimens": [EPERM], "fsync": [EIO], "fdatasync": [EIO], "syncfs": [EIO, ENOSPC], "flock": [ENOLCK, EINTR],
    "dup": [EMFILE], "fcntl": [EMFILE], "copy_file_range": [EXDEV, ENOSYS, EIO, ENOSPC], "sendfile": [EIO], "mmap": [ENOMEM],
    "malloc": [ENOMEM], "calloc": [ENOMEM], "realloc": [ENOMEM], "memalign": [ENOMEM], "getrandom": [ENOSYS], "thread": [11],
}
REMOVALS = ("unlink", "remove", "rmdir")


def fault_specs(place, seed):
    """Texts such as "gather existing write@3=28", for ever the same: each case, call and error in turn, and of
    each the numbers of the call in a random order."""
    chance = random.Random(seed)
    queues = []
    for (case, existing), (_, _, calls) in place.references.items():
        start = f"{case} {'existing' if existing else 'new'} "
        for call, count in calls.items():
            for position, error in enumerate(ERRORS[call]):
                for goes_on in ("", "+") if position == 0 else ("",):
                    numbers = list(range(1, count + 1))
                    chance.shuffle(numbers)
                    queues.append([f"{start}{call}@{number}{goes_on}={error}" for number in numbers])
            if call == "write":
                queues.append([start + "short"])
    chance.shuffle(queues)
    while queues:
        for queue in queues:
            yield queue.pop()
        queues = [queue for queue in queues if queue]


def check_fault(place, spec):
    case, state, fault = spec.split(" ", 2)
    existing = state == "existing"
    place.prepare(case, existing)
    status, out, error = run(CASES[case], place.folder, fault)
    crash = crash_of(status)
    wrong = [crash] if crash else []
    wrong += place.check_files()
    entries, expected, _ = place.references[case, existing]
    call = fault.split("@")[0]
    # What cannot be asked for counts as not there when it is only listed.
    is_said = call in REMOVALS or (case == "list" and call in ("stat", "lstat", "readlink", "realpath", "getcwd"))
    if status == 0 and (snapshot(place.out) != entries or out != expected) and not is_said:
        wrong.append("status 0, and what came out differs")
    if status not in (0, None) and status > 0 and not error.strip() and call not in ("write", "writev"):
        wrong.append(f"status {status} without a reason")
    if call not in REMOVALS and not crash:
        wrong += [f"{name} stays" for name in temporaries(place.out)]
    if status != 0 and not wrong:
        wrong += place.check_repair(case, existing)
    return wrong, crash


def stack_of(place, spec):
    """Where the call failed and where the process ended, one function or place in a library a line."""
    case, state, fault = spec.split(" ", 2)
    place.prepare(case, state == "existing")
    error = run(CASES[case], place.folder, fault, VYR_FAULTS_STACK="1")[2]
    lines = []
    for line in error.splitlines():
        found = re.match(r"(.*/)?([^/(]+)\((.*?)\+?(0x[0-9a-f]+)?\)\[", line)
        if line in ("failed", "crashed"):
            lines.append(line)
        elif found and "faults" not in found[2] and lines:
            name = found[3] or function_at((found[1] or "") + found[2], found[4])
            lines.append(f"  {found[2].split('.so')[0]}: {name}")
    try:
        return subprocess.run(["c++filt"], input="\n".join(lines), capture_output=True, text=True).stdout.rstrip()
    except OSError:
        return "\n".join(lines)


@functools.cache
def function_at(library, offset):
    """The function of a library's own symbols; the offset where that is not to be had."""
    try:
        found = subprocess.run(["addr2line", "-fCe", library, offset], capture_output=True, text=True).stdout.split("\n")[0]
    except OSError:
        return offset
    return offset if found in ("", "??") else found


def kill_specs(place, seed):
    """Half of them at a call that changes files, half at any moment."""
    chance = random.Random(seed)
    changing = ("open", "write", "rename", "renameat2", "link", "linkat", "unlink", "remove", "mkdir", "copy_file_range", "flock", "close",
                "dup", "syncfs", "futimens")
    while True:
        case, existing = chance.choice(WRITING), chance.random() < 0.7
        start = f"{case} {'existing' if existing else 'new'} "
        calls = place.references[case, existing][2]
        call = chance.choice([call for call in changing if call in calls])
        yield f"{start}{call}@{chance.randint(1, calls[call])}=kill"
        yield f"{start}after {chance.uniform(0, 1.2):.4f}"


def check_kill(place, spec):
    case, state, moment = spec.split(" ", 2)
    existing = state == "existing"
    place.prepare(case, existing)
    if moment.startswith("after "):
        if not hasattr(place, "durations"):
            place.durations = {}
        if case not in place.durations:
            begin = time.monotonic()
            run(CASES[case], place.folder)
            place.durations[case] = time.monotonic() - begin
            place.prepare(case, existing)
        process = subprocess.Popen([Settings.tool, *CASES[case]], cwd=place.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(float(moment.split()[1]) * place.durations[case])
        process.send_signal(signal.SIGKILL)
        process.wait()
    else:
        run(CASES[case], place.folder, moment)
    return place.check_files() + place.check_repair(case, existing), None


def pair_specs(_, seed):
    """Two editions of the same materials into one folder, the second one begun a little later."""
    chance = random.Random(seed)
    while True:
        case = chance.choice(["convert", "gather", "embed", "overlay"])
        yield f"{case} {'existing' if chance.random() < 0.5 else 'new'} {chance.uniform(0, 0.02):.4f}"


def check_pair(place, spec):
    case, state, delay = spec.split()
    place.prepare(case, state == "existing")
    other = place.folder / "other"
    if not other.exists():
        write_sources(other / "src", "old")
        (other / "out").symlink_to("../out")
    processes = []
    for folder in place.folder, other:
        processes.append(subprocess.Popen([Settings.tool, *CASES[case]], cwd=folder, stdin=subprocess.DEVNULL,
                                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True))
        time.sleep(float(delay))
    wrong = []
    for process in processes:
        error = process.communicate(timeout=60)[1]
        if process.returncode != 0:
            wrong.append(f"status {process.returncode}: {error.strip()}")
    wrong += torn(place.out, place.known | set(snapshot(other / "src").values()))
    return wrong + [f"{name} stays" for name in temporaries(place.out)], None


def deciding_frame(stack):
    """The innermost frame of a crash that is not one of the system's libraries. The C library itself ends the
    process where it cannot register an object of a thread."""
    crashed = stack.partition("crashed\n")[2].splitlines()
    registering = [line.strip() for line in crashed if "__cxa_thread_atexit_impl" in line]
    if registering:
        return registering[0]
    own = (line.strip() for line in crashed if not line.strip().startswith(("libc:", "libstdc++:", "libgcc_s:", "ld-linux")))
    return next(own, "")


def ends_in_dependency(stack):
    return deciding_frame(stack).startswith(("libOpenImageIO", "libMaterialX", "libc: __cxa_thread"))
