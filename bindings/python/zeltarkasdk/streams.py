"""Encoded pictures and sound: to files, servers, and whoever takes packets or bytes."""
import io
from types import TracebackType
from typing import Any

from ._native import native
from ._open import generation, note_stream
from ._streaming import StreamHeaders, file_bytes, report_of
from ._values import OutputReport, StreamStatistics, Track
from ._waiting import finish
from .errors import ZelError
from .photos import PathLike
from .subscriptions import Packet, Subscription, packets_of, problems_of


class StreamReader(io.RawIOBase):
    """One track of a stream as the bytes of a file: H.264 with start codes, or AAC with ADTS headers.

    It begins with a key picture, and ends with the stream. Whatever reads files takes it:

    >>> av.open(stream.reader(), format="h264")
    >>> shutil.copyfileobj(stream.reader(Track.AUDIO), file)
    """

    def __init__(self, stream: "Stream", track: Track, capacity: int) -> None:
        super().__init__()
        self._stream = stream
        self._track = track
        self._packets = stream.packets(capacity)
        self._rest = memoryview(b"")

    def readable(self) -> bool:
        return True

    def readinto(self, buffer: Any) -> int:
        while not self._rest:
            packet = next(self._packets, None)
            if packet is None:
                return 0
            if packet.track == self._track:
                self._rest = memoryview(file_bytes(packet, self._stream.headers))
        target = memoryview(buffer).cast("B")
        count = min(len(target), len(self._rest))
        target[:count] = self._rest[:count]
        self._rest = self._rest[count:]
        return count

    def close(self) -> None:
        if not self.closed:
            self._packets.close()
        super().close()


class Stream:
    """A camera's pictures and sound that are being streamed: H.264 and AAC on one timeline.

    It goes on when the camera was lost and has come back. It ends with its with statement:

    >>> with camera.stream("film.mp4") as stream:
    ...     time.sleep(10)
    """

    def __init__(self, handle: Any) -> None:
        self._handle = handle
        self._is_ended = False
        self._generation = generation()
        note_stream(self)

    @property
    def headers(self) -> StreamHeaders:
        """What a receiver must know before the first packet."""
        return StreamHeaders._make(native().stream_headers(self._handle))

    @property
    def statistics(self) -> StreamStatistics:
        """What was handed on, over all connections: pictures, frames of sound, bytes."""
        return StreamStatistics._make(native().stream_statistics(self._handle))

    @property
    def outputs(self) -> tuple[OutputReport, ...]:
        """What has become of each output, in the order in which they were added."""
        return tuple(report_of(one) for one in native().stream_outputs(self._handle))

    def packets(self, capacity: int = 256, *, drop_newest: bool = False) -> Subscription[Packet]:
        """The packets from the next key picture on.

        Args:
            capacity: how many are kept; whoever is too slow loses some, and begins with a key picture again
            drop_newest: where it is full; False: the oldest are dropped
        """
        return Subscription(packets_of(self._handle, capacity, drop_newest))

    def reader(self, track: Track = Track.VIDEO, capacity: int = 256) -> StreamReader:
        """One track as the bytes of a file, for whatever reads files."""
        return StreamReader(self, track, capacity)

    def problems(self, capacity: int = 16) -> Subscription[ZelError]:
        """What goes wrong while it runs: LostError, after which it goes on by itself, and MediaError, which ends it."""
        return Subscription(problems_of(self._handle, capacity, False))

    def add_output(self, address: PathLike) -> int:
        """Adds an output, which begins with the next key picture; gives its number.

        Args:
            address: a file such as "film.mp4", or a server such as "rtmp://server/live/key"

        Raises:
            InvalidError: it is no output
            ClosedError: the stream has ended
        """
        return int(native().stream_add_output(self._handle, str(address)))

    def remove_output(self, number: int) -> OutputReport:
        """Ends an output, and waits until it is whole; servers get five seconds.

        Raises:
            InvalidError: there is no such output
        """
        return report_of(finish(native().stream_remove_output(self._handle, None, number)))

    def stop(self) -> None:
        """Ends the stream and its outputs: files are written wholly, servers get five seconds. Its reports stay.

        Where Ctrl-C ends the wait, the outputs go on ending.
        """
        finish(native().stream_stop(self._handle, None))

    def close(self) -> None:
        """The same, and the stream is gone: its reports too."""
        if not self._is_ended and self._generation == generation():
            self._is_ended = True
            finish(native().end(self._handle, None))

    def __enter__(self) -> "Stream":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        if self._generation == generation():
            self.stop()
