// Requests to the gateway. Everything is asked of the server that the page comes from.

const kRoot = "/api/v1/";

// What went wrong, in the server's words; status is 0 where the server could not be reached.
export class RequestError extends Error {
  constructor(status, problem) {
    super(problem?.detail || problem?.title || "");
    this.status = status;
    this.code = problem?.code;
    this.domain = problem?.domain;
  }
}

// The token from the address, kept in a cookie for this server alone, so that pictures and events bear it too.
export function keepToken() {
  const token = new URLSearchParams(location.hash.slice(1)).get("token");
  if (!token) return;
  const secure = location.protocol === "https:" ? "; Secure" : "";
  document.cookie = `zel_token=${encodeURIComponent(token)}; Path=/; SameSite=Strict; Max-Age=31536000${secure}`;
  history.replaceState(null, "", location.pathname + location.search);
}

export function addressOf(...parts) {
  return kRoot + parts.map(encodeURIComponent).join("/");
}

async function problemOf(answer) {
  try {
    return await answer.json();
  } catch {
    return { title: answer.statusText };
  }
}

async function ask(method, address, body, signal) {
  const options = { method, signal, cache: "no-store", headers: {} };
  if (body !== undefined) {
    options.headers["Content-Type"] = "application/json";
    options.body = JSON.stringify(body);
  }
  let answer;
  try {
    answer = await fetch(address, options);
  } catch (fault) {
    throw new RequestError(0, { title: fault.message });
  }
  if (!answer.ok) throw new RequestError(answer.status, await problemOf(answer));
  return answer.status === 204 || answer.headers.get("Content-Length") === "0" ? null : answer.json().catch(() => null);
}

export const get = (address, signal) => ask("GET", address, undefined, signal);
export const post = (address, body) => ask("POST", address, body);
export const remove = (address) => ask("DELETE", address);

export const cameras = async () => (await get(addressOf("cameras"))).cameras ?? [];
export const files = async () => (await get(addressOf("files"))).files ?? [];
export const fileAddress = (name, width) => addressOf("files", name) + (width ? `?width=${width}` : "");

// One camera's rows of the interface.
export class CameraApi {
  constructor(serial) {
    this.serial = serial;
  }

  address(...parts) {
    return addressOf("cameras", this.serial, ...parts);
  }

  info() { return get(this.address()); }
  lens() { return get(this.address("lens")); }
  photo(body) { return post(this.address("photo"), body); }
  record(action) { return post(this.address("record"), { action }); }
  outputs() { return get(this.address("outputs")); }
  beginOutput(body) { return post(this.address("outputs"), body); }
  endOutput(id) { return remove(this.address("outputs", String(id))); }

  // What the operation gives; throws where the camera refuses.
  async call(operation, args = []) {
    return (await post(this.address("call"), { operation, args })).result ?? {};
  }
}
