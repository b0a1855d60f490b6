"""Real browsers, driven by WebDriver BiDi: Chromium through its driver, Firefox directly, each with a profile of its own."""
import asyncio
import base64
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import urllib.request
from pathlib import Path

import websockets

LIMIT = 60  # seconds for anything that a browser is asked for

# A name that leads to this machine, but whose plain HTTP is no secure context, unlike that of localhost.
PLAIN_HOST = "zel.test"
FIREFOX_SETTINGS = """
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("app.update.auto", false);
user_pref("browser.download.useDownloadDir", true);
user_pref("browser.download.folderList", 2);
user_pref("browser.download.dir", "{downloads}");
user_pref("browser.download.alwaysOpenPanel", false);
user_pref("network.dns.localDomains", "zel.test");
user_pref("webgl.force-enabled", true);
user_pref("media.autoplay.default", 0);
user_pref("network.captive-portal-service.enabled", false);
user_pref("network.connectivity-service.enabled", false);
"""
KEYS = {"ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014", "ArrowDown": "\ue015", "Tab": "\ue004",
        "Enter": "\ue007", "Escape": "\ue00c", "Home": "\ue011", "Space": " ", "Shift": "\ue008"}


def wait_for(what, describe, limit=LIMIT, pause=0.1):
    """What it gives once it is true; fails with what was waited for after a generous limit."""
    end = time.monotonic() + limit
    while True:
        found = what()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"waited {limit} s in vain for: {describe() if callable(describe) else describe}")
        time.sleep(pause)


class Process:
    """A program of its own process group, with its output in a file."""

    def __init__(self, command, log, env=None):
        self.log = Path(log)
        with open(log, "wb") as output:
            # pylint: disable=consider-using-with  # stop() ends it
            self.process = subprocess.Popen(command, stdout=output, stderr=subprocess.STDOUT, start_new_session=True,
                                            stdin=subprocess.PIPE, env={**os.environ, **(env or {})})

    def tell(self, line):
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()

    def line(self, pattern, limit=LIMIT):
        def find():
            if self.process.poll() is not None and not re.search(pattern, self.log.read_text(errors="replace")):
                raise AssertionError(f"ended early: {self.log.read_text(errors='replace')[-2000:]}")
            return re.search(pattern, self.log.read_text(errors="replace"))
        return wait_for(find, f"{pattern} in {self.log}", limit)

    def stop(self):
        for sign in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(self.process.pid, sign)
            except ProcessLookupError:
                break
            try:
                self.process.wait(10)
                break
            except subprocess.TimeoutExpired:
                continue
        try:  # what it has started and left behind
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass


