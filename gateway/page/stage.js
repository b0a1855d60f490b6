// Where pictures are drawn: in a worker where the context is secure, else in the page. Both have the same operations.

import { parseOffset } from "./lens.js";
import { Painter } from "./painter.js";

export const hasWebCodecs = () =>
  globalThis.isSecureContext && globalThis.VideoDecoder !== undefined && globalThis.OffscreenCanvas !== undefined &&
  HTMLCanvasElement.prototype.transferControlToOffscreen !== undefined;

// Operations of both: setView, setSize, setLens, setColour, offer, calibrate, snapshot, clear. on(NAME, listener) hears
// "drawn", and of the worker also "description", "bytes" and "ended".
class Listeners {
  #listeners = new Map();

  on(name, listener) {
    this.#listeners.set(name, listener);
  }

  tell(name, message) {
    this.#listeners.get(name)?.(message);
  }
}

class WorkerStage extends Listeners {
  #worker = new Worker("live_worker.js", { type: "module" });
  #waiting = new Map();
  #lastId = 0;

  constructor(canvas) {
    super();
    const own = canvas.transferControlToOffscreen();
    this.#worker.addEventListener("message", ({ data }) => this.#hear(data));
    this.#worker.addEventListener("error", (event) => this.tell("ended", { reason: event.message }));
    this.ready = this.#ask({ do: "canvas", canvas: own }, [own]);
  }

  #hear(data) {
    if (data.tells) return this.tell(data.tells, data);
    const { done, failed } = this.#waiting.get(data.id);
    this.#waiting.delete(data.id);
    if (data.fault !== undefined) failed(new Error(data.fault));
    else done(data.result);
  }

  #ask(message, transfer = []) {
    const id = ++this.#lastId;
    return new Promise((done, failed) => {
      this.#waiting.set(id, { done, failed });
      this.#worker.postMessage({ ...message, id }, transfer);
    });
  }

  #send(message, transfer = []) {
    this.#worker.postMessage(message, transfer);
  }

  setView(shape) { this.#send({ do: "view", shape }); }
  setSize(width, height, fixed) { this.#send({ do: "size", width, height, fixed }); }
  setLens(record) { this.#send({ do: "lens", lens: parseOffset(record?.offset) }); }
  setColour(colour) { this.#send({ do: "colour", colour }); }
  play(address) { this.#send({ do: "play", address: new URL(address, location.href).href }); }
  stop() { this.#send({ do: "stop" }); }
  clear() { this.#send({ do: "clear" }); }
  snapshot(whole) { return this.#ask({ do: "snapshot", whole }); }
  calibrateUnits() { return this.#ask({ do: "calibrate" }); }

  // video: shows the picture that is to be drawn.
  offer(video, time) {
    const frame = new VideoFrame(video);
    this.#send({ do: "frame", frame, time }, [frame]);
  }

  calibrate(video) {
    const frame = new VideoFrame(video);
    return this.#ask({ do: "calibrate", frame }, [frame]);
  }
}

class PageStage extends Listeners {
  #painter;
  ready = Promise.resolve();

  constructor(canvas) {
    super();
    this.#painter = new Painter(canvas, ({ time }, at) => this.tell("drawn", { time, at, ...this.#painter.drawnSize() }));
  }

  setView(shape) { this.#painter.setView(shape); }
  setSize(width, height, fixed) { this.#painter.setSize(width, height, fixed); }
  setLens(record) { this.#painter.setLens(parseOffset(record?.offset)); }
  setColour(colour) { this.#painter.setColour(colour); }
  clear() { this.#painter.clear(); }
  snapshot(whole) { return this.#painter.snapshot(whole); }
  offer(video, time) { this.#painter.offer(video, { time }); }
  calibrate(video) { return this.#painter.calibrate(video); }
}

// Errors: throws, or its ready rejects, where the browser has no WebGL 2.
export function makeStage(canvas) {
  return hasWebCodecs() ? new WorkerStage(canvas) : new PageStage(canvas);
}
