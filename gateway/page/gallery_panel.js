// The photos, panoramas and recordings on the server: thumbnails, panoramas to turn, download, delete.

import { fileAddress, files, remove } from "./api.js";
import { control } from "./controls.js";
import { byId, confirmed, el, icon, toast } from "./dom.js";
import { Painter } from "./painter.js";
import { t } from "./texts.js";
import { View } from "./view.js";
import { bytesText, whyText } from "./words.js";

const kThumbnail = 400; // pixels wide
const kFilm = /\.(mp4|mov|webm)$/i;

const isPanorama = ({ name, panorama }) => panorama === true || /-360(-\d+)?\.jpe?g$/i.test(name);

function imageOf(address) {
  return new Promise((done, failed) => {
    const image = new Image();
    image.onload = () => done(image);
    image.onerror = () => failed(new Error(t("galleryFault", { why: "" })));
    image.src = address;
  });
}

// A panorama on a canvas, to be turned. Gives what ends it.
async function showPanorama(place, address) {
  const canvas = el("canvas");
  place.replaceChildren(canvas);
  place.setAttribute("role", "application");
  place.setAttribute("aria-label", t("turnHint"));
  const painter = new Painter(canvas);
  const view = new View();
  const image = await imageOf(address);
  painter.setEquirectangular();
  const most = Math.min(painter.largestSide(), 8192);
  painter.offer(image.naturalWidth > most ? await createImageBitmap(image, { resizeWidth: most, resizeHeight: most / 2 }) : image, {});
  const fit = () => {
    const ratio = devicePixelRatio || 1;
    view.setSize(canvas.clientWidth, canvas.clientHeight);
    painter.setSize(Math.round(canvas.clientWidth * ratio), Math.round(canvas.clientHeight * ratio), true);
  };
  view.onChange(() => painter.setView(view.shape()));
  control(canvas, view);
  const keys = (event) => { if (event.target === place) canvas.dispatchEvent(new KeyboardEvent("keydown", { key: event.key })); };
  place.addEventListener("keydown", keys);
  const watch = new ResizeObserver(fit);
  watch.observe(canvas);
  return () => {
    watch.disconnect();
    place.removeEventListener("keydown", keys);
    canvas.getContext("webgl2")?.getExtension("WEBGL_lose_context")?.loseContext();
  };
}

export class GalleryPanel {
  #page;
  #viewer = byId("viewer");
  #endShown = () => {};
  #asked = 0;

  constructor(page) {
    this.#page = page;
    this.#viewer.addEventListener("close", () => this.#end());
  }

  #end() {
    this.#endShown();
    this.#endShown = () => {};
    this.#viewer.querySelector(".shown").replaceChildren();
  }

  async read() {
    const asked = ++this.#asked;
    try {
      const all = await files();
      if (asked === this.#asked) this.#list(all);
    } catch (fault) {
      if (asked === this.#asked) this.#page.replaceChildren(el("p", { class: "empty-note" }, t("galleryFault", { why: whyText(fault) })));
    }
  }

  #list(all) {
    const newest = [...all].sort((a, b) => String(b.time ?? b.modified ?? b.name).localeCompare(String(a.time ?? a.modified ?? a.name)));
    if (newest.length === 0) return this.#page.replaceChildren(el("p", { class: "empty-note" }, t("galleryEmpty")));
    this.#page.replaceChildren(el("ul", { class: "files" }, ...newest.map((file) => this.#item(file))));
  }

  #item(file) {
    const { name, bytes } = file;
    const film = kFilm.test(name);
    const shown = film ? icon("film") : el("img", { src: fileAddress(name, kThumbnail), alt: "", loading: "lazy" });
    return el("li", { "data-file": name },
      el("button", { class: "open", "aria-label": t("open", { name }), onclick: () => this.open(file) }, shown),
      isPanorama(file) ? el("span", { class: "badge" }, t("badge360")) : null,
      el("div", { class: "about" },
        el("span", { class: "name", title: name }, el("b", {}, name), bytesText(bytes)),
        el("a", { class: "button", href: fileAddress(name), download: name, "aria-label": t("downloadName", { name }),
          title: t("download") }, icon("download")),
        el("button", { "aria-label": t("deleteName", { name }), title: t("delete"), onclick: () => this.#delete(name) }, icon("delete"))));
  }

  async #delete(name) {
    if (!(await confirmed(t("deleteQuestion", { name }), t("delete")))) return;
    try {
      await remove(fileAddress(name));
      toast(t("deleted", { name }));
    } catch (fault) {
      toast(whyText(fault), "bad");
    }
    this.read();
  }

  async open(file) {
    this.#end();
    const address = fileAddress(file.name);
    this.#viewer.querySelector("strong").textContent = file.name;
    const link = this.#viewer.querySelector("a");
    link.href = address;
    link.download = file.name;
    const place = this.#viewer.querySelector(".shown");
    place.removeAttribute("role");
    place.setAttribute("aria-label", file.name);
    if (!this.#viewer.open) this.#viewer.showModal();
    if (kFilm.test(file.name)) return place.replaceChildren(el("video", { src: address, controls: true }));
    if (!isPanorama(file)) return place.replaceChildren(el("img", { src: address, alt: file.name }));
    try {
      this.#endShown = await showPanorama(place, address);
      place.focus();
    } catch {
      place.replaceChildren(el("img", { src: address, alt: file.name }));
    }
  }
}
