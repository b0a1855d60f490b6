// The camera's events, its link and its figures, as the server sends them; asked for again whenever the connection ends.

const kRetry = 2000; // milliseconds

export class CameraEvents {
  #source = null;
  #timer = 0;
  #address;
  #on;

  // on: {link(data), camera(data), statistics(data), server(isThere)}.
  constructor(address, on) {
    this.#address = address;
    this.#on = on;
    this.#open();
  }

  #open() {
    const source = new EventSource(this.#address);
    this.#source = source;
    source.addEventListener("open", () => this.#on.server(true));
    source.addEventListener("error", () => this.#lost());
    for (const name of ["link", "camera", "statistics"]) {
      source.addEventListener(name, ({ data }) => {
        try {
          this.#on[name](JSON.parse(data));
        } catch (fault) {
          console.warn(`event ${name}:`, fault);
        }
      });
    }
  }

  // A browser gives up after some answers, so it is not left to it when to try again.
  #lost() {
    this.#source.close();
    this.#on.server(false);
    this.#timer = setTimeout(() => this.#open(), kRetry);
  }

  close() {
    clearTimeout(this.#timer);
    this.#source.close();
  }
}
