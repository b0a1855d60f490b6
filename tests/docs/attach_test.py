#!/usr/bin/env python3
"""Tries examples/attach/zelcam-attach: the simulated camera stands behind a tty, as a real one would."""
import json
import os
import pty
import select
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import tty
import unittest
from pathlib import Path

ROOT, BUILD = Path(sys.argv[1]), Path(sys.argv[2])
del sys.argv[1:]
ATTACH = ROOT / "examples/attach/zelcam-attach"


def carry(master, camera):
    """Bytes from either to the other, until the camera ends."""
    while True:
        ready, _, _ = select.select([master, camera], [], [], 0.1)
        for end in ready:
            try:
                data = os.read(end, 65536)
                if not data:
                    return
                os.write(camera if end == master else master, data)
            except OSError:
                return


class Attaching(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.bus = Path(folder.name, "attached")
        simulated = f"{folder.name}/simulated"
        simulator = subprocess.Popen([BUILD / "bin/zelcam-sim", "--accessories", simulated], stdin=subprocess.PIPE,
                                     stdout=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (simulator.terminate(), simulator.communicate(timeout=60)))
        self.assertIn("is attached", simulator.stdout.readline())
        path = json.loads(next(Path(simulated).glob("*.json")).read_text())["endpoint"]["path"]
        camera = socket.socket(socket.AF_UNIX)
        camera.connect(path)
        master, self.slave = pty.openpty()
        tty.setraw(self.slave)  # nobody has it open yet, and a real one would not echo then
        self.device = os.ttyname(self.slave)
        threading.Thread(target=carry, args=(master, camera.detach()), daemon=True).start()

    def attach(self, *arguments):
        environment = {**os.environ, "ZEL_ACCESSORIES": str(self.bus)}
        return subprocess.Popen([ATTACH, *arguments], env=environment, stderr=subprocess.PIPE, text=True)

    def zelcam(self, *arguments):
        done = subprocess.run([BUILD / "bin/zelcam", "--accessories", self.bus, "--json", *arguments], capture_output=True, text=True,
                              timeout=120, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(done.stdout)

    def test_a_camera_behind_a_tty_answers(self):
        script = self.attach(self.device, "E1A0042", "E1_2.0.1_192")
        while not self.bus.is_dir() or not list(self.bus.glob("*.json")):
            self.assertIsNone(script.poll())
        device = self.zelcam("devices")
        self.assertEqual((device["serialNumber"], device["firmwareRevision"]), ("E1A0042", "E1_2.0.1_192"))
        answer = self.zelcam("call", "msgReqBatteryWithRebackBlock")
        self.assertIsNone(answer["error"])
        script.send_signal(signal.SIGTERM)
        self.assertEqual(script.wait(60), 0)
        self.assertEqual(list(self.bus.iterdir()), [], "detached")
        script.stderr.close()

    def test_what_is_no_device_is_refused(self):
        script = self.attach("/nonexistent", "E1A0042", "E1_2.0.1_192")
        script.wait(60)
        self.assertEqual(script.communicate()[1], "zelcam-attach: /nonexistent is no device\n")
        self.assertEqual(script.returncode, 3)


if __name__ == "__main__":
    unittest.main()
