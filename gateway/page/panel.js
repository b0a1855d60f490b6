// The panel beside the picture and its tabs.

import { byId } from "./dom.js";

const kTabs = ["gallery", "settings", "outputs", "link"];

export class Panel {
  #pages;
  #shown = "gallery";

  // pages: by tab, each may have show() and hide().
  constructor(pages) {
    this.#pages = pages;
    for (const tab of kTabs) byId(`tab-${tab}`).addEventListener("click", () => this.show(tab));
    byId("panel-toggle").addEventListener("click", () => {
      if (this.isOpen()) return this.close();
      this.open();
      byId(`tab-${this.#shown}`).focus();
    });
    byId("panel-close").addEventListener("click", () => this.close());
    byId("panel").querySelector(".tabs").addEventListener("keydown", (event) => this.#key(event));
    byId("panel").addEventListener("keydown", (event) => { if (event.key === "Escape") this.close(); });
  }

  isOpen() {
    return !byId("panel").hidden;
  }

  open() {
    byId("panel").hidden = false;
    byId("panel-toggle").setAttribute("aria-expanded", "true");
    this.show(this.#shown);
  }

  close() {
    this.#pages[this.#shown].hide?.();
    byId("panel").hidden = true;
    byId("panel-toggle").setAttribute("aria-expanded", "false");
    byId("panel-toggle").focus();
  }

  show(tab) {
    if (tab !== this.#shown) this.#pages[this.#shown].hide?.();
    this.#shown = tab;
    for (const one of kTabs) {
      const selected = one === tab;
      byId(`tab-${one}`).setAttribute("aria-selected", String(selected));
      byId(`tab-${one}`).tabIndex = selected ? 0 : -1;
      byId(`page-${one}`).hidden = !selected;
    }
    this.#pages[tab].show?.();
  }

  #key(event) {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (!step || event.target.getAttribute("role") !== "tab") return;
    const next = kTabs[(kTabs.indexOf(this.#shown) + step + kTabs.length) % kTabs.length];
    this.show(next);
    byId(`tab-${next}`).focus();
    event.preventDefault();
  }
}
