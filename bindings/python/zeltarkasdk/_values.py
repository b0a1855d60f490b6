"""Numbers, records and results of cameras.

Made from bindings/requests.toml and the headers for C by tools/bindings/generate.py.
"""
from enum import IntEnum
from typing import NamedTuple


class Status(IntEnum):
    """Why a call gave nothing."""

    OK = 0
    NO_CAMERA = 1  # none is attached, or not the one that was asked for
    IN_USE = 2  # another process has it
    SILENT = 3  # it is attached and sends nothing
    LOST = 4  # the link is down; also where it went down while the call waited
    REFUSED = 5  # the camera refused, or its answer cannot be read
    OLD_FIRMWARE = 6  # the camera's firmware is too old
    TIME_LIMIT = 7  # no answer within the time limit
    CANCELLED = 8  # the call was given up
    CLOSED = 9  # the camera, the stream or the subscription has ended
    INVALID = 10  # the call itself is wrong: an argument, or a wait for oneself
    MEDIA = 11  # pictures or sound cannot be had, decoded, stitched or encoded
    PLATFORM = 12  # the host's system refused: a folder, a thread, memory


class LinkState(IntEnum):
    """How far the link to the camera has come."""

    CLOSED = 0  # no connection
    OPEN = 1  # a session is open, and no frame has come yet
    FLOWING = 2  # frames arrive: the camera can be asked
    SILENT = 3  # frames have stopped; the next one makes it flowing again


class EventType(IntEnum):
    """What the camera tells by itself. The comment of each says its numbers; those that it did not
    send are 0.
    """

    FIRMWARE_UPDATE_DONE = 0
    RECORD_AUTO_SPLIT = 1  # file time, file size; text: file name
    BATTERY_UPDATE = 2  # power type, level
    BATTERY_LOW = 3  # level
    BATTERY_SHUT_DOWN = 4  # level
    CARD_STATE = 5  # state
    KEY_PRESSED = 7  # key
    LENS_OFFSET = 8  # a number; text: the lens offset
    RECORD_CARD_FULL = 9  # as RECORD_AUTO_SPLIT
    RECORD_TIME_OVER = 10  # as RECORD_AUTO_SPLIT
    GYRO_DATA = 11
    SHUTTER_STATE = 12  # state
    DELETE_PROGRESS = 13  # three numbers


class FrameType(IntEnum):
    """Types of the frames that a camera sends; indices of LinkStatistics. 5 and 6 stay empty."""

    OTHER = 0  # of a type that is not known
    PREVIEW_VIDEO = 1
    PREVIEW_AUDIO = 2
    PHOTO = 3
    MESSAGE = 4
    REGISTERED = 7
    TIMESTAMP = 8
    FILE = 9


class OutputState(IntEnum):
    """What an output is doing."""

    WAITING = 0  # the stream's headers have not come
    CONNECTING = 1  # its file is being opened, or its server reached
    WRITING = 2
    RETRYING = 3  # lost its server, and waits before the next attempt
    FINISHED = 4
    FAILED = 5  # given up; `fault` says why


class Track(IntEnum):
    """The two tracks of a stream."""

    VIDEO = 0  # H.264
    AUDIO = 1  # AAC-LC


class Battery(NamedTuple):
    """The battery, and what the camera runs on.

    Attributes:
        power_type: 1 and 2 are what the camera calls so; 0 to 255
        level: in the camera's scale; 0 to 255
    """

    power_type: int
    level: int


class Card(NamedTuple):
    """The memory card.

    Attributes:
        state: the camera's code; 0 to 255
    """

    state: int
    capacity_bytes: int
    free_bytes: int


class ActivationTime(NamedTuple):
    """When the camera was first used.

    Attributes:
        seconds: since 1970; -2147483648 to 2147483647
        time_zone_minutes_west: -2147483648 to 2147483647
    """

    seconds: int
    time_zone_minutes_west: int


class StoredFile(NamedTuple):
    """What a photo or a recording was stored as on the card.

    Attributes:
        time: the camera's; 0 to 4294967295
        name: None where it is not ASCII
    """

    time: int
    size_bytes: int
    name: str | None


class Position(NamedTuple):
    """Where a picture is taken.

    Units: degrees, degrees, metres.
    """

    latitude: float = 0.0
    longitude: float = 0.0
    altitude: float = 0.0


class Motion(NamedTuple):
    """Acceleration and rotation along the three axes, in the camera's units."""

    ax: float = 0.0
    ay: float = 0.0
    az: float = 0.0
    gx: float = 0.0
    gy: float = 0.0
    gz: float = 0.0


class Orientation(NamedTuple):
    """Orientation as a quaternion in the camera's integer units.

    Attributes:
        x: -2147483648 to 2147483647
        y: -2147483648 to 2147483647
        z: -2147483648 to 2147483647
        w: -2147483648 to 2147483647
    """

    x: int = 0
    y: int = 0
    z: int = 0
    w: int = 0


class ManualExposure(NamedTuple):
    """Manual exposure.

    Attributes:
        value1: 0 to 255
        value2: 0 to 255
    """

    value1: int
    value2: int


class MeteringWeights(NamedTuple):
    """Weights of the exposure meter's fields.

    Attributes:
        weights: 96 bytes
    """

    weights: bytes


