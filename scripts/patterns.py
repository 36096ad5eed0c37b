"""What draw-textures makes its images of: noise, cells, ramps, lines and the normals of a relief.

All functions take and give arrays of rows x columns (x channels) with values from 0 to 1. Noise and cells repeat
with period 1, so that what is made of them tiles.
"""
import numpy as np
from PIL import Image, ImageDraw


def grid(width, height=None):
    """Coordinates u (to the right) and v (downwards) of the pixel centres."""
    height = height or width
    return np.meshgrid((np.arange(width) + 0.5) / width, (np.arange(height) + 0.5) / height)


def mix(a, b, t):
    """a where t is 0, b where t is 1. A plane t mixes colours (or colour images) as well as planes."""
    a, b, t = np.asarray(a), np.asarray(b), np.asarray(t)
    if t.ndim == 2 and {a.ndim, b.ndim} & {1, 3}:
        t = t[..., None]
    return a * (1 - t) + b * t


def smoothstep(low, high, x):
    """0 below low, 1 above high, a smooth step between; low may be the greater, which turns it round."""
    t = np.clip((x - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def ramp(t, *colors):
    """Colour at t in 0 to 1 along evenly spaced colours."""
    stops = np.linspace(0, 1, len(colors))
    return np.stack([np.interp(t, stops, [c[i] for c in colors]) for i in range(3)], axis=-1)


def value_noise(u, v, cells, seed):
    """Smooth noise in 0 to 1 that repeats with period 1; cells is (across, down)."""
    lattice = np.random.default_rng(seed).random((cells[1], cells[0]))
    x, y = u * cells[0], v * cells[1]
    ix, iy = np.floor(x).astype(int), np.floor(y).astype(int)
    fx, fy = smoothstep(0, 1, x - ix), smoothstep(0, 1, y - iy)
    at = lambda dx, dy: lattice[(iy + dy) % cells[1], (ix + dx) % cells[0]]
    return mix(mix(at(0, 0), at(1, 0), fx), mix(at(0, 1), at(1, 1), fx), fy)


def fbm(u, v, cells, octaves, seed):
    """Sum of octaves of value noise, each half as strong as the one before, in 0 to 1."""
    layers = [value_noise(u, v, (cells[0] << i, cells[1] << i), seed + i) * 0.5**i for i in range(octaves)]
    return sum(layers) / (2 - 0.5 ** (octaves - 1))


def stretch(a):
    """The values spread over 0 to 1."""
    return (a - a.min()) / (a.max() - a.min())


def worley(u, v, cells, seed, jitter=0.9):
    """Distances to the nearest and second nearest scattered point, in cells, and the nearest point's number."""
    rng = np.random.default_rng(seed)
    offsets = 0.5 + (rng.random((cells, cells, 2)) - 0.5) * jitter
    x, y = u * cells, v * cells
    ix, iy = np.floor(x).astype(int), np.floor(y).astype(int)
    near, second = np.full(u.shape, 9.0), np.full(u.shape, 9.0)
    number = np.zeros(u.shape, int)
    for dy in range(-2, 3):
        for dx in range(-2, 3):
            cx, cy = (ix + dx) % cells, (iy + dy) % cells
            d = np.sqrt((ix + dx + offsets[cy, cx, 0] - x) ** 2 + (iy + dy + offsets[cy, cx, 1] - y) ** 2)
            closer = d < near
            second = np.where(closer, near, np.minimum(second, d))
            number = np.where(closer, cy * cells + cx, number)
            near = np.where(closer, d, near)
    return near, second, number


def normals(height, strength):
    """Tangent-space normals of a height image that repeats; strength is the height's range in pixels."""
    dx = (np.roll(height, -1, 1) - np.roll(height, 1, 1)) * 0.5 * strength
    up = (np.roll(height, 1, 0) - np.roll(height, -1, 0)) * 0.5 * strength
    n = np.stack([-dx, -up, np.ones_like(dx)], axis=-1)
    return n / np.sqrt((n * n).sum(-1, keepdims=True)) * 0.5 + 0.5


def draw(size, paint, mode="L", background=0, scale=4):
    """What paint(canvas, scale) draws on an ImageDraw canvas that is scale times larger, brought down to size."""
    image = Image.new(mode, (size[0] * scale, size[1] * scale), background)
    paint(ImageDraw.Draw(image), scale)
    return np.asarray(image.resize(size, Image.Resampling.BOX), float) / 255


def lines(size, count, seed, length, width):
    """Random straight hairlines on black, repeating in both directions."""
    rng = np.random.default_rng(seed)
    strokes = [(rng.random(2) * size, (rng.random(2) - 0.5) * length, int(rng.integers(60, 256)))
               for _ in range(count)]

    def paint(canvas, scale):
        for start, step, grey in strokes:
            for shift in np.ndindex(3, 3):
                a = (start + (np.array(shift) - 1) * size) * scale
                canvas.line([*a, *(a + step * scale)], fill=grey, width=int(width * scale))

    return draw((size, size), paint, scale=2)
