// The drawing's shaders. The trigonometry is done at the corners of cells of 8 pixels and interpolated between them,
// which is as exact as a picture can show, and takes a third less time than for each pixel.

export const kCellPixels = 8;
export const Projections = Object.freeze({ sphere: 0, planet: 1, panorama: 2, lenses: 3 });
export const Mapping = Object.freeze({ lenses: 0, equirectangular: 1, picture: 2 });
export const Planes = Object.freeze({ three: 0, two: 1, rgb: 2 });

export const kVertexShader = `#version 300 es
precision highp float;
in vec2 corner;          // -1 to 1; y up
uniform int projection;
uniform mat3 turn;       // from the viewer's axes to the world's: x right, y down, z forward
uniform vec2 reach, from;
uniform mat3 axes[2];    // columns: a lens's right, down and axis in the world
uniform vec4 places[2];  // its centre, and its scale for each degree
out vec2 sight0, sight1, angles, flatPlace, picturePlace;
out vec3 direction;

vec3 seen(vec2 at) {
  if (projection == 0) return normalize(vec3(at.x, -at.y, 1.0));
  if (projection == 1) {
    float square = dot(at, at);
    return vec3(2.0 * at.x, -2.0 * at.y, 1.0 - square) / (1.0 + square);
  }
  vec2 angle = at + from;
  return vec3(sin(angle.x) * cos(angle.y), -sin(angle.y), cos(angle.x) * cos(angle.y));
}

vec3 sightOf(mat3 lens, vec4 place, vec3 world) {
  vec3 own = world * lens;
  float aside = length(own.xy);
  float angle = degrees(atan(aside, own.z));
  vec2 along = aside > 0.0 ? own.xy / aside : vec2(1.0, 0.0);
  return vec3(place.xy + place.zw * angle * along, angle);
}

void main() {
  vec2 at = corner * reach;
  direction = turn * seen(at);
  vec3 first = sightOf(axes[0], places[0], direction), second = sightOf(axes[1], places[1], direction);
  sight0 = first.xy;
  sight1 = second.xy;
  angles = vec2(first.z, second.z);
  flatPlace = vec2(at.x, at.y + from.y);
  picturePlace = vec2(0.5, 0.5) + (at + from) * vec2(0.15915494, -0.31830989);
  gl_Position = vec4(corner, 0.0, 1.0);
}`;

// For one kind of picture each: without a GPU, every branch of a shader is computed for every pixel.
export const fragmentShader = (planes, mapping) => `#version 300 es
#define PLANES ${planes}
#define MAPPING ${mapping}
precision highp float;
precision highp int;
in vec2 sight0, sight1, angles, flatPlace, picturePlace;
in vec3 direction;
uniform sampler2D first, second, third;
uniform int projection, lensCount;
uniform mat3 colour;
uniform vec3 shift;
uniform vec2 gains;
uniform float rim;       // degrees from a lens's axis up to which it is used
out vec4 pixel;

vec3 sampleAt(vec2 place) {
#if PLANES == 0
  return vec3(texture(first, place).r, texture(second, place).r, texture(third, place).r);
#elif PLANES == 1
  return vec3(texture(first, place).r, texture(second, place).rg);
#else
  return texture(first, place).rgb;
#endif
}

vec3 colourAt(vec2 place) { return colour * sampleAt(place) + shift; }

float shareOfFirst(float a, float b) {
  if (b <= 0.0) return 1.0;
  if (a <= 0.0) return 0.0;
  float t = clamp(0.5 + (a - b) / (4.0 * min(4.0, (a + b) / 2.0)), 0.0, 1.0);
  return t * t * (3.0 - 2.0 * t);
}

vec3 stitched() {
  float a = rim - angles.x, b = lensCount > 1 ? rim - angles.y : -180.0;
  if (a <= 0.0 && b <= 0.0) return vec3(0.0);
  float share = shareOfFirst(a, b);
  vec3 sum = vec3(0.0);
  if (share > 0.0) sum += share * gains.x * colourAt(sight0);
  if (share < 1.0) sum += (1.0 - share) * gains.y * colourAt(sight1);
  return sum;
}

vec3 unwrapped() {
  vec3 to = normalize(direction);
  vec2 place = vec2(atan(to.x, to.z) * 0.15915494 + 0.5, 0.5 + asin(clamp(to.y, -1.0, 1.0)) * 0.31830989);
  return colour * textureLod(first, place, 0.0).rgb + shift;
}

void main() {
  pixel = vec4(0.0, 0.0, 0.0, 1.0);
  if (projection == 2 && (abs(flatPlace.x) > 3.1416 || abs(flatPlace.y) > 1.5708)) return;
#if MAPPING == 2
  if (any(lessThan(picturePlace, vec2(0.0))) || any(greaterThan(picturePlace, vec2(1.0)))) return;
  pixel.rgb = colourAt(picturePlace);
#elif MAPPING == 1
  pixel.rgb = unwrapped();
#else
  pixel.rgb = stitched();
#endif
}`;
