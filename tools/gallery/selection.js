// The materials of the contact sheet, in its order: four in a row.
export const SELECTION = [
    "RedGlossEnamel", "GoldLeaf", "LyrexCarPaint", "CeladonCeramic",
    "RedBrickInches", "DiagonalFloorTiles", "NaturalStripFloor", "Terrazzo",
    "LyrexHammeredCopper", "SteelTreadPlate", "CognacLeather", "LyrexCarbonFibre",
    "PerforatedAluminium", "OrnamentalScreen", "LyrexPrivacyGlazing", "BottleGreenGlass",
    "ControlPanelScreen", "LyrexBrushedSteel", "LyrexVarnishedRustingSteel", "LyrexCarraraMarble",
];

// The overlays of their own sheet, in its order.
export const OVERLAYS = [
    "DirectionArrow", "InspectionLabel", "HazardStripes", "WayMarkinInches",
    "M8Thread", "BrassThreadinInches", "WornBlackThread", "PlainThread",
];
