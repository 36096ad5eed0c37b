varying vec3 place;

void main() {
    vec4 world = modelMatrix * vec4(position, 1.0);
    place = world.xyz;
    gl_Position = projectionMatrix * viewMatrix * world;
}
