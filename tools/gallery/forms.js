// forms.js <folder>: compares the pictures of each material in all forms of its document. The folder has a folder of
// documents for each form.

import path from "node:path";
import { forEachMaterial, withScript } from "./browser.js";
import { images, materials } from "./documents.js";

const FORMS = ["embed", "standard"];
// Channels of 0 to 255. The shaders do the same calculations, but not all in the same order: last digits differ,
// and a value that lies between two steps may be rounded either way.
const TOLERANCE = { most: 2, mean: 0.01 };
// What a comparison must notice: textures that are smaller by a tenth.
const DAMAGE = ['unit="meter"', 'unit="yard"'];

const tooFar = ({ most, mean }) => most > TOLERANCE.most || mean > TOLERANCE.mean;
const figures = ({ most, mean }) => `at most ${most}, mean ${mean.toFixed(4)}`;

/** The materials with their documents in all forms. */
async function readForms(folder) {
    const all = await materials(path.join(folder, "reference"));
    for (const form of FORMS) {
        const others = new Map((await materials(path.join(folder, form))).map(({ key, text }) => [key, text]));
        for (const material of all) {
            if (!others.has(material.key)) throw new Error(`${material.key} has no document in the form ${form}`);
            material[form] = others.get(material.key);
        }
    }
    return all;
}

const differences = (page, shape, text, others) =>
    page.evaluate(([own, rest, kind]) => window.comparison.differences(own, rest, kind), [text, others, shape]);

/** The comparison itself must tell pictures apart. */
async function checkComparison(page, all) {
    const { key, shape, text, standard } = all.find((material) => material.standard.includes(DAMAGE[0]));
    const [found] = await differences(page, shape, text, [standard.replaceAll(...DAMAGE)]);
    if (!tooFar(found)) throw new Error(`${key}: a damaged document goes unnoticed (${figures(found)})`);
    console.log(`${key}: a damaged document differs by ${figures(found)}`);
}

async function compare(page, all, problems) {
    const worst = FORMS.map(() => ({ most: 0, mean: 0 }));
    await forEachMaterial(all, problems, async ({ key, shape, text, ...forms }) => {
        const found = await differences(page, shape, text, FORMS.map((form) => forms[form]));
        console.log(`${key}: ${FORMS.map((form, i) => `${form} ${figures(found[i])}`).join("; ")}`);
        found.forEach((each, i) => {
            for (const figure of ["most", "mean"]) worst[i][figure] = Math.max(worst[i][figure], each[figure]);
            if (tooFar(each)) problems.push(`${key}: ${FORMS[i]} looks different: ${figures(each)}`);
        });
    });
    return worst;
}

const started = performance.now();
const all = await readForms(process.argv[2]);
const various = all.filter((material) => FORMS.some((form) => material[form] !== material.text));
const problems = [];
const worst = await withScript("src/forms.js", "comparison", problems, async (page) => {
    await page.evaluate((urls) => window.comparison.open(urls), await images(all));
    await checkComparison(page, various);
    return compare(page, various, problems);
});
for (const problem of problems) console.error(`error: ${problem}`);
FORMS.forEach((form, i) => console.log(`${form} differs by ${figures(worst[i])} of 255`));
console.log(
    `${various.length} materials compared in ${((performance.now() - started) / 1000).toFixed(0)} s, ` +
        `${all.length - various.length} have one document in all forms, ${problems.length} problems`,
);
process.exitCode = problems.length ? 1 : 0;
