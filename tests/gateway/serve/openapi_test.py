"""A client that knows of the gateway what its description says, and calls every operation."""
import re

import jsonschema
import pytest

from conftest import Gateway

BODY = "application/json"


def referrer(document):
    """The schemas by the document itself."""
    return jsonschema.RefResolver("", document)


def check(document, schema, value):
    jsonschema.Draft202012Validator(schema, resolver=referrer(document)).validate(value)


def check_answer(document, operation, answer):
    """The answer's body is what the description says of its status."""
    described = operation["responses"].get(str(answer.status), operation["responses"]["default"])
    content = described.get("content", {})
    if not content:
        assert answer.body == b""
        return
    kind = answer.headers["Content-Type"]
    if kind not in content:  # a file's own type
        assert "application/octet-stream" in content, kind
        return
    if "schema" in content[kind]:
        check(document, content[kind]["schema"], answer.json)


def value_for(argument: str) -> str:
    """An argument of the kind that the title names: "type:u8", "nsData:hex of 8 bytes"."""
    kind = argument.split(":", 1)[1]
    sized = re.fullmatch(r"hex of (\d+) bytes", kind)
    if sized:
        return "00" * int(sized.group(1))
    return {"text": "a", "hex": "00"}.get(kind, "0")


def paths_of(document):
    for path, methods in document["paths"].items():
        for method, operation in methods.items():
            yield path, method.upper(), operation


@pytest.fixture
def document(gateway):
    answer = gateway.ask("GET", "/api/v1/openapi.json")
    assert answer.status == 200
    return answer.json


def test_the_description_is_one_of_openapi(document):
    assert document["openapi"] == "3.1.0"
    names = [operation["operationId"] for _, _, operation in paths_of(document)]
    assert len(names) == len(set(names)) > 10
    for schema in document["components"]["schemas"].values():
        jsonschema.Draft202012Validator.check_schema(schema)


BODIES = {"call": {"operation": "queryCameraBattery"}, "record": {"action": "start"}, "photo": {"stitch": False},
          "beginOutput": {"address": "film.mp4"}}
GROWING = {"events", "liveMp4", "liveUnits"}
LAST = ("deleteFile", "endOutput")


def test_every_operation_answers_as_it_is_described(gateway: Gateway, document):
    values = {"serial": "E1A0001", "name": "", "id": ""}
    for path, method, operation in sorted(paths_of(document), key=lambda one: one[2]["operationId"] in LAST):
        name = operation["operationId"]
        if "{name}" in path and not values["name"]:
            gateway.ask("POST", "/api/v1/cameras/E1A0001/photo", {})
            values["name"] = gateway.ask("GET", "/api/v1/files").json["files"][0]["name"]
        if "{id}" in path and not values["id"]:
            values["id"] = str(gateway.ask("GET", "/api/v1/cameras/E1A0001/outputs").json["outputs"][0]["id"])
        address = path.format(**values)
        if name in GROWING:
            connection = gateway.connect()
            connection.request(method, address)
            answer = connection.getresponse()
            assert (answer.status, answer.headers["Content-Type"]) == (200, next(iter(operation["responses"]["200"]["content"])))
            assert answer.read(16)
            connection.close()
            continue
        body = BODIES[name] if "requestBody" in operation else None
        if body is not None:
            check(document, operation["requestBody"]["content"][BODY]["schema"], body)
        answer = gateway.ask(method, address, body)
        assert 200 <= answer.status < 300, (method, address, answer.body)
        check_answer(document, operation, answer)
        if name == "record":  # the camera takes no photo meanwhile
            gateway.ask(method, address, {"action": "stop"})


def test_every_operation_of_the_camera_can_be_called_by_its_description(gateway: Gateway, document):
    operation = document["paths"]["/api/v1/cameras/{serial}/call"]["post"]
    statuses = {}
    for one in document["components"]["schemas"]["Call"]["oneOf"]:
        name = one["properties"]["operation"]["const"]
        arguments = [value_for(item["title"]) for item in one["properties"]["args"].get("prefixItems", [])]
        body = {"operation": name, "args": arguments}
        check(document, document["components"]["schemas"]["Call"], body)
        answer = gateway.ask("POST", "/api/v1/cameras/E1A0001/call", body)
        check_answer(document, operation, answer)
        statuses[name] = answer.status
    assert set(statuses.values()) <= {200, 502}, {name: status for name, status in statuses.items() if status not in (200, 502)}
    assert list(statuses.values()).count(200) > len(statuses) / 2


def test_what_is_described_as_wrong_is_refused(gateway: Gateway, document):
    operation = document["paths"]["/api/v1/cameras/{serial}/call"]["post"]
    for body in ({}, {"operation": "none"}, {"operation": "msgReqSetAEEVBias", "args": []}, {"operation": 1}):
        with pytest.raises(jsonschema.ValidationError):
            check(document, document["components"]["schemas"]["Call"], body)
        answer = gateway.ask("POST", "/api/v1/cameras/E1A0001/call", body)
        assert answer.status == 422
        check_answer(document, operation, answer)
