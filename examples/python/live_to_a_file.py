"""Streams to files or servers for so many seconds, stitched where a width is given.

    live_to_a_file.py SECONDS WIDTH OUTPUT...      (WIDTH 0: the camera's own pictures)
"""
import sys
import time

from zeltarkasdk import Camera, Stitched


def main(seconds: float, width: int, outputs: list[str]) -> None:
    stitched = Stitched(width, width // 2) if width else None
    with Camera.open() as camera, camera.stream(*outputs, stitched=stitched) as stream:
        print(f"{stream.headers.width} x {stream.headers.height}", flush=True)
        end = time.monotonic() + seconds
        while time.monotonic() < end or any(one.pictures < 1 for one in stream.outputs):
            time.sleep(0.1)  # Ctrl-C ends it too, and leaves whole files
    for one in stream.outputs:
        print(f"{one.name}: {one.pictures} pictures, {one.state.name.lower()} {one.fault}".rstrip())


main(float(sys.argv[1]), int(sys.argv[2]), sys.argv[3:])
