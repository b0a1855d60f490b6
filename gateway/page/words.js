// Values as words.

import { t } from "./texts.js";

const kUnits = ["B", "kB", "MB", "GB", "TB"];

export function bytesText(bytes) {
  let [value, unit] = [Number(bytes) || 0, 0];
  while (value >= 1000 && unit + 1 < kUnits.length) [value, unit] = [value / 1000, unit + 1];
  return `${value >= 100 || unit === 0 ? Math.round(value) : value.toFixed(1)} ${kUnits[unit]}`;
}

export function bitsText(bitsPerSecond) {
  return bitsPerSecond >= 1e6 ? t("megabits", { n: (bitsPerSecond / 1e6).toFixed(1) }) : t("kilobits",
    { n: Math.round(bitsPerSecond / 1000) });
}

export function durationText(seconds) {
  const whole = Math.max(Math.floor(seconds), 0);
  const [hours, minutes] = [Math.floor(whole / 3600), Math.floor(whole / 60) % 60];
  const two = (value) => String(value).padStart(2, "0");
  return hours > 0 ? `${hours}:${two(minutes)}:${two(whole % 60)}` : `${minutes}:${two(whole % 60)}`;
}

// What went wrong, in words; fault: of a request.
export function whyText(fault) {
  if (fault.status === 0) return t("unreachable");
  if (fault.message) return fault.message;
  return fault.status === 502 ? t("refused") : t("lost");
}

export const fileStamp = () => new Date().toISOString().replace(/[-:]/g, "").replace("T", "_").slice(0, 15);
