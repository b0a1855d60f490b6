"""A simulated camera, and `zelcam serve` that holds it, each a process, on a bus of their own."""
import json
import os
import shutil
import tempfile
import urllib.parse
import urllib.request
from pathlib import Path

from browser import PLAIN_HOST, Process, wait_for

PROGRAMS = Path(os.environ.get("ZEL_PROGRAMS", "build/release/bin")).resolve()
CACHE = {"XDG_CACHE_HOME": os.environ["ZEL_CACHE"]} if "ZEL_CACHE" in os.environ else {}  # of the camera's rendered pictures
SERIAL = "E1A0001"
NAME = "Example <b>360</b> & <img src=x onerror=alert(1)>"  # markup, which must be shown as it stands


class Gateway:
    def __init__(self, *simulator_options, serve_options=()):
        self.folder = Path(tempfile.mkdtemp(prefix="zel-page-gateway-"))
        self.bus = self.folder / "bus"
        self.bus.mkdir(mode=0o700)
        self.media = self.folder / "media"
        self._serve_options = serve_options
        self._port = 0
        self.camera = Process([str(PROGRAMS / "zelcam-sim"), "--accessories", str(self.bus), "--serial", SERIAL, "--name", NAME, *simulator_options],
                              self.folder / "camera.log", CACHE)
        wait_for(lambda: list(self.bus.glob("*.json")), "the simulated camera's accessory file")
        self.server = None
        self.start()

    def start(self):
        self.server = Process([str(PROGRAMS / "zelcam"), "--accessories", str(self.bus), "serve", "--listen", f"127.0.0.1:{self._port}",
                               "--media", str(self.media), "--host", PLAIN_HOST, *self._serve_options], self.folder / "serve.log")
        self._port = int(self.server.line(r"http://127\.0\.0\.1:(\d+)/").group(1))
        self.address = f"http://127.0.0.1:{self._port}/"
        self.plain_address = f"http://{PLAIN_HOST}:{self._port}/"

    def stop(self):
        self.server.stop()

    def ask(self, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(f"{self.address}api/v1/{path}", data, {"Content-Type": "application/json"} if data else {})
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)

    def camera_path(self, *parts):
        return "/".join(["cameras", urllib.parse.quote(SERIAL), *parts])

    def call(self, operation, *arguments):
        return self.ask(self.camera_path("call"), {"operation": operation, "args": list(arguments)})["result"]

    def close(self):
        self.server.stop()
        self.camera.stop()
        shutil.rmtree(self.folder, ignore_errors=True)
