/** Of the RGBA pixels of two pictures of one size: the largest and the mean difference of a colour channel, 0 to 255. */
export function difference(pixels, others) {
    let most = 0;
    let sum = 0;
    for (let i = 0; i < pixels.length; ++i) {
        const distance = Math.abs(pixels[i] - others[i]);
        most = Math.max(most, distance);
        sum += distance;
    }
    return { most, mean: sum / (pixels.length * 0.75) }; // Alpha never differs.
}
