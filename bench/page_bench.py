#!/usr/bin/env python3
"""How fast and how true the gateway's page is: page_bench.py FOLDER_OF_PROGRAMS [BROWSER...].

With the simulated camera at 1440x720 and 30 pictures a second, and a canvas of 640x320, for each browser:
  delay      from a picture's arrival at the gateway to drawn, median and 95th percentile, by WebCodecs, and by a video element with sound
  first      from loading the page to its first drawn picture, the camera already streaming
  panorama   PSNR of luma of the page's panorama against that of zelcam's own renderer of the same picture, both PNG at 1920x960
Needs a quiet machine, and the Debian packages of ./run test-page.
"""
import io
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/page"))
os.environ["ZEL_PROGRAMS"] = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/bin")

# pylint: disable=wrong-import-position  # the tests' helpers are found only now
import av  # noqa: E402
import numpy  # noqa: E402

from browser import Chromium, Firefox, wait_for  # noqa: E402
from gateway import PROGRAMS, Gateway  # noqa: E402

MEASURED = 8  # seconds of delays
AIMS = {"units": 60, "video": 250, "first": 1500, "chromium": 45, "firefox": 40}
COLLECT = "(document.documentElement.addEventListener('figures', ({ detail }) => (window.figures ??= []).push(detail)), 1)"


def shown(page):
    return page.js("document.querySelector('#state').dataset.state === '' && (window.figures ?? []).some(({ delay }) => delay !== null)")


def judged(value, aim, at_most=True):
    return "within" if (value <= aim if at_most else value >= aim) else "BEYOND"


def measure_delay(page, way):
    """Median and 95th percentile in milliseconds, after the start has settled."""
    wait_for(lambda: shown(page), f"figures of {way}")
    time.sleep(3)
    page.js("(window.figures = [], 1)")
    time.sleep(MEASURED)
    delays = sorted(page.js(f"window.figures.filter(({{ way }}) => way === '{way}').flatMap(({{ delays }}) => delays)"))
    assert len(delays) > 20, f"{len(delays)} pictures were drawn in {MEASURED} s"
    return delays[len(delays) // 2], delays[int(len(delays) * 0.95)], len(delays) / MEASURED


def measure_first(browser, gateway):
    """Milliseconds from loading to the first drawn picture, while another page keeps the camera streaming."""
    browser.open("about:blank")
    browser.open(f"{gateway.address}?canvas=640x320")
    browser.wait("performance.getEntriesByName('first picture').length > 0")
    return browser.js("performance.getEntriesByName('first picture')[0].startTime")


def luma(png):
    with av.open(io.BytesIO(png)) as container:
        rgb = next(container.decode(video=0)).to_ndarray(format="rgb24").astype(numpy.float64)
    return rgb @ (0.299, 0.587, 0.114)


def psnr(one, other):
    return 10 * numpy.log10(255 ** 2 / numpy.mean((one - other) ** 2))


def film_at_rest(folder):
    """One picture of the scene, which is sent again and again."""
    def run(*command):
        subprocess.run(command, check=True, capture_output=True)
    bus = folder / "bus"
    bus.mkdir(mode=0o700)
    camera = subprocess.Popen([PROGRAMS / "zelcam-sim", "--accessories", bus], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        run(PROGRAMS / "zelcam", "--accessories", bus, "live", "--no-stitch", "-o", folder / "film.ts", "--duration", "3")
    finally:
        camera.terminate()
        camera.wait()
    with av.open(str(folder / "film.ts")) as film:  # a transport stream holds start codes and parameter sets
        still = next(bytes(packet) for packet in film.demux(video=0) if packet.is_keyframe)
    path = folder / "still.h264"
    path.write_bytes(still * 30)
    return path


def measure_panorama(kinds):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        still = film_at_rest(folder)
        gateway = Gateway("--video", str(still))
        try:
            # As `zelcam preview --snapshot --stitch` shows it, in the size of the page's snapshot.
            offset = gateway.ask(gateway.camera_path("lens"))["offset"]
            reference = folder / "reference.png"
            subprocess.run([PROGRAMS / "zelcam", "thumbnail", still, "-o", reference, "--offset", offset, "--size", "1920x960"], check=True)
            for kind in kinds:
                compare_panorama(kind, gateway, luma(reference.read_bytes()))
        finally:
            gateway.close()


def compare_panorama(kind, gateway, reference):
    browser = kind()
    try:
        browser.open(f"{gateway.address}?canvas=1440x720")
        browser.js(COLLECT)
        wait_for(lambda: shown(browser), "the picture")
        browser.click("#snapshot-whole")
        value = psnr(luma(browser.downloaded("panorama_*.png").read_bytes()), reference)
        print(f"{browser.name:9} panorama  {value:6.1f} dB of luma ({judged(value, AIMS[browser.name], False)} {AIMS[browser.name]})")
    finally:
        browser.close()


def measure_one(kind, gateway):
    browser = kind()
    try:
        browser.size(1280, 720)
        browser.open(f"{gateway.address}?canvas=640x320")
        browser.js(COLLECT)
        for way in ("units", "video"):
            if way == "video":
                browser.click("#sound")
            middle, late, rate = measure_delay(browser, way)
            print(f"{browser.name:9} delay     {middle:6.0f} ms, 95 % {late:.0f} ms, {rate:.1f} pictures a second, by {way} ({judged(middle, AIMS[way])} {AIMS[way]})")
        first = measure_first(browser, gateway)
        print(f"{browser.name:9} first     {first:6.0f} ms ({judged(first, AIMS['first'])} {AIMS['first']})")
    finally:
        browser.close()


def main():
    kinds = [kind for kind in (Chromium, Firefox) if len(sys.argv) < 3 or kind.__name__.lower() in sys.argv[2:]]
    gateway = Gateway()
    try:
        for kind in kinds:
            measure_one(kind, gateway)
    finally:
        gateway.close()
    measure_panorama(kinds)


if __name__ == "__main__":
    main()
