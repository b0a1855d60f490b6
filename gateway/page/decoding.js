// Decodes the pictures of live.units with WebCodecs: newest first in mind, with as little delay as the browser allows.

import { colourSpaceOf } from "./colour.js";
import { Flag } from "./units.js";

const kMostQueued = 10; // chunks; with more the decoder is behind, and goes on with the next key picture

export function configOf({ codec, colour }) {
  return { codec, optimizeForLatency: true, hardwareAcceleration: "no-preference", colorSpace: colourSpaceOf(colour) };
}

export class PictureDecoder {
  #decoder = null;
  #config = null;
  #needsKey = true;
  #onPicture;
  #onFault;

  // onPicture: gets each VideoFrame, with its time in microseconds; it closes it.
  constructor(onPicture, onFault) {
    this.#onPicture = onPicture;
    this.#onFault = onFault;
  }

  // video: of the stream's description.
  configure(video) {
    this.#config = configOf(video);
    this.#open();
  }

  #open() {
    this.close();
    this.#needsKey = true;
    this.#decoder = new VideoDecoder({ output: this.#onPicture, error: (fault) => this.#onFault(fault) });
    this.#decoder.configure(this.#config);
  }

  decode({ flags, time, payload }) {
    if (!this.#config) return;
    const isKey = (flags & Flag.key) !== 0;
    if (this.#decoder.decodeQueueSize > kMostQueued) this.#open();
    if ((flags & Flag.discontinuity) !== 0 && !isKey) this.#needsKey = true;
    if (this.#needsKey && !isKey) return;
    this.#needsKey = false;
    this.#decoder.decode(new EncodedVideoChunk({ type: isKey ? "key" : "delta", timestamp: time, data: payload }));
  }

  close() {
    if (this.#decoder && this.#decoder.state !== "closed") this.#decoder.close();
    this.#decoder = null;
  }
}

// Decodes one key picture alone, such as the known one.
export function decodeOne(bytes, video) {
  return new Promise((done, failed) => {
    const decoder = new VideoDecoder({ output: done, error: failed });
    decoder.configure(configOf(video));
    decoder.decode(new EncodedVideoChunk({ type: "key", timestamp: 0, data: bytes }));
    decoder.flush().then(() => decoder.close(), failed);
  });
}
