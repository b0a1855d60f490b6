"""Many gateways as docs/fleet.md puts them together: a real Prometheus that reads them with its documented configuration."""
import json
import os
import re
import shutil
import subprocess
import urllib.error
import urllib.parse
import urllib.request
from pathlib import Path

import pytest

from conftest import PATIENCE, Gateway, Simulator, free_port, wait_until
from pages import Page

PAGE = Page(Path(os.environ["SOURCE_FOLDER"]) / "docs/fleet.md")
TOKEN = "0123456789abcdef-fleet"


class Prometheus:
    def __init__(self, folder: Path, ports: list) -> None:
        targets = ", ".join(f'"127.0.0.1:{port}"' for port in ports)
        config = PAGE.file("/etc/prometheus/prometheus.yml").replace("/etc/prometheus", str(folder)).replace("15s", "1s")
        config = re.sub(r"targets: \[.*\]", f"targets: [{targets}]", config)
        (folder / "prometheus.yml").write_text(config)
        (folder / "zelcam.rules.yml").write_text(PAGE.file("/etc/prometheus/zelcam.rules.yml"))
        (folder / "zelcam-token").write_text(TOKEN)
        self.port = free_port()
        self.log = folder / "prometheus.log"
        self.process = subprocess.Popen(
            ["prometheus", f"--config.file={folder}/prometheus.yml", f"--storage.tsdb.path={folder}/data",
             f"--web.listen-address=127.0.0.1:{self.port}"], stdout=self.log.open("w"), stderr=subprocess.STDOUT)

    def values(self, query: str) -> list:
        """The labels and the value of each series; nothing while it does not answer yet."""
        address = f"http://127.0.0.1:{self.port}/api/v1/query?query={urllib.parse.quote(query)}"
        try:
            with urllib.request.urlopen(address, timeout=PATIENCE) as answer:
                return [(one["metric"], one["value"][1]) for one in json.load(answer)["data"]["result"]]
        except (urllib.error.URLError, ConnectionError):
            return []

    def stop(self) -> None:
        self.process.terminate()
        self.process.wait(timeout=PATIENCE)


@pytest.fixture
def two_machines(tmp_path):
    """Two gateways with a camera each, on buses of their own."""
    (tmp_path / "token").write_text(TOKEN)
    started = []
    for name in ("attic", "garden"):
        folder = tmp_path / name
        folder.mkdir()
        started.append((Simulator(folder / "bus", "--serial", name.upper()),
                        Gateway(folder, "--token-file", str(tmp_path / "token"))))
    yield started
    for simulator, gateway in started:
        gateway.stop()
        if simulator.process.poll() is None:
            simulator.stop()


@pytest.mark.skipif(shutil.which("prometheus") is None, reason="Debian's package prometheus is not installed")
def test_prometheus_reads_every_gateway_and_sees_one_go(tmp_path, two_machines):
    for (_, gateway), name in zip(two_machines, ("ATTIC", "GARDEN")):
        gateway.wait_for(name)
    prometheus = Prometheus(tmp_path, [gateway.port for _, gateway in two_machines])
    try:
        def streaming():
            return {(labels["camera"], value) for labels, value in prometheus.values('zelcam_camera_status{status="streaming"}')}
        wait_until(lambda: streaming() == {("ATTIC", "1"), ("GARDEN", "1")}, "both cameras are not read as streaming")
        two_machines[0][0].stop()
        wait_until(lambda: streaming() == {("ATTIC", "0"), ("GARDEN", "1")}, "an unplugged camera is still read as streaming")
        two_machines[1][1].stop()

        def up():
            return sorted(value for _, value in prometheus.values('up{job="zelcam"}'))
        wait_until(lambda: up() == ["0", "1"], "a gateway that has ended is still up")
    finally:
        prometheus.stop()
