// The materials of the contact sheet, in its order: four in a row.
export const SELECTION = [
    "materials-PaintGlossRed", 
];
