"""compile.py <folder>: compiles the OSL in a folder with the compiler in Blender's Python module."""

import sys
from pathlib import Path

import bpy  # noqa: F401 (what makes _cycles known)
import _cycles


def compiles(path):
    return _cycles.osl_compile(str(path), str(path.with_suffix(".oso")))


folder = Path(sys.argv[1])
broken = folder / "broken.osl"
broken.write_text("shader broken(output color out = 0) { out = no_such_function(); }\n")
print("An error is expected:", flush=True)
if compiles(broken):
    sys.exit("the compiler takes anything")
broken.unlink()
sources = sorted(folder.glob("*.osl"))
failed = [path.stem for path in sources if not compiles(path)]
version = ".".join(map(str, _cycles.osl_version))
print(f"OSL {version}: {len(sources) - len(failed)} of {len(sources)} shaders compiled", *failed)
sys.exit(bool(failed) or not sources)
