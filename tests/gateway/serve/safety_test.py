"""Who is let in, and what those who are not are told."""
import socket

import pytest

CAMERA = "/api/v1/cameras/E1A0001"
TOKEN = "0123456789abcdef0123456789abcdef"


@pytest.fixture
def guarded(tmp_path, attach, serve):
    attach()
    (tmp_path / "token").write_text(TOKEN + "\n")
    one = serve("--token-file", str(tmp_path / "token"))
    one.wait_for("E1A0001")
    return one


def raw(gateway, text: bytes) -> bytes:
    with socket.create_connection(("127.0.0.1", gateway.port), timeout=60) as connection:
        connection.sendall(text)
        connection.shutdown(socket.SHUT_WR)
        got = b""
        while some := connection.recv(65536):
            got += some
        return got


def test_the_address_bears_the_token(guarded):
    assert guarded.address == f"http://127.0.0.1:{guarded.port}/#token={TOKEN}"


def test_nobody_without_the_token_learns_that_a_camera_exists(guarded):
    answers = set()
    for path in (CAMERA, "/api/v1/cameras/none", "/api/v1/cameras", "/api/v1/none", "/metrics", CAMERA + "/live.mp4",
                 "/api/v1/files/none", "/api/v1/openapi.json"):
        for headers in ({"Authorization": ""}, {"Authorization": "Bearer " + TOKEN[:-1] + "0"}, {"Authorization": "", "Cookie": "zel_token=x"}):
            for method in ("GET", "POST", "DELETE"):
                answer = guarded.ask(method, path, {} if method == "POST" else None, headers)
                answers.add((answer.status, answer.body, answer.headers["WWW-Authenticate"]))
    assert len(answers) == 1
    assert next(iter(answers))[0] == 401


def test_the_page_needs_no_token_and_its_cookie_is_one(guarded):
    page = guarded.ask("GET", "/", headers={"Authorization": ""})
    assert page.status == 200
    assert page.headers["Content-Type"].startswith("text/html")
    assert "default-src 'self'" in page.headers["Content-Security-Policy"]
    unchanged = guarded.ask("GET", "/", headers={"Authorization": "", "If-None-Match": page.headers["ETag"]})
    assert (unchanged.status, unchanged.body) == (304, b"")
    assert guarded.ask("GET", CAMERA, headers={"Authorization": "", "Cookie": "zel_token=" + TOKEN}).status == 200


def test_another_name_that_leads_here_is_refused(gateway):
    for host in ("evil.example", f"evil.example:{gateway.port}", "127.0.0.1.evil.example"):
        for path in ("/", CAMERA, "/none"):
            assert gateway.ask("GET", path, headers={"Host": host}).status == 421
    assert gateway.ask("GET", CAMERA, headers={"Host": "localhost"}).status == 200


def test_pages_of_other_origins_are_refused(gateway):
    for origin in ("http://evil.example", "null", f"http://localhost:{gateway.port}"):
        answer = gateway.ask("POST", CAMERA + "/call", {"operation": "queryCameraBattery"}, {"Origin": origin})
        assert answer.status == 403
        assert answer.headers["Access-Control-Allow-Origin"] is None
    own = {"Origin": f"http://127.0.0.1:{gateway.port}"}
    assert gateway.ask("POST", CAMERA + "/call", {"operation": "queryCameraBattery"}, own).status == 200
    assert gateway.ask("GET", CAMERA + "/live.mp4", headers={"Sec-Fetch-Site": "cross-site"}).status == 403
    assert gateway.ask("OPTIONS", CAMERA + "/call", headers={"Origin": "http://evil.example"}).status == 403


def test_nothing_outside_the_media_folder_is_given_or_removed(gateway, tmp_path):
    (tmp_path / "secret").write_text("x")
    for name in ("..%2Fsecret", "%2e%2e%2fsecret", "../secret", "%2Fetc%2Fpasswd", "..", ".", "", "a%5Cb", "%2Ehidden"):
        for method in ("GET", "DELETE"):
            assert gateway.ask(method, "/api/v1/files/" + name).status == 404, name
    assert gateway.ask("GET", "/api/v1/files/a%00b").status == 400
    assert (tmp_path / "secret").exists()


def test_what_is_malformed_gets_400(gateway):
    for text in (b"\x00\x01\x02\r\n\r\n", b"GET\r\n\r\n", b"GET / HTTP/1.1\r\n\r\n", b"GET /%zz HTTP/1.1\r\nHost: localhost\r\n\r\n",
                 b"GET /a b HTTP/1.1\r\nHost: localhost\r\n\r\n", b"POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: -1\r\n\r\n"):
        answer = raw(gateway, text)
        assert answer == b"" or answer.startswith((b"HTTP/1.1 400", b"HTTP/1.0 400", b"HTTP/1.1 505")), (text, answer)
    assert gateway.ask("GET", CAMERA).status == 200


def test_a_viewer_that_stops_reading_delays_nobody(gateway):
    lazy = socket.create_connection(("127.0.0.1", gateway.port))
    lazy.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    lazy.sendall(f"GET {CAMERA}/live.units HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())
    quick = gateway.connect()
    quick.request("GET", CAMERA + "/live.units")
    answer = quick.getresponse()
    assert len(answer.read(1 << 20)) == 1 << 20
    assert gateway.ask("GET", CAMERA).status == 200
    lazy.close()
    quick.close()


def test_500_idle_connections_delay_nobody(gateway):
    idle = [socket.create_connection(("127.0.0.1", gateway.port)) for _ in range(500)]
    assert gateway.ask("GET", CAMERA).status == 200
    for one in idle:
        one.close()
