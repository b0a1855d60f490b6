"""A camera whose calls are awaited, for asyncio."""
import asyncio
from types import TracebackType
from typing import Any, Sequence, TypeVar

from ._async_requests import AsyncRequests
from ._buffers import Bytes
from ._loop import await_end, finish, wakeup_of_this_loop
from ._native import milliseconds, native
from ._open import note_stream
from ._streaming import StreamHeaders, report_of, start_arguments
from ._values import LinkState, LinkStatistics, Motion, Orientation, OutputReport, Position, StreamStatistics
from ._waiting import Progress, nothing_came
from .camera import Camera, content_of, stitcher_for
from .errors import ClosedError, ZelError
from .photos import PathLike, Photo, capture_arguments, photo_of
from .pictures import Format, Picture, Stitched
from .streams import Stream
from .subscriptions import AnySubscription, Event, Packet, events_of, link_changes_of, packets_of, pictures_of, problems_of

T = TypeVar("T")


class AsyncSubscription(AnySubscription[T]):
    """Gives one thing after the other, as an asynchronous iterator. A bounded number is kept for a program that is slow.

    >>> async with camera.events() as events:
    ...     async for event in events: ...

    It ends, and so does the iteration, with close() and with the camera.
    """

    async def next(self, time_limit: float | None = None) -> T:
        """Awaits the next one; what comes after a cancellation, or the time limit, is not lost.

        Raises:
            TimeLimitError, ClosedError; InvalidError, MediaError for pictures that cannot be had
        """
        milliseconds(time_limit)
        source, wakeup = self._source, wakeup_of_this_loop()
        call = source.begin(wakeup)
        try:
            await (await_end(call) if time_limit is None else asyncio.wait_for(await_end(call), time_limit))
        except asyncio.TimeoutError:
            source.leave(call, wakeup)
            raise nothing_came() from None
        except BaseException:
            source.leave(call, wakeup)
            raise
        told = call.result()
        if source.stitcher is not None:
            told = await finish(source.stitch(told, wakeup))
        return source.make(told)

    def __aiter__(self) -> "AsyncSubscription[T]":
        return self

    async def __anext__(self) -> T:
        try:
            return await self.next()
        except ClosedError:
            raise StopAsyncIteration from None

    async def __aenter__(self) -> "AsyncSubscription[T]":
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


class AsyncStream:
    """A Stream whose calls are awaited; see there."""

    def __init__(self, handle: Any) -> None:
        self._stream = Stream(handle)
        self._handle = handle

    @property
    def headers(self) -> StreamHeaders:
        """What a receiver must know before the first packet."""
        return self._stream.headers

    @property
    def statistics(self) -> StreamStatistics:
        """What was handed on, over all connections: pictures, frames of sound, bytes."""
        return self._stream.statistics

    @property
    def outputs(self) -> tuple[OutputReport, ...]:
        """What has become of each output, in the order in which they were added."""
        return self._stream.outputs

    def packets(self, capacity: int = 256, *, drop_newest: bool = False) -> AsyncSubscription[Packet]:
        """The packets from the next key picture on, as with Stream.packets()."""
        return AsyncSubscription(packets_of(self._handle, capacity, drop_newest))

    def problems(self, capacity: int = 16) -> AsyncSubscription[ZelError]:
        """What goes wrong while it runs, as with Stream.problems()."""
        return AsyncSubscription(problems_of(self._handle, capacity, False))

    def add_output(self, address: PathLike) -> int:
        """Adds an output, as Stream.add_output() does."""
        return self._stream.add_output(address)

    async def remove_output(self, number: int) -> OutputReport:
        """Ends an output, and waits until it is whole."""
        return report_of(await finish(native().stream_remove_output(self._handle, wakeup_of_this_loop(), number)))

    async def stop(self) -> None:
        """Ends the stream and its outputs: files are written wholly, servers get five seconds. Its reports stay."""
        await finish(native().stream_stop(self._handle, wakeup_of_this_loop()))

    async def __aenter__(self) -> "AsyncStream":
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        await self.stop()


async def close(camera: Camera) -> None:
    """Camera.close(), awaited."""
    if camera._is_closed:
        return
    camera._is_closed = True
    if camera._handle is None:
        camera._opening.cancel()
        try:
            camera._handle = await finish(camera._opening)
        except ZelError:
            return
    await finish(native().end(camera._handle, wakeup_of_this_loop()))


