"""Photos, as bytes and as files."""
import os
from typing import TYPE_CHECKING, Any, NamedTuple, Union

from ._buffers import Bytes
from ._values import Motion, Orientation, Position, StoredFile
from ._waiting import Progress

if TYPE_CHECKING:
    from pathlib import Path

PathLike = Union[str, "os.PathLike[str]"]


def plain_name(name: str | None) -> str:
    """A name that the camera gave, as a plain file name: no folder, no control character."""
    last = "".join(one for one in (name or "").replace("\\", "/").rsplit("/", 1)[-1] if one.isprintable())
    return last if last.strip(".") else "photo.jpg"


class Jpeg(NamedTuple):
    """A picture of a photo.

    Attributes:
        name: the camera's; None where it is not ASCII
        data: the JPEG file
    """

    name: str | None
    data: bytes

    def save(self, path: PathLike = ".") -> "Path":
        """Writes the file: under the camera's name where `path` is a folder. It appears when it is whole.

        Raises:
            OSError
        """
        from pathlib import Path

        target = Path(path)
        if target.is_dir():
            target /= plain_name(self.name)
        unfinished = target.with_name(f".{target.name}.{os.getpid()}")
        try:
            unfinished.write_bytes(self.data)
            unfinished.replace(target)
        except BaseException:
            unfinished.unlink(missing_ok=True)
            raise
        return target


class Photo(NamedTuple):
    """A photo, or a series of them, as it is stored on the card and as it has come.

    Attributes:
        stored: what it is on the card; a series is named after its first picture
        pictures: in the order of their arrival; one of a photo
    """

    stored: StoredFile
    pictures: tuple[Jpeg, ...]

    @property
    def jpeg(self) -> bytes:
        """The JPEG file; of a series the first one."""
        return self.pictures[0].data

    @property
    def name(self) -> str | None:
        """The camera's name of the first picture; None where it is not ASCII."""
        return self.pictures[0].name

    def __bytes__(self) -> bytes:
        return self.jpeg

    def save(self, path: PathLike = ".") -> "Path":
        """Writes the first picture, as Jpeg.save() does."""
        return self.pictures[0].save(path)


def capture_arguments(
    position: Position | None,
    motion: Motion | None,
    orientation: Orientation | None,
    extra_info: Bytes | None,
    progress: Progress | None,
) -> tuple[object, ...]:
    """The last arguments of the extension's take_photo() and take_bracket()."""
    return position, motion, orientation, extra_info, int(progress is not None)


def photo_of(told: Any) -> Photo:
    """A photo as the extension module tells it."""
    stored, pictures = told
    return Photo(StoredFile._make(stored), tuple(Jpeg._make(one) for one in pictures))
