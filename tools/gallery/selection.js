// The materials of the contact sheet, in its order: four in a row.
export const SELECTION = [
    "materials-RedGlossEnamel", "materials-GoldLeaf", "materials-SilverMetallicPaint", "materials-CeladonCeramic",
    "textured-RedBrickInches", "textured-DiagonalFloorTiles", "textured-OiledOak", "textured-Terrazzo",
    "textured-HammeredCopper", "textured-SteelTreadPlate", "textured-CognacLeather", "textured-CarbonFibre",
    "textured-PerforatedAluminium", "textured-OrnamentalScreen", "textured-PrivacyFilmGlass", "materials-BottleGreenGlass",
    "textured-ControlPanelScreen", "materials-ExitSignGreen", "textured-WeatheringSteel", "textured-PolishedWhiteMarble",
];
