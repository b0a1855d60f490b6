"""Simulated cameras, each on a bus of its own."""
import os
import subprocess
from pathlib import Path

import pytest

from zeltarkasdk import Camera

SIMULATOR = os.environ["ZELCAM_SIM"]
LIMIT = 30.0  # seconds, for whatever a busy machine may need


class Simulator:
    """A camera that is attached to a bus until it is stopped."""

    def __init__(self, bus: Path, *arguments: str) -> None:
        self.bus = bus
        self.process = subprocess.Popen(
            [SIMULATOR, "--accessories", str(bus), *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )
        line = self.process.stdout.readline()
        assert "is attached" in line, line

    def tell(self, line: str) -> None:
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def stop(self) -> None:
        self.process.terminate()
        self.process.communicate(timeout=60)


@pytest.fixture
def attach(tmp_path):
    """Attaches a camera with these arguments of the simulator."""
    simulators = []

    def attached(*arguments: str) -> Simulator:
        simulators.append(Simulator(tmp_path / "bus", *arguments))
        return simulators[-1]

    yield attached
    for one in simulators:
        one.stop()


def opened(simulator: Simulator, **options) -> Camera:
    limits = {"time_limit": LIMIT, "request_time_limit": LIMIT, "transfer_time_limit": 2 * LIMIT}
    return Camera.open(accessories=simulator.bus, **{**limits, **options})


@pytest.fixture
def simulator(attach):
    return attach()


@pytest.fixture
def camera(simulator):
    with opened(simulator) as camera:
        yield camera
