"""Decoded pictures, and how they are asked for."""
from typing import Any, NamedTuple

from ._buffers import Bytes

_EPOCH = 978_307_200  # of the camera's times, 1 January 2001 UTC, in seconds since 1970


class Format(NamedTuple):
    """The preview's size and rate, one of those that the camera has.

    Units: pixels; pictures a second.
    """

    width: int = 1440
    height: int = 720
    fps: int = 30


class Logo(NamedTuple):
    """A picture for the nadir of panoramas.

    Attributes:
        width, height: pixels, each at most 8192
        pixels: height * width * 4 bytes: red, green, blue and straight alpha, rows from the top
    """

    width: int
    height: int
    pixels: Bytes


class Stitched(NamedTuple):
    """How panoramas are made: equirectangular, of the whole sphere.

    Attributes:
        width, height: pixels, both even
        bitrate: bits a second, of streams
        remove_purple: removes purple fringes
        logo: shown at the nadir
        logo_angle: degrees
    """

    width: int = 1920
    height: int = 960
    bitrate: int = 8_000_000
    remove_purple: bool = False
    logo: Logo | None = None
    logo_angle: float = 0.0


class Picture:
    """A decoded picture: NV12, full range. Both lenses side by side, or a panorama where it was stitched.

    Its planes show their bytes through the buffer protocol and cannot be written to. An array made of
    one with numpy.asarray() copies nothing, and keeps the picture as long as it is there itself.

    >>> luma = numpy.asarray(picture.luma)      # (height, width) of uint8
    >>> chroma = numpy.asarray(picture.chroma)  # (height / 2, width / 2, 2): Cb and Cr
    """

    __slots__ = ("_pixels",)

    def __init__(self, pixels: Any) -> None:
        if type(pixels).__name__ != "Pixels":
            raise TypeError("pictures come from Camera.pictures()")
        self._pixels = pixels

    @property
    def luma(self) -> Any:
        """The brightness: a buffer of shape (height, width), a byte each."""
        return self._pixels.luma

    @property
    def chroma(self) -> Any:
        """The colours: a buffer of shape (height / 2, width / 2, 2), rounded up; Cb, Cr, a byte each."""
        return self._pixels.chroma

    @property
    def width(self) -> int:
        """Pixels."""
        return int(self._pixels.width)

    @property
    def height(self) -> int:
        """Pixels."""
        return int(self._pixels.height)

    @property
    def time(self) -> int:
        """When it was taken: milliseconds since 1 January 2001 UTC, by the host's clock."""
        return int(self._pixels.time)

    @property
    def timestamp(self) -> float:
        """The same in seconds since 1970, as time.time() counts."""
        return self.time / 1000 + _EPOCH

    @property
    def colour(self) -> tuple[int, int, int]:
        """Code points of ITU-T H.273: primaries, transfer, matrix."""
        primaries, transfer, matrix = self._pixels.colour
        return (primaries, transfer, matrix)

    def __repr__(self) -> str:
        return f"<Picture {self.width} x {self.height} at {self.time}>"


def logo_arguments(stitched: Stitched) -> tuple[Bytes | None, int, int, float]:
    """A logo as the extension module takes it."""
    logo = stitched.logo
    return (None, 0, 0, stitched.logo_angle) if logo is None else (logo.pixels, logo.width, logo.height, stitched.logo_angle)
