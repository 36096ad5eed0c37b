"""A first library from a folder of textures, whatever their makers call them."""

import json
import unittest

from support import PIXEL, ToolTest

# Folder of images as they come from one source, and for each of their materials the image of each property; in braces
# what belongs to one name.
RELIEF = "surface_normal"
METAL_BODY = {"layered_diffuse": "{color}", "layered_bottom_f0": "{color}", "layered_fraction": "{metal}", "surface_roughness": "{rough}",
              "layered_roughness": "{rough}", RELIEF: "{normal}", "layered_normal": "{normal}"}  # fmt: skip
PLAIN_BODY = {"opaque_albedo": "{color}", "surface_roughness": "{rough}", RELIEF: "{normal}"}


def slots(body, **names):
    """The properties of a body with the images of a set, without those that it has no image for."""
    return {key: names[slot[1:-1]] for key, slot in body.items() if slot[1:-1] in names}


MANNERS = {
    "words after the size": (
        [*(f"Metal009_1K-JPG_{word}.jpg" for word in ["Color", "Displacement", "NormalGL", "NormalDX", "Roughness",
                                                     "Metalness", "AmbientOcclusion", "Opacity", "Emission"]),
         "Metal009.png"],
        {"Metal009": slots(METAL_BODY, color="Metal009_1K-JPG_Color.jpg", metal="Metal009_1K-JPG_Metalness.jpg",
                           rough="Metal009_1K-JPG_Roughness.jpg", normal="Metal009_1K-JPG_NormalGL.jpg")
                     | {"surface_cutout": "Metal009_1K-JPG_Opacity.jpg"}},
    ),
    "short words before the size": (
        ["red_brick_diff_1k.jpg", "red_brick_rough_1k.exr", "red_brick_nor_gl_1k.exr", "red_brick_nor_dx_1k.exr",
         "red_brick_disp_1k.png", "red_brick_ao_1k.jpg", "red_brick_arm_1k.jpg",
         "metal_plate_diff_2k.jpg", "metal_plate_diff_4k.jpg", "metal_plate_metal_2k.jpg", "metal_plate_spec_2k.jpg", "metal_plate_bump_2k.png"],
        {"red brick": slots(PLAIN_BODY, color="red_brick_diff_1k.jpg", rough="red_brick_rough_1k.exr", normal="red_brick_nor_gl_1k.exr"),
         "metal plate": slots(METAL_BODY, color="metal_plate_diff_4k.jpg", metal="metal_plate_metal_2k.jpg", normal="metal_plate_bump_2k.png")},
    ),
    "a folder for each": (
        ["Oak/Oak_BaseColor.png", "Oak/Oak_NormalMap.png", "Oak/Oak_Roughness.png", "Oak/Oak_Height.png", "Oak/Oak_AO.png",
         "Lamp/baseColor.png", "Lamp/glossiness.png", "Lamp/emissive.png", "Lamp/opacity.png"],
        {"Oak": slots(PLAIN_BODY, color="Oak/Oak_BaseColor.png", rough="Oak/Oak_Roughness.png", normal="Oak/Oak_NormalMap.png"),
         "Lamp": slots(PLAIN_BODY, color="Lamp/baseColor.png", rough="Lamp/glossiness.png")
                 | {"surface_cutout": "Lamp/opacity.png", "opaque_luminance_modifier": "Lamp/emissive.png"}},
    ),
    "the method last": (
        [*(f"WoodFine_{word}_4K_METALNESS.jpg" for word in ["COL_VAR1", "COL_VAR2", "NRM", "NRM16", "METALNESS", "DISP16", "AO"]),
         *(f"Glass_{word}_4K_SPECULAR.jpg" for word in ["COL", "GLOSS", "REFL", "NRM", "MASK"])],
        {"Wood Fine": slots(METAL_BODY, color="WoodFine_COL_VAR1_4K_METALNESS.jpg", metal="WoodFine_METALNESS_4K_METALNESS.jpg",
                            normal="WoodFine_NRM16_4K_METALNESS.jpg"),
         "Glass": slots(PLAIN_BODY, color="Glass_COL_4K_SPECULAR.jpg", rough="Glass_GLOSS_4K_SPECULAR.jpg", normal="Glass_NRM_4K_SPECULAR.jpg")
                  | {"surface_cutout": "Glass_MASK_4K_SPECULAR.jpg"}},
    ),
    "letters, hyphens, and none for the colour": (
        ["T_Rock_D.tga", "T_Rock_N.tga", "T_Rock_R.tga", "slate-cliff_albedo.png", "slate-cliff_normal-dx.png", "slate-cliff_metallic.png",
         "slate-cliff_preview.png", "brick.jpg", "brick_bump.jpg", "brick_spec.jpg", "vitamin_e.png"],
        {"T Rock": slots(PLAIN_BODY, color="T_Rock_D.tga", rough="T_Rock_R.tga", normal="T_Rock_N.tga"),
         "slate cliff": slots(METAL_BODY, color="slate-cliff_albedo.png", metal="slate-cliff_metallic.png", normal="slate-cliff_normal-dx.png"),
         "brick": slots(PLAIN_BODY, color="brick.jpg", normal="brick_bump.jpg")},
    ),
}  # fmt: skip


