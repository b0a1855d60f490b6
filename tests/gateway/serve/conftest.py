"""A gateway and its simulated cameras, on a bus of their own."""
import http.client
import json
import os
import signal
import socket
import subprocess
import time
from pathlib import Path
from urllib.parse import urlsplit

import pytest

ZELCAM = os.environ["ZELCAM"]
SIMULATOR = os.environ["ZELCAM_SIM"]
PATIENCE = 60.0  # seconds, for whatever a busy machine may need


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end, what
        time.sleep(0.05)


def free_port() -> int:
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


class Simulator:
    def __init__(self, bus: Path, *arguments: str) -> None:
        self.process = subprocess.Popen([SIMULATOR, "--accessories", str(bus), *arguments],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        assert "is attached" in line, line

    def tell(self, line: str) -> None:
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def stop(self) -> None:
        self.process.terminate()
        self.process.communicate(timeout=PATIENCE)


class Answer:
    def __init__(self, response: http.client.HTTPResponse) -> None:
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()

    @property
    def json(self):
        return json.loads(self.body)


class Gateway:
    """zelcam serve, until it is stopped."""

    def __init__(self, folder: Path, *arguments: str, before: tuple = (), environment: dict | None = None) -> None:
        self.bus = folder / "bus"
        self.media = folder / "media"
        self.errors = folder / "serve.err"
        listen = [] if before or "--listen" in arguments else ["--listen", "127.0.0.1:0"]
        self.process = subprocess.Popen(
            [*before, ZELCAM, "--accessories", str(self.bus), "serve", *listen, "--media", str(self.media), *arguments],
            stdout=subprocess.PIPE, stderr=self.errors.open("w"), text=True, env={**os.environ, **(environment or {})})
        self.address = ""
        if before:
            return
        self.address = self.process.stdout.readline().strip()
        assert self.address, self.errors.read_text()
        self.port = urlsplit(self.address).port
        self.token = urlsplit(self.address).fragment.removeprefix("token=")

    def connect(self) -> http.client.HTTPConnection:
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)

    def ask(self, method: str, path: str, body=None, headers: dict | None = None) -> Answer:
        connection = self.connect()
        sent = dict(headers or {})
        if self.token:
            sent.setdefault("Authorization", "Bearer " + self.token)
        if body is not None:
            sent.setdefault("Content-Type", "application/json")
            body = body if isinstance(body, (bytes, str)) else json.dumps(body)
        try:
            connection.request(method, path, body, sent)
        except BrokenPipeError:
            pass  # too long a body is answered before all of it has been sent
        answer = Answer(connection.getresponse())
        connection.close()
        return answer

    def status_of(self, serial: str) -> str:
        cameras = self.ask("GET", "/api/v1/cameras").json["cameras"]
        return next((one["status"] for one in cameras if one["serial"] == serial), "unknown")

    def wait_for(self, serial: str, status: str = "streaming") -> None:
        wait_until(lambda: self.status_of(serial) == status, f"{serial} is not {status}: {self.errors.read_text()}")

    def stop(self, number: int = signal.SIGTERM) -> int:
        if self.process.poll() is None:
            self.process.send_signal(number)
        return self.process.wait(timeout=PATIENCE)


def zelcam(bus: Path, *arguments: str) -> subprocess.CompletedProcess:
    return subprocess.run([ZELCAM, "--accessories", str(bus), "--timeout", "30", *arguments],
                          capture_output=True, text=True, timeout=2 * PATIENCE, check=False)


@pytest.fixture
def attach(tmp_path):
    simulators = []

    def attached(*arguments: str) -> Simulator:
        simulators.append(Simulator(tmp_path / "bus", *arguments))
        return simulators[-1]

    yield attached
    for one in simulators:
        one.stop()


@pytest.fixture
def serve(tmp_path):
    gateways = []

    def served(*arguments: str, **more) -> Gateway:
        gateways.append(Gateway(tmp_path, *arguments, **more))
        return gateways[-1]

    yield served
    for one in gateways:
        one.stop()


@pytest.fixture
def gateway(attach, serve):
    """One with one camera that can be asked."""
    attach()
    one = serve()
    one.wait_for("E1A0001")
    return one
