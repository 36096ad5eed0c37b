"""Names, references and links that somebody made up to do harm."""

import json
import os
import random
import re
import shutil
import socket
import xml.parsers.expat

from runs import TEMPORARY, crash_of, images_named, run, snapshot, temporaries

# Pieces of names and references. Their combinations follow.
PIECES = [
    "", " ", ".", "..", "...", "/", "//", "\\", "../..", "..\\..\\", "/etc/passwd", "/dev/zero", "/dev/null", "/dev/stdin",
    "/dev/fd/1", "/proc/self/mem", "/proc/kmsg", "/proc/self/environ", "/sys/kernel/debug", "~", "~root", "$HOME", "%USERPROFILE%",
    "C:", "C:\\x", "\\\\host\\share\\x", "\\\\?\\C:\\x", "file:///etc/passwd", "file:", "http://x/y.png", "con", "NUL.png", "com1",
    "aux.mtlx", "lpt9 ", "a:b", "a::$DATA", "a*?", "a|b", "<a>", "a\"b'", "a&b;", "--", "-o", "-", "--output=x", "@file", "#", "%00", "%2e%2e%2f",
    "\0", "a\0.png", "\n", "\r\n", "\t", "\x1b[2J", "\x1b]0;x\x07", "\x7f", "\x85", "\u2028", "\u202e", "\u200b", "\ufeff",
    "\u00e9", "e\u0301", "\u212b", "\u00c5", "\ufb01", "\u0130", "\u0131", "\u00df", "\u1e9e", "\uff0e\uff0e\uff0f", "\U0001f600",
    "\ud800", "\uffff", "\u0f3a", "A" * 255, "A" * 256, "a/" * 2000, "\u00e9" * 200, "x" * 70000, "<UDIM>", "{frame}", "a.<UDIM>.png",
    "images/wood.png", "images/../images/wood.png", "./images//wood.png", "IMAGES/WOOD.PNG", "images\\wood.png", "images/wood.png/",
    "images/wood.png/x", "images/link.png", "images/loop.png", "images/pipe.png", "images/socket.png", "images/zero.png", "images/folder.png",
    "images/hidden.png", "images/dangling.png", "images/outside.png", "images/empty.png", "images/mem.png", "images/text.png",
    "x.null", "wood.png.null", "XID__", "M", "0", "9" * 30, "M99999999999999999999", "default", "_", "__", ".vyr-0-0.tmp",
]
MODES = {
    "plain": ["convert", "src/h.json", "-o", "out", "-j", "1", "--image-size", "4", "--no-sync"],
    "gather": ["convert", "src/h.json", "-o", "out", "-j", "1", "--image-size", "4", "--no-sync", "--copy-textures", "--report", "out/r.json"],
    "ids": ["convert", "src/h.json", "-o", "out", "-j", "2", "--image-size", "4", "--no-sync", "--id-names", "--nodes", "embed", "--validate"],
    "overlay": ["overlay", "src/h.json", "-o", "out", "--copy-textures", "--no-sync", "--nodes", "standard"],
    "list": ["list", "src/h.json", "--json"],
    "bake": None,
    "validate": ["validate", "src/h.mtlx"],
    "arguments": None,
}
# What somebody may have put where the tool writes: a name in "out", and what stands there.
ENTRIES = ["file", "folder", "link", "link to a folder", "loop", "dangling", "pipe", "device", "hard link", "socket", "read-only"]
PLACES = ["Relief.mtlx", "Relief", "Relief/wood.png", "r.json", ".vyr-", ".", "Relief/Relief.png"]


def pieces_of(text, chance):
    return "".join(chance.choice(PIECES) for _ in range(chance.randint(1, 3))) if text is None else text


def specs(_, seed):
    """First each piece in each mode, then each entry at each place, then combinations of pieces."""
    for mode in MODES:
        for index in range(len(PIECES)):
            yield f"{mode} piece {index}"
    for place in range(len(PLACES)):
        for entry in range(len(ENTRIES)):
            for mode in "plain", "gather", "overlay":
                yield f"{mode} entry {place} {entry}"
    number = seed * 1000000
    while True:
        number += 1
        yield f"{random.Random(number).choice(list(MODES))} combination {number}"


def write_bytes(path, text):
    path.write_bytes(text.encode("utf-8", "surrogatepass"))


def put(path, entry, precious):
    kind = ENTRIES[entry]
    path.parent.mkdir(parents=True, exist_ok=True)
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    makers = {
        "file": lambda: path.write_text("mine"), "folder": path.mkdir, "link": lambda: path.symlink_to(precious),
        "link to a folder": lambda: path.symlink_to(precious.parent), "loop": lambda: path.symlink_to(path.name),
        "dangling": lambda: path.symlink_to(precious.parent / "new"), "pipe": lambda: os.mkfifo(path),
        "device": lambda: path.symlink_to("/dev/null"), "hard link": lambda: os.link(precious, path),
        "read-only": lambda: (path.mkdir(), path.chmod(0o555)),
        "socket": lambda: make_socket(path),
    }
    makers[kind]()


def make_socket(path):
    here = os.open(path.parent, os.O_RDONLY)
    try:
        with socket.socket(socket.AF_UNIX) as made:
            made.bind(f"/proc/self/fd/{here}/{path.name}")
    finally:
        os.close(here)


