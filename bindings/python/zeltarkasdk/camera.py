"""A camera that waits for its answers, and the way to one that is awaited."""
import sys
import threading
import warnings
from types import TracebackType
from typing import TYPE_CHECKING, Any, Generator, Sequence

from . import _open
from ._buffers import Bytes
from ._native import milliseconds, native
from ._requests import Requests
from ._streaming import start_arguments
from ._values import LinkState, LinkStatistics, Motion, Orientation, Position
from ._waiting import Progress, finish
from .photos import PathLike, Photo, capture_arguments, photo_of
from .pictures import Format, Picture, Stitched, logo_arguments
from .streams import Stream
from .subscriptions import Event, Subscription, events_of, link_changes_of, pictures_of

if TYPE_CHECKING:
    from .aio import AsyncCamera

_IDENTITIES = ("serial_number", "name", "manufacturer", "model_number", "firmware_revision", "hardware_revision")


def content_of(content: "Bytes | PathLike") -> Bytes:
    """What is uploaded: bytes as they are, a file's name as what the file holds."""
    if isinstance(content, str) or hasattr(content, "__fspath__"):
        with open(content, "rb") as file:
            return file.read()
    return content


class Camera(Requests):
    """A camera that is open. Camera.open() finds it; the object keeps its link, and opens it again when it was lost.

    >>> with Camera.open() as camera:
    ...     print(camera.battery().level)

    >>> async with Camera.open() as camera:
    ...     print((await camera.battery()).level)

    Every call may be made on any thread. Each that waits lets other threads of Python run, and ends with Ctrl-C.
    """

    __slots__ = ("_opening", "_handle", "_lock", "_is_closed", "_generation", "__weakref__")

    def __init__(self) -> None:
        self._opening: Any = None
        self._handle: Any = None
        self._lock = threading.Lock()
        self._is_closed = True
        self._generation = 0
        raise TypeError("cameras are opened with Camera.open()")

    @classmethod
    def open(
        cls,
        serial_number: str | None = None,
        *,
        time_limit: float | None = None,
        request_time_limit: float | None = None,
        transfer_time_limit: float | None = None,
        accessories: PathLike | None = None,
        program: str | None = None,
        decoder_threads: int = 1,
        direct: bool = False,
    ) -> "Camera":
        """Finds a camera and waits for its first frame.

        While an event loop runs on this thread, it does not wait: `async with` and `await` do, and give an
        AsyncCamera.

        Args:
            serial_number: of the one camera; None: the first that is attached
            time_limit: seconds of the opening; None: 10
            request_time_limit: seconds of requests that set none; None: 5
            transfer_time_limit: seconds of photos and files that set none; None: 60
            accessories: the folder of the accessory bus; None: the usual one
            program: what others are told that has the camera; None: this program's name
            decoder_threads: 1: no picture is held back; up to 16, each of which holds one back
            direct: True: a session of its own with the camera, never through a gateway

        Raises:
            NoCameraError, SilentError, InUseError at once, PlatformError where the system refuses a folder or a thread
        """
        from os import fspath

        folder = None if accessories is None else fspath(accessories)
        limits = (milliseconds(time_limit), milliseconds(request_time_limit), milliseconds(transfer_time_limit))
        asyncio = sys.modules.get("asyncio")
        is_awaited = asyncio is not None and asyncio._get_running_loop() is not None
        wakeup = None
        if is_awaited:
            from ._loop import wakeup_of_this_loop

            wakeup = wakeup_of_this_loop()
        camera = cls.__new__(cls)
        camera._handle, camera._lock, camera._is_closed = None, threading.Lock(), False
        camera._generation = _open.generation()
        camera._opening = native().open(wakeup, serial_number, folder, program, *limits, decoder_threads, int(direct))
        _open.note_camera(camera)
        if not is_awaited:
            camera._ready()
        return camera

    def _ready(self) -> Any:
        """The camera's handle, once it is open."""
        if self._handle is not None:
            return self._handle
        with self._lock:
            if self._handle is None:
                try:
                    self._handle = finish(self._opening)
                except BaseException:
                    self._is_closed = True
                    raise
        return self._handle

    def _ask(self, begin: str, time_limit: float | None, *arguments: object) -> Any:
        limit = milliseconds(time_limit)
        return finish(getattr(native(), begin)(self._ready(), None, limit, *arguments))

    def close(self) -> None:
        """Ends the camera: calls of other threads raise ClosedError, streams and subscriptions end.

        What it has given stays. Closing it again does nothing, and so does a child process's close.
        """
        if self._is_closed:
            return
        self._is_closed = True
        if self._generation != _open.generation():
            return
        if self._handle is None:
            self._opening.cancel()
            try:
                self._ready()
            except Exception:
                return
        finish(native().end(self._handle, None))

    def __enter__(self) -> "Camera":
        self._ready()
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()

    async def __aenter__(self) -> "AsyncCamera":
        from .aio import AsyncCamera

        return await AsyncCamera._of(self)

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        from .aio import close

        await close(self)

    def __await__(self) -> Generator[Any, None, "AsyncCamera"]:
        return self.__aenter__().__await__()

    def __del__(self) -> None:
        if not getattr(self, "_is_closed", True):
            warnings.warn("a camera was never closed; use it in a with statement", ResourceWarning, source=self)

    # -- What it is

    def identity(self) -> dict[str, str]:
        """What it told of itself at its latest connection.

        Returns:
            serial_number, name, manufacturer, model_number, firmware_revision, hardware_revision

        Raises:
            LostError, ClosedError
        """
        handle = self._ready()
        return {name: native().identity(handle, which) for which, name in enumerate(_IDENTITIES)}

    @property
    def link_state(self) -> LinkState:
        """How far the link has come, now."""
        return LinkState(native().link_state(self._ready()))

    @property
    def link_statistics(self) -> LinkStatistics:
        """What the link has carried since the camera was opened."""
        return LinkStatistics._make(native().link_statistics(self._ready()))

    # -- What it tells

    def events(self, capacity: int = 16, *, drop_newest: bool = False) -> Subscription[Event]:
        """The events from now on.

        Args:
            capacity: how many are kept for a program that is slow
            drop_newest: where it is full; False: the oldest are dropped
        """
        return Subscription(events_of(self._ready(), capacity, drop_newest))

    def link_changes(self, capacity: int = 16, *, drop_newest: bool = False) -> Subscription[LinkState]:
        """The states of the link from now on, as with events()."""
        return Subscription(link_changes_of(self._ready(), capacity, drop_newest))

    def pictures(
        self,
        format: Format | None = None,
        *,
        stitched: Stitched | None = None,
        capacity: int = 4,
        drop_newest: bool = False,
    ) -> Subscription[Picture]:
        """The decoded pictures of the preview, which runs as long as anybody needs it, in one format for all.

        Args:
            format: width, height and rate; None: 1440 x 720 at 30
            stitched: gives panoramas of that size, made by the camera's own lens offset; None: both lenses side by side
            capacity: how many are kept for a program that is slow; a picture at 3040 x 1520 is 7 MB
            drop_newest: where it is full; False: the oldest are dropped

        Raises:
            InvalidError: no such format; with the first picture: the preview runs in another one
            MediaError: with the first picture: it cannot be started or decoded
        """
        handle, form = self._ready(), format or Format()
        stitcher = None
        if stitched is not None:
            offset = self.lens_offset(0, native().format_code(*form)) or ""
            stitcher = stitcher_for(handle, offset, stitched)
        return Subscription(pictures_of(handle, form, capacity, drop_newest, stitcher))

    # -- Photos and files

    def photo(
        self,
        *,
        position: Position | None = None,
        motion: Motion | None = None,
        orientation: Orientation | None = None,
        extra_info: Bytes | None = None,
        progress: Progress | None = None,
        time_limit: float | None = None,
    ) -> Photo:
        """Takes a photo and waits for its picture.

        Args:
            position, motion, orientation: stored with it; None: not known
            extra_info: JSON, stored with it
            progress: called on this thread with pictures that have come, and are expected; what it raises ends the call
            time_limit: seconds; None: the camera's own, 60

        Raises:
            LostError, RefusedError, TimeLimitError, ClosedError
        """
        limit = milliseconds(time_limit)
        stored = capture_arguments(position, motion, orientation, extra_info, progress)
        return photo_of(finish(native().take_photo(self._ready(), None, limit, *stored), progress))

    def bracket(
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
        """Takes a series of photos, one for each exposure step, and waits for its pictures.

        Args:
            steps: 1 to 9 of -128 to 127, in the camera's unit

        The rest is as with photo(); InvalidError for another number of steps.
        """
        limit = milliseconds(time_limit)
        stored = capture_arguments(position, motion, orientation, extra_info, progress)
        return photo_of(finish(native().take_bracket(self._ready(), None, limit, steps, *stored), progress))

    def upload(
        self,
        type: int,
        path: str,
        content: "Bytes | PathLike",
        *,
        progress: Progress | None = None,
        time_limit: float | None = None,
    ) -> None:
        """Sends a file.

        Args:
            type: the camera's code
            path: its name on the camera, without its drive
            content: bytes, or the name of a file; at most 4 GiB
            progress: called on this thread with bytes that were sent, and all of them; what it raises ends the call
            time_limit: seconds; None: the camera's own, 60. What was queued when it is over is still sent

        Raises:
            InvalidError, LostError, RefusedError, TimeLimitError, ClosedError, OSError
        """
        limit, told = milliseconds(time_limit), int(progress is not None)
        finish(native().upload(self._ready(), None, limit, type, path, content_of(content), told), progress)

    # -- Streams

    def stream(
        self,
        *outputs: PathLike,
        format: Format | None = None,
        stitched: Stitched | None = None,
        time_limit: float | None = None,
    ) -> Stream:
        """Streams pictures and sound, and waits for the first picture. One stream at a time.

        Args:
            outputs: files such as "film.mp4", or servers such as "rtmp://server/live/key"; more can be added
            format: of the camera's preview; None: 1440 x 720 at 30
            stitched: streams panoramas, encoded again; None: the camera's own pictures as they come
            time_limit: seconds; None: 10

        Raises:
            InvalidError: beside another stream or format, or for an output that is none
            MediaError: no picture or no sound comes in time
            LostError, ClosedError
        """
        arguments = start_arguments(outputs, format, stitched, time_limit)
        return Stream(finish(native().stream(self._ready(), None, *arguments)))


def stitcher_for(camera: Any, offset: str, stitched: Stitched) -> Any:
    """What stitches pictures of the camera."""
    size = (stitched.width, stitched.height, int(stitched.remove_purple))
    return native().stitcher(camera, offset, *size, *logo_arguments(stitched))
