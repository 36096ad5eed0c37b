// Floor and wall of one brightness, and the shade of the sphere and the tile on it: the share of the sky that each hides,
// weighted by the cosine.
uniform float backdrop;
uniform vec3 sphere;
uniform float radius;
uniform vec3 tile[4];
uniform float sphereShade;
uniform float tileShade;
varying vec3 place;

float sphereShare() {
    vec3 way = sphere - place;
    float distance2 = dot(way, way);
    return clamp(normalize(way).y, 0.0, 1.0) * radius * radius / max(distance2, radius * radius);
}

// Lambert's formula for the light of a polygon.
float tileShare() {
    float sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        vec3 from = normalize(tile[i] - place);
        vec3 to = normalize(tile[(i + 1) & 3] - place);
        vec3 axis = cross(from, to);
        float sine = length(axis);
        if (sine > 1e-5) sum += acos(clamp(dot(from, to), -1.0, 1.0)) * axis.y / sine;
    }
    return clamp(abs(sum) / 6.28318531, 0.0, 1.0);
}

void main() {
    bool floored = place.y < 1e-3;
    float open = floored ? (1.0 - sphereShade * sphereShare()) * (1.0 - tileShade * tileShare()) : 1.0;
    gl_FragColor = vec4(vec3(backdrop * open), 1.0);
    #include <tonemapping_fragment>
    #include <colorspace_fragment>
}
