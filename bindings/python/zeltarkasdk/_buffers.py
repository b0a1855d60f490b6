"""Types and conversions that the generated requests use."""
from typing import Any, Union

from ._values import Lens, LensOffset, Motion, Orientation, Position, VideoInfo

# What a call takes as bytes: these, and whatever shows its own in one piece, such as an array.
Bytes = Union[bytes, bytearray, memoryview]


def video_info(told: Any) -> VideoInfo:
    """The nested records of a video's metadata, out of nested tuples."""
    head, value, offset, position, motion, orientation, tail = told
    value_a, value_b, value_c, count, reserved1, reserved2, reserved3, lenses = offset
    return VideoInfo(
        head,
        value,
        LensOffset(
            value_a,
            value_b,
            value_c,
            count,
            reserved1,
            reserved2,
            reserved3,
            tuple(Lens._make(one) for one in lenses),
        ),
        Position._make(position),
        Motion._make(motion),
        Orientation._make(orientation),
        tail,
    )
