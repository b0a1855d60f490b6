// Matches the brightness of both lenses in their overlap, as docs/lens-offset.md describes it.

import { sightOf } from "./lens.js";

const kDirections = 1 << 15; // spread evenly over the sphere; some 2,000 of them are seen by both lenses
const kRim = 1; // degrees inside both rims
const kBand = 4; // degrees between the distances from the rims
const kShareOfNewest = 1 / 8;
const kStrongest = 1.5;
const kDarkest = 16;
const kBrightest = 235; // values beyond are unreliable
const kGoldenAngle = 2.399963229728653;

// A spiral with the golden angle, from pole to pole.
function spread(index) {
  const down = (2 * index + 1) / kDirections - 1;
  const level = Math.sqrt(1 - down * down);
  return [level * Math.sin(kGoldenAngle * index), down, level * Math.cos(kGoldenAngle * index)];
}

function samplesOf(lens) {
  if (!lens || lens.lenses.length < 2) return [];
  const samples = [];
  for (let index = 0; index < kDirections; ++index) {
    const direction = spread(index);
    const [first, second] = lens.lenses.map((one) => sightOf(one, direction));
    if (Math.max(first.angle, second.angle) > lens.fieldOfView / 2 - kRim) continue;
    if (Math.abs(first.angle - second.angle) <= kBand) samples.push([first, second]);
  }
  return samples;
}

// luma: {data, width, height, stride}, a byte each.
function valueAt(luma, { x, y }) {
  const column = Math.min(Math.max(Math.floor(x * luma.width), 0), luma.width - 1);
  const row = Math.min(Math.max(Math.floor(y * luma.height), 0), luma.height - 1);
  return luma.data[row * luma.stride + column];
}

const tells = (value) => value >= kDarkest && value <= kBrightest;

export class GainMatch {
  #samples;
  #logRatio = 0;
  #measured = false;

  // lens: of parseOffset().
  constructor(lens) {
    this.#samples = samplesOf(lens);
  }

  // Measures a picture. The first one counts at once; each later one moves the ratio by an eighth of the difference.
  measure(luma) {
    let [first, second, count] = [0, 0, 0];
    for (const [one, other] of this.#samples) {
      const [a, b] = [valueAt(luma, one), valueAt(luma, other)];
      if (!tells(a) || !tells(b)) continue;
      first += a;
      second += b;
      ++count;
    }
    if (count <= this.#samples.length / 16) return;
    const ratio = Math.min(Math.max(first / second, 1 / kStrongest), kStrongest);
    this.#logRatio += (Math.log(ratio) - this.#logRatio) * (this.#measured ? kShareOfNewest : 1);
    this.#measured = true;
  }

  // By what each lens is multiplied.
  gains() {
    return [Math.exp(-this.#logRatio / 2), Math.exp(this.#logRatio / 2)];
  }
}
