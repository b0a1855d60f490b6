"""What streams have in common, whether they wait or are awaited."""
import os
from typing import Any, NamedTuple, Sequence

from ._native import milliseconds
from ._values import OutputReport, OutputState, Track
from .photos import PathLike
from .pictures import Format, Stitched, logo_arguments
from .subscriptions import Packet

_START = b"\0\0\0\1"


class StreamHeaders(NamedTuple):
    """What a receiver must know before the first packet.

    Attributes:
        width, height: pixels
        spherical: the pictures are equirectangular, and the whole sphere
        sps, pps: parameter sets, without start codes
        audio_config: AudioSpecificConfig of the sound, which is AAC-LC
    """

    width: int
    height: int
    spherical: bool
    sps: bytes
    pps: bytes
    audio_config: bytes

    @property
    def annexb(self) -> bytes:
        """Both parameter sets behind start codes: what a file of packets begins with, and a decoder's extra data."""
        return _START + self.sps + _START + self.pps

    def adts(self, length: int) -> bytes:
        """The header of an AAC frame of so many bytes in a file of sound."""
        bits = int.from_bytes(self.audio_config[:2], "big")
        profile, rate, channels = (bits >> 11) - 1, bits >> 7 & 15, bits >> 3 & 15
        size = length + 7
        return bytes(
            (
                0xFF,
                0xF1,
                profile << 6 | rate << 2 | channels >> 2,
                (channels & 3) << 6 | size >> 11,
                size >> 3 & 0xFF,
                (size & 7) << 5 | 0x1F,
                0xFC,
            )
        )


def start_arguments(
    outputs: Sequence[PathLike], format: Format | None, stitched: Stitched | None, time_limit: float | None
) -> tuple[object, ...]:
    """The arguments of the extension's stream()."""
    for one in outputs:
        if not isinstance(one, (str, os.PathLike)):
            raise TypeError(f"an output must be a str or a path, not {type(one).__name__}")
    addresses = tuple(os.fspath(one) for one in outputs)
    how = stitched or Stitched()
    return (
        milliseconds(time_limit),
        *(format or Format()),
        addresses,
        int(stitched is not None),
        how.width,
        how.height,
        how.bitrate,
        int(how.remove_purple),
        *logo_arguments(how),
    )


def report_of(told: Any) -> OutputReport:
    report = OutputReport._make(told)
    return report._replace(state=OutputState(report.state))


def file_bytes(packet: Packet, headers: StreamHeaders) -> bytes:
    """A packet as it stands in a file of its track alone."""
    if packet.track == Track.AUDIO:
        return headers.adts(len(packet.data)) + packet.data
    return headers.annexb + packet.data if packet.key else packet.data
