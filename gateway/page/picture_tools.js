// The buttons that concern the picture alone: views, zoom, sound, snapshots, the phone's sensors, full screen.

import { byId, el, icon, saveAs, setIcon, toast } from "./dom.js";
import { PhoneSensors } from "./phone.js";
import { label, t } from "./texts.js";
import { kProjections, Projection } from "./view.js";
import { fileStamp } from "./words.js";

function makeViews(view) {
  const box = byId("views");
  const choose = (projection) => { view.setProjection(projection); byId(`view-${projection}`).focus({ preventScroll: true }); };
  box.append(...kProjections.map((projection) =>
    el("button", { id: `view-${projection}`, role: "radio", "aria-label": t(projection), title: t(projection),
      onclick: () => choose(projection) }, icon(projection), el("span", {}, t(projection)))));
  box.addEventListener("keydown", (event) => {
    const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[event.key];
    if (!step) return;
    choose(kProjections[(kProjections.indexOf(view.projection) + step + kProjections.length) % kProjections.length]);
    event.preventDefault();
  });
}

function showView(view) {
  for (const projection of kProjections) {
    const chosen = projection === view.projection;
    byId(`view-${projection}`).setAttribute("aria-checked", String(chosen));
    byId(`view-${projection}`).tabIndex = chosen ? 0 : -1;
  }
  const turns = view.projection === Projection.sphere || view.projection === Projection.panorama;
  byId("heading").textContent = turns ? `${Math.round((view.yaw + 360) % 360)}° ${Math.round(view.pitch)}°` : "";
}

export class PictureTools {
  #stage;
  #live;
  #sensors;
  #phoneOn = false;
  #sound = false;

  constructor(stage, live, view) {
    this.#stage = stage;
    this.#live = live;
    this.#sensors = new PhoneSensors(view);
    makeViews(view);
    view.onChange(showView);
    showView(view);
    const buttons = {
      "zoom-in": () => view.zoomBy(1), "zoom-out": () => view.zoomBy(-1), home: () => view.home(), sound: () => this.toggleSound(),
        snapshot: () => this.snapshot(false),
      "snapshot-whole": () => this.snapshot(true), phone: () => this.togglePhone(), fullscreen: () => this.toggleFullscreen(),
    };
    for (const [id, action] of Object.entries(buttons)) byId(id).addEventListener("click", action);
    document.addEventListener("fullscreenchange",
      () => byId("fullscreen").setAttribute("aria-pressed", String(Boolean(document.fullscreenElement))));
  }

  toggleSound() {
    this.#sound = !this.#sound;
    const button = byId("sound");
    button.setAttribute("aria-pressed", String(this.#sound));
    label(button, t(this.#sound ? "soundOff" : "soundOn"));
    setIcon(button, this.#sound ? "sound" : "muted");
    this.#live.setSound(this.#sound);
  }

  async snapshot(whole) {
    const file = await this.#stage.snapshot(whole).catch(() => null);
    if (!file) return toast(t("noPicture"), "bad");
    const name = `${whole ? "panorama" : "view"}_${fileStamp()}.png`;
    saveAs(file, name);
    toast(t("stored", { name }));
  }

  async togglePhone() {
    const why = this.#phoneOn ? null : await this.#sensors.start();
    if (why) return toast(t(why), "bad");
    if (this.#phoneOn) this.#sensors.stop();
    this.#phoneOn = !this.#phoneOn;
    byId("phone").setAttribute("aria-pressed", String(this.#phoneOn));
  }

  toggleFullscreen() {
    if (document.fullscreenElement) return document.exitFullscreen();
    if (!byId("stage-frame").requestFullscreen) return toast(t("noFullscreen"), "bad");
    return byId("stage-frame").requestFullscreen().catch(() => toast(t("noFullscreen"), "bad"));
  }
}
