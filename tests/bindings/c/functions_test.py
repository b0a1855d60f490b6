#!/usr/bin/env python3
"""functions_test.py SOURCE LIBRARY: the library for C shows a function for each request of bindings/requests.toml and for each
that its headers declare, and nothing else; and its page shows a program that is compiled."""
import re
import subprocess
import sys
import tomllib
import unittest
from pathlib import Path

SOURCE, LIBRARY = Path(sys.argv[1]), sys.argv[2]
del sys.argv[1:]


def shown():
    lines = subprocess.run(["nm", "-D", "--defined-only", LIBRARY], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1].split("@")[0] for line in lines.splitlines()} - {"ZELTARKASDKC_0"}


def declared():
    headers = "".join(path.read_text() for path in (SOURCE / "include/ZELTarkaSDK").glob("zel*.h"))
    return set(re.findall(r"^ZEL_EXPORT [\w ]+?[ *]+(zel_\w+)\(", headers, re.MULTILINE))


def spelled(name):
    """audioBitrate is zel_audio_bitrate, and setIPSwitchMode has one word for IP."""
    return "zel_" + "".join(f"_{letter.lower()}" if letter.isupper() else letter for letter in name.replace("IP", "Ip"))


class Functions(unittest.TestCase):
    def test_each_request_has_one(self):
        table = tomllib.loads((SOURCE / "bindings/requests.toml").read_text())
        names = {spelled(request["name"]) for request in table["request"]}
        self.assertGreater(len(names), 60)
        self.assertEqual(names - shown(), set())
        self.assertEqual({name.replace("zel_", "zel_begin_", 1) for name in names} - shown(), set())

    def test_each_that_is_declared_is_there_and_no_other(self):
        self.assertEqual(declared(), shown())


class Page(unittest.TestCase):
    def test_its_program_is_the_example(self):
        page = (SOURCE / "docs/c.md").read_text()
        example = (SOURCE / "examples/c/battery.c").read_text().partition("\n\n")[2]
        self.assertIn("".join(f"    {line}".rstrip() + "\n" for line in example.splitlines()), page)


if __name__ == "__main__":
    unittest.main()
