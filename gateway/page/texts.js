// Every text of the page, in one table; another language is another table. {name} stands for a value.

const english = {
  skipToPicture: "To the picture", camera: "Camera", theme: "Dark or light", help: "Keyboard", panel: "Gallery, settings, outputs, link",
  liveSection: "Live picture", stageHint: "Live picture. Arrow keys turn, plus and minus zoom.", views: "View", zoom: "Zoom",
    zoomIn: "Closer", zoomOut: "Wider",
  home: "Look forward", capture: "Capture", options: "Timer, bracket, panorama", photo: "Take a photo", tools: "Picture",
    close: "Close", viewer: "File",
  yes: "Yes", no: "Cancel", download: "Download", delete: "Delete",

  sphere: "Sphere", panorama: "Panorama", planet: "Planet", lenses: "Lenses",
  soundOn: "Sound on", soundOff: "Sound off", snapshotView: "Picture of this view", snapshotWhole: "Picture of the whole panorama",
  phone: "Turn with the phone", fullscreen: "Full screen", noPicture: "There is no picture yet.",
  phoneNeedsHttps: "The phone's sensors need an https address; this page came over plain http.",
    phoneHasNone: "This device has no sensors of its direction.",
  phoneRefused: "The sensors were not allowed.", noFullscreen: "This browser has no full screen for pages.",
  noWebGl: "No picture can be drawn", noWebGlMore: "This browser has no WebGL 2, or it is switched off.",

  connecting: "Starting the picture", connectingMore: "The camera is asked for its picture.",
  away: "The camera is away", awayMore: "The picture goes on by itself when the camera is back.",
  opening: "Connecting to the camera", openingMore: "The link to the camera is being opened.",
  silent: "The camera is silent", silentMore: "It is attached but sends nothing; the link is opened again.",
  waiting: "The picture was interrupted", waitingMore: "It is started again.",
  serverAway: "The server cannot be reached", serverAwayMore: "The page goes on by itself when the server is back.",
  noCamera: "No camera", noCameraMore: "Attach a camera; it appears here by itself.",
  refusedToken: "This page needs a token", refusedTokenMore: "Open the address that the server has printed, with everything behind the #.",

  linkAbsent: "away", linkOpening: "connecting", linkStreaming: "connected", linkSilent: "silent", linkServer: "no server",
  delayHint: "From the picture's arrival at the server to the screen", delay: "{ms} ms", leftHint: "What the card still takes",
    left: "{photos} photos, {video} video",
  cardHint: "Memory card", cardFree: "{free} free", cardFull: "card full", cardBad: "no card", batteryHint: "Battery", battery: "{level} %",
  batteryPowered: "{level} %, powered",

  timer: "Self-timer", timerOff: "off", seconds: "{n} s", bracket: "Pictures", bracketOff: "one",
    bracketSteps: "{n} at steps {steps}", stitch: "Make a panorama too",
  photoBusy: "Taking the photo", bracketBusy: "Taking {n} pictures: {done} done", stored: "Stored {name}",
    storedMany: "Stored {n} files", photoFailed: "No photo: {why}",
  recordStart: "Record", recordStop: "Stop recording", recordCancel: "Discard", recordTime: "{time}, {left} left", recordTimeOnly: "{time}",
  recordStarted: "Recording on the camera's card", recordStopped: "The camera has stored {name}",
    recordCancelled: "The recording is discarded", recordFailed: "Recording: {why}",
  recordEnded: "The recording has ended: {why}", whyCardFull: "the card is full", whyTime: "its time is over",
  discardQuestion: "Discard the recording?", discard: "Discard",
  lost: "the camera does not answer", refused: "the camera refused", unreachable: "the server cannot be reached",

  gallery: "Gallery", galleryEmpty: "No photos yet. They appear here when you take one.",
    galleryFault: "The gallery cannot be read: {why}", open: "Open {name}", downloadName: "Download {name}", deleteName: "Delete {name}",
  deleteQuestion: "Delete {name}? It cannot be brought back.", deleted: "Deleted {name}", badge360: "360°",
    turnHint: "Panorama. Arrow keys turn, plus and minus zoom.",

  outputs: "Outputs", outputsEmpty: "Nothing is recorded on the server or sent on.", newOutput: "New output",
    address: "File name or rtmp:// or srt:// address",
  stitched: "Stitched to a panorama", size: "Size", bitrate: "Mbit/s", begin: "Begin", end: "End", outputFault: "Output: {why}",
    retries: "tries: {n}", written: "{bytes}, {n} pictures", droppedN: "{n} dropped",
  states: { waiting: "waiting for pictures", connecting: "connecting", writing: "writing", retrying: "trying again", failed: "failed",
    finished: "finished" },

  link: "Link", linkStatus: "Status", linkRate: "Pictures a second, camera", linkBits: "From the camera", linkDropped: "Dropped",
    linkRoundTrip: "Round trip to the camera", linkClock: "Clock offset",
  pageRate: "Pictures a second, here", pageBits: "To this page", pageDelay: "Delay to the screen", pageSize: "Drawn at",
    pageWay: "Way", wayUnits: "WebCodecs", wayVideo: "video element",
  identity: "Camera", name: "Name", serial: "Serial number", firmware: "Firmware", hardware: "Hardware", maker: "Manufacturer",
    model: "Model", uuid: "UUID", size2: "{w} × {h}",
  sectionCamera: "From the camera to the server", sectionPage: "From the server to this page",

  settings: "Settings", set: "Set", now: "now {value}", lastSet: "last set here: {value}", notTold: "not told by the camera",
    refusedValue: "refused: {why}", reading: "…", done: "done",
  settingsAway: "The settings can be read when the camera is connected.",
  off: "off", on: "on", modeN: "mode {n}", sizeN: "size {n}", stepsN: "{n} steps", kilobits: "{n} kbit/s", megabits: "{n} Mbit/s",
    sizeRate: "{w} × {h}, {rate} a second",
  thisDevice: "Set to this device's time", commandN: "command {n}",
    confirmSystem: "Send system command {n} to the camera? It may switch off.", send: "Send",

  keyTurn: "turn", keyZoom: "closer, wider", keyHome: "look forward", keyViews: "sphere, panorama, planet, lenses", keyPhoto: "photo",
    keyRecord: "record, stop", keySound: "sound", keySnapshot: "picture of this view", keyFull: "full screen",
  keyPlace: "These keys work while the picture has the focus.",

  events: { firmwareUpdateDone: "The firmware update has ended", recordAutoSplit: "The recording goes on in another file",
    batteryLow: "The battery is low", batteryShutDown: "The battery is empty: the camera switches off",
    keyPressed: "A key was pressed on the camera", cardState: "The card's state has changed" },
  sections: { picture: "Picture", photos: "Photos", recording: "Recording", device: "Camera", service: "Calibration and service" },
  titles: {
    exposureBias: "Exposure", metering: "Exposure metering", whiteBalance: "White balance", brightness: "Brightness", contrast: "Contrast",
    saturation: "Saturation", hue: "Hue", sharpness: "Sharpness", effect: "Effect", flicker: "Flicker of lamps", photoSize: "Photo size",
    selfTimer: "Self-timer of the camera", timelapseBias: "Time lapse exposure", resolution: "Recording size",
    recordLimit: "Longest recording", audioBitrate: "Sound bitrate", mute: "Camera's beeps", keyFunction: "Key on the camera",
    triplePress: "Three presses of the key", gpsTimeout: "Position is valid for", serialNumber: "Stored serial number",
    imageProcessing: "Image processing switch", meteringWeights: "Metering weights", stillProgram: "Photo program",
    manualExposure: "Manual exposure", timelapse: "Time lapse", videoBitrate: "Recording bitrate", localTime: "Camera's clock",
    activeTime: "First use", mediaOffset: "Lens offset", originOffset: "Origin offset", whiteBalanceGain: "White balance calibration",
    vignetteLuma: "Vignette luma", vignetteGain: "Vignette gain", system: "System command", systemCancel: "Cancel a system command",
  },
  fields: {
    mode: "Mode", value: "Value", value1: "Value 1", value2: "Value 2", value3: "Value 3", exposure1: "Exposure 1", exposure2: "Exposure 2",
    type: "Type", code: "Code", secondsSince1970: "Seconds since 1970", minutesWest: "Minutes west", typeInfo: "Type info",
    offset: "Offset", width: "Width", height: "Height", luma1: "Luma 1", luma2: "Luma 2", command: "Command", delay: "Delay",
    lens1a: "Lens 1 a", lens1b: "Lens 1 b", lens1c: "Lens 1 c", lens2a: "Lens 2 a", lens2b: "Lens 2 b", lens2c: "Lens 2 c", gain1: "Gain 1",
    gain2: "Gain 2", gain3: "Gain 3", gain4: "Gain 4", gain5: "Gain 5", gain6: "Gain 6",
  },
};

let table = english;

// Another language's table; what it lacks is shown in English.
export function useTexts(other) {
  table = { ...english, ...other };
}

export function t(key, values = {}) {
  const text = table[key] ?? key;
  return text.replace(/\{(\w+)\}/g, (whole, name) => (name in values ? String(values[name]) : whole));
}

// A text of a group, such as the outputs' states; the key itself where the table has none.
export function tOf(group, key) {
  return table[group][key] ?? String(key);
}

// Fills in the texts of the document's own elements.
export function translate(root = document) {
  for (const element of root.querySelectorAll("[data-text]")) element.textContent = t(element.dataset.text);
  for (const element of root.querySelectorAll("[data-label]")) label(element, t(element.dataset.label));
}

export function label(element, text) {
  element.setAttribute("aria-label", text);
  if (element.tagName === "BUTTON" || element.classList.contains("chip")) element.title = text;
}
