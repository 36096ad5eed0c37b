"""The legacy family: what holds for every row of its tables, and what matter does."""

import itertools
import json
import math
import os
import pathlib
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

TOOL = os.environ["VYR_MTLX"]
# From smooth to rough, where a schema has them.
SHEENS = ["polished", "glossy", "gloss", "semigloss", "semipolished", "pearl", "satin", "eggshell", "smooth", "matte", "cast",
          "flat", "unfinished", "broom_straight"]  # fmt: skip
# Reflectances at normal incidence, linear, as published in Real-Time Rendering, 4th edition, table 9.2.
METALS = {"gold": (1.0, 0.782, 0.344), "copper": (0.955, 0.638, 0.538), "silver": (0.972, 0.96, 0.915), "aluminum": (0.913, 0.922, 0.924),
          "brass": (0.91, 0.778, 0.423), "iron": (0.562, 0.565, 0.578), "zinc": (0.664, 0.824, 0.85), "chrome": (0.549, 0.556, 0.554),
          "nickel": (0.66, 0.609, 0.526), "platinum": (0.673, 0.637, 0.585), "titanium": (0.542, 0.497, 0.449)}  # fmt: skip


def run(*arguments):
    return subprocess.run([TOOL, *map(str, arguments)], capture_output=True, encoding="utf-8", check=True).stdout


SCHEMAS = next(group["schemas"] for group in json.loads(run("schema", "--json"))["groups"] if group["name"] == "Legacy materials")


def choice(value):
    return {"type": "choice", "value": value}


def convert(materials, *options):
    """By the id: the entry of the report, with the inputs of the shader as "inputs"; a list where no texture drives one."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        materials = [{"name": f"m{i}", **material} for i, material in enumerate(materials)]
        (folder / "lib.json").write_text(json.dumps({"assetLibrary": 1, "materials": materials}))
        run("convert", folder / "lib.json", "--output", folder / "out", "--quiet", "--image-size", 16, "--validate", "--report",
            folder / "report.json", *options)  # fmt: skip
        report = json.loads((folder / "report.json").read_text())["materials"]
        for entry in report:
            text = (folder / "out" / (entry["name"] + ".mtlx")).read_text()
            shader = ElementTree.fromstring(text.replace("kvor:", "kvor_")).find("standard_surface")
            entry["inputs"] = {each.get("name"): [float(part) for part in each.get("value").split(", ")]
                               for each in shader if each.get("value") not in (None, "true", "false")}  # fmt: skip
        return {entry["id"]: entry for entry in report}


def legacy(cases):
    """The shader's inputs of (schema, properties), in that order."""
    materials = [{"id": str(i), "schema": schema, "properties": properties} for i, (schema, properties) in enumerate(cases)]
    return [entry["inputs"] for entry in convert(materials, "--legacy").values()]


def values(row):
    """What to try for a row by a word for it; "wrong" ones are told of."""
    if row["choices"]:
        return {"wrong": choice("nothing"), **{each: choice(each) for each in row["choices"]}}
    if row["type"] == "boolean":
        return {"on": True, "off": False}
    if row["type"] == "color":
        return {"inside": [0.9, 0.4, 0.2], "wrong": [3, -1, 0.5]}
    ends = {"least": row["least"], "most": row["most"]}
    if row["least"] is None:
        return {"plain": 0.5}
    steps = {**ends, "wrong": row["most"] * 2, "wrong, low": row["least"] - 1}
    return {word: {"type": row["type"], "value": value, **({"unit": "meter"} if row["unit"] else {})} for word, value in steps.items()}


