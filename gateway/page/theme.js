// Dark or light: as the system asks for, until somebody chooses.

import { byId } from "./dom.js";

const light = matchMedia("(prefers-color-scheme: light)");

function show() {
  document.documentElement.dataset.theme = localStorage.getItem("theme") ?? (light.matches ? "light" : "dark");
}

export function prepareTheme() {
  show();
  light.addEventListener("change", show);
  byId("theme").addEventListener("click", () => {
    localStorage.setItem("theme", document.documentElement.dataset.theme === "dark" ? "light" : "dark");
    show();
  });
}
