// Shows the newest picture on a canvas: takes it to the GPU, matches the lenses, draws the view, and measures how long that
// takes. A picture that comes while another one is being drawn replaces the one that waits.

import { composed, correctionOf, fromPlanes, kProbeColour, kProbeSquare, kProbeWanted, kUnchanged } from "./colour.js";
import { GainMatch } from "./gain_match.js";
import { Renderer } from "./renderer.js";
import { Mapping } from "./shaders.js";
import { wholePanorama } from "./view.js";

const kPanorama = { width: 1920, height: 960 };
const kSlowDrawing = 25; // milliseconds, beyond which the canvas is made smaller
const kFastDrawing = 8;
const kShortest = 400; // pixels of the longer side, below which the canvas is not made for speed
const kScales = [1, 0.75, 0.5, 0.375, 0.25];
const kJudged = 8; // drawings, before the canvas's size is changed again
const kRestful = 300; // drawings, before it is made larger again
const kSmallLuma = { width: 360, height: 180 };
const kLumaEvery = 15; // pictures, where luma is expensive to get

const now = () => performance.timeOrigin + performance.now();
const isFrame = (source) => globalThis.VideoFrame !== undefined && source instanceof VideoFrame;
const hasPlanes = (source) => isFrame(source) && (source.format === "I420" || source.format === "NV12");

export function median(values) {
  const sorted = [...values].sort((a, b) => a - b);
  return sorted.length > 0 ? sorted[sorted.length >> 1] : 0;
}

// A canvas of whichever kind is there, to read pixels back from or to make a file of.
function spareCanvas(width, height) {
  if (globalThis.OffscreenCanvas !== undefined) return new OffscreenCanvas(width, height);
  return Object.assign(document.createElement("canvas"), { width, height });
}

function pngOf(image) {
  const canvas = spareCanvas(image.width, image.height);
  canvas.getContext("2d").putImageData(image, 0, 0);
  if (canvas.convertToBlob) return canvas.convertToBlob({ type: "image/png" });
  return new Promise((done) => canvas.toBlob(done, "image/png"));
}

// The luma of a picture that shows itself only as colours.
function smallLuma(source) {
  const { width, height } = kSmallLuma;
  const context = spareCanvas(width, height).getContext("2d", { willReadFrequently: true });
  context.drawImage(source, 0, 0, width, height);
  const { data } = context.getImageData(0, 0, width, height);
  const luma = new Uint8Array(width * height);
  for (let at = 0; at < luma.length; ++at) luma[at] = 0.299 * data[4 * at] + 0.587 * data[4 * at + 1] + 0.114 * data[4 * at + 2];
  return { data: luma, width, height, stride: width };
}

export class Painter {
  #canvas;
  #onDrawn;
  #renderer;
  #lens = null;
  #mapping = Mapping.lenses;
  #gains = new GainMatch(null);
  #shape = wholePanorama();
  #size = { width: 2, height: 1, fixed: false };
  #scale = 0; // index in kScales
  #times = [];
  #waiting = null;
  #drawing = false;
  #redrawAsked = false;
  #stale = false; // the view has changed while a picture was being drawn
  #hasPicture = false;
  #pictures = 0;
  #bytes = new Uint8Array(0);
  #colour = kProbeColour;
  #correction = kUnchanged; // of the present way's pictures

  // onDrawn: called with each drawn picture's stamp and when it was drawn (Unix milliseconds).
  constructor(canvas, onDrawn = () => {}) {
    this.#canvas = canvas;
    this.#onDrawn = onDrawn;
    this.#renderer = new Renderer(canvas);
    canvas.addEventListener("webglcontextlost", (event) => event.preventDefault());
    canvas.addEventListener("webglcontextrestored", () => this.#begin());
  }

  #begin() {
    this.#renderer = new Renderer(this.#canvas);
    this.#hasPicture = false;
    this.#renderer.setLens(this.#lens);
  }

  // lens: of parseOffset(), or null for a picture that cannot be stitched.
  setLens(lens) {
    this.#lens = lens;
    this.#gains = new GainMatch(lens);
    this.#mapping = lens ? Mapping.lenses : Mapping.picture;
    this.#renderer.setLens(lens);
    this.#redraw();
  }

  // The pictures are panoramas already.
  setEquirectangular() {
    this.#mapping = Mapping.equirectangular;
    this.#redraw();
  }

  // colour: what the stream declares.
  setColour(colour) {
    this.#colour = colour ?? kProbeColour;
  }

  setView(shape) {
    this.#shape = shape;
    this.#redraw();
  }

  // fixed: the size is kept, however long drawing takes.
  setSize(width, height, fixed = false) {
    this.#size = { width, height, fixed };
    this.#resize();
    this.#redraw();
  }

