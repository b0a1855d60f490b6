"""What goes on at a camera, one thing after the other."""
from collections import deque
from types import TracebackType
from typing import Any, Callable, Generic, NamedTuple, TypeVar

from ._native import milliseconds, native
from ._open import generation
from ._values import EventType, LinkState, Track
from ._waiting import await_end, finish, nothing_came
from .errors import ClosedError, ZelError, error_of
from .pictures import Picture

T = TypeVar("T")


class Event(NamedTuple):
    """What the camera has told by itself.

    Attributes:
        type: one of EventType, whose comments say the numbers; cameras to come may send others
        numbers: three; those that the camera did not send are 0
        text: a file's name, or the lens offset
        failed: the firmware update failed
    """

    type: EventType | int
    numbers: tuple[int, int, int]
    text: str | None
    failed: bool


class Packet(NamedTuple):
    """One whole picture in H.264, its slices behind start codes of four bytes, or one AAC frame without header.

    Attributes:
        track: Track.VIDEO or Track.AUDIO
        key: a picture from which decoding can begin
        discontinuity: the first of its track after a new connection, or after the camera's clock was set
        time: microseconds since the stream's first picture
        data: its bytes
    """

    track: Track
    key: bool
    discontinuity: bool
    time: int
    data: bytes


def event_of(told: Any) -> Event:
    kind, numbers, text, failed = told
    known = EventType.__members__.values()
    return Event(next((one for one in known if one == kind), kind), numbers, text, failed)


def packet_of(told: Any) -> Packet:
    track, *rest = told
    return Packet(Track(track), *rest)


def problem_of(told: Any) -> ZelError:
    status, message, domain, code = told
    return error_of(status, message, domain, code)


class Source(Generic[T]):
    """A subscription of the library: how its next one is begun, and what is made of it."""

    def __init__(self, handle: Any, begin: str, make: Callable[[Any], T], stitcher: Any = None) -> None:
        self.handle = handle
        self.make = make
        self.stitcher = stitcher
        self._begin = begin
        self._generation = generation()
        self.left: deque[tuple[Any, Any]] = deque()  # calls whose waits were interrupted, with their wakeups

    def begin(self, wakeup: Any) -> Any:
        """A call for the next one: one that was left, so that nothing is lost, or a new one."""
        while self.left:
            call, its_wakeup = self.left.popleft()
            if its_wakeup is wakeup:
                return call
            call.cancel()
        return getattr(native(), self._begin)(self.handle, wakeup)

    def leave(self, call: Any, wakeup: Any) -> None:
        self.left.append((call, wakeup))

    def stitch(self, pixels: Any, wakeup: Any) -> Any:
        return native().stitch(self.stitcher, wakeup, pixels)

    def dropped(self) -> int:
        return int(native().dropped(self.handle))

    def close(self) -> None:
        if self._generation == generation():  # in a child process it is the parent's
            native().free(self.handle)


class AnySubscription(Generic[T]):
    """What subscriptions have in common, whether they wait or are awaited."""

    def __init__(self, source: Source[T]) -> None:
        self._source = source
        self._is_closed = False

    @property
    def dropped(self) -> int:
        """How many were dropped because there was no room."""
        return self._source.dropped()

    def close(self) -> None:
        """Ends it; waits elsewhere end too. What is kept is gone."""
        if not self._is_closed:
            self._is_closed = True
            self._source.close()


class Subscription(AnySubscription[T]):
    """Gives one thing after the other, as an iterator. A bounded number is kept for a program that is slow.

    >>> with camera.events() as events:
    ...     for event in events: ...

    It ends, and so does the iteration, with close() and with the camera. Any thread may use it.
    """

    def next(self, time_limit: float | None = None) -> T:
        """Waits for the next one.

        Args:
            time_limit: seconds; None: as long as it takes

        Raises:
            TimeLimitError: nothing came in time; what comes later is not lost
            ClosedError: nothing follows any more
            InvalidError, MediaError: pictures that cannot be had, see Camera.pictures()
        """
        milliseconds(time_limit)
        source = self._source
        call = source.begin(None)
        try:
            is_there = await_end(call, time_limit)
        except BaseException:
            source.leave(call, None)
            raise
        if not is_there:
            source.leave(call, None)
            raise nothing_came()
        told = call.result()
        if source.stitcher is not None:
            told = finish(source.stitch(told, None))
        return source.make(told)

    def __iter__(self) -> "Subscription[T]":
        return self

    def __next__(self) -> T:
        try:
            return self.next()
        except ClosedError:
            raise StopIteration from None

    def __enter__(self) -> "Subscription[T]":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()


def events_of(camera: Any, capacity: int, drop_newest: bool) -> Source[Event]:
    return Source(native().events(camera, capacity, int(drop_newest)), "next_event", event_of)


def link_changes_of(camera: Any, capacity: int, drop_newest: bool) -> Source[LinkState]:
    return Source(native().link_changes(camera, capacity, int(drop_newest)), "next_link_state", LinkState)


def packets_of(stream: Any, capacity: int, drop_newest: bool) -> Source[Packet]:
    return Source(native().stream_packets(stream, capacity, int(drop_newest)), "next_packet", packet_of)


def problems_of(stream: Any, capacity: int, drop_newest: bool) -> Source[ZelError]:
    return Source(native().stream_problems(stream, capacity, int(drop_newest)), "next_problem", problem_of)


def pictures_of(camera: Any, form: tuple[int, int, int], capacity: int, drop_newest: bool, stitcher: Any) -> Source[Picture]:
    handle = native().pictures(camera, *form, capacity, int(drop_newest))
    return Source(handle, "next_picture", Picture, stitcher)
