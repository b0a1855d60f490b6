"""What goes wrong, and what is done wrong on purpose: an exception with words each time."""
import pickle
import threading

import pytest

import zeltarkasdk
from conftest import LIMIT, opened
from zeltarkasdk import (
    Camera,
    ClosedError,
    Format,
    InUseError,
    InvalidError,
    Logo,
    LostError,
    NoCameraError,
    PlatformError,
    RefusedError,
    Status,
    Stitched,
    TimeLimitError,
    ZelError,
)


def test_a_refusal_carries_the_cameras_domain_code_and_words(attach):
    with opened(attach("--fault", "refuse=0x401A")) as camera:
        with pytest.raises(RefusedError) as caught:
            camera.set_white_balance(2)
    error = caught.value
    assert (error.status, error.domain, error.code) == (Status.REFUSED, "NSOSStatusErrorDomain", 101)
    assert str(error) == "setWhiteBalance: the camera refused, or its answer cannot be read"


def test_no_answer_ends_with_the_time_limit(attach):
    with opened(attach("--fault", "no-reply=0x4001")) as camera:
        with pytest.raises(TimeLimitError) as caught:
            camera.battery(time_limit=0.05)
        assert isinstance(caught.value, TimeoutError)
        assert camera.card().state == 0


def test_a_camera_that_is_not_there_is_told_with_where_it_was_looked_for(tmp_path):
    with pytest.raises(NoCameraError) as caught:
        Camera.open(accessories=tmp_path / "bus", time_limit=0.1)
    assert str(caught.value) == f"no camera was attached in time; looked in {tmp_path / 'bus'}"


def test_a_camera_that_another_has_is_told_with_who_has_it(simulator, camera):
    with pytest.raises(InUseError) as caught:
        opened(simulator)
    assert "camera E1A0001 is in use by process" in str(caught.value)


def test_a_folder_that_is_refused_is_a_platforms_error(tmp_path):
    (tmp_path / "bus").mkdir(mode=0o777)
    (tmp_path / "bus").chmod(0o777)
    with pytest.raises(PlatformError, match="can be written by others"):
        Camera.open(accessories=tmp_path / "bus", time_limit=LIMIT)


def test_a_camera_that_was_lost_raises_and_works_again(simulator, camera):
    with camera.link_changes() as changes:
        simulator.tell("unplug")
        while changes.next(LIMIT) != zeltarkasdk.LinkState.CLOSED:
            pass
        with pytest.raises(LostError, match="not connected"):
            camera.battery()
        simulator.tell("plug")
        while changes.next(LIMIT) != zeltarkasdk.LinkState.FLOWING:
            pass
    assert camera.battery().level == 100


@pytest.mark.parametrize(
    "call, kind, words",
    [
        (lambda c: c.set_white_balance("auto"), TypeError, "mode must be a whole number, not str"),
        (lambda c: c.set_white_balance(True), TypeError, "mode must be a whole number, not bool"),
        (lambda c: c.set_white_balance(256), ValueError, "mode must be from 0 to 255, and is 256"),
        (lambda c: c.set_white_balance(10**30), ValueError, "mode must be from 0 to 255"),
        (lambda c: c.set_exposure_bias(-32769), ValueError, "bias must be from -32768 to 32767"),
        (lambda c: c.set_serial_number(b"A"), TypeError, "serial_number must be a str, not bytes"),
        (lambda c: c.set_serial_number("A\0B"), ValueError, "serial_number must not hold a zero character"),
        (lambda c: c.set_serial_number("\ud800"), UnicodeEncodeError, "surrogates"),
        (lambda c: c.update_position((1.0, 2.0)), ValueError, "position must be Position"),
        (lambda c: c.update_position(None), TypeError, "position must be Position"),
        (lambda c: c.update_position((1, "2", 3)), TypeError, "position.longitude must be a number, not str"),
        (lambda c: c.update_position((1, float("nan"), 3)), ValueError, "position.longitude must be a finite number"),
        (lambda c: c.set_metering_weights((bytes(95),)), ValueError, "weights.weights must have 96 bytes, and has 95"),
        (lambda c: c.set_photo_extra_info("a", "text"), TypeError, "extra_info must be bytes"),
        (lambda c: c.set_photo_extra_info("a", memoryview(bytes(8))[::2]), TypeError, "extra_info must be bytes"),
        (lambda c: c.battery(time_limit=0), ValueError, "time_limit must be seconds above 0"),
        (lambda c: c.battery(time_limit=float("nan")), ValueError, "time_limit must be seconds above 0"),
        (lambda c: c.battery(time_limit="1"), TypeError, "time_limit must be seconds or None, not str"),
        (lambda c: c.bracket([]), InvalidError, "give 1 to 9 exposure steps"),
        (lambda c: c.bracket([0] * 10), InvalidError, "give 1 to 9 exposure steps"),
        (lambda c: c.bracket(["a"]), TypeError, r"steps\[0\] must be a whole number"),
        (lambda c: c.bracket(3), TypeError, "steps must be whole numbers, not int"),
        (lambda c: c.upload(1, "C:/", b"a"), InvalidError, "leaves no name for the file"),
        (lambda c: c.upload(1, "a", 3), TypeError, "content must be bytes"),
        (lambda c: c.pictures(Format(640, 480, 25)), InvalidError, "no preview of 640 x 480 at 25"),
        (lambda c: c.pictures(stitched=Stitched(961, 480)), InvalidError, "two even sides"),
        (lambda c: c.pictures(stitched=Stitched(logo=Logo(2, 2, b"123"))), ValueError, "the logo has 3 bytes"),
        (lambda c: c.stream("film.avi"), InvalidError, "film.avi"),
        (lambda c: c.stream(3), TypeError, "an output must be a str or a path, not int"),
        (lambda c: c.events(capacity="4"), TypeError, "capacity must be a whole number"),
        (lambda c: c.events(capacity=-1), ValueError, "capacity must be from 0 to 4294967295, and is -1"),
        (lambda c: c.battery(1), TypeError, "positional"),
        (lambda c: Camera(), TypeError, r"Camera.open\(\)"),
        (lambda c: zeltarkasdk.AsyncCamera(c.battery()), TypeError, r"Camera.open\(\)"),
        (lambda c: zeltarkasdk.Picture(b"123"), TypeError, r"Camera.pictures\(\)"),
    ],
)
def test_a_wrong_call_is_told_in_words(shared_camera, call, kind, words):
    with pytest.raises(kind, match=words):
        call(shared_camera)
    assert shared_camera.battery().level == 100


