// The bar's figures and the words over the picture: what is connected, and what is left.

import { byId, toast } from "./dom.js";
import { LiveState } from "./live.js";
import { t, tOf } from "./texts.js";
import { bytesText, durationText } from "./words.js";

export const LinkStatus = Object.freeze({ absent: "absent", opening: "opening", streaming: "streaming", silent: "silent",
  server: "server", none: "none", token: "token" });

const kChip = {
  absent: ["is-bad", "linkAbsent"], opening: ["is-warn", "linkOpening"], streaming: ["is-good", "linkStreaming"],
    silent: ["is-warn", "linkSilent"],
  server: ["is-bad", "linkServer"], none: ["is-bad", "linkAbsent"], token: ["is-bad", "linkServer"],
};
const kWords = { absent: "away", opening: "opening", silent: "silent", server: "serverAway", none: "noCamera", token: "refusedToken" };
const kBatteryPower = 1; // what the camera calls running on its battery
const kLowBattery = 15;
const kCardReady = 0;
const kCardFull = 2;
const kToldEvents = { 0: "firmwareUpdateDone", 1: "recordAutoSplit", 3: "batteryLow", 4: "batteryShutDown", 7: "keyPressed" };

export const linkText = (status) => t(kChip[status]?.[1] ?? "linkAbsent");

export function showLink(status) {
  const [kind, text] = kChip[status] ?? kChip.absent;
  const chip = byId("link");
  chip.className = `chip ${kind}`;
  chip.dataset.status = status;
  chip.querySelector("span").textContent = t(text);
}

// What stands over the picture: why there is none, or nothing.
export function showState(link, live) {
  const box = byId("state");
  const away = kWords[link] ?? { connecting: "connecting", waiting: "waiting" }[live];
  const shows = Boolean(away) && !(live === LiveState.playing && link === LinkStatus.opening);
  box.classList.toggle("shown", shows);
  byId("picture").classList.toggle("away", shows);
  box.dataset.state = shows ? away : "";
  box.querySelector("strong").textContent = shows ? t(away) : "";
  box.querySelector("span").textContent = shows ? t(`${away}More`) : "";
}

export function showUndrawable() {
  const box = byId("state");
  box.classList.add("shown");
  box.querySelector("strong").textContent = t("noWebGl");
  box.querySelector("span").textContent = t("noWebGlMore");
  box.querySelector(".spinner").hidden = true;
}

function figure(id, text, isBad = false) {
  const chip = byId(id);
  (chip.querySelector("span") ?? chip).textContent = text;
  chip.classList.toggle("empty", text === "");
  chip.classList.toggle("is-bad", isBad);
}

export function showDelay(milliseconds) {
  figure("delay", milliseconds === null ? "" : t("delay", { ms: Math.round(milliseconds) }));
}

// info: of the camera; null while it cannot be asked.
export function showInfo(info) {
  const has = (key) => typeof info?.[key] === "number";
  const level = has("batteryLevel") ? info.batteryLevel : null;
  figure("battery", level === null ? "" : t(info.powerType === kBatteryPower ? "battery" : "batteryPowered", { level }),
    level !== null && level <= kLowBattery);
  const state = has("cardState") ? info.cardState : null;
  const free = t("cardFree", { free: bytesText(info?.cardSpaceFree) });
  const cardText = state === kCardReady ? free : t(state === kCardFull ? "cardFull" : "cardBad");
  figure("card", state === null ? "" : cardText, state !== null && state !== kCardReady);
  const left = has("photoShotsRemaining") && has("videoTimeRemaining");
  figure("left", left ? t("left", { photos: info.photoShotsRemaining, video: durationText(info.videoTimeRemaining) }) : "",
    left && info.photoShotsRemaining === 0);
}

// An event of the camera in words, where it has some.
export function tellEvent({ event, name, value }) {
  if (!(event in kToldEvents)) return;
  const file = typeof value?.nsString === "string" && value.nsString ? `: ${value.nsString}` : "";
  toast(tOf("events", kToldEvents[event] ?? name) + file);
}
