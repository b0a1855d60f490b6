// Turns the view as the phone is held, by the sensors of its direction.

const radians = (degrees) => (degrees * Math.PI) / 180;
const degrees = (value) => (value * 180) / Math.PI;

// From the device's axes (x right, y up, z out of the screen) to the Earth's (east, north, up); rows of a matrix.
function earthFromDevice(alpha, beta, gamma) {
  const [ca, sa] = [Math.cos(radians(alpha)), Math.sin(radians(alpha))];
  const [cb, sb] = [Math.cos(radians(beta)), Math.sin(radians(beta))];
  const [cg, sg] = [Math.cos(radians(gamma)), Math.sin(radians(gamma))];
  return [
    [ca * cg - sa * sb * sg, -sa * cb, ca * sg + sa * sb * cg],
    [sa * cg + ca * sb * sg, ca * cb, sa * sg - ca * sb * cg],
    [-cb * sg, sb, cb * cg],
  ];
}

const applied = (rows, vector) => rows.map((row) => row[0] * vector[0] + row[1] * vector[1] + row[2] * vector[2]);

// The viewer looks out of the phone's back. Gives the viewer's axes in the world (x right, y down, z forward), north ahead.
export function axesOf({ alpha, beta, gamma }, screenAngle) {
  const rows = earthFromDevice(alpha ?? 0, beta ?? 0, gamma ?? 0);
  const [c, s] = [Math.cos(radians(screenAngle)), Math.sin(radians(screenAngle))];
  const world = (device) => {
    const [east, north, up] = applied(rows, device);
    return [east, -up, north];
  };
  return { right: world([c, -s, 0]), down: world([-s, -c, 0]), forward: world([0, 0, -1]) };
}

export const headingOf = ({ forward }) => degrees(Math.atan2(forward[0], forward[2]));
export const pitchOf = ({ forward }) => degrees(Math.asin(Math.min(Math.max(-forward[1], -1), 1)));

function turnedAboutVertical(vector, angle) {
  const [c, s] = [Math.cos(radians(angle)), Math.sin(radians(angle))];
  return [vector[0] * c + vector[2] * s, vector[1], vector[2] * c - vector[0] * s];
}

export class PhoneSensors {
  #view;
  #ahead = null; // degrees from the phone's north to the view's
  #listener = (event) => this.#turn(event);

  constructor(view) {
    this.#view = view;
  }

  // Gives null, or the text that says why it cannot be.
  async start() {
    if (!globalThis.isSecureContext) return "phoneNeedsHttps";
    if (globalThis.DeviceOrientationEvent === undefined) return "phoneHasNone";
    if (DeviceOrientationEvent.requestPermission) {
      const answer = await DeviceOrientationEvent.requestPermission().catch(() => "denied");
      if (answer !== "granted") return "phoneRefused";
    }
    this.#ahead = null;
    addEventListener("deviceorientation", this.#listener);
    return null;
  }

  stop() {
    removeEventListener("deviceorientation", this.#listener);
  }

  #turn(event) {
    if (event.beta === null) return;
    const axes = axesOf(event, screen.orientation?.angle ?? 0);
    this.#ahead ??= this.#view.yaw - headingOf(axes);
    const turn = [axes.right, axes.down, axes.forward].flatMap((axis) => turnedAboutVertical(axis, this.#ahead));
    this.#view.turnWithPhone(turn, headingOf(axes) + this.#ahead, pitchOf(axes));
  }
}
