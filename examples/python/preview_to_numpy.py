"""Shows the preview's pictures to NumPy: how bright they are, and the last one in colours as a PPM file.

    preview_to_numpy.py COUNT FILE.ppm
"""
import itertools
import sys
from typing import Any

import numpy

from zeltarkasdk import Camera, Format, Picture


def rgb(picture: Picture) -> Any:
    """Full-range BT.601 as an array of (height, width, 3)."""
    luma = numpy.asarray(picture.luma).astype(numpy.float32)
    chroma = numpy.asarray(picture.chroma).astype(numpy.float32) - 128
    blue, red = chroma.repeat(2, axis=0).repeat(2, axis=1)[: picture.height, : picture.width].transpose(2, 0, 1)
    planes = (luma + 1.402 * red, luma - 0.344 * blue - 0.714 * red, luma + 1.772 * blue)
    return numpy.stack(planes, axis=2).clip(0, 255).astype(numpy.uint8)


def main(count: int, name: str) -> None:
    with Camera.open() as camera, camera.pictures(Format(1440, 720, 15)) as pictures:
        for picture in itertools.islice(pictures, count):
            print(f"{picture.width} x {picture.height}: mean {numpy.asarray(picture.luma).mean():.0f}")
    with open(name, "wb") as file:
        file.write(b"P6 %d %d 255\n" % (picture.width, picture.height))
        file.write(rgb(picture).tobytes())


main(int(sys.argv[1]), sys.argv[2])
