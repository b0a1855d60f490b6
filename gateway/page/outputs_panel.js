// Files and servers that the live picture goes to, begun and ended while the camera runs.

import { el, toast } from "./dom.js";
import { t, tOf } from "./texts.js";
import { bytesText, whyText } from "./words.js";

const kReadEvery = 2000; // milliseconds, while the panel is shown
const kStateClass = { writing: "is-good", connecting: "is-warn", waiting: "is-warn", retrying: "is-warn", failed: "is-bad" };

export class OutputsPanel {
  #api = null;
  #list = el("ul", { class: "outputs" });
  #note = el("p", { class: "note" }, t("outputsEmpty"));
  #timer = 0;
  #fields = {};

  constructor(page) {
    page.append(el("h2", {}, t("outputs")), this.#note, this.#list, el("h2", {}, t("newOutput")), this.#form());
  }

  #form() {
    const number = (value, least, most, step = 1) => el("input", { type: "number", value, min: least, max: most, step, required: true });
    const fields = {
      address: el("input", { type: "text", required: true, placeholder: "party.mp4", id: "output-address", spellcheck: "false",
        autocomplete: "off" }),
      stitched: el("input", { type: "checkbox", id: "output-stitched", ".checked": true,
        onchange: () => { size.hidden = !fields.stitched.checked; } }),
      size: el("select", { id: "output-size" },
        ...["1920x960", "1440x720", "2880x1440", "3840x1920"].map((size) => el("option", { value: size }, size.replace("x", " × ")))),
      bitrate: number(8, 0.1, 200, "any"),
    };
    this.#fields = fields;
    const size = el("div", { class: "pair" }, el("label", {}, t("size"), fields.size), el("label", {}, t("bitrate"), fields.bitrate));
    return el("form", { class: "form", onsubmit: (event) => this.#begin(event) },
      el("label", {}, t("address"), fields.address), el("label", { class: "check" }, fields.stitched, t("stitched")), size,
      el("button", { class: "primary", id: "output-begin" }, t("begin")));
  }

  setCamera(api) {
    this.#api = api;
    this.#show([]);
  }

  show() {
    this.hide();
    this.#timer = setInterval(() => this.read(), kReadEvery);
    this.read();
  }

  hide() {
    clearInterval(this.#timer);
  }

  async read() {
    if (!this.#api) return;
    try {
      const answer = await this.#api.outputs();
      this.#show(answer.outputs ?? answer);
    } catch {
      // The link's own display tells it; the next reading may succeed.
    }
  }

  #show(outputs) {
    this.#note.hidden = outputs.length > 0;
    const held = document.activeElement?.dataset?.ends; // the list is made again under the focus
    this.#list.replaceChildren(...outputs.map((output) => this.#item(output)));
    if (held) this.#list.querySelector(`[data-ends="${CSS.escape(held)}"]`)?.focus();
  }

  #item({ id, address, state, retries, statistics = {} }) {
    const { bytes = 0, pictures = 0, dropped = 0, fault = null } = statistics;
    const parts = [tOf("states", state), ...(retries ? [t("retries", { n: retries })] : []),
      t("written", { bytes: bytesText(bytes), n: pictures }),
      ...(dropped ? [t("droppedN", { n: dropped })] : []), ...(fault ? [fault] : [])];
    return el("li", { "data-output": id }, el("span", { class: "address" }, address),
      el("button", { class: "small", "data-ends": id, "aria-label": `${t("end")}: ${address}`, onclick: () => this.#end(id) }, t("end")),
      el("span", { class: `state ${kStateClass[state] ?? ""}` }, el("i", { class: "dot" }), parts.join(" · ")));
  }

  async #begin(event) {
    event.preventDefault();
    const { address, stitched, size, bitrate } = this.#fields;
    const [width, height] = size.value.split("x").map(Number);
    try {
      await this.#api.beginOutput({ address: address.value,
        stitched: stitched.checked ? { width, height, bitrate: Math.round(Number(bitrate.value) * 1e6) } : null });
      address.value = "";
    } catch (fault) {
      toast(t("outputFault", { why: whyText(fault) }), "bad");
    }
    this.read();
  }

  async #end(id) {
    try {
      await this.#api.endOutput(id);
    } catch (fault) {
      toast(t("outputFault", { why: whyText(fault) }), "bad");
    }
    this.read();
  }
}
