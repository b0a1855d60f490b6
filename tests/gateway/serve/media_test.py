"""Photos and files."""
CAMERA = "/api/v1/cameras/E1A0001"
FILES = "/api/v1/files/"


def take(gateway, **body):
    answer = gateway.ask("POST", CAMERA + "/photo", body)
    assert answer.status == 200, answer.body
    return answer.json["files"]


def test_a_photo_is_stored_with_its_panorama(gateway):
    photo, panorama = take(gateway, stitch=True)
    assert (photo["panorama"], panorama["panorama"]) == (False, True)
    assert panorama["name"] == photo["name"].replace(".jpg", "-360.jpg")
    content = gateway.ask("GET", FILES + photo["name"])
    assert content.headers["Content-Type"] == "image/jpeg"
    assert len(content.body) == photo["bytes"]
    assert content.body == (gateway.media / photo["name"]).read_bytes()
    assert b"GPano" in gateway.ask("GET", FILES + panorama["name"]).body
    assert [one["name"] for one in gateway.ask("GET", "/api/v1/files").json["files"]] == sorted([photo["name"], panorama["name"]])


def test_a_bracket_is_a_photo_for_each_step(gateway):
    assert len(take(gateway, bracket=[-2, 0, 2])) == 3
    for steps in ([], [128], ["1"], [0] * 10, 1):
        assert gateway.ask("POST", CAMERA + "/photo", {"bracket": steps}).status == 422
    assert gateway.ask("POST", CAMERA + "/photo", {"stitch": 1}).status == 422


def test_a_file_is_given_in_ranges_and_once(gateway):
    name = take(gateway)[0]["name"]
    whole = gateway.ask("GET", FILES + name)
    part = gateway.ask("GET", FILES + name, headers={"Range": "bytes=10-19"})
    assert (part.status, part.body) == (206, whole.body[10:20])
    assert part.headers["Content-Range"] == f"bytes 10-19/{len(whole.body)}"
    assert gateway.ask("GET", FILES + name, headers={"Range": "bytes=-5"}).body == whole.body[-5:]
    beyond = gateway.ask("GET", FILES + name, headers={"Range": f"bytes={len(whole.body)}-"})
    assert (beyond.status, beyond.headers["Content-Range"]) == (416, f"bytes */{len(whole.body)}")
    tag = whole.headers["ETag"]
    assert gateway.ask("GET", FILES + name, headers={"If-None-Match": tag}).status == 304
    assert gateway.ask("GET", FILES + name, headers={"Range": "bytes=0-0", "If-Range": tag}).status == 206
    assert gateway.ask("GET", FILES + name, headers={"Range": "bytes=0-0", "If-Range": '"other"'}).status == 200


def test_a_thumbnail_is_a_small_picture(gateway):
    name = take(gateway)[0]["name"]
    small = gateway.ask("GET", FILES + name + "?width=200")
    assert small.status == 200 and small.body[:2] == b"\xff\xd8" and len(small.body) < 50_000
    assert gateway.ask("GET", FILES + name + "?width=200", headers={"If-None-Match": small.headers["ETag"]}).status == 304
    for width in ("15", "1025", "x", ""):
        assert gateway.ask("GET", FILES + name + "?width=" + width).status == 422
    (gateway.media / "film.mp4").write_bytes(b"x")
    assert gateway.ask("GET", FILES + "film.mp4?width=200").status == 422


def test_a_file_is_removed(gateway):
    name = take(gateway)[0]["name"]
    assert gateway.ask("DELETE", FILES + name).status == 204
    assert gateway.ask("DELETE", FILES + name).status == 404
    assert gateway.ask("GET", FILES + name).status == 404


def test_what_somebody_has_stored_runs_nothing_in_a_browser(gateway):
    gateway.media.mkdir(exist_ok=True)
    (gateway.media / "a.html").write_text("<script>alert(1)</script>")
    answer = gateway.ask("GET", FILES + "a.html")
    assert answer.headers["Content-Type"] == "application/octet-stream"
    assert answer.headers["Content-Disposition"] == "attachment"
    assert "sandbox" in answer.headers["Content-Security-Policy"]