def pixels(file):
    """The channels of a picture without interlacing, 0 to 1, a list a row."""
    data, parts, at = file.read_bytes(), {}, 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at : at + 8])
        parts[kind] = parts.get(kind, b"") + data[at + 8 : at + 8 + length]
        at += length + 12
    width, _, depth, color = struct.unpack(">IIBB", parts[b"IHDR"][:10])
    step = {0: 1, 2: 3}[color] * depth // 8
    raw, before, rows = zlib.decompress(parts[b"IDAT"]), bytes(width * step), []
    for start in range(0, len(raw), width * step + 1):
        line = bytearray(raw[start + 1 : start + 1 + width * step])
        for i, value in enumerate(line):
            left, up, corner = (line[i - step], before[i], before[i - step]) if i >= step else (0, before[i], 0)
            nearest = min((left, up, corner), key=lambda each: abs(left + up - corner - each))
            line[i] = (value + (0, left, up, (left + up) // 2, nearest)[raw[start]]) & 255
        before = bytes(line)
        rows.append([each[0] / (256 ** (depth // 8) - 1) for each in struct.iter_unpack({8: ">B", 16: ">H"}[depth], line)])
    return rows


def baked(schema, properties, size):
    """The images of a material that are baked, by the last word of their names."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        material = {"id": "m", "schema": schema, "name": "m", "properties": properties}
        (folder / "lib.json").write_text(json.dumps({"assetLibrary": 1, "materials": [material]}))
        run("convert", folder / "lib.json", "--legacy", "--output", folder / "out", "--quiet", "--image-size", size)
        return {file.stem.removesuffix(f"_{size}").rsplit("_", 1)[1]: pixels(file) for file in folder.rglob("*.png")}


def roughness(inputs):
    """Of the surface that is seen first."""
    return inputs["coat_roughness" if inputs["coat"][0] > 0.5 else "specular_roughness"][0]


class Legacy(unittest.TestCase):
    maxDiff = None

    def test_every_property_gives_a_plausible_document(self):
        materials, wrong = [], {}
        for schema in SCHEMAS:
            every = {row["name"]: list(values(row).values())[-2:][0] for row in schema["properties"]}
            cases = {"nothing": {}, "all": every}
            for row in schema["properties"]:
                for word, value in values(row).items():
                    cases[f'{row["name"]} {word}'] = {row["name"]: value}
                    if word.startswith("wrong"):
                        wrong[f'{schema["name"]} {row["name"]} {word}'] = row["name"]
            materials += [{"id": f'{schema["name"]} {key}', "schema": schema["name"], "properties": properties}
                          for key, properties in cases.items()]  # fmt: skip
        found = convert(materials, "--legacy")
        for key, entry in found.items():
            for told, end in (("wrong", "most"), ("wrong, low", "least")):
                if key.endswith(f" {told}") and f"{key.removesuffix(told)}{end}" in found:
                    self.assertEqual(entry["inputs"], found[f"{key.removesuffix(told)}{end}"]["inputs"], key)
            told = [each["property"] for each in entry["warnings"]]
            with self.subTest(key):
                if not key.endswith(" all"):
                    self.assertEqual(told, [wrong[key]] if key in wrong else [])
                inputs = entry["inputs"]
                for name, numbers in inputs.items():
                    low, high = (1, 40) if name.endswith("IOR") else (0, 1)
                    self.assertTrue(all(math.isfinite(number) and low <= number <= high for number in numbers), f"{name} {numbers}")
                index = inputs["specular_IOR"][0]
                reflectance = ((index - 1) / (index + 1)) ** 2
                passing = inputs["transmission"][0] * max(inputs["transmission_color"])
                self.assertLessEqual(reflectance + (1 - reflectance) * passing, 1)

    def test_matter_behaves_like_itself(self):
        for schema in SCHEMAS:
            for row in schema["properties"]:
                sheens = [f'{row["name"].partition("_")[0]}_{sheen}' for sheen in SHEENS]
                known = [sheen for sheen in sheens if sheen in row["choices"]]
                if row["name"].endswith("_finish"):
                    self.assertGreaterEqual(len(known), 3, f"{row['name']}: no sheens are known")
                if len(known) > 1:
                    found = [roughness(each) for each in legacy([(schema["name"], {row["name"]: choice(sheen)}) for sheen in known])]
                    self.assertEqual(found, sorted(set(found)), f"{row['name']}: {known}")
        thickness = [{"type": "scalar", "value": value, "unit": "millimeter"} for value in (6, 12, 50, 1000, 50000)]
        for schema, name, tint in [("GlazingSchema", "glazing_thickness", {}), ("SolidGlassSchema", "solidglass_depth", {}),
                                   ("GlazingSchema", "glazing_thickness", {"glazing_tint": choice("glazing_bronze")}),
                                   ("WaterSchema", "water_depth", {"water_color": [0.4, 0.8, 0.9]})]:  # fmt: skip
            found = legacy([(schema, tint), *((schema, {**tint, name: value}) for value in thickness)])
            for thin, thick in itertools.pairwise([each["transmission_color"] for each in found]):
                self.assertTrue(all(b <= a for a, b in zip(thin, thick)), f"{name}: {thin} {thick}")
            self.assertLess(max(found[-1]["transmission_color"]), 0.7)
        sheets = legacy([("GlazingSchema", {"glazing_sheets": {"type": "integer", "value": count}}) for count in (1, 2, 5)])
        self.assertEqual(sorted(sheets, key=lambda each: each["specular_IOR"]), sheets)
        self.assertEqual(sorted(sheets, key=lambda each: each["transmission_color"], reverse=True), sheets)

    def test_reliefs_are_as_deep_in_images_of_every_size(self):
        # A cushion rises and falls once, a quarter of its width; ribs fall and rise by 0.3 of theirs.
        large = {"metal_relief_size": {"type": "scalar", "value": 3, "unit": "inch"}}
        for pattern, steepness, size, given in (("cushioned", 0.25, 32, {}), ("cushioned", 0.25, 128, {}), ("cushioned", 0.25, 64, large),
                                                ("ribbed", 0.6, 256, {})):  # fmt: skip
            normals = baked("MetalSchema", {"metal_relief_pattern": choice(f"metal_{pattern}"), **given}, size)["normal"]
            slopes = [abs(row[i] - 0.5) / (row[i + 2] - 0.5) for row in normals for i in range(0, len(row), 3)]
            self.assertAlmostEqual(sum(slopes) / len(slopes), steepness, delta=0.1 * steepness, msg=f"{pattern} {size}")

    def test_patches_cover_their_share(self):
        for share in (0.1, 0.5, 0.8):
            images = baked("MetalSchema", {"metal_type": choice("metal_copper"), "metal_patina": share}, 128)
            self.assertEqual(sorted(images), ["color", "metalness", "roughness"])
            metal = [value for row in images["metalness"] for value in row]
            self.assertAlmostEqual(sum(metal) / len(metal), 1 - share, delta=0.08)

    def test_metals_and_waters_are_the_same_on_both_roads(self):
        rows = {row["name"]: row["choices"] for schema in SCHEMAS for row in schema["properties"]}
        metals = [each for each in rows["metal_type"] if each not in ("metal_custom", "metal_anodized")]
        waters = [each for each in rows["water_type"] if each != "water_custom"]
        cases = [("MetallicPaintSchema", {"metal_type": choice(each)}) for each in metals]
        cases += [("WaterSchema", {"water_type": choice(each)}) for each in waters]
        generic = convert([{"id": str(i), "schema": schema, "properties": properties, "genericProperties": {"generic_diffuse": [0.5] * 3}}
                           for i, (schema, properties) in enumerate(cases)])  # fmt: skip
        found = legacy(cases)
        for ours, theirs in zip(found, generic.values()):
            self.assertEqual([], theirs["warnings"])
            for name in ("base_color", "transmission_color", "specular_IOR"):
                self.assertEqual(ours[name], theirs["inputs"][name])
        for water in found[len(metals) :]:
            self.assertAlmostEqual(water["specular_IOR"][0], 1.333)
        bare = dict(zip(metals, legacy([("MetalSchema", {"metal_type": choice(each)}) for each in metals])))
        for metal, published in METALS.items():
            for a, b in zip(bare[f"metal_{metal}"]["base_color"], published):
                self.assertLess(abs(a - b), 0.03, metal)
        red, green, blue = bare["metal_gold"]["base_color"]
        self.assertTrue(red > green > 1.5 * blue)
        red, green, blue = bare["metal_copper"]["base_color"]
        self.assertTrue(red > 1.3 * green >= 1.3 * blue)

    def test_samples_show_every_schema(self):
        root = pathlib.Path(__file__).resolve().parents[2]
        library, page = root / "samples/legacy.json", (root / "docs/samples.md").read_text()
        materials = json.loads(library.read_text())["materials"]
        for schema in SCHEMAS:
            self.assertGreaterEqual(sum(each["schema"] == schema["name"] for each in materials), 3, schema["name"])
        for each in materials:
            self.assertIn("| {displayName} (`{id}`) | `{schema}` | {description} |".format(**each), page)
        with tempfile.TemporaryDirectory() as folder:
            run("convert", library, "--legacy", "--strict", "--validate", "--output", folder, "--image-size", 16)

    def test_what_is_given_wins_and_what_is_dropped_is_told(self):
        mm = lambda value: {"type": "scalar", "value": value, "unit": "millimeter"}  # noqa: E731
        cases = {
            "a colour is a choice": ("MetalSchema", {"metal_color": [1, 0, 0]}, {"base_color": [1, 0, 0]}, []),
            "but no second one": ("MetalSchema", {"metal_type": choice("metal_gold"), "metal_color": [1, 0, 0]},
                                  {"base_color": [1, 0.782, 0.344]}, ["metal_color"]),
            "joints make a bond": ("MasonryCMUSchema", {"masonrycmu_joint_width": mm(3)}, {"base_color": None}, []),
            "unless there is none": ("MasonryCMUSchema", {"masonrycmu_joint_width": mm(3), "masonrycmu_bond": choice("masonrycmu_none")},
                                     {"specular_roughness": [0.8]}, []),
            "one relief": ("StoneSchema", {"stone_bond": choice("stone_stack"), "stone_finish": choice("stone_unfinished")},
                           {"base_color": None}, ["stone_finish"]),
            "the object's colour": ("ConcreteSchema", {"color_by_object": True, "concrete_color": [1, 0, 0], "concrete_finish": choice("concrete_smooth")}, {"base_color": [0.5] * 3}, []),
            "a stain": ("HardwoodSchema", {"hardwood_color": [1, 1, 1], "hardwood_tint_enabled": choice("hardwood_color_choice"),
                                           "hardwood_tint_color": [0, 0, 0]}, {"base_color": [0.5] * 3}, []),
        }  # fmt: skip
        found = convert([{"id": key, "schema": schema, "properties": given} for key, (schema, given, *_) in cases.items()],
                        "--legacy", "--color-mode", 0)  # fmt: skip
        for key, (_, _, expected, told) in cases.items():
            with self.subTest(key):
                self.assertEqual([each["property"] for each in found[key]["warnings"]], told)
                for name, value in expected.items():
                    self.assertEqual(found[key]["inputs"].get(name), value)


if __name__ == "__main__":
    unittest.main()