@pytest.fixture(scope="module")
def shared_camera(tmp_path_factory):
    from conftest import Simulator

    simulator = Simulator(tmp_path_factory.mktemp("shared") / "bus")
    with opened(simulator) as camera:
        yield camera
    simulator.stop()


def test_the_extension_module_survives_whatever_it_is_given(shared_camera):
    from zeltarkasdk._native import native

    handle = shared_camera._handle
    functions = [getattr(native(), name) for name in dir(native()) if name not in ("set_error_maker", "version")]
    functions = [one for one in functions if type(one).__name__ == "builtin_function_or_method"]
    assert len(functions) > 90
    wrong = [(), (handle,), (handle, None, "1"), (handle, handle, 1), (object(),) * 3, (handle, None, -1), (handle, None, 2**40)]
    for function in functions:
        for given in [*wrong, *((handle, None) + (what,) * count for what in (None, "a", -1.5, b"", []) for count in range(16))]:
            if function.__name__ in ("link_state", "link_statistics", "end", "free") and given[:1] == (handle,):
                continue
            try:
                function(*given)
            except (TypeError, ValueError, ZelError):
                pass  # any other exception, and a crash, is a fault
    assert shared_camera.battery().level == 100


def test_everything_after_the_close_is_told_so(simulator):
    camera = opened(simulator)
    events, pictures = camera.events(), camera.pictures()
    camera.close()
    camera.close()
    for call in (camera.battery, camera.photo, camera.events, camera.pictures, camera.stream, camera.identity):
        with pytest.raises(ClosedError, match="the camera was closed"):
            call()
    with pytest.raises(ClosedError):
        camera.link_state
    assert list(events) == []
    assert list(pictures) == []
    assert events.dropped == 0
    with pytest.raises(ClosedError):
        with camera:
            camera.battery()


def test_a_subscription_that_was_closed_ends(camera):
    with camera.events() as events:
        pass
    events.close()
    with pytest.raises(ClosedError, match="the subscription was freed"):
        events.next()
    assert list(events) == []


def test_a_close_ends_the_calls_of_other_threads(attach):
    camera = opened(attach("--fault", "no-reply=0x4001"))
    caught = []

    def call(wait):
        try:
            wait()
        except ZelError as error:
            caught.append(type(error))

    events = camera.events()
    threads = [threading.Thread(target=call, args=(wait,)) for wait in (camera.battery, events.next, events.next)]
    for one in threads:
        one.start()
    camera.close()
    for one in threads:
        one.join(LIMIT)
    assert caught == [ClosedError] * 3


def test_threads_may_ask_at_the_same_time(camera):
    levels = []
    threads = [threading.Thread(target=lambda: levels.extend(camera.battery().level for _ in range(50))) for _ in range(4)]
    for one in threads:
        one.start()
    for one in threads:
        one.join(LIMIT)
    assert levels == [100] * 200


def test_errors_can_be_pickled():
    error = pickle.loads(pickle.dumps(RefusedError("no", "domain", 3)))
    assert (type(error), str(error), error.domain, error.code) == (RefusedError, "no", "domain", 3)


def test_each_status_has_its_class():
    from zeltarkasdk.errors import error_of

    for status in list(Status)[1:]:
        assert error_of(status, "why").status == status
    assert str(error_of(Status.LOST, "why")) == "why"
