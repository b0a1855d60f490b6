"""The extension module, which is loaded with the first camera: its libraries take longer than this package."""
import importlib
from types import ModuleType

_module: ModuleType | None = None


def native() -> ModuleType:
    """The extension module."""
    global _module
    if _module is None:
        from .errors import error_of

        loaded = importlib.import_module("zeltarkasdk._zel")
        loaded.set_error_maker(error_of)
        _module = loaded
    return _module


def milliseconds(seconds: float | None, name: str = "time_limit") -> int:
    """A time limit as the library takes it; 0 for None, which is the default.

    Raises:
        TypeError, ValueError: for what is no number of seconds above 0
    """
    if seconds is None:
        return 0
    if isinstance(seconds, bool) or not hasattr(seconds, "__float__"):
        raise TypeError(f"{name} must be seconds or None, not {type(seconds).__name__}")
    seconds = float(seconds)
    if not 0 < seconds <= 2_000_000:
        raise ValueError(f"{name} must be seconds above 0 and up to 2000000, and is {seconds:g}")
    return max(1, round(seconds * 1000))
