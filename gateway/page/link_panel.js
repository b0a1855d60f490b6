// What the link does, on both ways: from the camera to the server, and from there to this page.

import { el } from "./dom.js";
import { t } from "./texts.js";
import { bitsText } from "./words.js";

const kIdentity = [["name", "name"], ["serialNumber", "serial"], ["manufacturer", "maker"], ["modelNumber", "model"],
  ["firmwareRevision", "firmware"], ["hardwareRevision", "hardware"], ["uuid", "uuid"]];
const fixed = (value, digits = 0) => (typeof value === "number" ? value.toFixed(digits) : "–");
const milliseconds = (value) => (typeof value === "number" ? t("delay", { ms: Math.round(value) }) : "–");

function list(title, facts) {
  return [el("h2", {}, title), el("dl", { class: "facts" },
    ...facts.flatMap(([term, id]) => [el("dt", {}, t(term)), el("dd", { "data-fact": id }, "–")]))];
}

export class LinkPanel {
  #page;

  constructor(page) {
    this.#page = page;
    page.append(
      ...list(t("sectionCamera"), [["linkStatus", "status"], ["linkRate", "rate"], ["linkBits", "bits"], ["linkDropped", "dropped"],
        ["linkRoundTrip", "roundTrip"], ["linkClock", "clockOffset"]]),
      ...list(t("sectionPage"), [["pageDelay", "delay"], ["pageRate", "pageRate"], ["pageBits", "pageBits"], ["pageSize", "size"],
        ["pageWay", "way"]]),
      ...list(t("identity"), kIdentity.map(([key, title]) => [title, key])));
  }

  #set(id, text) {
    this.#page.querySelector(`[data-fact="${id}"]`).textContent = text;
  }

  showStatus(text) {
    this.#set("status", text);
  }

  // statistics: of the server's event; before: the one a second earlier.
  showStatistics(statistics, before) {
    this.#set("rate", fixed(statistics.rate, 1));
    this.#set("dropped", fixed(statistics.dropped));
    this.#set("roundTrip", milliseconds(statistics.roundTrip));
    this.#set("clockOffset", milliseconds(statistics.clockOffset));
    const seconds = before ? (statistics.now - before.now) / 1e6 : 0;
    if (seconds > 0) this.#set("bits", bitsText(Math.max(8 * (statistics.bytes - before.bytes) / seconds, 0)));
  }

  showFigures({ delay, rate, bits, width, height, way }) {
    this.#set("delay", milliseconds(delay));
    this.#set("pageRate", fixed(rate, 1));
    this.#set("pageBits", bitsText(bits));
    this.#set("size", t("size2", { w: width, h: height }));
    this.#set("way", t(way === "units" ? "wayUnits" : "wayVideo"));
  }

  showInfo(info) {
    for (const [key] of kIdentity) this.#set(key, info?.[key] ? String(info[key]) : "–");
  }
}
