// The camera's settings: what sets each one, what tells its present value, and how that is said in words. What the numbers
// of a mode mean is the camera's own.
//
// fields: of what is sent and of what is told, in their order. type: u8, s8, u16, s16, u32, s32, text, or hexN for N bytes.
// asksWith: so many of the fields are arguments of reading, too.
// record: the fields are members of one record, sent and told as hex, little-endian.

import { t } from "./texts.js";
import { bitsText } from "./words.js";

const kSizes = [[1440, 720], [2160, 1080], [2560, 1280], [3040, 1520]];
const kRates = [15, 20, 25, 30];

const mode = (n) => t("modeN", { n });
const plain = (n) => String(n);
const signed = (n) => (n > 0 ? `+${n}` : String(n));
const steps = (n) => t("stepsN", { n: signed(n) });
const seconds = (n) => (Number(n) === 0 ? t("off") : t("seconds", { n }));
const sizeRate = (code) => {
  const size = kSizes[code >> 2];
  return size ? t("sizeRate", { w: size[0], h: size[1], rate: kRates[code & 3] }) : mode(code);
};

const moment = (n) => new Date(1000 * Number(n)).toLocaleString();

const field = (type, name = "", words = plain) => ({ type, name, words });
const one = (key, set, type, words, more = {}) => ({ key, set, fields: [field(type, "", words)], ...more });
const told = (get, result) => ({ get, result });
const choices = (codes, words) => ({ choices: codes.map((code) => [code, words(code)]) });

const picture = [
  one("exposureBias", "msgReqSetAEEVBias", "s16", steps),
  one("metering", "msgReqSetAEMeterMode", "u8", mode),
  one("whiteBalance", "msgReqSetWBMode", "u8", mode),
  one("brightness", "msgReqSetImageBrightness", "s16", signed),
  one("contrast", "msgReqSetImageContrast", "u16", plain),
  one("saturation", "msgReqSetImageSaturation", "u16", plain),
  one("hue", "msgReqSetImageHue", "u8", plain),
  one("sharpness", "msgReqSetImageSharpness", "u8", plain),
  one("effect", "msgReqReqSetImageDEffect", "u8", mode),
  one("flicker", "msgReqSetFlicker", "u8", mode, told("msgReqGetFlickerWithRebackBlock", ["ucharValue"])),
  { key: "stillProgram", set: "msgReqSetStillPMode", fields: [field("u8", "mode", mode), field("u8", "value")] },
  { key: "manualExposure", set: "msgReqSetMEParam", fields: [field("u8", "mode", mode), field("u8", "value1"), field("u8", "value2")],
    recordFrom: 1 },
];

const photos = [
  one("photoSize", "msgReqSetPhotoSize", "u8", (n) => t("sizeN", { n }), { answers: ["ucharValue"] }),
  one("selfTimer", "msgReqSetPhotoSelfTimer", "u8", seconds, told("msgReqGetPhotoSelfTimerWithRebackBlock", ["intValue"])),
  { key: "timelapse", set: "msgReqSetTimelapseInfo", recordFrom: 0, ...told("msgReqGetTimelapseInfoWithRebackBlock", ["NSValue1"]),
    fields: [field("u32", "value1"), field("u8", "value2"), field("u8", "value3"), field("u8", "exposure1"), field("u8", "exposure2")] },
  one("timelapseBias", "msgReqSetTimelapseEVBias", "s16", steps, told("msgReqGetTimelapseEVBiasWithRebackBlock", ["shortValue"])),
];

const recording = [
  one("resolution", "msgCmdSetVideoRes", "u8", sizeRate, { answers: ["ucharValue"], ...choices([...Array(16).keys()], sizeRate) }),
  { key: "videoBitrate", set: "msgCmdSetVideoBitrate", fields: [field("u8", "type", mode), field("u8", "code")] },
  one("recordLimit", "msgReqSetRecTimeLimit", "s32", seconds, told("msgReqGetRecTimeLimitWithRebackBlock", ["intValue"])),
  one("audioBitrate", "msgReqSetAudioBitrate", "u32", bitsText, told("msgReqGetAudioBitrateWithRebackBlock", ["uintValue"])),
];

