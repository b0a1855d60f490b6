// Keys that do what buttons do, while the picture has the focus, and the list of them.

import { byId, el } from "./dom.js";
import { t } from "./texts.js";

const kShown = [
  [["←", "→", "↑", "↓"], "keyTurn"], [["+", "−"], "keyZoom"], [["0"], "keyHome"], [["1", "2", "3", "4"], "keyViews"],
    [["P"], "keyPhoto"], [["R"], "keyRecord"],
  [["M"], "keySound"], [["S"], "keySnapshot"], [["F"], "keyFull"],
];
const kButtons = { p: "photo", r: "record", m: "sound", s: "snapshot", f: "fullscreen", 1: "view-sphere", 2: "view-panorama",
  3: "view-planet", 4: "view-lenses", "?": "help" };

export function prepareKeys() {
  const list = byId("keys").querySelector("dl");
  list.append(...kShown.flatMap(([keys, text]) => [el("dt", {}, ...keys.map((key) => el("kbd", {}, key))), el("dd", {}, t(text))]),
    el("dt"), el("dd", { class: "note" }, t("keyPlace")));
  byId("help").addEventListener("click", () => byId("keys").showModal());
  byId("stage").addEventListener("keydown", (event) => {
    const button = kButtons[event.key.toLowerCase()];
    if (!button || event.ctrlKey || event.metaKey || event.altKey) return;
    byId(button).click();
    if (button !== "help") byId("stage").focus();
    event.preventDefault();
  });
}
