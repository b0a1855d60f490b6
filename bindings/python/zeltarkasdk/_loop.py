"""How a coroutine waits for a call: the camera's thread wakes the event loop through a descriptor."""
import asyncio
from typing import Any, Callable
from weakref import WeakKeyDictionary

from ._native import native
from ._waiting import Progress


class _Watch:
    """The calls of one event loop that are waited for."""

    def __init__(self, loop: asyncio.AbstractEventLoop) -> None:
        self.wakeup = native().Wakeup()
        self.waiting: dict[int, Callable[[], object]] = {}
        loop.add_reader(self.wakeup.fileno(), self._tell)

    def _tell(self) -> None:
        for call in self.wakeup.drain():
            tell = self.waiting.get(call)
            if tell is not None:
                tell()


_watches: "WeakKeyDictionary[asyncio.AbstractEventLoop, _Watch]" = WeakKeyDictionary()


def _watch_of(loop: asyncio.AbstractEventLoop) -> _Watch:
    watch = _watches.get(loop)
    if watch is None:
        watch = _watches[loop] = _Watch(loop)
    return watch


def wakeup_of_this_loop() -> Any:
    """What wakes the loop that runs on this thread."""
    return _watch_of(asyncio.get_running_loop()).wakeup


async def await_news(call: Any) -> None:
    """Returns when the call has something new; a cancellation leaves the call as it is."""
    loop = asyncio.get_running_loop()
    watch, news = _watch_of(loop), asyncio.Event()
    watch.waiting[call.id] = news.set
    try:
        if call.wait(0.0) == 0:
            await news.wait()
    finally:
        watch.waiting.pop(call.id, None)


async def finish(call: Any, progress: Progress | None = None) -> Any:
    """Awaits the end of the call, and gives its result. Cancelling it gives the call up."""
    try:
        while (news := call.wait(0.0)) != 2:
            if news == 0:
                await await_news(call)
                continue
            done, total = call.progress()
            if progress is not None:
                progress(done, total)
    except BaseException:
        call.cancel()
        raise
    return call.result()


async def await_end(call: Any) -> None:
    """Awaits the end of the call; a cancellation leaves it as it is."""
    while call.wait(0.0) != 2:
        await await_news(call)
