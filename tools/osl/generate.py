"""generate.py <folder> <target>: the OSL of the materials in <folder>/<form>/**/*.mtlx, with all that it includes."""

import os
import shutil
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests/definitions"))

import kvor_library as kv  # noqa: E402
import MaterialX as mx  # noqa: E402

source, target = map(Path, sys.argv[1:])
target.mkdir(parents=True)
for form, library in {"reference": kv.both, "embed": kv.standard, "standard": kv.standard}.items():
    for path in sorted((source / form).rglob("*.mtlx")):
        doc = mx.createDocument()
        mx.readFromXmlFile(doc, str(path))
        doc.setDataLibrary(library)
        for material in doc.getMaterialNodes():
            text = kv.generate(doc, material.getNamePath(), "osl").getSourceCode("pixel")
            (target / f"{form}-{path.parent.name}-{material.getName()}.osl").write_text(text, encoding="utf-8")
for folder in mx.getDefaultDataSearchPath().asString().split(os.pathsep):
    for header in Path(folder).glob("libraries/stdlib/genosl/include/*.h"):
        shutil.copy(header, target)
