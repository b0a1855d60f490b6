// Every setting of the camera, in words, with its present value: told by the camera where it can be asked, else what was set
// here last.

import { kSections } from "./catalogue.js";
import { confirmed, el } from "./dom.js";
import { packed, rangeOf, unpacked } from "./record.js";
import { t, tOf } from "./texts.js";
import { whyText } from "./words.js";

const titleOf = (setting) => tOf("titles", setting.key);
const isWide = ({ fields, wide, clock }) => wide || (fields.length > 1 && !clock);

// A setting's values as the operation takes them: members of a record become its hex.
function argumentsOf({ fields, recordFrom }, values) {
  if (recordFrom === undefined) return fields.map(({ type }, at) => (rangeOf(type) ? Number(values[at]) : String(values[at])));
  const record = packed(fields.slice(recordFrom).map(({ type }) => type), values.slice(recordFrom));
  return [...values.slice(0, recordFrom).map(Number), record];
}

// The values in the answer of the operation that reads the setting; null where there are none.
function valuesIn({ fields, result, recordFrom, toldFrom = 0 }, answer) {
  const values = result.map((key) => answer[key]);
  if (values.some((value) => value === undefined || value === null)) return null;
  return recordFrom === undefined ? values : unpacked(fields.slice(Math.max(recordFrom, toldFrom)).map(({ type }) => type), values[0]);
}

function wordsOf({ fields, toldFrom = 0 }, values) {
  const shown = values.length < fields.length ? fields.slice(toldFrom) : fields;
  return values.map((value, at) => shown[at].words(value)).join(", ");
}

class SettingRow {
  #api;
  #setting;
  #value = el("span", { class: "value" });
  #inputs = [];

