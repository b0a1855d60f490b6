"""Photos, files, events, pictures and streams."""
import gc
import shutil

import numpy
import pytest

from conftest import LIMIT, opened
from zeltarkasdk import (
    ClosedError,
    Event,
    EventType,
    Format,
    InvalidError,
    Logo,
    OutputState,
    Position,
    Stitched,
    TimeLimitError,
    Track,
)


def is_jpeg(data):
    return data[:2] == b"\xff\xd8" and data[-2:] == b"\xff\xd9"


def test_a_photo_is_bytes_and_a_file(camera, tmp_path):
    progress = []
    photo = camera.photo(position=Position(52.5), extra_info=b"{}", progress=lambda *now: progress.append(now))
    assert is_jpeg(photo.jpeg) and bytes(photo) == photo.jpeg and photo.stored.size_bytes == len(photo.jpeg)
    assert photo.stored.name == photo.name
    assert all(total == 1 for _, total in progress)
    path = photo.save(tmp_path)
    assert path == tmp_path / photo.name and path.read_bytes() == photo.jpeg
    assert photo.save(tmp_path / "a.jpg").read_bytes() == photo.jpeg
    assert sorted(one.name for one in tmp_path.iterdir() if one.is_file()) == sorted([photo.name, "a.jpg"])
    with pytest.raises(FileNotFoundError):
        photo.save(tmp_path / "no" / "folder.jpg")
    (tmp_path / "full" / photo.name).mkdir(parents=True)
    with pytest.raises(IsADirectoryError):
        photo.save(tmp_path / "full")
    assert [one.name for one in (tmp_path / "full").iterdir()] == [photo.name], "nothing unfinished is left"


def test_a_bracket_has_a_picture_for_each_step(camera):
    photo = camera.bracket((-2, 0, 2))
    assert len(photo.pictures) == 3 and all(is_jpeg(one.data) for one in photo.pictures)
    assert len({one.name for one in photo.pictures}) == 3


@pytest.mark.parametrize("name, plain", [("../../a.jpg", "a.jpg"), ("..", "photo.jpg"), (None, "photo.jpg"), ("a\n\\b\x07.jpg", "b.jpg")])
def test_a_name_of_the_cameras_leads_nowhere(name, plain):
    from zeltarkasdk.photos import plain_name

    assert plain_name(name) == plain


def test_files_are_sent_out_of_bytes_and_out_of_files(attach, tmp_path):
    storage, content = tmp_path / "storage", bytes(range(256)) * 4000
    (tmp_path / "b.bin").write_bytes(content)
    progress = []
    with opened(attach("--storage", str(storage))) as camera:
        camera.upload(1, "C:/a.bin", numpy.frombuffer(content, dtype=numpy.uint8), progress=lambda *now: progress.append(now))
        camera.upload(1, "C:/b.bin", tmp_path / "b.bin")
    assert (storage / "a.bin").read_bytes() == content and (storage / "b.bin").read_bytes() == content
    assert all(done <= total == len(content) for done, total in progress)


@pytest.fixture
def without_photos(attach):
    """A camera that announces photos and never sends them."""
    with opened(attach("--fault", "no-photo")) as camera:
        yield camera


def test_what_progress_raises_ends_the_call_and_leaves_the_camera(without_photos):
    def stop(done, total):
        raise RuntimeError(f"{done} of {total} is enough")

    with pytest.raises(RuntimeError, match="0 of 1 is enough") as caught:
        without_photos.photo(progress=stop)
    assert without_photos.battery().level == 100
    # The exception's traceback still holds the call, which was given up: the next photo does not wait for it.
    with pytest.raises(RuntimeError, match="0 of 1 is enough"):
        without_photos.photo(progress=stop, time_limit=LIMIT)
    assert caught.value.__traceback__ is not None


def test_progress_may_close_the_camera(without_photos):
    with pytest.raises(ClosedError):
        without_photos.photo(progress=lambda *_: without_photos.close())


def test_progress_may_ask_the_camera(without_photos):
    levels = []

    def ask(*_):
        levels.append(without_photos.battery().level)
        without_photos.close()

    with pytest.raises(ClosedError):
        without_photos.photo(progress=ask)
    assert levels == [100]


def test_events_come_in_order_with_their_numbers(simulator, camera):
    with camera.events() as events:
        simulator.tell("key 7")
        simulator.tell("battery 1 40")
        simulator.tell("update-done 0")
        assert events.next(LIMIT) == Event(EventType.KEY_PRESSED, (7, 0, 0), None, False)
        assert events.next(LIMIT) == Event(EventType.BATTERY_UPDATE, (1, 40, 0), None, False)
        assert events.next(LIMIT).failed is True
        camera.start_recording()
        simulator.tell("split")
        assert events.next(LIMIT).text.endswith(".mp4")


def test_a_slow_program_loses_the_oldest_or_the_newest(simulator, camera):
    with camera.events(2) as newest, camera.events(2, drop_newest=True) as oldest, camera.events() as all_of_them:
        for key in (1, 2, 3, 4):
            simulator.tell(f"key {key}")
        for _ in range(4):
            all_of_them.next(LIMIT)
        while newest.dropped < 2 or oldest.dropped < 2:
            camera.battery()
        assert [newest.next(LIMIT).numbers[0] for _ in range(2)] == [3, 4]
        assert [oldest.next(LIMIT).numbers[0] for _ in range(2)] == [1, 2]


def test_a_time_limit_loses_nothing(simulator, camera):
    with camera.events() as events:
        with pytest.raises(TimeLimitError, match="nothing came in time"):
            events.next(0.05)
        simulator.tell("key 3")
        assert next(events).numbers[0] == 3


