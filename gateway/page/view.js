// What the viewer looks at: the projection, the direction and the zoom, and which direction a point of the screen shows.

export const Projection = Object.freeze({ sphere: "sphere", panorama: "panorama", planet: "planet", lenses: "lenses" });
export const kProjections = Object.values(Projection);

const kZoomStep = 1.15;
const kWidestSphere = 110; // degrees, along the shorter side
const kNarrowestSphere = 15;
const radians = (degrees) => (degrees * Math.PI) / 180;
const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

// Where each projection begins: the planet is looked at from above the zenith.
const kHome = {
  sphere: { yaw: 0, pitch: 0, zoom: 1.45 },
  panorama: { yaw: 0, pitch: 0, zoom: 1 },
  planet: { yaw: 0, pitch: -90, zoom: 1 },
  lenses: { yaw: 0, pitch: 0, zoom: 1 },
};

export function wrapped(degrees) {
  return ((((degrees + 180) % 360) + 360) % 360) - 180;
}

// Columns of a rotation from the viewer's axes (x right, y down, z forward) to the world's.
export function turnOf(yaw, pitch, roll = 0) {
  const [cy, sy] = [Math.cos(radians(yaw)), Math.sin(radians(yaw))];
  const [cp, sp] = [Math.cos(radians(pitch)), Math.sin(radians(pitch))];
  const [cr, sr] = [Math.cos(radians(roll)), Math.sin(radians(roll))];
  const right = [cy, 0, -sy];
  const down = [sy * sp, cp, cy * sp];
  const forward = [sy * cp, -sp, cy * cp];
  const mix = (a, b, c, s) => a.map((value, i) => value * c + b[i] * s);
  return [...mix(right, down, cr, sr), ...mix(down, right, cr, -sr), ...forward];
}

export class View {
  #listeners = new Set();
  #turnOfPhone = null;

  constructor(projection = Projection.sphere) {
    this.projection = projection;
    Object.assign(this, kHome[projection]);
    this.width = 16;
    this.height = 9;
  }

  onChange(listener) {
    this.#listeners.add(listener);
    return () => this.#listeners.delete(listener);
  }

  #changed() {
    for (const listener of this.#listeners) listener(this);
  }

  setProjection(projection) {
    this.projection = projection;
    Object.assign(this, kHome[projection]);
    this.#turnOfPhone = null;
    this.#changed();
  }

  home() {
    this.setProjection(this.projection);
  }

  setSize(width, height) {
    this.width = Math.max(width, 1);
    this.height = Math.max(height, 1);
    this.#changed();
  }

  turnTo(yaw, pitch) {
    this.yaw = wrapped(yaw);
    this.pitch = clamp(pitch, -90, 90);
    this.#changed();
  }

  turnBy(right, up) {
    this.#turnOfPhone = null;
    this.turnTo(this.yaw + right, this.pitch + up);
  }

  // The direction that a phone is held in, as a rotation; it holds until the view is turned otherwise.
  turnWithPhone(turn, yaw, pitch) {
    this.#turnOfPhone = turn;
    this.turnTo(yaw, pitch);
  }

  // steps: positive ones come closer.
  zoomBy(steps) {
    this.zoomTo(this.zoom * kZoomStep ** steps);
  }

  zoomTo(zoom) {
    const closest = this.projection === Projection.sphere ? kWidestSphere / kNarrowestSphere : 8;
    this.zoom = clamp(zoom, this.projection === Projection.planet ? 0.3 : 1, closest);
    this.#changed();
  }

  // Moves the picture with a pointer that has moved by so many pixels of a screen of that height.
  drag(right, down) {
    const perPixel = this.degreesPerPixel();
    if (this.projection === Projection.planet) return this.turnBy(-right * perPixel, 0);
    this.turnBy(-right * perPixel, down * perPixel);
  }

  degreesPerPixel() {
    switch (this.projection) {
      case Projection.sphere: return this.fieldOfView() / Math.min(this.width, this.height);
      case Projection.planet: return 360 / this.width;
      default: return 360 / this.#fitted()[0] / this.zoom;
    }
  }

  // Degrees along the shorter side, in the sphere.
  fieldOfView() {
    return kWidestSphere / this.zoom;
  }

  // The largest picture of twice its height in this screen.
  #fitted() {
    return this.width > 2 * this.height ? [2 * this.height, this.height] : [this.width, this.width / 2];
  }

  // What the renderer needs, in plain values that can be sent to a worker.
  shape() {
    const shorter = Math.min(this.width, this.height);
    const turn = this.#turnOfPhone ?? turnOf(this.yaw, this.pitch);
    switch (this.projection) {
      case Projection.sphere: {
        const half = Math.tan(radians(this.fieldOfView() / 2));
        return { projection: this.projection, turn, reach: [(half * this.width) / shorter, (half * this.height) / shorter], from: [0, 0] };
      }
      case Projection.planet: {
        const reach = 1.9 / this.zoom;
        return { projection: this.projection, turn, reach: [(reach * this.width) / shorter, (reach * this.height) / shorter],
          from: [0, 0] };
      }
      default: {
        const [width, height] = this.#fitted();
        const reach = [(Math.PI * this.width) / width / this.zoom, (Math.PI / 2) * (this.height / height) / this.zoom];
        return { projection: this.projection, turn: turnOf(0, 0), reach, from: [radians(this.yaw), radians(this.pitch)] };
      }
    }
  }
}

// The whole sphere as a picture of twice its height, whatever the viewer looks at.
export function wholePanorama() {
  return { projection: Projection.panorama, turn: turnOf(0, 0), reach: [Math.PI, Math.PI / 2], from: [0, 0] };
}
