"""A camera that a gateway shares with another program."""
import os
import subprocess
import time

import pytest

from conftest import LIMIT, opened
from zeltarkasdk import InUseError


def grows(path, size):
    end = time.monotonic() + 2 * LIMIT
    while time.monotonic() < end:
        if path.exists() and path.stat().st_size >= size:
            return True
        time.sleep(0.01)
    return False


@pytest.fixture
def start():
    processes = []

    def started(*arguments):
        processes.append(
            subprocess.Popen([str(one) for one in arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        )
        return processes[-1]

    yield started
    for one in processes:
        one.kill()
        one.communicate()


def test_a_camera_is_shared_with_a_stream_of_another_program(simulator, start, tmp_path):
    gateway = start(os.environ["TEST_GATEWAY"], simulator.bus)
    while "has E1A0001" not in gateway.stdout.readline():
        assert gateway.poll() is None
    film = tmp_path / "film.mp4"
    live = start(os.environ["ZELCAM"], "--accessories", simulator.bus, "live", "-o", film, "--no-stitch")
    assert grows(film, 20_000)
    with opened(simulator) as camera:
        assert camera.battery().level > 0
        assert camera.photo().jpeg[:2] == b"\xff\xd8"
        assert grows(film, film.stat().st_size + 20_000)
    assert live.poll() is None
    with pytest.raises(InUseError):
        opened(simulator, direct=True)
