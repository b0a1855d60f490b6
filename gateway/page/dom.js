// Small helpers for elements. Texts, also those of cameras and files, only ever become text.

export const byId = (id) => document.getElementById(id);

// An element: attributes, properties that begin with a dot, and listeners that begin with "on".
export function el(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith(".")) element[name.slice(1)] = value;
    else if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

export function icon(name) {
  const space = "http://www.w3.org/2000/svg";
  const svg = document.createElementNS(space, "svg");
  svg.setAttribute("aria-hidden", "true");
  const use = document.createElementNS(space, "use");
  use.setAttribute("href", `icons.svg#${name}`);
  svg.append(use);
  return svg;
}

export function setIcon(button, name) {
  button.querySelector("use").setAttribute("href", `icons.svg#${name}`);
}

export function toast(text, kind = "") {
  const shown = el("div", { class: kind }, text);
  byId("toasts").append(shown);
  setTimeout(() => shown.remove(), kind === "bad" ? 7000 : 4000);
}

// Asks; gives whether the answer is yes.
export function confirmed(question, yes) {
  const dialog = byId("question");
  dialog.querySelector("p").textContent = question;
  dialog.querySelector("[value=yes]").textContent = yes;
  dialog.returnValue = "no";
  dialog.showModal();
  return new Promise((done) => dialog.addEventListener("close", () => done(dialog.returnValue === "yes"), { once: true }));
}

export function prepareDialogs() {
  for (const dialog of document.querySelectorAll("dialog")) {
    for (const button of dialog.querySelectorAll("button[value], header button")) {
      button.addEventListener("click", () => dialog.close(button.value));
    }
    dialog.addEventListener("click", (event) => { if (event.target === dialog) dialog.close("no"); });
  }
}

export function saveAs(blob, name) {
  const address = URL.createObjectURL(blob);
  el("a", { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), 60_000);
}
