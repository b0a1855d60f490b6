// Keeps one camera's live picture on the stage, whatever happens: chooses the way, starts again after every end, and tells
// its state and its delay.

import { clockDifference } from "./clock.js";
import { median } from "./painter.js";
import { hasWebCodecs } from "./stage.js";
import { VideoWay } from "./video_way.js";

// idle: nobody looks; connecting: no picture yet; playing; waiting: it ended, and is tried again.
export const LiveState = Object.freeze({ idle: "idle", connecting: "connecting", playing: "playing", waiting: "waiting" });

const kFirstRetry = 500; // milliseconds, doubled with each try
const kLongestRetry = 4000;
const kNoPicture = 8000; // milliseconds without a drawn picture, after which the stream is begun again
const kFiguresEvery = 1000;

export class Live {
  #stage;
  #api = null;
  #on;
  #way = null; // "units" or "video"
  #video;
  #state = LiveState.idle;
  #retry = kFirstRetry;
  #timer = 0;
  #sound = false;
  #calibrated = null; // the way whose colours are measured
  #description = null;
  #difference = null;
  #attempt = 0;
  #undrawable = false;
  #figures = { delays: [], bytes: 0, pictures: 0, began: 0, lastPicture: 0 };

  // on: {state(state), figures({delay, rate, bits, width, height, way})}.
  constructor(stage, on) {
    this.#stage = stage;
    this.#on = on;
    stage.ready.catch(() => { this.#undrawable = true; });
    const heard = {
      description: ({ description }) => this.#describe(description),
      bytes: ({ bytes }) => { this.#figures.bytes += bytes; },
      ended: ({ reason }) => this.#ended(reason),
    };
    for (const [name, listener] of Object.entries(heard)) stage.on(name, listener);
    stage.on("drawn", (drawn) => this.#drawn(drawn));
    this.#video = new VideoWay({ ...heard, description: (description) => this.#describe(description),
      picture: (video, time) => stage.offer(video, time) });
    setInterval(() => this.#tick(), kFiguresEvery);
  }

  state() {
    return this.#state;
  }

  // api: of the camera to look at, or null.
  setCamera(api) {
    this.rest();
    this.#api = api;
    this.#stage.clear();
    if (api) this.wake();
  }

  // With sound the pictures come a little later, in step with it.
  setSound(on) {
    this.#sound = on;
    this.#video.setSound(on);
    if (this.#state !== LiveState.idle) this.#start();
  }

  wake() {
    if (this.#api && this.#state === LiveState.idle) this.#start();
  }

  rest() {
    this.#halt();
    this.#setState(LiveState.idle);
  }

  // Tries again at once, such as when the camera has come back.
  hurry() {
    this.#retry = kFirstRetry;
    if (this.#state === LiveState.waiting) this.#start();
  }

  // The lens record has changed.
  async readLens() {
    try {
      this.#stage.setLens(await this.#api.lens());
    } catch {
      this.#stage.setLens(null); // both lenses can still be looked at
    }
  }

  #setState(state) {
    if (state === this.#state) return;
    this.#state = state;
    this.#on.state(state);
  }

  #halt() {
    ++this.#attempt;
    clearTimeout(this.#timer);
    this.#stage.stop?.();
    this.#video.stop();
  }

  async #start() {
    this.#halt();
    if (this.#undrawable) return;
    const attempt = this.#attempt;
    this.#setState(LiveState.connecting);
    this.#figures.lastPicture = performance.now();
    this.#way = this.#sound || !hasWebCodecs() ? "video" : "units";
    try {
      await this.#prepare();
      if (attempt === this.#attempt) this.#play();
    } catch (fault) {
      if (attempt === this.#attempt) this.#ended(fault.message);
    }
  }

  async #prepare() {
    await this.#stage.ready;
    await Promise.all([this.readLens(), this.#measureClock(), this.#calibrate()]);
  }

  async #measureClock() {
    this.#difference = await clockDifference().catch(() => null);
  }

  // A browser that cannot show the known picture shows the camera's as it thinks right.
  async #calibrate() {
    if (this.#calibrated === this.#way) return;
    try {
      if (this.#way === "units") await this.#stage.calibrateUnits();
      else await this.#video.useFile("probe.mp4", async (video) => this.#stage.calibrate(video));
    } catch (fault) {
      console.warn("colours are not measured:", fault.message ?? fault);
    }
    this.#calibrated = this.#way;
  }

  #play() {
    const units = this.#api.address("live.units");
    if (this.#way === "units") return this.#stage.play(units);
    this.#video.play(units, this.#api.address("live.mp4"));
  }

  #describe(description) {
    this.#description = description;
    this.#stage.setColour(description.video?.colour);
  }

  #ended(reason) {
    if (this.#state === LiveState.idle) return;
    console.info("live picture ended:", reason);
    this.#halt();
    this.#setState(LiveState.waiting);
    this.#timer = setTimeout(() => this.#start(), this.#retry);
    this.#retry = Math.min(2 * this.#retry, kLongestRetry);
  }

  #drawn({ time, at, width, height }) {
    if (this.#state === LiveState.connecting) this.#setState(LiveState.playing);
    if (this.#state !== LiveState.playing) return;
    this.#retry = kFirstRetry;
    const figures = this.#figures;
    if (performance.getEntriesByName("first picture").length === 0) performance.mark("first picture");
    figures.lastPicture = performance.now();
    ++figures.pictures;
    Object.assign(figures, { width, height });
    if (this.#difference === null || !this.#description?.epoch) return;
    figures.delays.push(at + this.#difference - (this.#description.epoch + time) / 1000);
  }

  #tick() {
    const figures = this.#figures;
    const seconds = (performance.now() - figures.began) / 1000;
    const { delays, bytes, pictures, width, height } = figures;
    if (this.#state === LiveState.playing) {
      const delay = delays.length > 0 ? median(delays) : null;
      this.#on.figures({ delay, rate: pictures / seconds, bits: (8 * bytes) / seconds, width, height, way: this.#way, delays });
    }
    this.#figures = { ...figures, delays: [], bytes: 0, pictures: 0, began: performance.now() };
    const wants = this.#state === LiveState.playing || this.#state === LiveState.connecting;
    if (wants && performance.now() - figures.lastPicture > kNoPicture) this.#ended("no picture");
  }
}
