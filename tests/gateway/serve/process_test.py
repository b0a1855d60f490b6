"""zelcam serve as a program: how it begins and ends, and what it says."""
import http.client
import os
import shutil
import signal
import socket
import ssl
import subprocess
import urllib.request
from pathlib import Path

import pytest

from conftest import PATIENCE, ZELCAM, Gateway, free_port, wait_until

SOURCE = Path(os.environ["SOURCE_FOLDER"])
REFUSED, WRONG_USAGE = 1, 2


def fails(tmp_path, status, *arguments, environment=None):
    done = subprocess.run([ZELCAM, "--accessories", str(tmp_path / "bus"), "serve", *arguments], capture_output=True, text=True,
                          timeout=PATIENCE, env={**os.environ, "XDG_DATA_HOME": str(tmp_path / "data"), **(environment or {})}, check=False)
    assert done.returncode == status
    assert done.stdout == ""
    return done.stderr


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM])
def test_a_signal_ends_it_cleanly(gateway, number):
    live = gateway.connect()
    live.request("GET", "/api/v1/cameras/E1A0001/live.mp4")
    assert live.getresponse().read(8)
    assert gateway.stop(number) == 0
    assert gateway.errors.read_text() == ""
    assert not (gateway.bus.parent / "gateway.sock").exists()


def test_it_ends_while_a_photo_is_taken(attach, serve):
    attach("--fault", "no-photo")
    gateway = serve()
    gateway.wait_for("E1A0001")
    connection = gateway.connect()
    connection.request("POST", "/api/v1/cameras/E1A0001/photo", "{}", {"Content-Type": "application/json"})
    assert gateway.ask("GET", "/api/v1/cameras").status == 200
    assert gateway.stop() == 0


def test_a_port_that_is_taken_is_named(tmp_path, serve):
    one = serve()
    error = fails(tmp_path, REFUSED, "--listen", f"127.0.0.1:{one.port}")
    assert f"127.0.0.1:{one.port} is taken by another program" in error


def test_what_cannot_be_used_is_named(tmp_path):
    (tmp_path / "file").write_text("")
    for address in ("nowhere", "127.0.0.1", "127.0.0.1:65536", ":1", ""):
        assert "--listen takes an address and a port" in fails(tmp_path, WRONG_USAGE, "--listen", address)
    assert "--mqtt takes an address" in fails(tmp_path, WRONG_USAGE, "--listen", "127.0.0.1:0", "--mqtt", "http://broker")
    assert "it is empty" in fails(tmp_path, WRONG_USAGE, "--listen", "127.0.0.1:0", "--token-file", str(tmp_path / "file"))
    assert str(tmp_path / "file") in fails(tmp_path, REFUSED, "--listen", "127.0.0.1:0", "--media", str(tmp_path / "file" / "x"))


def test_an_address_for_everybody_needs_a_token(tmp_path, attach):
    gateway = Gateway(tmp_path, "--listen", "0.0.0.0:0")
    try:
        assert len(gateway.token) == 32
        assert gateway.ask("GET", "/api/v1/cameras").status == 200
        assert gateway.ask("GET", "/api/v1/cameras", headers={"Authorization": ""}).status == 401
        assert gateway.ask("GET", "/api/v1/cameras", headers={"Host": socket.gethostname().lower()}).status == 200
    finally:
        gateway.stop()


def test_media_are_kept_with_the_users_data(tmp_path):
    process = subprocess.Popen([ZELCAM, "--accessories", str(tmp_path / "bus"), "serve", "--listen", "127.0.0.1:0"],
                               stdout=subprocess.PIPE, text=True, env={**os.environ, "XDG_DATA_HOME": str(tmp_path / "data")})
    assert process.stdout.readline().startswith("http://127.0.0.1:")
    assert (tmp_path / "data" / "zelcam" / "media").is_dir()
    process.terminate()
    assert process.wait(PATIENCE) == 0


@pytest.mark.skipif(not shutil.which("systemd-socket-activate"), reason="systemd-socket-activate is not installed")
def test_it_takes_its_socket_from_systemd(tmp_path, serve):
    port = free_port()
    gateway = serve(before=("systemd-socket-activate", "-l", f"127.0.0.1:{port}"))

    def answers():
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{port}/api/v1/cameras", timeout=PATIENCE) as answer:
                return answer.status == 200
        except OSError:
            return False

    wait_until(answers, "nobody answers")
    assert gateway.process.stdout.readline().strip() == f"http://127.0.0.1:{port}/"
    assert gateway.stop() == 0


