"""Drives a 360-degree camera: requests, photos, events, pictures and streams.

>>> from zeltarkasdk import Camera
>>> with Camera.open() as camera:
...     print(camera.battery().level)

With asyncio, the same is awaited: `async with Camera.open() as camera: await camera.battery()`.
"""
from typing import TYPE_CHECKING

from ._streaming import StreamHeaders
from ._values import (
    ActivationTime,
    Battery,
    Card,
    EventType,
    FrameType,
    Lens,
    LensOffset,
    LinkState,
    LinkStatistics,
    ManualExposure,
    MeteringWeights,
    Motion,
    Orientation,
    OriginOffset,
    OutputReport,
    OutputState,
    Position,
    Status,
    StoredFile,
    StreamStatistics,
    Timelapse,
    Track,
    VideoInfo,
    VignetteGain,
    VignetteLuma,
    WhiteBalanceGain,
)
from .camera import Camera
from .errors import (
    ClosedError,
    GivenUpError,
    InUseError,
    InvalidError,
    LostError,
    MediaError,
    NoCameraError,
    OldFirmwareError,
    PlatformError,
    RefusedError,
    SilentError,
    TimeLimitError,
    ZelError,
)
from .photos import Jpeg, Photo
from .pictures import Format, Logo, Picture, Stitched
from .streams import Stream, StreamReader
from .subscriptions import Event, Packet, Subscription

if TYPE_CHECKING:
    from .aio import AsyncCamera, AsyncStream, AsyncSubscription

__all__ = [
    "ActivationTime",
    "AsyncCamera",
    "AsyncStream",
    "AsyncSubscription",
    "Battery",
    "Camera",
    "Card",
    "ClosedError",
    "Event",
    "EventType",
    "Format",
    "FrameType",
    "GivenUpError",
    "InUseError",
    "InvalidError",
    "Jpeg",
    "Lens",
    "LensOffset",
    "LinkState",
    "LinkStatistics",
    "Logo",
    "LostError",
    "ManualExposure",
    "MediaError",
    "MeteringWeights",
    "Motion",
    "NoCameraError",
    "OldFirmwareError",
    "Orientation",
    "OriginOffset",
    "OutputReport",
    "OutputState",
    "Packet",
    "Photo",
    "Picture",
    "PlatformError",
    "Position",
    "RefusedError",
    "SilentError",
    "Status",
    "Stitched",
    "StoredFile",
    "Stream",
    "StreamHeaders",
    "StreamReader",
    "StreamStatistics",
    "Subscription",
    "TimeLimitError",
    "Timelapse",
    "Track",
    "VideoInfo",
    "VignetteGain",
    "VignetteLuma",
    "WhiteBalanceGain",
    "ZelError",
]


def __getattr__(name: str) -> object:
    # asyncio takes longer to import than all of this package.
    if name in ("AsyncCamera", "AsyncStream", "AsyncSubscription"):
        from . import aio

        return getattr(aio, name)
    if name == "__version__":
        from ._native import native

        return native().version()
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
