"""Every request of the table, waited for and awaited."""
import asyncio
import inspect
import re
import tomllib
import typing
from pathlib import Path

import pytest

import zeltarkasdk
from conftest import LIMIT, opened
from zeltarkasdk import (
    AsyncCamera,
    Battery,
    Camera,
    LinkState,
    MeteringWeights,
    OriginOffset,
    Position,
    RefusedError,
    Timelapse,
    VignetteGain,
    WhiteBalanceGain,
)

TABLE = tomllib.loads((Path(__file__).parents[3] / "bindings/requests.toml").read_text())
LEFT_OUT = {"control_system", "cancel_system_control"}  # shuts down or restarts the camera


def snake(name):
    return re.sub(r"(?<=[a-z0-9])([A-Z])", r"_\1", name.replace("IPSwitch", "IpSwitch")).lower()


NAMES = [snake(request["name"]) for request in TABLE["request"]]


def sample(parameter):
    """An argument that the camera can be given."""
    if parameter.default is not inspect.Parameter.empty:
        return parameter.default
    kind = parameter.annotation
    if isinstance(kind, type) and issubclass(kind, tuple):
        hints = typing.get_type_hints(kind)
        return kind(*(bytes(96) if hint is bytes else (1,) * 6 if "tuple" in str(hint) else 1 for hint in hints.values()))
    return {int: 1, str: "a.jpg"}.get(kind, b"{}")


def ask(camera, name):
    """Asks for it with samples; a refusal is an answer too."""
    request = getattr(camera, name)
    parameters = inspect.signature(request).parameters.values()
    given = [sample(one) for one in parameters if one.kind is not inspect.Parameter.KEYWORD_ONLY]
    if name in ("set_white_balance_gain", "set_vignette_gain", "set_vignette_luma", "set_origin_offset"):
        return None  # their arrays differ in length: tested below
    return request(*given)


def test_both_cameras_have_each_request_of_the_table():
    assert len(NAMES) > 60
    for name in NAMES:
        waiting, awaited = getattr(Camera, name), getattr(AsyncCamera, name)
        assert inspect.signature(waiting) == inspect.signature(awaited)
        assert inspect.iscoroutinefunction(awaited) and not inspect.iscoroutinefunction(waiting)
        assert waiting.__doc__ == awaited.__doc__ and "Raises:" in waiting.__doc__


def test_each_gives_what_it_promises(camera):
    for name in NAMES:
        if name in LEFT_OUT:
            continue
        try:
            given = ask(camera, name)
        except RefusedError:
            continue
        promised = typing.get_type_hints(getattr(Camera, name))["return"]
        assert given is None or isinstance(given, promised), name


def test_each_can_be_awaited(simulator):
    async def main():
        async with opened(simulator) as camera:
            for name in NAMES:
                if name in LEFT_OUT:
                    continue
                asked = ask(camera, name)
                try:
                    given = await asked if asked is not None else None
                except RefusedError:
                    continue
                promised = typing.get_type_hints(getattr(Camera, name))["return"]
                assert given is None or isinstance(given, promised), name

    asyncio.run(main())


def test_results_are_named_and_unpack(camera):
    battery = camera.battery()
    assert battery == Battery(power_type=1, level=100)
    power_type, level = battery
    assert (power_type, level) == (1, 100)
    card = camera.card()
    assert card.capacity_bytes == 8 << 30 and 0 < card.free_bytes <= card.capacity_bytes
    assert camera.serial_number() == "E1A0001"
    assert camera.photos_remaining() > 0


def test_what_is_set_can_be_asked_for(camera):
    camera.set_self_timer(7)
    assert camera.self_timer() == 7
    camera.set_timelapse_exposure_bias(-3)
    assert camera.timelapse_exposure_bias() == -3
    lapse = Timelapse(value1=4_000_000_000, value2=1, value3=2, exposure1=3, exposure2=255)
    camera.set_timelapse(lapse)
    assert camera.timelapse() == lapse
    camera.set_photo_extra_info("a.jpg", b"{}")
    camera.set_video_extra_info("a.mp4", bytearray(b'{"a": 1}'))
    assert camera.video_extra_info("a.mp4") == b'{"a": 1}'


def test_records_hold_arrays(camera):
    gain = WhiteBalanceGain(1, 2, (-3, 4, 5, 32767))
    camera.set_white_balance_gain(gain)
    assert camera.white_balance_gain() == gain
    camera.set_vignette_gain((1, 2, [1, 2, 3, 4, 5, -6]))
    assert camera.vignette_gain() == VignetteGain(1, 2, (1, 2, 3, 4, 5, -6))
    offset = OriginOffset((1, 2, 3), (4, 5, -6), 7, 8)
    camera.set_origin_offset(0, 3, offset)
    assert camera.origin_offset(0, 3) == offset
    camera.set_metering_weights(MeteringWeights(bytes(range(96))))


def test_a_recording_keeps_what_it_was_given(camera):
    camera.start_recording(Position(52.5, -13.25, 34.0))
    file = camera.stop_recording()
    info = camera.video_metadata(file.name)
    assert info.position == Position(52.5, -13.25, 34.0)
    assert info.value == file.size_bytes and len(info.offset.lenses) == 2 and len(info.tail) == 32


def test_it_tells_which_camera_it_is_and_what_the_link_carries(camera):
    assert camera.identity()["serial_number"] == "E1A0001"
    assert camera.link_state is LinkState.FLOWING
    camera.battery()
    statistics = camera.link_statistics
    assert statistics.frames[zeltarkasdk.FrameType.MESSAGE] >= 1 and statistics.bytes_written > 0


def test_one_of_several_is_taken_by_its_serial_number(attach):
    attach("--serial", "A1")
    second = attach("--serial", "B2")
    with opened(second, serial_number="B2") as camera:
        assert camera.serial_number() == "B2"


@pytest.mark.parametrize("limit", [LIMIT, 1000])
def test_a_time_limit_can_be_given_to_each(camera, limit):
    assert camera.battery(time_limit=limit).level == 100