  constructor(api, setting) {
    this.#api = api;
    this.#setting = setting;
    const title = el("div", {}, el("div", { class: "title", id: `title-${setting.key}` }, titleOf(setting)), this.#value);
    this.element = el("div", { class: isWide(setting) ? "row wide" : "row", "data-setting": setting.key, role: "group",
      "aria-labelledby": `title-${setting.key}` },
      title, el("div", { class: "control" }, ...this.#controls()));
    this.#showKept();
  }

  get setting() {
    return this.#setting;
  }

  #controls() {
    const { fields, choices, clock } = this.#setting;
    if (clock) return [el("button", { onclick: () => this.#setClock() }, t("thisDevice"))];
    if (choices) return [this.#choice(choices)];
    if (!isWide(this.#setting)) return [this.#stepper(fields[0])];
    const inputs = fields.map((field) => this.#field(field));
    const word = this.#setting.unkept ? "send" : "set";
    return [...inputs, el("button", { onclick: () => this.#setFromInputs(), "aria-label": `${t(word)}: ${titleOf(this.#setting)}` },
      t(word))];
  }

  #choice(choices) {
    const select = el("select", { "aria-labelledby": `title-${this.#setting.key}`, onchange: () => this.#set([Number(select.value)]) },
      el("option", { value: "", ".disabled": true, ".selected": true }, t("reading")),
        ...choices.map(([code, words]) => el("option", { value: code }, words)));
    this.#inputs = [select];
    return select;
  }

  #stepper({ type }) {
    const [least, most] = rangeOf(type);
    const input = el("input", { type: "number", min: least, max: most, value: 0, "aria-labelledby": `title-${this.#setting.key}`,
      onchange: () => this.#setFromInputs() });
    this.#inputs = [input];
    const by = (step) => () => { input.value = Math.min(Math.max(Number(input.value) + step, least), most); this.#setFromInputs(); };
    const button = (text, step) => el("button", { onclick: by(step), "aria-label": `${titleOf(this.#setting)} ${text}` }, text);
    return el("span", { class: "stepper" }, button("−", -1), input, button("+", 1));
  }

  #field({ type, name }) {
    const range = rangeOf(type);
    const number = () => el("input", { type: "number", min: range[0], max: range[1], value: 0 });
    const input = range ? number() : el("input", { type: "text", spellcheck: "false" });
    if (!name) input.setAttribute("aria-labelledby", `title-${this.#setting.key}`);
    this.#inputs.push(input);
    return name ? el("label", {}, tOf("fields", name), input) : el("label", {}, input);
  }

  #setFromInputs() {
    if (this.#inputs.every((input) => input.reportValidity())) this.#set(this.#inputs.map(({ value }) => value));
  }

  #setClock() {
    const now = new Date();
    this.#set([Math.floor(now.getTime() / 1000), now.getTimezoneOffset()], now.toLocaleString());
  }

  async #set(values, words) {
    const { set, asks, answers, unkept, get } = this.#setting;
    if (asks && !(await confirmed(t(asks, { n: values[0] }), t("send")))) return;
    try {
      const answer = await this.#api.call(set, argumentsOf(this.#setting, values));
      const chosen = answers ? answers.map((key) => answer[key]) : values;
      if (get) return await this.read();
      if (unkept) return this.#say(t("done"));
      this.#keep(chosen, words ?? wordsOf(this.#setting, chosen));
    } catch (fault) {
      this.#say(t("refusedValue", { why: whyText(fault) }), true);
    }
  }

  #say(text, isFault = false) {
    this.#value.textContent = text;
    this.#value.classList.toggle("fault", isFault);
  }

  #fill(values) {
    const inputs = values.length < this.#inputs.length ? this.#inputs.slice(this.#setting.toldFrom ?? 0) : this.#inputs;
    inputs.forEach((input, at) => { if (document.activeElement !== input || input.type === "number") input.value = values[at] ?? ""; });
  }

  get #keptKey() {
    return `${this.#api.serial}/${this.#setting.key}`;
  }

  // Remembers in this browser what the camera cannot be asked.
  #keep(values, words) {
    localStorage.setItem(this.#keptKey, JSON.stringify({ values, words }));
    this.#showKept();
  }

  #showKept() {
    const { get, unkept } = this.#setting;
    if (get || unkept) return this.#say(get ? t("reading") : "");
    try {
      const kept = JSON.parse(localStorage.getItem(this.#keptKey));
      if (!kept) return this.#say(t("notTold"));
      this.#say(t("lastSet", { value: kept.words }));
      this.#fill(kept.values);
    } catch {
      this.#say(t("notTold"));
    }
  }

  // Asks the camera, where it can be asked.
  async read() {
    const { get, asksWith = 0 } = this.#setting;
    if (!get) return;
    const asked = this.#inputs.slice(0, asksWith).map(({ value }) => Number(value));
    try {
      const values = valuesIn(this.#setting, await this.#api.call(get, asked));
      if (!values) return this.#say(t("notTold"));
      this.#say(t("now", { value: wordsOf(this.#setting, values) }));
      this.#fill(values);
    } catch (fault) {
      this.#say(whyText(fault), true);
    }
  }
}

export class SettingsPanel {
  #page;
  #rows = [];
  #isShown = false;

  constructor(page) {
    this.#page = page;
  }

  // api: of the camera, or null.
  setCamera(api) {
    this.#rows = [];
    if (!api) return this.#page.replaceChildren(el("p", { class: "empty-note" }, t("settingsAway")));
    const parts = kSections.map((section) => this.#section(api, section));
    this.#page.replaceChildren(...parts.flat());
    if (this.#isShown) this.read();
  }

  #section(api, { key, rows, advanced }) {
    const made = rows.map((setting) => new SettingRow(api, setting));
    this.#rows.push(...made);
    const box = el("div", { class: "rows" }, ...made.map(({ element }) => element));
    return advanced ? [el("details", {}, el("summary", {}, tOf("sections", key)), box)] : [el("h2", {}, tOf("sections", key)), box];
  }

  show() {
    this.#isShown = true;
    this.read();
  }

  hide() {
    this.#isShown = false;
  }

  // One after the other, so that a slow link is not flooded.
  async read() {
    const rows = this.#rows;
    for (const row of rows) {
      if (rows !== this.#rows) return;
      await row.read();
    }
  }
}
