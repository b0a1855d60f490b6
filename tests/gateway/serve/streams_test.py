"""Events and live pictures."""
import json
import struct

from conftest import wait_until

CAMERA = "/api/v1/cameras/E1A0001"


class Events:
    """The events of a camera as they come."""

    def __init__(self, gateway) -> None:
        self.connection = gateway.connect()
        self.connection.request("GET", CAMERA + "/events")
        self.answer = self.connection.getresponse()
        assert self.answer.headers["Content-Type"] == "text/event-stream"

    def next(self, kind: str, matches=lambda value: True):
        while True:
            name = self.answer.readline().decode().removeprefix("event: ").strip()
            value = json.loads(self.answer.readline().decode().removeprefix("data: "))
            assert self.answer.readline() == b"\n"
            if name == kind and matches(value):
                return value


def test_events_begin_with_the_status_and_tell_of_its_changes(attach, serve):
    simulator = attach()
    gateway = serve()
    gateway.wait_for("E1A0001")
    events = Events(gateway)
    assert events.next("link") == {"status": "streaming"}
    simulator.stop()
    events.next("link", lambda value: value["status"] == "absent")
    attach()
    events.next("link", lambda value: value["status"] == "streaming")


def test_events_are_those_of_the_camera(attach, serve):
    simulator = attach()
    gateway = serve()
    gateway.wait_for("E1A0001")
    events = Events(gateway)
    events.next("link")
    simulator.tell("battery 1 40")
    event = events.next("camera", lambda value: value["name"] == "batteryUpdate")
    assert 40 in event["value"].values()


def test_statistics_come_by_and_by(gateway):
    events = Events(gateway)
    first, second = events.next("statistics"), events.next("statistics")
    assert second["now"] > first["now"]
    assert second["bytes"] >= first["bytes"]
    assert {"pictures", "dropped", "rate", "roundTrip", "clockOffset"} <= set(second)


def record(answer):
    size, kind, flags, time = struct.unpack("<IBBq", answer.read(14))
    return kind, flags, time, answer.read(size - 10)


def test_units_begin_with_a_description_and_a_key_picture(gateway):
    connection = gateway.connect()
    connection.request("GET", CAMERA + "/live.units")
    answer = connection.getresponse()
    kind, _, _, payload = record(answer)
    description = json.loads(payload)
    assert kind == 0
    assert (description["video"]["width"], description["video"]["height"]) == (1440, 720)
    kind, flags, _, payload = record(answer)
    assert (kind, flags & 1, payload[:4]) == (1, 1, b"\0\0\0\1")
    connection.close()


def test_film_begins_with_its_header(gateway):
    connection = gateway.connect()
    connection.request("GET", CAMERA + "/live.mp4")
    answer = connection.getresponse()
    assert answer.headers["Content-Type"] == "video/mp4"
    assert answer.read(8)[4:] == b"ftyp"
    connection.close()


def test_the_preview_ends_after_its_last_viewer(gateway):
    connection = gateway.connect()
    connection.request("GET", CAMERA + "/live.units")
    assert connection.getresponse().read(100)
    connection.close()
    events = Events(gateway)
    before = events.next("statistics")

    def has_stopped():
        nonlocal before
        now = events.next("statistics")
        is_still = now["bytes"] - before["bytes"] < 10_000
        before = now
        return is_still

    wait_until(has_stopped, "the preview goes on")


def test_lenses_are_those_of_the_camera(gateway):
    lens = gateway.ask("GET", CAMERA + "/lens").json
    assert (lens["width"], lens["height"], len(lens["lenses"])) == (3040, 1520, 2)


def test_metrics_tell_of_the_camera(gateway):
    answer = gateway.ask("GET", "/metrics")
    assert answer.status == 200
    assert b'camera="E1A0001"' in answer.body
