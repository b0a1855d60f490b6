// Colours: from a picture's samples to red, green and blue, and what a browser does wrong with a known picture.

// Kr and Kb by the number that a stream declares for its matrix.
const kMatrices = new Map([
  [1, [0.2126, 0.0722]], [4, [0.3, 0.11]], [5, [0.299, 0.114]], [6, [0.299, 0.114]], [7, [0.212, 0.087]], [9, [0.2627, 0.0593]],
]);
const kNames = { matrix: { 1: "bt709", 5: "bt470bg", 6: "smpte170m", 9: "bt2020-ncl" },
  primaries: { 1: "bt709", 5: "bt470bg", 6: "smpte170m", 9: "bt2020" }, transfer: { 1: "bt709", 6: "smpte170m", 13: "iec61966-2-1" } };

// An affine change of colours: columns of a matrix, and what is added.
export const kUnchanged = Object.freeze({ matrix: [1, 0, 0, 0, 1, 0, 0, 0, 1], shift: [0, 0, 0] });

// What a decoder is told; a browser that is told nothing guesses, mostly wrong.
export function colourSpaceOf({ fullRange, primaries, transfer, matrix }) {
  const name = (kind, number, other) => kNames[kind][number] ?? other;
  return { fullRange: Boolean(fullRange), matrix: name("matrix", matrix, "smpte170m"),
    primaries: name("primaries", primaries, "smpte170m"), transfer: name("transfer", transfer, "smpte170m") };
}

// From samples of luma, Cb and Cr (0 to 1) to red, green and blue. Undeclared matrices count as BT.601.
export function fromPlanes({ fullRange, matrix }) {
  const [kr, kb] = kMatrices.get(matrix) ?? kMatrices.get(6);
  const kg = 1 - kr - kb;
  const luma = fullRange ? 1 : 255 / 219;
  const chroma = fullRange ? 1 : 255 / 224;
  const black = fullRange ? 0 : 16 / 255;
  const [red, blue] = [2 * (1 - kr) * chroma, 2 * (1 - kb) * chroma];
  const columns = [luma, luma, luma, 0, (-kb * blue) / kg, blue, red, (-kr * red) / kg, 0];
  const grey = 128 / 255;
  const shift = [0, 1, 2].map((row) => -black * columns[row] - grey * (columns[3 + row] + columns[6 + row]));
  return { matrix: columns, shift };
}

export function apply({ matrix, shift }, colour) {
  return [0, 1, 2].map((row) => shift[row] + [0, 1, 2].reduce((sum, i) => sum + matrix[3 * i + row] * colour[i], 0));
}

// The change that is first one, then the other.
export function composed(second, first) {
  const columns = [0, 1, 2].flatMap((i) => apply({ matrix: second.matrix, shift: [0, 0, 0] }, first.matrix.slice(3 * i, 3 * i + 3)));
  return { matrix: columns, shift: apply(second, first.shift) };
}

function determinant([a, b, c, d, e, f, g, h, i]) {
  return a * (e * i - f * h) - d * (b * i - c * h) + g * (b * f - c * e);
}

function inverted(m) {
  const whole = determinant(m);
  const at = (column, row) => m[3 * (column % 3) + (row % 3)];
  const cofactor = (column, row) =>
    at(column + 1, row + 1) * at(column + 2, row + 2) - at(column + 1, row + 2) * at(column + 2, row + 1);
  return [0, 1, 2].flatMap((column) => [0, 1, 2].map((row) => cofactor(row, column) / whole));
}

// The change that makes four shown colours what they should be; unchanged where they tell nothing.
export function correctionOf(shown, wanted) {
  const from = (colours) => colours.slice(1).flatMap((colour) => colour.map((value, i) => value - colours[0][i]));
  const differences = from(shown);
  if (Math.abs(determinant(differences)) < 1e-5) return kUnchanged;
  const matrix = composed({ matrix: from(wanted), shift: [0, 0, 0] }, { matrix: inverted(differences), shift: [0, 0, 0] }).matrix;
  const moved = apply({ matrix, shift: [0, 0, 0] }, shown[0]);
  return { matrix, shift: wanted[0].map((value, i) => value - moved[i]) };
}

// The known picture (probe.h264, probe.mp4): four squares side by side, 64 pixels each, full range and BT.601.
const kProbeSamples = [[64, 128, 128], [192, 128, 128], [128, 160, 128], [128, 128, 160]];
export const kProbeColour = Object.freeze({ fullRange: true, primaries: 6, transfer: 6, matrix: 6 });
export const kProbeSquare = 64;
export const kProbeWanted = Object.freeze(
  kProbeSamples.map((sample) => apply(fromPlanes(kProbeColour), sample.map((value) => value / 255))));
