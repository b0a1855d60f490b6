"""Takes a series of exposures, and saves its pictures.

    bracket.py FOLDER STEP...
"""
import sys

from zeltarkasdk import Camera, ZelError


def main(folder: str, steps: list[int]) -> int:
    try:
        with Camera.open() as camera:
            series = camera.bracket(steps, progress=lambda done, total: print(f"{done} of {total} pictures"))
    except ZelError as error:
        print(error, file=sys.stderr)
        return 1
    for step, picture in zip(steps, series.pictures):
        print(f"step {step}: {picture.save(folder)}")
    return 0


sys.exit(main(sys.argv[1], [int(one) for one in sys.argv[2:]]))
