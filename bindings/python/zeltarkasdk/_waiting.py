"""How a thread waits for a call. Ctrl-C ends every wait, and gives the call up."""
from time import monotonic
from typing import Any, Callable

from .errors import TimeLimitError

Progress = Callable[[int, int], object]


def finish(call: Any, progress: Progress | None = None) -> Any:
    """Waits for the end of the call, and gives its result."""
    try:
        while call.wait(None) != 2:
            done, total = call.progress()
            if progress is not None:
                progress(done, total)
    except BaseException:
        call.cancel()
        raise
    return call.result()


def await_end(call: Any, seconds: float | None) -> bool:
    """Waits for the end of the call, which goes on; False where it has not come in time."""
    end = None if seconds is None else monotonic() + seconds
    while call.wait(None if end is None else max(0.0, end - monotonic())) != 2:
        if end is not None and monotonic() >= end:
            return False
    return True


def nothing_came() -> TimeLimitError:
    return TimeLimitError("nothing came in time")
