"""What calls on cameras raise."""
from ._values import Status


class ZelError(Exception):
    """A call on a camera failed. Its text is a sentence for people.

    Attributes:
        status: why, one of Status; each has a class of its own below
        domain: of the camera's error; empty where it has none
        code: in that domain; 0 where there is none
    """

    status = Status.OK

    def __init__(self, message: str = "", domain: str = "", code: int = 0) -> None:
        super().__init__(message, domain, code)
        self.message = message
        self.domain = domain
        self.code = code

    def __str__(self) -> str:
        return self.message


class NoCameraError(ZelError):
    """No camera is attached, or not the one that was asked for."""

    status = Status.NO_CAMERA


class InUseError(ZelError):
    """Another process has the camera; the sentence says which."""

    status = Status.IN_USE


class SilentError(ZelError):
    """The camera is attached and sends nothing."""

    status = Status.SILENT


class LostError(ZelError):
    """The link is down. The camera object goes on looking for the camera; later calls work again."""

    status = Status.LOST


class RefusedError(ZelError):
    """The camera refused, or its answer cannot be read."""

    status = Status.REFUSED


class OldFirmwareError(ZelError):
    """The camera's firmware is too old."""

    status = Status.OLD_FIRMWARE


class TimeLimitError(ZelError, TimeoutError):
    """No answer came within the time limit."""

    status = Status.TIME_LIMIT


class GivenUpError(ZelError):
    """The call was given up."""

    status = Status.CANCELLED


class ClosedError(ZelError):
    """The camera, the stream or the subscription has ended."""

    status = Status.CLOSED


class InvalidError(ZelError, ValueError):
    """The call itself is wrong."""

    status = Status.INVALID


class MediaError(ZelError):
    """Pictures or sound cannot be had, decoded, stitched or encoded."""

    status = Status.MEDIA


class PlatformError(ZelError):
    """The system refused: a folder, a thread, memory."""

    status = Status.PLATFORM


_CLASSES = {int(one.status): one for one in ZelError.__subclasses__()}


def error_of(status: int, message: str, domain: str = "", code: int = 0) -> ZelError:
    """The error for a status of the library."""
    return _CLASSES.get(status, ZelError)(message, domain, code)