def hostile_images(images):
    """Images that are none, beside the good ones."""
    if (images / "link.png").is_symlink():
        return
    (images / "link.png").symlink_to("wood.png")
    (images / "loop.png").symlink_to("loop.png")
    (images / "dangling.png").symlink_to("nothing.png")
    (images / "outside.png").symlink_to("/etc/passwd")
    (images / "zero.png").symlink_to("/dev/zero")
    (images / "mem.png").symlink_to("/proc/self/maps")
    os.mkfifo(images / "pipe.png")
    make_socket(images / "socket.png")
    (images / "folder.png").mkdir()
    (images / "empty.png").touch()
    (images / "text.png").write_text("P5 99999999 99999999 255 ")
    (images / "hidden.png").write_text("x")
    (images / "hidden.png").chmod(0)


def library_of(text, overlay):
    if overlay:
        return {"assetLibrary": 1, "overlays": [
            {"name": text, "type": "decal", "texture": {"path": text}}, {"name": "Relief", "type": "decal", "texture": {"path": "images/wood.png"}},
            {"name": "Other", "type": "thread", "threadTexture": {"path": text}, "normalTexture": {"path": text}}]}

    def material(name, identity, image):
        bitmap = {"schema": "UnifiedBitmapSchema", "properties": {"unifiedbitmap_Bitmap": {"type": "uri", "value": image}}}
        properties = {"generic_diffuse": {"type": "color", "value": [1, 1, 1], "connected": bitmap}, "generic_bump_amount": 1,
                      "generic_bump_map": {"type": "reference", "connected": bitmap}, text or "x": 1}
        return {"id": identity, "schema": "GenericSchema", "name": name, "displayName": name, "description": text, "properties": properties}

    return {"assetLibrary": 1, "texturePaths": [text or "."], "materials": [
        material(text, text or "empty", text), material("Relief", "relief", "images/wood.png"),
        material("Relief " + text, "third" + text, "images/" + text)]}


def document_of(text):
    escaped = re.sub(r"[&<>\"\0-\x1f]", lambda found: f"&#{ord(found[0]) or 1};", text)
    return (f'<?xml version="1.0"?><materialx version="1.39" xmlns:xi="http://www.w3.org/2001/XInclude"><xi:include href="{escaped}"/>'
            f'<image name="{escaped}" type="color3" nodedef="{escaped}"><input name="file" type="filename" value="{escaped}"/>'
            f'<input name="x" type="{escaped}" value="{escaped}" nodename="{escaped}" unit="{escaped}"/></image></materialx>')


def check(place, spec):
    mode, kind, *numbers = spec.split()
    chance = random.Random(int(numbers[0]))
    text = {"piece": lambda: PIECES[int(numbers[0])], "entry": lambda: "Relief",
            "combination": lambda: pieces_of(None, chance)}[kind]()
    place.prepare("convert", False)
    hostile_images(place.src / "images")
    write_bytes(place.src / "h.json", json.dumps(library_of(text, mode == "overlay")))
    write_bytes(place.src / "h.mtlx", document_of(text))
    precious = place.folder / "precious" / "file.png"
    shutil.rmtree(precious.parent, ignore_errors=True)
    precious.parent.mkdir()
    precious.write_text("mine")
    if kind == "entry":
        target = place.out / PLACES[int(numbers[0])]
        if PLACES[int(numbers[0])] == ".vyr-":
            target = place.out / temporary_name("Relief.mtlx")
        put(target, int(numbers[1]), precious)
    argument = text.replace("\0", "").encode("utf-8", "replace").decode()[:100000]
    arguments = MODES[mode] or {
        "bake": ["bake", "normal", "--output", "out/x.png", "--", argument],
        "arguments": ["convert", argument, argument, "-o", argument or "out", "--asset", argument, "--texture-path", argument],
    }[mode]
    folder = place.folder
    if mode == "arguments":
        # Whatever it is taken for, it must not lead out of here.
        if argument.startswith(("/", "~", "$")) or ".." in argument:
            return [], None
        folder = place.out
    before = snapshot(place.src), snapshot(precious.parent)
    outside = sorted(path.name for path in place.folder.iterdir())
    status, out, error = run(arguments, folder)
    crash = crash_of(status)
    wrong = [crash] if crash else []
    if (snapshot(place.src), snapshot(precious.parent)) != before:
        wrong.append("a file outside the output was touched")
    if sorted(path.name for path in place.folder.iterdir()) != outside:
        wrong.append("a file outside the output was made")
    if re.search("[\0-\x09\x0b-\x1f\x7f-\x9f\u2028\u2029]", error):
        wrong.append("control characters in the messages")
    if status not in (0, None) and not error.strip():
        wrong.append(f"status {status} without a reason")
    if mode != "arguments" and place.out.is_dir():
        wrong += documents_of(place, kind)
    return wrong, crash


def documents_of(place, kind):
    wrong = []
    if kind != "entry":
        wrong += [f"{name} stays" for name in temporaries(place.out)]
    for path in place.out.glob("*.mtlx"):
        if path.is_symlink() or not path.is_file() or (kind == "entry" and path.read_bytes() == b"mine"):
            continue
        if not re.fullmatch(r"\w+\.mtlx", path.name, re.ASCII):
            wrong.append(f"a document is named {path.name!r}")
        try:
            for image in images_named(path):
                # References to files that are not there stay as they were written; gathered ones are there.
                if image.startswith(path.stem + "/") and not (place.out / image).is_file():
                    wrong.append(f"{path.name} names {image}, which is not there")
        except xml.parsers.expat.ExpatError as error:
            wrong.append(f"{path.name} is no XML: {error}")
    return wrong


def temporary_name(name):
    value = 0xCBF29CE484222325
    for byte in name.encode():
        value = (value ^ byte) * 0x100000001B3 % 2**64
    return f".vyr-{value:x}-0.tmp"
