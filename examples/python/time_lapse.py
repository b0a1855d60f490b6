"""Takes a photo every so many seconds, and saves each under the camera's name.

    time_lapse.py FOLDER COUNT SECONDS
"""
import sys
import time

from zeltarkasdk import Camera, LostError, TimeLimitError


def main(folder: str, count: int, seconds: float) -> None:
    with Camera.open() as camera:
        start = time.monotonic()
        for number in range(count):
            time.sleep(max(0.0, start + number * seconds - time.monotonic()))
            try:
                print(camera.photo().save(folder), flush=True)
            except (LostError, TimeLimitError) as error:  # the camera may be back with the next one
                print(error, file=sys.stderr)


main(sys.argv[1], int(sys.argv[2]), float(sys.argv[3]))