def test_planes_are_arrays_without_a_copy(camera):
    with camera.pictures() as pictures:
        picture = next(pictures)
    luma, chroma = numpy.asarray(picture.luma), numpy.asarray(picture.chroma)
    assert luma.shape == (720, 1440) == picture.luma.shape and luma.dtype == numpy.uint8
    assert chroma.shape == (360, 720, 2) == picture.chroma.shape
    assert not luma.flags.owndata and not luma.flags.writeable and luma.strides == picture.luma.strides
    assert luma.__array_interface__["data"] == numpy.asarray(picture.luma).__array_interface__["data"]
    assert luma.max() > luma.min()


def test_an_array_outlives_its_picture_and_the_camera(simulator):
    with opened(simulator) as camera, camera.pictures() as pictures:
        first = numpy.asarray(next(pictures).luma)
        before = first.copy()
        for _ in range(20):
            next(pictures)
    del pictures, camera
    gc.collect()
    assert (first == before).all()


def test_a_plane_refuses_what_it_cannot_show(camera):
    with camera.pictures() as pictures:
        luma = next(pictures).luma
    view = memoryview(luma)
    assert view.readonly and view.format == "B" and view.shape == (720, 1440) and view[0, 0] == numpy.asarray(luma)[0, 0]
    assert bytes(luma) == luma.tobytes() == numpy.asarray(luma).tobytes()
    with pytest.raises(TypeError), open("/dev/zero", "rb") as zeros:
        zeros.readinto(luma)
    with pytest.raises(TypeError):
        view[0, 0] = 1
    with pytest.raises(TypeError, match="cannot create"):
        type(luma)()


def test_pictures_have_times_and_formats(camera):
    with camera.pictures(Format(1440, 720, 15)) as pictures:
        first, second = next(pictures), next(pictures)
        assert (first.width, first.height) == (1440, 720) and second.time > first.time
        assert first.timestamp == pytest.approx(first.time / 1000 + 978307200)
        with camera.pictures(Format(2160, 1080, 15)) as others, pytest.raises(InvalidError, match="at the same time"):
            next(others)


def test_stitched_pictures_are_panoramas_with_the_same_time(camera):
    logo = Logo(2, 2, bytes((255, 255, 255, 255)) * 4)
    with camera.pictures(stitched=Stitched(480, 240, logo=logo)) as pictures:
        picture = next(pictures)
    luma = numpy.asarray(picture.luma)
    assert luma.shape == (240, 480) and numpy.asarray(picture.chroma).shape == (120, 240, 2)
    # The nadir shows the logo, and the rest no black of a lens's border.
    assert luma[-1].min() > 200 and (luma[20:200] > 16).mean() > 0.9


def test_a_stream_gives_packets_and_writes_files(camera, tmp_path):
    with camera.stream(tmp_path / "a.mp4") as stream, stream.packets() as packets:
        assert stream.headers[:3] == (1440, 720, False)
        first = next(packets)
        assert first.track is Track.VIDEO and first.key and first.data.startswith(b"\0\0\0\1")
        second = stream.add_output(str(tmp_path / "b.ts"))
        tracks = set()
        while stream.outputs[1].pictures == 0:
            tracks.add(next(packets).track)
        assert tracks == {Track.VIDEO, Track.AUDIO}
        report = stream.remove_output(second)
        assert report.state is OutputState.FINISHED and report.pictures >= 1 and report.fault == ""
        with pytest.raises(InvalidError, match="there is no output"):
            stream.remove_output(second)
        with pytest.raises(InvalidError, match="is no output"):
            stream.add_output("b.avi")
        with pytest.raises(InvalidError, match="a stream is running already"):
            camera.stream()
    assert stream.outputs[0].state is OutputState.FINISHED and (tmp_path / "a.mp4").stat().st_size > 10_000
    assert list(packets) == [] and stream.statistics.pictures > 0
    with pytest.raises(ClosedError):
        stream.add_output(tmp_path / "c.mp4")


def test_a_reader_is_a_file_of_one_track(camera, tmp_path):
    with camera.stream() as stream:
        with stream.reader() as video, stream.reader(Track.AUDIO) as audio:
            pictures = video.read(20_000)
            assert pictures.startswith(stream.headers.annexb)
            sound = audio.read(7)
    # ADTS of AAC-LC at 48 kHz in stereo, without a checksum.
    assert sound[:2] == b"\xff\xf1" and sound[2] == 0x4C and sound[3] & 0xFC == 0x80
    with camera.stream() as stream, open(tmp_path / "a.h264", "wb") as file:
        reader = stream.reader()
        file.write(reader.read(30_000))
        stream.stop()
        shutil.copyfileobj(reader, file)
    assert (tmp_path / "a.h264").stat().st_size >= 1000


def test_a_decoder_takes_the_packets(camera):
    av = pytest.importorskip("av", reason="python3-av is not installed")
    with camera.stream() as stream, stream.packets() as packets:
        decoder = av.CodecContext.create("h264", "r")
        decoder.extradata = stream.headers.annexb
        for packet in packets:
            frames = decoder.decode(av.Packet(packet.data)) if packet.track == Track.VIDEO else []
            if frames:
                break
    assert (frames[0].width, frames[0].height) == (1440, 720)


def test_a_stitched_stream_is_spherical(camera):
    with camera.stream(stitched=Stitched(480, 240, bitrate=500_000), time_limit=LIMIT) as stream:
        assert stream.headers[:3] == (480, 240, True)


def test_a_stream_tells_its_problems(simulator, camera):
    with camera.stream() as stream, stream.problems() as problems:
        simulator.tell("unplug")
        assert "the stream waits for it" in str(problems.next(LIMIT))
        simulator.tell("plug")
        with stream.packets() as packets:
            assert packets.next(2 * LIMIT).key
