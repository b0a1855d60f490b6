#!/usr/bin/env python3
"""Tries what docs/fleet.md says, with the real servers: Prometheus's tool, mosquitto, nginx and the tools of SRT."""
import os
import re
import shlex
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from pages import Page

ROOT, BUILD = Path(sys.argv[1]), Path(sys.argv[2])
del sys.argv[1:]
PAGE = Page(ROOT / "docs/fleet.md")
PATIENCE = 90  # seconds: only what fails waits that long


def command(program):
    return next(shlex.split(line) for line in PAGE.command_lines() if line.startswith(program + " "))


def free_port(kind=socket.SOCK_STREAM):
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def eventually(condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


def listens(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def needs(*programs):
    missing = [one for one in programs if not (shutil.which(one) or Path("/usr/sbin", one).exists())]
    return unittest.skipIf(missing, f"needs {', '.join(missing)}")


class Folder(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = Path(self.temporary.name)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return str(self.folder / name)

    def start(self, *words, **options):
        process = subprocess.Popen(words, **options)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
        process.wait(timeout=PATIENCE)
        for pipe in (process.stdin, process.stdout):
            if pipe:
                pipe.close()


@needs("promtool")
class Prometheus(Folder):
    def promtool(self, *words):
        return subprocess.run(["promtool", *words], cwd=self.folder, capture_output=True, text=True, check=False)

    def test_the_configuration_is_one(self):
        self.write("zelcam-token", "token")
        self.write("zelcam.rules.yml", PAGE.file("/etc/prometheus/zelcam.rules.yml"))
        config = self.write("prometheus.yml", PAGE.file("/etc/prometheus/prometheus.yml").replace("/etc/prometheus", str(self.folder)))
        done = self.promtool("check", "config", config)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertIn("4 rules found", done.stdout + done.stderr)

    def test_the_alarms_ring_when_they_should(self):
        self.write("zelcam.rules.yml", PAGE.file("/etc/prometheus/zelcam.rules.yml"))
        camera = 'camera="E1A0001",instance="attic:8360"'
        test = self.write("test.yml", f"""
rule_files: [zelcam.rules.yml]
tests:
  - interval: 15s
    input_series:
      - series: 'zelcam_camera_status{{{camera},status="streaming"}}'
        values: "1x10 0x30"
      - series: 'zelcam_output_dropped_packets_total{{{camera},output="3"}}'
        values: "0x20 1+1x20"
      - series: 'zelcam_viewer_skipped_pictures_total{{{camera}}}'
        values: "0x40"
    alert_rule_test:
      - eval_time: 2m
        alertname: CameraDoesNotStream
      - eval_time: 6m
        alertname: CameraDoesNotStream
        exp_alerts:
          - exp_labels: {{camera: E1A0001, instance: "attic:8360", status: streaming}}
            exp_annotations: {{summary: "camera E1A0001 at attic:8360 is not there, or silent"}}
      - eval_time: 9m
        alertname: OutputLosesPictures
        exp_alerts:
          - exp_labels: {{camera: E1A0001, instance: "attic:8360", output: "3"}}
            exp_annotations: {{summary: "output 3 of camera E1A0001 loses pictures"}}
      - eval_time: 9m
        alertname: ViewersSkipPictures
""")
        done = self.promtool("test", "rules", test)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_the_alarms_name_figures_that_there_are(self):
        source = (ROOT / "gateway/metrics/gateway_metrics.cc").read_text()
        names = re.findall(r"\bzelcam_\w+", PAGE.file("/etc/prometheus/zelcam.rules.yml"))
        self.assertGreaterEqual(len(names), 3)
        for name in names + re.findall(r"`(zelcam_\w+)`", PAGE.prose):
            self.assertIn(f'"{name}"', source)


@needs("mosquitto", "mosquitto_passwd", "mosquitto_sub", "mosquitto_pub")
class Broker(Folder):
    def setUp(self):
        super().setUp()
        self.port = free_port()
        for line in PAGE.command_lines():
            if line.startswith("mosquitto_passwd "):
                subprocess.run(shlex.split(line.replace("/etc/mosquitto", str(self.folder))), check=True, capture_output=True)
        self.write("acl", PAGE.file("/etc/mosquitto/acl"))
        config = PAGE.file("/etc/mosquitto/conf.d/zelcam.conf").replace("/etc/mosquitto", str(self.folder))
        config = config.replace("listener 1883", f"listener {self.port} 127.0.0.1") + ("user root\n" if os.geteuid() == 0 else "")
        self.assertIn(str(self.port), config)
        self.start("/usr/sbin/mosquitto", "-c", self.write("mosquitto.conf", config), stderr=subprocess.DEVNULL)
        self.assertTrue(eventually(lambda: listens(self.port)))

    def here(self, words):
        """The page's command for the broker of this test."""
        words = [("127.0.0.1" if word == "broker" else word) for word in words]
        return [*words, "-p", str(self.port)]

    def publish(self, user, password, topic, content):
        return subprocess.run(self.here(["mosquitto_pub", "-h", "broker", "-u", user, "-P", password, "-q", "1", "-r", "-t", topic,
                                         "-m", content]), capture_output=True, text=True, check=False)

    def heard(self, *topics):
        """What the page's listener hears first on each of these."""
        words = self.here(command("mosquitto_sub"))[:-2]
        words = words[:words.index("-t")] + [word for topic in topics for word in ("-t", topic)]
        done = subprocess.run([*words, "-p", str(self.port), "-C", str(len(topics)), "-W", "5"], capture_output=True, text=True, check=False)
        return done.stdout.splitlines()

    def test_gateways_write_and_people_read(self):
        self.assertEqual(self.publish("gateway", "secret", "zel/E1A0001/status", "there").returncode, 0)
        self.assertEqual(self.heard("zel/#"), ["zel/E1A0001/status there"])

    def test_people_command_and_write_nothing_else(self):
        self.publish("people", "word", "zel/E1A0001/status", "forged")
        self.publish("people", "word", "zel/E1A0001/command/photo", "{}")
        self.publish("gateway", "secret", "zel/E1A0001/info", "{}")
        self.assertEqual(sorted(self.heard("zel/+/command/+", "zel/+/info")), ["zel/E1A0001/command/photo {}", "zel/E1A0001/info {}"])
        self.assertEqual(self.heard("zel/+/status"), [])

    def test_nobody_else_comes_in(self):
        self.assertNotEqual(self.publish("people", "wrong", "zel/E1A0001/command/photo", "{}").returncode, 0)

    def test_the_command_of_the_page_is_taken(self):
        done = subprocess.run(self.here(command("mosquitto_pub")), capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)


@needs("nginx", "srt-live-transmit")
@unittest.skipUnless(Path("/usr/lib/nginx/modules/ngx_rtmp_module.so").exists(), "needs libnginx-mod-rtmp")
class MediaServers(Folder):
    def test_both_servers_get_the_cameras_stream(self):
        rtmp, srt = free_port(), free_port(socket.SOCK_DGRAM)
        config = PAGE.file("/etc/nginx/nginx.conf").replace("modules/", "/usr/lib/nginx/modules/").replace("/var/spool/recordings", str(self.folder))
        config = config.replace("listen 1935", f"listen 127.0.0.1:{rtmp}")
        self.assertIn(str(rtmp), config)
        own = f"daemon off; master_process off; pid {self.folder}/pid; error_log {self.folder}/log;\n" + ("user root;\n" if os.geteuid() == 0 else "")
        self.start("/usr/sbin/nginx", "-p", str(self.folder), "-c", self.write("nginx.conf", own + config), stderr=subprocess.DEVNULL)
        words = command("srt-live-transmit")
        self.assertEqual(words[-2:], [">", "/var/spool/recordings/attic.ts"])
        with open(self.folder / "attic.ts", "wb") as recording:
            receiver = self.start(*[word.replace(":9000", f"127.0.0.1:{srt}") for word in words[:-2]], stdout=recording, stderr=subprocess.DEVNULL)
        self.assertTrue(eventually(lambda: listens(rtmp)))
        environment = {**os.environ, "ZEL_ACCESSORIES": str(self.folder / "bus"), "PATH": f"{BUILD}/bin:{os.environ['PATH']}"}
        camera = self.start("zelcam-sim", env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.assertIn("is attached", camera.stdout.readline())
        live = ["zelcam", "live", "--no-stitch", "--duration", "4", "-o", f"rtmp://127.0.0.1:{rtmp}/live/attic", "-o", f"srt://127.0.0.1:{srt}"]
        done = subprocess.run(live, env=environment, capture_output=True, text=True, timeout=2 * PATIENCE, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(eventually(lambda: (self.folder / "attic.ts").stat().st_size > 100_000))
        self.end(receiver)
        stream = (self.folder / "attic.ts").read_bytes()
        self.assertEqual({stream[at] for at in range(0, 188 * 100, 188)}, {0x47})  # MPEG-TS
        films = list(self.folder.glob("*.flv"))
        self.assertEqual(len(films), 1)
        self.assertTrue(eventually(lambda: films[0].stat().st_size > 100_000))
        self.assertEqual(films[0].read_bytes()[:3], b"FLV")


class Topics(unittest.TestCase):
    def test_the_topics_are_those_of_the_program(self):
        source = "".join((ROOT / "gateway/mqtt" / name).read_text() for name in ("mqtt_topics.h", "mqtt_camera.cc"))
        topics = re.findall(r"^\| `zel/(?:SERIAL|gateways/NAME)/(\w+)(?:/NAME)?`", PAGE.text, re.MULTILINE)
        self.assertEqual(len(topics), 8)
        for topic in topics:
            self.assertRegex(source, rf'["/]{topic}["/]')


if __name__ == "__main__":
    unittest.main()