UNITS = SOURCE / "packaging" / "systemd"


@pytest.mark.skipif(not shutil.which("systemd-analyze"), reason="systemd-analyze is not installed")
@pytest.mark.parametrize("kind", ["system", "user"])
def test_the_units_are_sound(tmp_path, kind):
    units = []
    for unit in sorted((UNITS / kind).iterdir()):
        copy = tmp_path / unit.name
        copy.write_text(unit.read_text().replace("/usr/bin/zelcam", ZELCAM))
        units.append(str(copy))
    done = subprocess.run(["systemd-analyze", "verify", "--man=no", *(["--user"] if kind == "user" else []), *units],
                          capture_output=True, text=True, timeout=PATIENCE, check=False,
                          env={**os.environ, "XDG_RUNTIME_DIR": str(tmp_path)})
    complaints = [line for line in done.stderr.splitlines() if "zelcam" in line]
    assert (done.returncode, complaints) == (0, []), done.stderr


@pytest.mark.skipif(not shutil.which("systemd-analyze"), reason="systemd-analyze is not installed")
def test_the_system_unit_is_confined():
    """An exposure of at most 2.0 of 10, by systemd's own measure."""
    done = subprocess.run(["systemd-analyze", "security", "--offline=true", "--threshold=20", str(UNITS / "system" / "zelcam-serve.service")],
                          capture_output=True, text=True, timeout=PATIENCE, check=False)
    assert done.returncode == 0, done.stdout + done.stderr


@pytest.mark.skipif(not shutil.which("nginx") or not shutil.which("openssl"), reason="nginx or openssl is not installed")
def test_it_is_reached_by_tls_through_nginx(tmp_path, attach, serve):
    attach()
    gateway = serve("--host", "camera.example")
    gateway.wait_for("E1A0001")
    port = free_port()
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj", "/CN=camera.example",
                    "-addext", "subjectAltName=DNS:camera.example", "-keyout", tmp_path / "camera.key", "-out", tmp_path / "camera.crt"],
                   check=True, capture_output=True)
    site = (SOURCE / "examples" / "gateway" / "nginx.conf").read_text()
    for written, here in (("listen 443 ssl", f"listen 127.0.0.1:{port} ssl"), ("127.0.0.1:8360", f"127.0.0.1:{gateway.port}"),
                          ("/etc/ssl/camera", str(tmp_path / "camera"))):
        assert written in site
        site = site.replace(written, here)
    (tmp_path / "nginx.conf").write_text(f"daemon off; pid {tmp_path}/pid; error_log {tmp_path}/error.log;\nevents {{}}\n"
                                         f"http {{ access_log off; client_body_temp_path {tmp_path}/body; proxy_temp_path {tmp_path}/proxy;\n"
                                         f"fastcgi_temp_path {tmp_path}/f; uwsgi_temp_path {tmp_path}/u; scgi_temp_path {tmp_path}/s;\n{site}\n}}\n")
    nginx = subprocess.Popen(["nginx", "-p", str(tmp_path), "-c", str(tmp_path / "nginx.conf")], stderr=subprocess.DEVNULL)
    try:
        context = ssl.create_default_context(cafile=str(tmp_path / "camera.crt"))

        def asked(path, **headers):
            """By the name of the certificate, wherever that leads."""
            plain = socket.create_connection(("127.0.0.1", port), timeout=PATIENCE)
            connection = http.client.HTTPSConnection("camera.example", port)
            connection.sock = context.wrap_socket(plain, server_hostname="camera.example")
            connection.request("GET", path, headers={"Host": "camera.example", **headers})
            return connection.getresponse()

        def is_there():
            try:
                return asked("/").status == 200
            except OSError:
                return False

        wait_until(is_there, "nginx does not answer")
        assert asked("/api/v1/cameras", Origin="https://camera.example").status == 200
        assert asked("/api/v1/cameras", Origin="https://evil.example").status == 403
        live = asked("/api/v1/cameras/E1A0001/live.mp4")
        assert live.read(8)[4:] == b"ftyp"
    finally:
        nginx.terminate()
        nginx.wait(PATIENCE)