class WhiteBalanceGain(NamedTuple):
    """White-balance calibration.

    Attributes:
        value1: 0 to 255
        value2: 0 to 255
        gains: 4 of them
    """

    value1: int
    value2: int
    gains: tuple[int, ...]


class VignetteLuma(NamedTuple):
    """Vignette calibration: luma.

    Attributes:
        value1: 0 to 255
        value2: 0 to 255
        lumas: 2 of them
    """

    value1: int
    value2: int
    lumas: tuple[int, ...]


class VignetteGain(NamedTuple):
    """Vignette calibration: gain.

    Attributes:
        value1: 0 to 255
        value2: 0 to 255
        gains: 6 of them
    """

    value1: int
    value2: int
    gains: tuple[int, ...]


class Timelapse(NamedTuple):
    """Time-lapse recording.

    Attributes:
        value1: 0 to 4294967295
        value2: 0 to 255
        value3: 0 to 255
        exposure1: manual exposure; 0 to 255
        exposure2: manual exposure; 0 to 255
    """

    value1: int
    value2: int
    value3: int
    exposure1: int
    exposure2: int


class Lens(NamedTuple):
    """One lens: six values in thousandths, and two unused values.

    Attributes:
        p: 6 of them
        reserved: 2 of them
    """

    p: tuple[int, ...]
    reserved: tuple[int, ...]


class LensOffset(NamedTuple):
    """The geometry of the two lenses; only the renderer interprets the numbers.

    Attributes:
        value_a: 0 to 65535
        value_b: 0 to 65535
        value_c: 0 to 4294967295
        lens_count: 0 to 2; 0 to 255
        reserved1: 0 to 255
        reserved2: 0 to 65535
        reserved3: 0 to 4294967295
        lenses: 2 of them
    """

    value_a: int
    value_b: int
    value_c: int
    lens_count: int
    reserved1: int
    reserved2: int
    reserved3: int
    lenses: tuple[Lens, ...]


class OriginOffset(NamedTuple):
    """The first three values of each lens and the two leading header values.

    Attributes:
        lens0: 3 of them
        lens1: 3 of them
        value_a: 0 to 65535
        value_b: 0 to 65535
    """

    lens0: tuple[int, ...]
    lens1: tuple[int, ...]
    value_a: int
    value_b: int


class VideoInfo(NamedTuple):
    """Metadata of a recorded video.

    Attributes:
        head: 8 bytes
        offset: the sizes of these four are set with the values
        tail: 32 bytes
    """

    head: bytes
    value: int
    offset: LensOffset
    position: Position
    motion: Motion
    orientation: Orientation
    tail: bytes


class LinkStatistics(NamedTuple):
    """Counters since the camera was opened, over all its connections. Dropped frames count as
    received too.

    Units: frames; bytes of whole frames, headers included; milliseconds.

    Attributes:
        frames: by type; 10 of them
        bytes: 10 of them
        bytes_received: all bytes read from the stream
        bytes_discarded: before a marker, without the marker itself
        bytes_written: that the stream to the camera has taken
        bytes_to_write: that wait for the stream to the camera
        markers_found: how often the stream was synchronised
        positions_lost: impossible lengths of frames, each of which opened the session again
        stream_errors: each of which opened the session again
        lost_for_memory: requests and answers for which there was no memory, and nobody could be
            told
        round_trip: of the last time synchronisation; -1 before the first
        resends_left: of the time synchronisation; -2147483648 to 2147483647
        dropped_no_consumer: nobody had asked for what it carries
        dropped_unregistered_code: a message that is no answer
        dropped_short_message: a message that is too short for its code
        dropped_unregistered_data: of type REGISTERED
        dropped_timestamp_old_firmware: from firmware that sends none
    """

    frames: tuple[int, ...]
    bytes: tuple[int, ...]
    bytes_received: int
    bytes_discarded: int
    bytes_written: int
    bytes_to_write: int
    markers_found: int
    positions_lost: int
    stream_errors: int
    lost_for_memory: int
    round_trip: int
    resends_left: int
    dropped_unknown_type: int
    dropped_no_consumer: int
    dropped_unregistered_code: int
    dropped_short_message: int
    dropped_unregistered_data: int
    dropped_short_timestamp: int
    dropped_timestamp_old_firmware: int
    dropped_no_memory: int


class StreamStatistics(NamedTuple):
    """What was handed on, over all connections."""

    pictures: int
    audio_frames: int
    video_bytes: int
    audio_bytes: int
    dropped_audio: int


class OutputReport(NamedTuple):
    """What has become of an output. Texts that are too long are cut.

    Units: milliseconds of latency; -1 where it is not known.

    Attributes:
        pictures: written
        audio_frames: written
        bytes: written
        dropped: packets that came and were not written
        median_latency: that half of the pictures, and 99 in 100, did not exceed
        latency_99: that half of the pictures, and 99 in 100, did not exceed
        fault: empty where there is none
    """

    id: int
    state: OutputState
    pictures: int
    audio_frames: int
    bytes: int
    dropped: int
    connections: int
    median_latency: int
    latency_99: int
    name: str
    fault: str
