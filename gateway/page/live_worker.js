// The worker that draws: it owns the canvas, and decodes live.units by itself, so that slow drawing never waits for the
// page nor the page for it.
//
// It is told {do: NAME, ...}; a request with an id is answered with {id, result} or {id, fault}. By itself it tells
// {tells: "description" | "drawn" | "ended", ...}.

import { kProbeColour } from "./colour.js";
import { decodeOne, PictureDecoder } from "./decoding.js";
import { Painter } from "./painter.js";
import { Kind, UnitCutter } from "./units.js";

const kProbe = { codec: "avc1.64001f", colour: kProbeColour };

let painter = null;
let running = null; // {aborter, decoder} of the present stream

const tell = (message, transfer = []) => self.postMessage(message, transfer);

function end(reason) {
  if (!running) return;
  running.aborter.abort();
  running.decoder.close();
  running = null;
  if (reason) tell({ tells: "ended", reason });
}

async function calibrate() {
  const bytes = new Uint8Array(await (await fetch("probe.h264")).arrayBuffer());
  return painter.calibrate(await decodeOne(bytes, kProbe));
}

function take(record, decoder) {
  if (record.kind === Kind.picture) return decoder.decode(record);
  if (record.kind !== Kind.description) return;
  const description = JSON.parse(new TextDecoder().decode(record.payload));
  if (!description.video) return;
  painter.setColour(description.video.colour);
  decoder.configure(description.video);
  tell({ tells: "description", description });
}

async function receive(address, mine) {
  const answer = await fetch(address, { signal: mine.aborter.signal });
  if (!answer.ok) throw new Error(`status ${answer.status}`);
  const reader = answer.body.getReader();
  const cutter = new UnitCutter();
  for (;;) {
    const { done, value } = await reader.read();
    if (done) return;
    tell({ tells: "bytes", bytes: value.length });
    for (const record of cutter.push(value)) take(record, mine.decoder);
  }
}

async function play(address) {
  end();
  const mine = { aborter: new AbortController() };
  const failed = (fault) => { if (running === mine) end(String(fault?.message ?? fault)); };
  mine.decoder = new PictureDecoder((frame) => painter.offer(frame, { time: frame.timestamp }), failed);
  running = mine;
  try {
    await receive(address, mine);
    failed("end of stream");
  } catch (fault) {
    failed(fault);
  }
}

function drawn(stamp, at) {
  tell({ tells: "drawn", time: stamp.time, at, ...painter.drawnSize() });
}

const actions = {
  canvas: ({ canvas }) => { painter = new Painter(canvas, drawn); },
  view: ({ shape }) => painter.setView(shape),
  size: ({ width, height, fixed }) => painter.setSize(width, height, fixed),
  lens: ({ lens }) => painter.setLens(lens),
  colour: ({ colour }) => painter.setColour(colour),
  calibrate: ({ frame }) => (frame ? painter.calibrate(frame) : calibrate()),
  play: ({ address }) => { play(address); },
  stop: () => end(),
  frame: ({ frame, time }) => painter.offer(frame, { time }),
  snapshot: ({ whole }) => painter.snapshot(whole),
  clear: () => painter.clear(),
};

self.addEventListener("message", async ({ data }) => {
  if (!painter && data.do !== "canvas") return; // there is nothing to draw on; the page knows it
  try {
    const result = await actions[data.do](data);
    if (data.id) tell({ id: data.id, result });
  } catch (fault) {
    if (data.id) tell({ id: data.id, fault: String(fault?.message ?? fault) });
    else tell({ tells: "ended", reason: String(fault?.message ?? fault) });
  }
});
