// The lens record, and how a direction becomes a place on the camera's picture: the formulas of docs/lens-offset.md.
// Places are shares of the picture's width and height, so that a stream of any size can be drawn with one record.

const kFieldOfView = new Map([[7, 195]]);
const kUnknownFieldOfView = 200;
const kLensValues = 6;
export const kRimMargin = 0.5; // degrees inside the rim, beyond which a lens is not used

const radians = (degrees) => (degrees * Math.PI) / 180;

// Rotates both vectors by an angle in their plane, from the first towards the second.
function turned(first, second, degrees) {
  const c = Math.cos(radians(degrees));
  const s = Math.sin(radians(degrees));
  return [first.map((a, i) => a * c + second[i] * s), second.map((b, i) => b * c - first[i] * s)];
}

function axesOf({ yaw, pitch, roll }) {
  let [right, down, axis] = [[1, 0, 0], [0, 1, 0], [0, 0, 1]];
  [axis, right] = turned(axis, right, yaw);
  [down, axis] = turned(down, axis, pitch);
  [right, down] = turned(right, down, roll);
  return [right, down, axis];
}

function lensOf(values, width, height, fieldOfView) {
  const [radius, x, y, yaw, pitch, roll] = values;
  return {
    axes: axesOf({ yaw, pitch, roll }),
    centre: [x / width, y / height],
    scale: [radius / (fieldOfView / 2) / width, radius / (fieldOfView / 2) / height], // for each degree from the axis
  };
}

// The camera's offset text as what the renderer needs; null where the text makes no sense.
export function parseOffset(text) {
  const fields = String(text ?? "").split("_");
  if (!fields.every((field) => /^-?\d+(\.\d+)?$/.test(field))) return null;
  const [count, ...values] = fields.map(Number);
  if ((count !== 1 && count !== 2) || values.length !== count * kLensValues + 3) return null;
  const [width, height, model] = values.slice(count * kLensValues);
  if (!(width >= 16 && height >= 16)) return null;
  const fieldOfView = kFieldOfView.get(model) ?? kUnknownFieldOfView;
  const lenses = Array.from({ length: count }, (_, lens) =>
    lensOf(values.slice(lens * kLensValues, (lens + 1) * kLensValues), width, height, fieldOfView));
  return { fieldOfView, lenses };
}

// Where a lens sees a direction of the world: its place on the picture, and the degrees from the lens's axis.
export function sightOf(lens, direction) {
  const along = (axis) => axis[0] * direction[0] + axis[1] * direction[1] + axis[2] * direction[2];
  const [x, y, z] = lens.axes.map(along);
  const aside = Math.hypot(x, y);
  const angle = (Math.atan2(aside, z) * 180) / Math.PI;
  const [c, s] = aside > 0 ? [x / aside, y / aside] : [1, 0];
  return { x: lens.centre[0] + lens.scale[0] * angle * c, y: lens.centre[1] + lens.scale[1] * angle * s, angle };
}

// Longitude 0 is forward, 90 right; latitude 90 is up. The world's axes are x right, y down, z forward.
export function directionAt(longitude, latitude) {
  const level = Math.cos(radians(latitude));
  return [Math.sin(radians(longitude)) * level, -Math.sin(radians(latitude)), Math.cos(radians(longitude)) * level];
}
