"""Each example as it is printed, against a simulated camera."""
import os
import re
import signal
import subprocess
import sys
import textwrap
from pathlib import Path

import pytest

from conftest import LIMIT

EXAMPLES = Path(__file__).parents[3] / "examples/python"
NAMES = {"info", "bracket", "time_lapse", "preview_to_numpy", "live_to_a_file", "watch_events"}


@pytest.fixture
def start(simulator, tmp_path):
    processes = []

    def started(name, *arguments):
        process = subprocess.Popen(
            [sys.executable, EXAMPLES / f"{name}.py", *arguments],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            cwd=tmp_path,
            env={**os.environ, "ZEL_ACCESSORIES": str(simulator.bus)},
        )
        processes.append(process)
        return process

    yield started
    for one in processes:
        one.kill()
        one.communicate()


def printed(process):
    out, errors = process.communicate(timeout=4 * LIMIT)
    assert process.returncode == 0, errors
    return out


def test_these_are_all():
    assert {path.stem for path in EXAMPLES.glob("*.py")} == NAMES
    for name in NAMES:
        text = (EXAMPLES / f"{name}.py").read_text()
        assert len(text.splitlines()) < 60 and f"    {name}.py" in text


def programs():
    """Those that the page shows, by their order."""
    page = (Path(__file__).parents[3] / "docs/python.md").read_text()
    blocks = re.findall(r"(?:^(?:    .*)?\n)+", page, re.MULTILINE)
    return [textwrap.dedent(one) for one in blocks if "import Camera" in one]


@pytest.mark.parametrize("at, shown", [(0, "battery: 100 %"), (1, "battery: 100 %"), (2, r"\(720, 1440\) "), (3, r"\d+")])
def test_the_pages_programs(start, at, shown, tmp_path):
    assert len(programs()) == 4
    (tmp_path / "program.py").write_text(programs()[at])
    assert re.match(shown, printed(start(tmp_path / "program")))


def test_info(start):
    out = printed(start("info"))
    assert out.splitlines()[:2] == ["Example 360, serial E1A0001, firmware E1_2.0.1_192", "battery: 100 %"]
    assert re.search(r"card: \d\.\d of 8\.0 GiB free\nleft: \d+ photos or \d+ s of video\n$", out)


def test_bracket(start, tmp_path):
    out = printed(start("bracket", str(tmp_path), "-1", "1"))
    steps = re.findall(r"^step (-?1): (.*\.jpg)$", out, re.MULTILINE)
    assert [step for step, _ in steps] == ["-1", "1"] and all(os.path.getsize(path) > 1000 for _, path in steps)


def test_time_lapse(start, tmp_path):
    paths = printed(start("time_lapse", str(tmp_path), "2", "0.1")).split()
    assert len(paths) == 2 and all(os.path.getsize(path) > 1000 for path in paths)


def test_preview_to_numpy(start, tmp_path):
    out = printed(start("preview_to_numpy", "3", "a.ppm"))
    assert re.fullmatch(r"(1440 x 720: mean \d+\n){3}", out)
    content = (tmp_path / "a.ppm").read_bytes()
    header = b"P6 1440 720 255\n"
    assert content.startswith(header) and len(content) == len(header) + 1440 * 720 * 3
    red, green, blue = content[len(header) + (100 * 1440 + 300) * 3 :][:3]
    assert blue > red + 40, "the sky of the camera's scene is blue"


def test_live_to_a_file(start, tmp_path):
    out = printed(start("live_to_a_file", "1", "0", "a.mp4", "b.ts"))
    assert re.fullmatch(r"1440 x 720\na.mp4: \d+ pictures, finished\nb.ts: \d+ pictures, finished\n", out)
    assert all((tmp_path / name).stat().st_size > 10_000 for name in ("a.mp4", "b.ts"))


def test_live_to_a_file_until_ctrl_c(start, tmp_path):
    process = start("live_to_a_file", "1000", "480", "a.mp4")
    assert process.stdout.readline() == "480 x 240\n"
    while not any(one.is_file() and one.stat().st_size > 10_000 for one in tmp_path.iterdir()):
        assert process.poll() is None
    process.send_signal(signal.SIGINT)
    process.communicate(timeout=4 * LIMIT)
    content = (tmp_path / "a.mp4").read_bytes()
    assert b"moov" in content and b"moof" not in content, "it was in fragments until its end"


def test_watch_events(start, simulator, tmp_path):
    process = start("watch_events", str(tmp_path))
    assert process.stdout.readline() == "press the camera's key\n"
    simulator.tell("key 1")
    assert re.fullmatch(r"key 1: .*\.jpg\n", process.stdout.readline())
    simulator.tell("battery-low 9")
    assert printed(process) == "the battery is at 9 %\n"
