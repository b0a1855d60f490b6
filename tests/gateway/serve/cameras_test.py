"""What the gateway tells of its cameras and asks of them."""
import re
import stat
import subprocess
import threading

from conftest import wait_until, zelcam

CAMERA = "/api/v1/cameras/E1A0001"


def call(gateway, operation, *args, camera=CAMERA):
    return gateway.ask("POST", camera + "/call", {"operation": operation, "args": list(args)})


def without_clock(text: str) -> str:
    """Two stacks measure the camera's clock a few milliseconds apart."""
    return re.sub(r'"clockOffset":-?\d+', '"clockOffset":0', text)


def test_cameras_are_listed_with_their_status(gateway):
    assert gateway.ask("GET", "/api/v1/cameras").json == {"cameras": [
        {"serial": "E1A0001", "name": "Example 360", "firmware": "E1_2.0.1_192", "status": "streaming", "busy": False}]}


def test_a_camera_is_what_zelcam_info_prints(gateway):
    shown = gateway.ask("GET", CAMERA)
    printed = zelcam(gateway.bus, "--json", "info")
    assert printed.returncode == 0, printed.stderr
    assert without_clock(shown.body.decode()) == without_clock(printed.stdout)


def test_a_call_answers_what_zelcam_call_prints(gateway):
    answer = call(gateway, "queryCameraBattery")
    printed = zelcam(gateway.bus, "--json", "call", "queryCameraBattery")
    assert answer.status == 200
    assert answer.body.decode() == printed.stdout


def test_arguments_may_be_numbers_and_texts(gateway):
    assert call(gateway, "msgReqSetAEEVBias", -3).status == 200
    assert call(gateway, "msgReqSetAEEVBias", "-3").status == 200


def test_a_refusal_has_the_cameras_domain_and_code(gateway):
    answer = gateway.ask("POST", CAMERA + "/record", {"action": "stop"})
    assert answer.status == 502
    assert answer.headers["Content-Type"] == "application/problem+json"
    assert {key: answer.json[key] for key in ("status", "domain", "code")} == {
        "status": 502, "domain": "NSOSStatusErrorDomain", "code": 101}


def test_old_firmware_is_a_refusal(attach, serve):
    attach("--firmware", "189")
    gateway = serve()
    gateway.wait_for("E1A0001")
    answer = call(gateway, "getCameraAudioBitrateWithRebackBlock")
    assert (answer.status, answer.json["code"]) == (502, 120)


def test_wrong_calls_are_told_apart(gateway):
    assert call(gateway, "none").status == 422
    assert call(gateway, "msgReqSetAEEVBias").status == 422
    assert call(gateway, "msgReqSetAEEVBias", 1.5).status == 422
    assert call(gateway, "msgReqSetAEEVBias", "x").status == 422
    assert call(gateway, "queryCameraBattery", camera="/api/v1/cameras/none").status == 404
    assert gateway.ask("POST", CAMERA + "/call", {"operation": "queryCameraBattery", "more": 1}).status == 422
    assert gateway.ask("POST", CAMERA + "/call", "{", ).status == 400
    assert gateway.ask("POST", CAMERA + "/call", "{}", {"Content-Type": "text/plain"}).status == 415
    assert gateway.ask("POST", CAMERA + "/call", b" " * (1 << 20)).status == 413
    refusal = gateway.ask("PUT", CAMERA + "/call")
    assert (refusal.status, refusal.headers["Allow"]) == (405, "POST")


def test_a_camera_that_does_not_answer_is_a_timeout(attach, serve):
    attach("--fault", "no-reply=0x4001")
    gateway = serve("--timeout", "2")
    gateway.wait_for("E1A0001")
    answer = call(gateway, "queryCameraBattery")
    assert answer.status == 504
    shown = gateway.ask("GET", CAMERA).json
    assert shown["batteryLevel"] is None
    assert shown["error"]["message"] == "powerType: the camera did not answer within 2 s"


def test_a_camera_that_has_gone_is_absent_and_comes_back(attach, serve):
    simulator = attach()
    gateway = serve()
    gateway.wait_for("E1A0001")
    simulator.stop()
    gateway.wait_for("E1A0001", "absent")
    assert gateway.ask("GET", CAMERA).status == 503
    assert call(gateway, "queryCameraBattery").status == 503
    attach()
    gateway.wait_for("E1A0001")
    assert call(gateway, "queryCameraBattery").status == 200


def test_one_of_two_cameras_is_held_where_one_is_named(attach, serve):
    attach("--name", "a", "--serial", "A")
    attach("--name", "b", "--serial", "B")
    gateway = serve("--camera", "B")
    gateway.wait_for("B")
    assert [one["serial"] for one in gateway.ask("GET", "/api/v1/cameras").json["cameras"]] == ["B"]


def test_recording_begins_and_ends(gateway):
    assert gateway.ask("POST", CAMERA + "/record", {"action": "start"}).json == {"record": "start"}
    stored = gateway.ask("POST", CAMERA + "/record", {"action": "stop"}).json
    assert stored["record"] == "stop" and stored["fileSize"] > 0
    assert gateway.ask("POST", CAMERA + "/record", {"action": "x"}).status == 422


def test_many_ask_at_once_and_each_gets_its_answer(gateway):
    statuses = []

    def ask_often():
        for _ in range(20):
            statuses.append(call(gateway, "queryCameraBattery").json["result"])

    threads = [threading.Thread(target=ask_often) for _ in range(8)]
    for one in threads:
        one.start()
    for one in threads:
        one.join()
    assert statuses == [{"ucharValue": 1, "ucharValue2": 100}] * 160


def test_other_programs_go_through_the_gateway(gateway):
    """Several at once, while somebody looks."""
    live = gateway.connect()
    live.request("GET", CAMERA + "/live.units")
    assert live.getresponse().read(5)
    results = []
    threads = [threading.Thread(target=lambda: results.append(zelcam(gateway.bus, "--json", "info"))) for _ in range(3)]
    for one in threads:
        one.start()
    for one in threads:
        one.join()
    assert [(one.returncode, one.stderr) for one in results] == [(0, "")] * 3
    assert gateway.status_of("E1A0001") == "streaming"
    live.close()


def test_the_socket_for_this_machine_is_its_users_alone(gateway):
    socket = gateway.bus.parent / "gateway.sock"
    assert stat.S_IMODE(socket.stat().st_mode) == 0o600
    shown = subprocess.run(["curl", "-sS", "--unix-socket", str(socket), "http://x/api/v1/cameras"],
                           capture_output=True, text=True, check=True)
    assert "E1A0001" in shown.stdout
    refused = subprocess.run(["curl", "-sS", "--unix-socket", str(socket), "http://x" + CAMERA + "/wire"],
                             capture_output=True, text=True, check=True)
    assert '"status":426' in refused.stdout
    assert gateway.ask("GET", CAMERA + "/wire").status == 404
    assert gateway.stop() == 0
    wait_until(lambda: not socket.exists(), "the socket is left")
