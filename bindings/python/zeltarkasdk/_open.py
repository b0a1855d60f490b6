"""All cameras and streams that are open, so that the end of the interpreter can end them in order."""
import atexit
import os
from typing import Protocol
from weakref import WeakSet


class Open(Protocol):
    def close(self) -> object: ...


_streams: "WeakSet[Open]" = WeakSet()
_cameras: "WeakSet[Open]" = WeakSet()
_SERVERS = 8.0  # seconds; the library gives servers five
_generation = 0  # of this process: grows in each child


def generation() -> int:
    """Differs between a process and its children, whose objects stand for cameras of their parent."""
    return _generation


def note_camera(camera: Open) -> None:
    _cameras.add(camera)


def note_stream(stream: Open) -> None:
    _streams.add(stream)


def _end_all() -> None:
    from . import _native

    for one in [*_streams, *_cameras]:
        try:
            one.close()
        except Exception:  # nobody is left to be told
            pass
    if _native._module is not None:
        _native._module.settle(_SERVERS)


def _forget() -> None:
    global _generation
    _generation += 1
    _streams.clear()
    _cameras.clear()


atexit.register(_end_all)
# A child process has the objects of its parent's cameras, and not their threads.
os.register_at_fork(after_in_child=_forget)