  #resize() {
    const least = kShortest / Math.max(this.#size.width, this.#size.height);
    const scale = this.#size.fixed ? 1 : Math.min(Math.max(kScales[this.#scale], least), 1);
    const [width, height] = [this.#size.width, this.#size.height].map((side) => Math.max(Math.round(side * scale), 2));
    if (this.#canvas.width !== width) this.#canvas.width = width;
    if (this.#canvas.height !== height) this.#canvas.height = height;
  }

  // Whether the pictures of the present way come in the colours that they were made in, by a known picture of that way.
  async calibrate(source) {
    await this.#take(source);
    this.#renderer.setColour(this.#plainColour(source, kProbeColour));
    const shape = { ...wholePanorama(), projection: "lenses" };
    const shown = this.#renderer.pixels(shape, Mapping.picture, 4 * kProbeSquare, kProbeSquare);
    const squares = [0, 1, 2, 3].map((square) => {
      const at = 4 * ((kProbeSquare / 2) * shown.width + kProbeSquare * square + kProbeSquare / 2);
      return [...shown.data.slice(at, at + 3)].map((value) => value / 255);
    });
    this.#correction = correctionOf(squares, kProbeWanted);
    this.#hasPicture = false;
    if (isFrame(source)) source.close();
    return squares;
  }

  #plainColour(source, colour) {
    return hasPlanes(source) ? fromPlanes(colour) : kUnchanged;
  }

  // Takes a picture; a VideoFrame is closed when it is no longer needed.
  // stamp: given back when the picture is drawn.
  offer(source, stamp) {
    if (this.#waiting && isFrame(this.#waiting.source)) this.#waiting.source.close();
    this.#waiting = { source, stamp };
    if (!this.#drawing) this.#drawAll();
  }

  async #drawAll() {
    this.#drawing = true;
    try {
      while (this.#waiting) {
        const { source, stamp } = this.#waiting;
        this.#waiting = null;
        const began = now();
        await this.#use(source);
        this.#draw();
        await this.#renderer.finished();
        this.#onDrawn(stamp, now());
        this.#judge(now() - began);
      }
    } finally {
      this.#drawing = false;
      if (this.#stale && this.#hasPicture) this.#draw();
      this.#stale = false;
    }
  }

  async #use(source) {
    try {
      const luma = await this.#take(source);
      if (luma && this.#mapping === Mapping.lenses) this.#gains.measure(luma);
      // A known picture tells what the browser makes of full range; others it treats rightly by itself.
      const fixes = this.#colour.fullRange ? this.#correction : kUnchanged;
      this.#renderer.setColour(composed(fixes, this.#plainColour(source, this.#colour)));
      this.#hasPicture = true;
    } finally {
      if (isFrame(source)) source.close();
    }
  }

  // Brings a picture to the GPU; gives its luma, where that is known now.
  async #take(source) {
    ++this.#pictures;
    if (!hasPlanes(source)) {
      this.#renderer.setImage(source);
      const asksLuma = this.#mapping === Mapping.lenses && this.#pictures % kLumaEvery === 1;
      return asksLuma ? smallLuma(source) : null;
    }
    const { width, height } = source.visibleRect;
    const needed = source.allocationSize();
    if (this.#bytes.length < needed) this.#bytes = new Uint8Array(needed);
    const layout = await source.copyTo(this.#bytes);
    this.#renderer.setPlanes(source.format, this.#bytes, layout, width, height);
    return { data: this.#bytes.subarray(layout[0].offset), width, height, stride: layout[0].stride };
  }

  #draw() {
    this.#renderer.setGains(this.#mapping === Mapping.lenses ? this.#gains.gains() : [1, 1]);
    this.#renderer.draw(this.#shape, this.#mapping, this.#canvas.width, this.#canvas.height);
  }

  // Draws what is shown again, once for all changes of this moment.
  #redraw() {
    if (this.#redrawAsked || !this.#hasPicture) return;
    this.#redrawAsked = true;
    (globalThis.requestAnimationFrame ?? setTimeout)(() => {
      this.#redrawAsked = false;
      if (this.#drawing) this.#stale = true;
      else if (this.#hasPicture) this.#draw();
    });
  }

  // Makes the canvas smaller where drawing is slow, so that the picture stays fluent, and larger again where it is fast.
  #judge(milliseconds) {
    this.#times.push(milliseconds);
    if (this.#size.fixed || this.#times.length < kJudged) return;
    const typical = median(this.#times.slice(-kJudged));
    const slow = typical > kSlowDrawing && this.#scale + 1 < kScales.length;
    const fast = typical < kFastDrawing && this.#scale > 0 && this.#times.length >= kRestful;
    if (slow || fast) {
      this.#scale = slow ? this.#smaller(typical) : this.#scale - 1;
      this.#times = [];
      this.#resize();
    }
    if (this.#times.length > kRestful) this.#times.splice(0, kJudged);
  }

  // The size whose drawing should be fast enough, if it takes as long for each pixel; one step at least.
  #smaller(milliseconds) {
    const fits = (scale) => milliseconds * (scale / kScales[this.#scale]) ** 2 <= kSlowDrawing;
    const first = kScales.findIndex((scale, at) => at > this.#scale && fits(scale));
    return first < 0 ? kScales.length - 1 : first;
  }

  // A PNG file of what is shown; with whole, of the whole panorama.
  snapshot(whole) {
    if (!this.#hasPicture) return Promise.resolve(null);
    const { width, height } = whole ? kPanorama : this.#size;
    const image = this.#renderer.pixels(whole ? wholePanorama() : this.#shape, this.#mapping, width, height);
    this.#draw();
    return pngOf(image);
  }

  clear() {
    this.#hasPicture = false;
  }

  largestSide() {
    return this.#renderer.largestSide();
  }

  drawnSize() {
    return { width: this.#canvas.width, height: this.#canvas.height };
  }
}
