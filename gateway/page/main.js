// The page: makes its parts, and tells each what it needs to know of the chosen camera.

import { CameraApi, cameras, keepToken } from "./api.js";
import { Capture } from "./capture.js";
import { control } from "./controls.js";
import { byId, el, prepareDialogs } from "./dom.js";
import { CameraEvents } from "./events.js";
import { GalleryPanel } from "./gallery_panel.js";
import { prepareKeys } from "./keys.js";
import { LinkPanel } from "./link_panel.js";
import { Live } from "./live.js";
import { OutputsPanel } from "./outputs_panel.js";
import { Panel } from "./panel.js";
import { PictureTools } from "./picture_tools.js";
import { SettingsPanel } from "./settings_panel.js";
import { makeStage } from "./stage.js";
import { LinkStatus, linkText, showDelay, showInfo, showLink, showState, showUndrawable, tellEvent } from "./status.js";
import { prepareTheme } from "./theme.js";
import { translate } from "./texts.js";
import { View } from "./view.js";

const kListEvery = 3000; // milliseconds
const kInfoEvery = 10_000;
const kHiddenRest = 20_000; // after which a hidden page needs no pictures
const kInfoEvents = new Set([2, 3, 5, 9, 10, 12]); // battery, card, recording, shutter
const kLensEvent = 8;

class Page {
  #view = new View();
  #stage;
  #live;
  #api = null;
  #events = null;
  #link = LinkStatus.none;
  #server = true;
  #statistics = null;
  #known = "";

  constructor() {
    keepToken();
    translate();
    prepareTheme();
    prepareDialogs();
    this.#stage = makeStage(byId("picture"));
    this.#stage.ready.catch(() => showUndrawable());
    this.#live = new Live(this.#stage, { state: () => this.#showState(), figures: (figures) => this.#showFigures(figures) });
    this.gallery = new GalleryPanel(byId("page-gallery"));
    this.settings = new SettingsPanel(byId("page-settings"));
    this.outputs = new OutputsPanel(byId("page-outputs"));
    this.link = new LinkPanel(byId("page-link"));
    this.capture = new Capture({ changed: () => { this.gallery.read(); this.#readInfo(); } });
    this.panel = new Panel({ gallery: { show: () => this.gallery.read() }, settings: this.settings, outputs: this.outputs, link: {} });
    this.tools = new PictureTools(this.#stage, this.#live, this.#view);
    prepareKeys();
    this.#followView();
    this.#followTime();
    byId("cameras").addEventListener("change", () => this.#choose(byId("cameras").value));
    if (innerWidth > 1400) this.panel.open();
  }

  // The drawing's size is the screen's, or the one that the address asks for (?canvas=640x320), for measurements.
  #followView() {
    const asked = /^(\d+)x(\d+)$/.exec(new URLSearchParams(location.search).get("canvas") ?? "");
    const fit = () => {
      const { clientWidth, clientHeight } = byId("stage");
      const ratio = devicePixelRatio || 1;
      const [width, height] = asked ? asked.slice(1).map(Number) : [Math.round(clientWidth * ratio), Math.round(clientHeight * ratio)];
      this.#view.setSize(clientWidth, clientHeight);
      this.#stage.setSize(width, height, Boolean(asked));
    };
    this.#view.onChange(() => this.#stage.setView(this.#view.shape()));
    control(byId("stage"), this.#view);
    new ResizeObserver(fit).observe(byId("stage"));
    fit();
  }

  #followTime() {
    this.#readCameras();
    setInterval(() => this.#readCameras(), kListEvery);
    setInterval(() => this.#readInfo(), kInfoEvery);
    let resting = 0;
    document.addEventListener("visibilitychange", () => {
      clearTimeout(resting);
      if (document.hidden) resting = setTimeout(() => this.#live.rest(), kHiddenRest);
      else this.#live.wake();
    });
  }

  async #readCameras() {
    try {
      const list = await cameras();
      this.#setServer(true);
      this.#showCameras(list);
    } catch (fault) {
      if (fault.status === 401) this.#setLink(LinkStatus.token);
      else if (fault.status === 0) this.#setServer(false);
    }
  }

  #showCameras(list) {
    const choice = byId("cameras");
    const known = JSON.stringify(list.map(({ serial, name }) => [serial, name]));
    if (known !== this.#known) {
      this.#known = known;
      choice.replaceChildren(...list.map(({ serial, name }) => el("option", { value: serial },
        list.length > 1 ? `${name} (${serial})` : name || serial)));
      if (this.#api) choice.value = this.#api.serial;
    }
    choice.parentElement.hidden = list.length === 0;
    const mine = list.find(({ serial }) => serial === this.#api?.serial);
    if (!mine && list.length > 0) return this.#choose(localStorage.getItem("camera"), list);
    if (!mine) return this.#setLink(LinkStatus.none);
    this.#setLink(mine.status);
  }

  // The wished camera where it is there, else the first.
  #choose(serial, list = null) {
    const chosen = list && !list.some((one) => one.serial === serial) ? list[0].serial : serial;
    localStorage.setItem("camera", chosen);
    byId("cameras").value = chosen;
    this.#events?.close();
    this.#api = new CameraApi(chosen);
    this.#statistics = null;
    for (const part of [this.capture, this.settings, this.outputs]) part.setCamera(this.#api);
    this.#events = new CameraEvents(this.#api.address("events"), {
      link: ({ status }) => this.#setLink(status), camera: (event) => this.#hear(event),
      statistics: (statistics) => this.#showStatistics(statistics),
        server: (isThere) => { if (isThere) this.#setServer(true); else this.#readCameras(); },
    });
    this.#live.setCamera(this.#api);
    const status = list?.find((one) => one.serial === chosen)?.status;
    if (status) this.#setLink(status);
    this.#readInfo();
  }

  #setServer(isThere) {
    if (this.#server === isThere) return;
    this.#server = isThere;
    if (isThere) {
      this.#live.hurry();
      this.gallery.read();
      this.#readInfo();
    }
    this.#showState();
  }

  #setLink(status) {
    const came = status === LinkStatus.streaming && this.#link !== status;
    this.#link = status;
    this.#showState();
    if (!came) return;
    this.#live.hurry();
    this.#readInfo();
    this.settings.setCamera(this.#api);
  }

  #showState() {
    const link = this.#server ? this.#link : LinkStatus.server;
    showLink(link);
    this.link.showStatus(linkText(link));
    showState(link, this.#live.state());
    this.capture.setReady(link === LinkStatus.streaming);
    if (link !== LinkStatus.streaming) showDelay(null);
  }

  async #readInfo() {
    if (!this.#api || this.#link !== LinkStatus.streaming) return;
    const api = this.#api;
    const info = await api.info().catch(() => null);
    if (api !== this.#api || !info) return;
    showInfo(info);
    this.link.showInfo(info);
    this.capture.showInfo(info);
  }

  #hear(event) {
    tellEvent(event);
    this.capture.hear(event);
    if (event.event === kLensEvent) this.#live.readLens();
    if (kInfoEvents.has(event.event)) this.#readInfo();
  }

  #showStatistics(statistics) {
    this.link.showStatistics(statistics, this.#statistics);
    this.#statistics = statistics;
  }

  #showFigures(figures) {
    showDelay(figures.delay);
    this.link.showFigures(figures);
    document.documentElement.dispatchEvent(new CustomEvent("figures", { detail: figures }));
  }
}

try {
  new Page();
} catch (fault) {
  console.error(fault);
  showUndrawable();
}
