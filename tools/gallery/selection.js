// The materials of the contact sheet, in its order: four in a row.
export const SELECTION = [
    "materials-RedGlossEnamel", "materials-GoldLeaf", "lyrex-LyrexCarPaint", "materials-CeladonCeramic",
    "textured-RedBrickInches", "textured-DiagonalFloorTiles", "hardwood-NaturalStripFloor", "textured-Terrazzo",
    "lyrex-LyrexHammeredCopper", "textured-SteelTreadPlate", "textured-CognacLeather", "lyrex-LyrexCarbonFibre",
    "textured-PerforatedAluminium", "textured-OrnamentalScreen", "lyrex-LyrexPrivacyGlazing", "materials-BottleGreenGlass",
    "textured-ControlPanelScreen", "lyrex-LyrexBrushedSteel", "lyrex-LyrexVarnishedRustingSteel", "lyrex-LyrexCarraraMarble",
];

// The overlays of their own sheet, in its order.
export const OVERLAYS = [
    "overlays-DirectionArrow", "overlays-InspectionLabel", "overlays-HazardStripes", "overlays-WayMarkinInches",
    "overlays-M8Thread", "overlays-BrassThreadinInches", "overlays-WornBlackThread", "overlays-PlainThread",
];
