// Photos, brackets and recordings, with a self-timer.

import { byId, confirmed, el, toast } from "./dom.js";
import { label, t } from "./texts.js";
import { durationText, whyText } from "./words.js";

const kTimers = [0, 3, 5, 10];
const kBrackets = [[], [-2, 0, 2], [-1, 0, 1], [-2, -1, 0, 1, 2], [-4, -3, -2, -1, 0, 1, 2, 3, 4]];
const kShutterState = 12; // the camera's event
const kRecordEnds = { 9: "whyCardFull", 10: "whyTime" };

const signed = (step) => (step > 0 ? `+${step}` : String(step));

function stepsText(steps) {
  if (steps.length === 0) return t("bracketOff");
  const words = steps.length > 5 ? `${signed(steps[0])} … ${signed(steps.at(-1))}` : steps.map(signed).join(" ");
  return t("bracketSteps", { n: steps.length, steps: words });
}

export class Capture {
  #api = null;
  #on;
  #countdown = null;
  #photo = null; // {steps, done} while one is taken
  #recording = null; // {began, left} while the camera records

  // on: {changed()}: files or the card's space have changed.
  constructor(on) {
    this.#on = on;
    byId("timer").append(...kTimers.map((n) => el("option", { value: n }, n === 0 ? t("timerOff") : t("seconds", { n }))));
    byId("bracket").append(...kBrackets.map((steps, at) => el("option", { value: at }, stepsText(steps))));
    byId("photo").addEventListener("click", () => this.photo());
    byId("record").addEventListener("click", () => this.record());
    byId("record-cancel").addEventListener("click", () => this.#discard());
    byId("options").addEventListener("click", () => this.#toggleOptions());
    byId("options-box").addEventListener("submit", (event) => event.preventDefault());
    setInterval(() => this.#showRecording(), 500);
  }

  setCamera(api) {
    this.#api = api;
    this.#stopCountdown();
    const began = Number(localStorage.getItem(this.#keptKey));
    this.#setRecording(began > 0 ? { began, left: null } : null);
  }

  // Whether the camera can be asked for anything now.
  setReady(ready) {
    byId("photo").disabled = !ready || this.#photo !== null;
    byId("record").disabled = !ready;
    this.ready = ready;
  }

  // info: what the camera has told of itself.
  showInfo(info) {
    if (!this.#recording) return;
    const seconds = info?.videoTimeRemaining;
    this.#recording.left = typeof seconds === "number" ? { seconds, at: Date.now() } : null;
  }

  hear({ event, value }) {
    if (event === kShutterState && this.#photo && value?.intValue === 0) {
      this.#photo.done = Math.min(this.#photo.done + 1, this.#photo.count);
      this.#showProgress();
    }
    if (kRecordEnds[event] && this.#recording) {
      this.#setRecording(null);
      toast(t("recordEnded", { why: t(kRecordEnds[event]) }));
      this.#on.changed();
    }
  }

  #toggleOptions() {
    const box = byId("options-box");
    box.hidden = !box.hidden;
    byId("options").setAttribute("aria-expanded", String(!box.hidden));
    if (!box.hidden) byId("timer").focus();
  }

  photo() {
    if (this.#countdown) return this.#stopCountdown();
    if (this.#photo || !this.ready) return;
    const seconds = Number(byId("timer").value);
    if (seconds === 0) this.#take();
    else this.#count(seconds);
  }

  #count(seconds) {
    const shown = byId("countdown");
    shown.hidden = false;
    shown.textContent = String(seconds);
    this.#countdown = setTimeout(() => {
      if (seconds > 1) return this.#count(seconds - 1);
      this.#stopCountdown();
      this.#take();
    }, 1000);
  }

  #stopCountdown() {
    clearTimeout(this.#countdown);
    this.#countdown = null;
    byId("countdown").hidden = true;
  }

  async #take() {
    const bracket = kBrackets[Number(byId("bracket").value)];
    this.#photo = { count: Math.max(bracket.length, 1), done: 0 };
    this.#showProgress();
    this.setReady(this.ready);
    try {
      const { files } = await this.#api.photo({ ...(bracket.length > 0 ? { bracket } : {}), stitch: byId("stitch").checked });
      toast(files.length === 1 ? t("stored", { name: files[0].name }) : t("storedMany", { n: files.length }));
    } catch (fault) {
      toast(t("photoFailed", { why: whyText(fault) }), "bad");
    }
    this.#photo = null;
    byId("progress").hidden = true;
    this.setReady(this.ready);
    this.#on.changed();
  }

  #showProgress() {
    const { count, done } = this.#photo;
    const box = byId("progress");
    box.hidden = false;
    const bar = box.querySelector("progress");
    bar.max = count;
    if (count === 1) bar.removeAttribute("value");
    else bar.value = done;
    box.querySelector("span").textContent = count === 1 ? t("photoBusy") : t("bracketBusy", { n: count, done });
  }

  async record() {
    if (!this.ready) return;
    const action = this.#recording ? "stop" : "start";
    try {
      const answer = await this.#api.record(action);
      this.#setRecording(action === "start" ? { began: Date.now(), left: null } : null);
      toast(action === "start" ? t("recordStarted") : t("recordStopped", { name: answer?.fileName ?? "" }));
      this.#on.changed();
    } catch (fault) {
      toast(t("recordFailed", { why: whyText(fault) }), "bad");
      if (action === "stop" && fault.status === 502) this.#setRecording(null); // it had ended by itself
    }
  }

  async #discard() {
    if (!(await confirmed(t("discardQuestion"), t("discard")))) return;
    try {
      await this.#api.record("cancel");
      toast(t("recordCancelled"));
    } catch (fault) {
      toast(t("recordFailed", { why: whyText(fault) }), "bad");
    }
    this.#setRecording(null);
    this.#on.changed();
  }

  get #keptKey() {
    return `${this.#api.serial}/recording`;
  }

  // Kept in this browser, since the camera does not tell whether it records.
  #setRecording(recording) {
    this.#recording = recording;
    if (recording) localStorage.setItem(this.#keptKey, String(recording.began));
    else localStorage.removeItem(this.#keptKey);
    byId("recording").hidden = !recording;
    byId("record").classList.toggle("on", Boolean(recording));
    label(byId("record"), t(recording ? "recordStop" : "recordStart"));
    this.#showRecording();
  }

  #showRecording() {
    if (!this.#recording) return;
    const { began, left } = this.#recording;
    const time = durationText((Date.now() - began) / 1000);
    const shown = byId("recording").querySelector("span");
    const seconds = left ? left.seconds - (Date.now() - left.at) / 1000 : null;
    shown.textContent = left ? t("recordTime", { time, left: durationText(seconds) }) : t("recordTimeOnly", { time });
  }
}