const device = [
  one("mute", "msgReqSetMute", "u8", (n) => (Number(n) === 0 ? t("on") : Number(n) === 1 ? t("off") : mode(n)),
    choices([0, 1], (n) => (n === 0 ? t("on") : t("off")))),
  one("keyFunction", "msgReqSetKeyFunc0", "u8", mode),
  one("triplePress", "msgReqSetTriplePressMode", "u8", mode, told("msgReqGetTriplePressModeWithRebackBlock", ["ucharValue"])),
  one("gpsTimeout", "msgReqSetGPSTimeout", "u16", seconds, told("msgReqGetGPSTimeoutWithRebackBlock", ["ushortValue"])),
  { key: "localTime", set: "msgReqSetLocalTime", fields: [field("s32"), field("s32")], clock: true },
];

const service = [
  one("serialNumber", "msgReqSetSerialNumber", "text", plain, { ...told("msgReqGetSerialNumber", ["nsString"]), wide: true }),
  { key: "activeTime", set: "msgReqSetActiveTime", fields: [field("s32", "secondsSince1970", moment), field("s32", "minutesWest")],
    ...told("msgReqGetActiveTimeWithRebackBlock", ["intValue", "intValue2"]) },
  one("imageProcessing", "msgReqSetIPSwitchMode", "u8", mode),
  one("meteringWeights", "msgReqSetAEMMWeight", "hex96", plain, { wide: true }),
  { key: "mediaOffset", set: "msgReqSetMediaOffset", fields: [field("u8", "type"), field("u8", "typeInfo"), field("text", "offset")],
    ...told("msgReqGetMediaOffset", ["nsString"]), asksWith: 2, toldFrom: 2 },
  { key: "originOffset", set: "msgReqSetOriginOffset", recordFrom: 2, ...told("msgReqGetOriginOffset", ["NSValue1"]), asksWith: 2,
    toldFrom: 2,
    fields: [field("u8", "type"), field("u8", "typeInfo"),
      ...["lens1a", "lens1b", "lens1c", "lens2a", "lens2b", "lens2c"].map((name) => field("s32", name)), field("u16", "width"),
      field("u16", "height")] },
  { key: "whiteBalanceGain", set: "msgReqSetCalibWBGain", recordFrom: 0, ...told("msgReqGetCalibWBGainWithRebackBlock", ["NSValue1"]),
    fields: [field("u8", "value1"), field("u8", "value2"), ...[1, 2, 3, 4].map((n) => field("s16", `gain${n}`))] },
  { key: "vignetteLuma", set: "msgReqSetCalibVignetteLuma", recordFrom: 0,
    ...told("msgReqGetCalibVignetteLumaWithRebackBlock", ["NSValue1"]),
    fields: [field("u8", "value1"), field("u8", "value2"), field("s16", "luma1"), field("s16", "luma2")] },
  { key: "vignetteGain", set: "msgReqSetCalibVigGain", recordFrom: 0, ...told("msgReqGetCalibVigGainWithRebackBlock", ["NSValue1"]),
    fields: [field("u8", "value1"), field("u8", "value2"), ...[1, 2, 3, 4, 5, 6].map((n) => field("s16", `gain${n}`))] },
  { key: "system", set: "msgReqSysctrl", fields: [field("u8", "command", (n) => t("commandN", { n })), field("u8", "delay")],
    asks: "confirmSystem", unkept: true },
  { key: "systemCancel", set: "msgReqSysctrlCancel", fields: [field("u8", "command", (n) => t("commandN", { n }))], unkept: true },
];

export const kSections = [
  { key: "picture", rows: picture },
  { key: "photos", rows: photos },
  { key: "recording", rows: recording },
  { key: "device", rows: device },
  { key: "service", rows: service, advanced: true },
];
