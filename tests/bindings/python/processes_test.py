"""Ctrl-C, child processes, and the end of the interpreter, each in a process of its own."""
import os
import signal
import subprocess
import sys

import pytest

from conftest import LIMIT

PROGRAM = """
import atexit
last = []  # what runs when the package has ended everything
atexit.register(lambda: [one() for one in last])
import os, sys, threading
from zeltarkasdk import *
camera = Camera.open(accessories=sys.argv[1], time_limit=30, request_time_limit=30)
"""


@pytest.fixture
def start(attach):
    """Starts a program with a camera that answers no question about its battery."""
    processes = []

    def started(text, *faults):
        bus = attach("--fault", "no-reply=0x4001", *faults).bus
        process = subprocess.Popen(
            [sys.executable, "-X", "faulthandler", "-c", PROGRAM + text, str(bus)],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        processes.append(process)
        return process

    yield started
    for one in processes:
        one.kill()
        one.communicate()


def ended(process, status=0):
    """What it has printed."""
    out, errors = process.communicate(timeout=2 * LIMIT)
    assert process.returncode == status, errors
    return out, errors


WAITS = {
    "a request": "camera.battery()",
    "an event": "camera.events().next()",
    "an opening": "Camera.open(accessories=sys.argv[1] + '/none', time_limit=30)",
    "an iteration": "list(camera.link_changes())",
    "a picture": "next(camera.pictures())",
    "a stream": "camera.stream(time_limit=30)",
}


@pytest.mark.parametrize("wait", WAITS.values(), ids=WAITS)
def test_ctrl_c_ends_a_wait_and_leaves_the_camera(start, wait):
    process = start(
        f"""
import signal
def interrupt():
    # Far longer than a thread that can run is kept from it: the main thread waits.
    seen, main = 0, threading.main_thread().ident
    while seen < 300_000:
        seen = seen + 1 if sys._current_frames()[main].f_code.co_filename.endswith("_waiting.py") else 0
    os.kill(os.getpid(), signal.SIGINT)
threading.Thread(target=interrupt, daemon=True).start()
try:
    {wait}
except KeyboardInterrupt:
    print(camera.card().state, flush=True)
""",
        "--fault",
        "no-reply=0x0004",  # the preview never starts
    )
    assert ended(process)[0] == "0\n"


def test_ctrl_c_in_a_loop_ends_it(start):
    process = start(
        """
camera.close()
import asyncio
async def main():
    async with Camera.open(accessories=sys.argv[1], time_limit=30) as camera:
        print("waits", flush=True)
        await camera.battery(time_limit=30)
try:
    asyncio.run(main())
except KeyboardInterrupt:
    print("ended")
"""
    )
    assert process.stdout.readline() == "waits\n"
    process.send_signal(signal.SIGINT)
    assert ended(process)[0] == "ended\n"


def test_a_child_process_is_told_whose_camera_it_is(start):
    process = start(
        """
events, pictures = camera.events(), camera.pictures()
picture = next(pictures)
if os.fork() == 0:
    for call in (camera.card, events.next, camera.events, lambda: camera.link_state, camera.photo, camera.stream):
        try:
            call()
        except InvalidError as error:
            print("child:", error, flush=True)
    print(memoryview(picture.luma)[0, 0] >= 0, flush=True)
    camera.close()
    del camera, events, pictures, picture
    sys.exit(0)
_, status = os.wait()
print("status", status, camera.card().state)
"""
    )
    out, _ = ended(process)
    assert out.count("a camera belongs to the process that opened it") == 6
    assert out.endswith("True\nstatus 0 0\n")


def test_a_child_process_may_open_a_camera_of_its_own(start, attach):
    process = start(
        """
if os.fork() == 0:
    own = Camera.open("B2", accessories=sys.argv[1], time_limit=30)
    print("child", own.battery().level, flush=True)
    sys.exit(0)
print("status", os.wait()[1], camera.card().state)
""",
        "--serial",
        "A1",
    )
    attach("--serial", "B2")
    assert ended(process)[0] == "child 100\nstatus 0 0\n"


ENDS = {
    "an open camera": "",
    "a waiting thread": "threading.Thread(target=camera.battery, daemon=True).start()",
    "busy threads": """
asked = threading.Semaphore(0)
def ask():
    while True:
        try:
            camera.card()
        except ZelError:
            pass
        asked.release()
for _ in range(4):
    threading.Thread(target=ask, daemon=True).start()
for _ in range(20):
    asked.acquire()""",
    "a subscription": "events = camera.events()",
    "pictures": "pictures = camera.pictures(); kept = [next(pictures), next(pictures).luma]",
    "a stream": "stream = camera.stream(sys.argv[1] + '.mp4'); packets = stream.packets(); next(packets)",
    "an opening": "import asyncio; asyncio.run(main())",
    "a dropped camera": "del camera",
    "a cycle": "class A: pass\na = A(); a.a = a; a.camera = camera; del camera",
}


@pytest.mark.parametrize("left", ENDS.values(), ids=ENDS)
def test_the_interpreter_ends_with(start, left):
    text = "async def main(): globals()['opening'] = Camera.open(accessories=sys.argv[1] + '/none', time_limit=30)\n"
    process = start(f"{text}{left}\nprint('ends', flush=True)")
    out, errors = ended(process)
    assert out == "ends\n" and "Fatal" not in errors


def test_a_file_is_whole_when_the_interpreter_ends(start):
    process = start(
        """
film = sys.argv[1] + ".mp4"
stream = camera.stream(film)
packets = stream.packets()
for _ in range(30):
    next(packets)
# It is in fragments until its end.
last.append(lambda: print(b"moov" in open(film, "rb").read(), b"moof" in open(film, "rb").read()))
"""
    )
    assert ended(process)[0] == "True False\n"


def test_a_camera_that_is_dropped_is_closed_and_told(start):
    process = start(
        """
import gc, warnings
warnings.simplefilter("always")
del camera
gc.collect()
with Camera.open(accessories=sys.argv[1], time_limit=30) as again:
    print(again.card().state)
"""
    )
    out, errors = ended(process)
    assert out == "0\n" and "ResourceWarning: a camera was never closed" in errors


def test_it_may_be_dropped_in_a_callback(start):
    process = start(
        """
def drop(done, total):
    global camera
    camera = None
    raise ValueError("dropped")
try:
    camera.photo(progress=drop)
except ValueError as error:
    print(error)
""",
        "--fault",
        "no-photo",
    )
    assert ended(process)[0] == "dropped\n"


def test_the_import_loads_neither_asyncio_nor_the_libraries():
    text = "import sys, zeltarkasdk; print('asyncio' in sys.modules, 'zeltarkasdk._zel' in sys.modules)"
    done = subprocess.run([sys.executable, "-c", text], capture_output=True, text=True, check=True, env=os.environ)
    assert done.stdout == "False False\n"