class Browser:
    """One browser with one page."""

    def __init__(self, name, socket, processes, folder):
        self.name = name
        self.downloads = folder / "downloads"
        self.messages = []
        self._socket_address = socket
        self._processes = processes
        self._folder = folder
        self._loop = asyncio.new_event_loop()
        self._last = 0
        self._socket = self._loop.run_until_complete(self._connect())

    async def _connect(self):
        end = time.monotonic() + LIMIT
        while True:
            try:
                return await websockets.connect(self._socket_address, max_size=None, ping_interval=None)
            except OSError:
                if time.monotonic() > end:
                    raise
                await asyncio.sleep(0.2)

    def begin(self):
        self.send("session.subscribe", events=["log.entryAdded"])
        self.context = self.send("browsingContext.getTree")["contexts"][0]["context"]
        return self

    def send(self, method, **params):
        self._last += 1
        return self._loop.run_until_complete(asyncio.wait_for(self._exchange(self._last, method, params), LIMIT))

    async def _exchange(self, number, method, params):
        await self._socket.send(json.dumps({"id": number, "method": method, "params": params}))
        while True:
            answer = json.loads(await self._socket.recv())
            if answer.get("method") == "log.entryAdded":
                self.messages.append(f"{answer['params'].get('level')}: {answer['params'].get('text')}")
            if answer.get("id") == number:
                if answer.get("type") == "error" or "error" in answer:
                    raise RuntimeError(f"{method}: {answer.get('error')}: {answer.get('message')}")
                return answer.get("result", {})

    def open(self, address):
        self.send("browsingContext.navigate", context=self.context, url=address, wait="complete")

    def js(self, expression):
        """The value of an expression, or of a promise, as JSON."""
        answer = self.send("script.evaluate", expression=f"(async () => JSON.stringify(await ({expression})))()",
                           target={"context": self.context}, awaitPromise=True, userActivation=True)
        if answer["type"] == "exception":
            raise AssertionError(f"{expression}: {answer['exceptionDetails'].get('text')}")
        value = answer["result"].get("value")
        return None if value is None else json.loads(value)

    def wait(self, expression, limit=LIMIT):
        return wait_for(lambda: self.js(expression), lambda: f"{expression} in {self.name}; console: {self.messages[-8:]}", limit)

    def size(self, width, height):
        self.send("browsingContext.setViewport", context=self.context, viewport={"width": width, "height": height})

    def screenshot(self, path=None):
        image = base64.b64decode(self.send("browsingContext.captureScreenshot", context=self.context)["data"])
        if path:
            Path(path).write_bytes(image)
        return image

    def _act(self, *sources):
        self.send("input.performActions", context=self.context, actions=list(sources))

    def middle_of(self, selector):
        return self.js(f"(() => {{ const e = document.querySelector({json.dumps(selector)}); e.scrollIntoView({{block: 'nearest'}});"
                       "const r = e.getBoundingClientRect(); return [Math.round(r.x + r.width / 2), Math.round(r.y + r.height / 2)]; })()")

    def _reachable_middle(self, selector):
        x, y = self.middle_of(selector)
        reached = self.js(f"(() => {{ const h = document.elementFromPoint({x}, {y}); return h !== null && h.closest({json.dumps(selector)}) !== null; }})()")
        return (x, y) if reached else None

    def click(self, selector):
        x, y = wait_for(lambda: self._reachable_middle(selector), f"{selector}, which must not be covered, in {self.name}")
        self._act({"type": "pointer", "id": "mouse", "actions": [
            {"type": "pointerMove", "x": x, "y": y}, {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]})

    def drag(self, start, end, kind="mouse"):
        moves = [{"type": "pointerMove", "x": x, "y": y, "duration": 30}
                 for x, y in [((end[0] - start[0]) * i // 8 + start[0], (end[1] - start[1]) * i // 8 + start[1]) for i in range(1, 9)]]
        self._act({"type": "pointer", "id": f"finger {kind}", "parameters": {"pointerType": kind}, "actions": [
            {"type": "pointerMove", "x": start[0], "y": start[1]}, {"type": "pointerDown", "button": 0}, *moves, {"type": "pointerUp", "button": 0}]})

    def pinch(self, centre, before, after):
        """Two fingers, that far apart before and after."""
        def finger(name, sign):
            x, y = centre
            return {"type": "pointer", "id": name, "parameters": {"pointerType": "touch"}, "actions": [
                {"type": "pointerMove", "x": x + sign * before // 2, "y": y}, {"type": "pointerDown", "button": 0},
                *({"type": "pointerMove", "x": x + sign * (before + (after - before) * i // 6) // 2, "y": y, "duration": 30} for i in range(1, 7)),
                {"type": "pointerUp", "button": 0}]}
        self._act(finger("one", -1), finger("two", 1))

    def wheel(self, at, delta):
        self._act({"type": "wheel", "id": "wheel", "actions": [{"type": "scroll", "x": at[0], "y": at[1], "deltaX": 0, "deltaY": delta}]})

    def keys(self, *keys):
        """Presses keys one after the other; Shift+KEY with both."""
        actions = []
        for key in keys:
            parts = [KEYS.get(part, part) for part in (key.split("+") if len(key) > 1 and key not in KEYS else [key])]
            actions += [{"type": "keyDown", "value": part} for part in parts] + [{"type": "keyUp", "value": part} for part in reversed(parts)]
        self._act({"type": "key", "id": "keys", "actions": actions})

    def type(self, text):
        self._act({"type": "key", "id": "keys", "actions": [
            {"type": kind, "value": letter} for letter in text for kind in ("keyDown", "keyUp")]})

    def downloaded(self, pattern):
        """A file that the browser has stored, once it is whole."""
        def whole():
            return [path for path in self.downloads.glob(pattern) if path.stat().st_size > 0 and not list(self.downloads.glob("*.part")) and not list(self.downloads.glob("*.crdownload"))]
        return wait_for(whole, f"{pattern} in the downloads of {self.name}")[-1]

    def close(self):
        try:
            self._loop.run_until_complete(asyncio.wait_for(self._socket.close(), 5))
        except Exception:  # pylint: disable=broad-except  # the browser may have gone
            pass
        for process in reversed(self._processes):
            process.stop()
        self._loop.close()
        shutil.rmtree(self._folder, ignore_errors=True)


def own_folder(name):
    folder = Path(tempfile.mkdtemp(prefix=f"zel-page-{name}-"))
    (folder / "downloads").mkdir()
    (folder / "profile").mkdir()
    return folder


class Chromium(Browser):
    def __init__(self, *arguments):
        folder = own_folder("chromium")
        driver = Process(["chromedriver", "--port=0"], folder / "driver.log", {"HOME": str(folder)})
        self._port = driver.line(r"started successfully on port (\d+)").group(1)
        options = {"args": ["--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
                            "--autoplay-policy=no-user-gesture-required", "--force-color-profile=srgb", f"--user-data-dir={folder / 'profile'}",
                            f"--host-resolver-rules=MAP {PLAIN_HOST} 127.0.0.1", "--window-size=1280,800", *arguments],
                   "prefs": {"download.default_directory": str(folder / "downloads"), "download.prompt_for_download": False}}
        asked = {"capabilities": {"alwaysMatch": {"webSocketUrl": True, "unhandledPromptBehavior": "ignore", "goog:chromeOptions": options}}}
        session = self._post("/session", asked)
        self._session = session["sessionId"]
        super().__init__("chromium", session["capabilities"]["webSocketUrl"], [driver], folder)
        self.version = session["capabilities"]["browserVersion"]
        self.begin()

    def _post(self, path, body):
        request = urllib.request.Request(f"http://127.0.0.1:{self._port}{path}", json.dumps(body).encode(), {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=LIMIT) as answer:
            return json.load(answer)["value"]

    def devtools(self, command, **params):
        return self._post(f"/session/{self._session}/goog/cdp/execute", {"cmd": command, "params": params})


class Firefox(Browser):
    def __init__(self):
        folder = own_folder("firefox")
        (folder / "profile" / "user.js").write_text(FIREFOX_SETTINGS.replace("{downloads}", str(folder / "downloads")))
        screen = Process(["Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp"], folder / "screen.log")
        display = screen.line(r"^(\d+)\s").group(1)
        env = {"HOME": str(folder), "DISPLAY": f":{display}", "LIBGL_ALWAYS_SOFTWARE": "1", "MOZ_ENABLE_WAYLAND": "0"}
        program = Process(["firefox-esr", "--no-remote", "--profile", str(folder / "profile"), "--remote-debugging-port", "0",
                           "--width", "1280", "--height", "900", "about:blank"], folder / "firefox.log", env)
        socket = program.line(r"WebDriver BiDi listening on (ws://\S+)").group(1)
        super().__init__("firefox", f"{socket}/session", [screen, program], folder)
        self.version = self.send("session.new", capabilities={})["capabilities"]["browserVersion"]
        self.begin()