class Init(ToolTest):
    def fill(self, folder, names):
        for name in names:
            path = self.folder / folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(PIXEL)

    def library(self, path):
        """The file's materials by name, with the image of each property; and the properties of each image."""
        content = json.loads((self.folder / path).read_text(encoding="utf-8"))
        textures = {texture["id"]: texture["properties"] for texture in content["textures"]}
        images = {key: next(iter(values.values()))["value"] for key, values in textures.items()}
        materials = {
            material["displayName"]: {
                name: images[value["connected"]]
                for name, value in material["properties"].items() if isinstance(value, dict) and "connected" in value
            }
            for material in content["materials"]
        }  # fmt: skip
        return materials, {images[key]: values for key, values in textures.items()}

    def test_all_slots_of_five_manners(self):
        for manner, (names, expected) in MANNERS.items():
            with self.subTest(manner):
                self.fill(manner, names)
                result = self.tool("init", manner)
                materials, textures = self.library(result.stdout.strip())
                self.assertEqual(materials, expected)
                for name in set(names) - set(textures):
                    self.assertIn(f"{name}: not used: ", result.stderr)
                report = f"{manner}/report.json"
                self.tool("convert", result.stdout.strip(), "--output", f"{manner}/out", "--validate", "--strict", "--report", report)
                for entry in self.report(report):
                    self.assertEqual(len(entry["textures"]), len(set(materials[self.display(entry, materials)].values())))

    def display(self, entry, materials):
        return next(name for name in materials if name.replace(" ", "") == entry["name"])

    def test_what_images_need_beside_their_slot(self):
        self.fill("in", ["a_gloss.png", "a_nrm_dx.png", "b_height.png", "b_diff.EXR", "c_diff.png", "c_metal.png", "c_emit.png"])
        warnings = self.tool("init", "in", "--output", "sub.json").stderr
        _, textures = self.library("sub.json")
        self.assertTrue(textures["in/a_gloss.png"]["unifiedbitmap_Invert"])
        # Green that points down is right on what is turned over, with all images of the material.
        self.assertEqual([textures[f"in/{name}.png"].get("texture_VScale") for name in ("a_gloss", "a_nrm_dx", "b_height")], [-1, -1, None])
        self.assertEqual(textures["in/a_nrm_dx.png"]["bumpmap_Type"]["value"], "bumpmap_normal_map")
        self.assertEqual(textures["in/b_height.png"]["bumpmap_Type"]["value"], "bumpmap_height_map")
        for image, message in [("a_nrm_dx.png", "turned over"), ("b_diff.EXR", "read as sRGB"), ("c_emit.png", "not used: ")]:
            self.assertRegex(warnings, f"(?m)^in/{image}: .*{message}")

    def test_nothing_of_the_users_is_touched(self):
        self.fill("in", ["oak_color.png", 'o"<&k_color.png', "A/oak_color.png", "stray.png"])
        (self.folder / "in" / "materials.json").write_text("mine")
        before = self.written("in")
        self.assertIn("is not replaced", self.tool("init", "in", status=2).stderr)
        self.assertEqual(self.written("in"), before)
        self.tool("init", "in", "--output", "in/new.json")
        # Sets of one name and names of any letters convert together.
        self.convert("in/new.json")
        self.assertEqual(len(self.written()), 3)
        for folder in ("missing", "out"):
            self.assertIn(folder, self.tool("init", folder, status=2).stderr)


if __name__ == "__main__":
    unittest.main()