class AsyncCamera(AsyncRequests):
    """A Camera whose calls are awaited; `async with Camera.open()` and `await Camera.open()` give it.

    Cancelling a task that awaits a call gives the call up. The camera may be used by several event loops.
    """

    __slots__ = ("_camera", "_handle")

    def __init__(self, camera: Camera) -> None:
        if not isinstance(camera, Camera):
            raise TypeError("cameras are opened with Camera.open()")
        self._camera = camera
        self._handle = camera._handle

    @classmethod
    async def _of(cls, camera: Camera) -> "AsyncCamera":
        if camera._handle is None:
            try:
                camera._handle = await finish(camera._opening)
            except BaseException:
                camera._is_closed = True
                raise
        return cls(camera)

    async def _ask(self, begin: str, time_limit: float | None, *arguments: object) -> Any:
        limit = milliseconds(time_limit)
        return await finish(getattr(native(), begin)(self._handle, wakeup_of_this_loop(), limit, *arguments))

    async def close(self) -> None:
        """Ends the camera: pending calls raise ClosedError, streams and subscriptions end."""
        await close(self._camera)

    async def __aenter__(self) -> "AsyncCamera":
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        await self.close()

    def identity(self) -> dict[str, str]:
        """What it told of itself at its latest connection, as Camera.identity()."""
        return self._camera.identity()

    @property
    def link_state(self) -> LinkState:
        """How far the link has come, now."""
        return self._camera.link_state

    @property
    def link_statistics(self) -> LinkStatistics:
        """What the link has carried since the camera was opened."""
        return self._camera.link_statistics

    def events(self, capacity: int = 16, *, drop_newest: bool = False) -> AsyncSubscription[Event]:
        """The events from now on, as with Camera.events()."""
        return AsyncSubscription(events_of(self._handle, capacity, drop_newest))

    def link_changes(self, capacity: int = 16, *, drop_newest: bool = False) -> AsyncSubscription[LinkState]:
        """The states of the link from now on."""
        return AsyncSubscription(link_changes_of(self._handle, capacity, drop_newest))

    def pictures(
        self, format: Format | None = None, *, capacity: int = 4, drop_newest: bool = False
    ) -> AsyncSubscription[Picture]:
        """The decoded pictures of the preview, both lenses side by side, as with Camera.pictures()."""
        return AsyncSubscription(pictures_of(self._handle, format or Format(), capacity, drop_newest, None))

    async def stitched_pictures(
        self, stitched: Stitched, format: Format | None = None, *, capacity: int = 4, drop_newest: bool = False
    ) -> AsyncSubscription[Picture]:
        """Panoramas of them, once the camera has told its lens offset."""
        form = format or Format()
        offset = await self.lens_offset(0, native().format_code(*form)) or ""
        stitcher = stitcher_for(self._handle, offset, stitched)
        return AsyncSubscription(pictures_of(self._handle, form, capacity, drop_newest, stitcher))

    async def photo(
        self,
        *,
        position: Position | None = None,
        motion: Motion | None = None,
        orientation: Orientation | None = None,
        extra_info: Bytes | None = None,
        progress: Progress | None = None,
        time_limit: float | None = None,
    ) -> Photo:
        """Takes a photo and awaits its picture, as Camera.photo(); progress is called in the event loop."""
        limit = milliseconds(time_limit)
        stored = capture_arguments(position, motion, orientation, extra_info, progress)
        return photo_of(await finish(native().take_photo(self._handle, wakeup_of_this_loop(), limit, *stored), progress))

    async def bracket(
        self,
        steps: Sequence[int],
        *,
        position: Position | None = None,
        motion: Motion | None = None,
        orientation: Orientation | None = None,
        extra_info: Bytes | None = None,
        progress: Progress | None = None,
        time_limit: float | None = None,
    ) -> Photo:
        """Takes a series of photos, as Camera.bracket()."""
        limit, wakeup = milliseconds(time_limit), wakeup_of_this_loop()
        stored = capture_arguments(position, motion, orientation, extra_info, progress)
        return photo_of(await finish(native().take_bracket(self._handle, wakeup, limit, steps, *stored), progress))

    async def upload(
        self,
        type: int,
        path: str,
        content: "Bytes | PathLike",
        *,
        progress: Progress | None = None,
        time_limit: float | None = None,
    ) -> None:
        """Sends a file, as Camera.upload(). A file's name is read at once: give bytes where that would last."""
        limit, told, wakeup = milliseconds(time_limit), int(progress is not None), wakeup_of_this_loop()
        await finish(native().upload(self._handle, wakeup, limit, type, path, content_of(content), told), progress)

    async def stream(
        self,
        *outputs: PathLike,
        format: Format | None = None,
        stitched: Stitched | None = None,
        time_limit: float | None = None,
    ) -> AsyncStream:
        """Streams pictures and sound, once the first picture has come, as Camera.stream()."""
        arguments = start_arguments(outputs, format, stitched, time_limit)
        return AsyncStream(await finish(native().stream(self._handle, wakeup_of_this_loop(), *arguments)))
