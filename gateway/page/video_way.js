// Plays live.mp4 with Media Source Extensions: where the context is not secure, and where sound is wanted, which a video
// element keeps in step with its pictures.

import { UnitCutter, Kind } from "./units.js";

const kTarget = 0.12; // seconds behind the newest picture
const kTargetWithSound = 0.2;
const kFarBehind = 1; // seconds, beyond which one jump leads back to the newest picture
const kKept = 4; // seconds that are kept behind the place that is played
const kRemoveEvery = 10; // seconds
const kStall = 3000; // milliseconds without data, after which the stream counts as broken
const kFileLimit = 3000; // milliseconds
const kMostWaiting = 400; // pieces that wait for the buffer

const Source = globalThis.ManagedMediaSource ?? globalThis.MediaSource;
const sourceOf = new WeakMap();

// What the server says of the stream, from the first record of live.units.
async function describe(address, signal) {
  const aborter = new AbortController();
  signal.addEventListener("abort", () => aborter.abort());
  const answer = await fetch(address, { signal: aborter.signal });
  if (!answer.ok) throw new Error(`status ${answer.status}`);
  const reader = answer.body.getReader();
  const cutter = new UnitCutter();
  try {
    for (;;) {
      const { done, value } = await reader.read();
      if (done) throw new Error("end of stream");
      const record = cutter.push(value).find(({ kind }) => kind === Kind.description);
      if (record) return JSON.parse(new TextDecoder().decode(record.payload));
    }
  } finally {
    aborter.abort();
  }
}

function opened(source) {
  return new Promise((done) => source.addEventListener("sourceopen", done, { once: true }));
}

export class VideoWay {
  #video = document.createElement("video");
  #aborter = null;
  #waiting = [];
  #withSound = false;
  #lastData = 0;
  #lastRemoval = 0;
  #on;

  // on: {description, bytes, picture(video, time), ended(reason)}.
  constructor(on) {
    this.#on = on;
    this.#video.playsInline = true;
    this.#video.disableRemotePlayback = true;
    this.#video.muted = true;
    this.#video.addEventListener("error", () => this.#fail(this.#video.error?.message));
  }

  setSound(on) {
    this.#withSound = on;
    this.#video.muted = !on;
  }

  // Plays a file of one unchanging picture, and gives what `use` makes of the element as soon as it can: a browser may show
  // the first pictures before it hands them out.
  async useFile(address, use) {
    this.#video.src = address;
    this.#video.play().catch(() => {});
    const end = performance.now() + kFileLimit;
    for (;;) {
      await new Promise((done) => setTimeout(done, 30));
      if (this.#video.error || performance.now() > end) throw new Error("the known picture is not shown");
      if (this.#video.readyState < HTMLMediaElement.HAVE_CURRENT_DATA) continue;
      const used = await use(this.#video).catch(() => null);
      if (used) return used;
    }
  }

  async play(units, mp4) {
    this.stop();
    const aborter = new AbortController();
    this.#aborter = aborter;
    try {
      const description = await describe(units, aborter.signal);
      this.#on.description(description);
      const buffer = await this.#attach(description);
      await this.#receive(mp4, buffer, aborter);
      this.#fail("end of stream", aborter);
    } catch (fault) {
      this.#fail(fault.message, aborter);
    }
  }

  #fail(reason, aborter = this.#aborter) {
    if (!aborter || aborter !== this.#aborter) return;
    this.stop();
    this.#on.ended({ reason });
  }

  stop() {
    this.#aborter?.abort();
    this.#aborter = null;
    this.#waiting = [];
    const address = sourceOf.get(this.#video);
    if (address) URL.revokeObjectURL(address);
    sourceOf.delete(this.#video);
    this.#video.removeAttribute("src");
    this.#video.load();
  }

  async #attach({ video, audio }) {
    const source = new Source();
    const address = URL.createObjectURL(source);
    sourceOf.set(this.#video, address);
    this.#video.src = address;
    await opened(source);
    const codecs = [video.codec, ...(audio ? [audio.codec] : [])].join(", ");
    const buffer = source.addSourceBuffer(`video/mp4; codecs="${codecs}"`);
    buffer.addEventListener("updateend", () => this.#next(buffer));
    return buffer;
  }

  async #receive(address, buffer, aborter) {
    const answer = await fetch(address, { signal: aborter.signal });
    if (!answer.ok) throw new Error(`status ${answer.status}`);
    const reader = answer.body.getReader();
    this.#watch(aborter);
    this.#showPictures(aborter);
    for (;;) {
      const { done, value } = await reader.read();
      if (done) return;
      this.#lastData = performance.now();
      this.#on.bytes({ bytes: value.length });
      this.#waiting.push(value);
      if (this.#waiting.length > kMostWaiting) throw new Error("the browser is too slow");
      this.#next(buffer);
    }
  }

  #next(buffer) {
    if (buffer.updating || !this.#aborter) return;
    try {
      this.#follow(buffer);
      if (this.#removes(buffer)) return;
      if (this.#waiting.length > 0) this.#append(buffer);
    } catch (fault) {
      this.#fail(fault.message);
    }
  }

  #append(buffer) {
    const piece = this.#waiting[0];
    try {
      buffer.appendBuffer(piece);
      this.#waiting.shift();
    } catch (fault) {
      if (fault.name !== "QuotaExceededError") throw fault;
      this.#lastRemoval = 0; // what has been played makes room, then the piece is tried again
      if (!this.#removes(buffer)) throw fault;
    }
  }

  // Removes what has been played, now and then; a browser's buffer is bounded.
  #removes(buffer) {
    const at = this.#video.currentTime;
    if (at - this.#lastRemoval < kRemoveEvery || buffer.buffered.length === 0) return false;
    this.#lastRemoval = at;
    const [start, end] = [buffer.buffered.start(0), at - kKept];
    if (end <= start) return false;
    buffer.remove(start, end);
    return true;
  }

  // Stays close to the newest picture: by a slightly changed speed, or a jump where it is far behind.
  #follow(buffer) {
    if (buffer.buffered.length === 0) return;
    const video = this.#video;
    const target = this.#withSound ? kTargetWithSound : kTarget;
    const last = buffer.buffered.length - 1;
    const behind = buffer.buffered.end(last) - video.currentTime;
    const isBefore = video.currentTime < buffer.buffered.start(last);
    if (behind > kFarBehind || isBefore) video.currentTime = Math.max(buffer.buffered.end(last) - target, buffer.buffered.start(last));
    video.playbackRate = behind > target + 0.1 ? 1.06 : behind < target / 3 ? 0.97 : 1;
    if (video.paused) video.play().catch(() => {});
  }

  #watch(aborter) {
    this.#lastData = performance.now();
    const timer = setInterval(() => {
      if (aborter.signal.aborted) return clearInterval(timer);
      if (performance.now() - this.#lastData > kStall) this.#fail("no data", aborter);
    }, 500);
  }

  // Hands each picture that the element shows to be drawn.
  #showPictures(aborter) {
    const video = this.#video;
    const show = (_, shown) => {
      if (aborter.signal.aborted) return;
      this.#on.picture(video, Math.round((shown?.mediaTime ?? video.currentTime) * 1e6));
      next();
    };
    const next = () => (video.requestVideoFrameCallback ? video.requestVideoFrameCallback(show) : requestAnimationFrame(show));
    next();
  }
}
