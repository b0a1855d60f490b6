#!/usr/bin/env python3
"""Tries what the README and the pages in docs/ say."""
import json
import os
import pty
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from pages import Page, pages

ROOT, BUILD, COMPILER = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
del sys.argv[1:]
PAGES = pages(ROOT)
LANGUAGES = {"", "sh", "console", "cpp", "json"}
SERVERS = {"fleet.md": {"yaml", "conf", "nginx"}}  # whose configurations fleet_test.py gives to the real servers
FLEET = {"mosquitto_passwd", "mosquitto_sub", "mosquitto_pub", "srt-live-transmit"}  # which it runs as well


def commands_of_run():
    usage = (ROOT / "run").read_text().split("<<'USAGE'")[1].split("\nUSAGE")[0]
    return set(re.findall(r"^  (\S+) ", usage, re.MULTILINE))


def presets():
    return {preset["name"] for preset in json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]}


def is_built(target):
    lists = [path.read_text() for path in ROOT.rglob("CMakeLists.txt") if BUILD.parent not in path.parents]
    folder = target.removesuffix("_tests")  # zel_tests(link) makes link_tests
    return any(re.search(rf"(?:zel_test|add_executable|add_custom_target)\({target}\b|zel_tests\({folder}\b", text) for text in lists)


def complaint(line):
    """Why a command line cannot be typed as it stands; those of the two programs are read by the programs' own parsers."""
    words = shlex.split(line, comments=True)
    while re.fullmatch(r"[A-Z_]+=\S*", words[0]):  # a variable for that command alone
        words.pop(0)
    if words[0] == "export":
        return None if words[1:] == ["PATH=$PWD/build/release/bin:$PATH"] else "leads nowhere"
    if words[0] == "kill":
        return None if words[1:] == ["%1"] else "ends nothing that was started"
    if words[0] == "curl":  # run by tests/gateway/serve/docs_test.py
        return None if any("http://127.0.0.1:8360/" in word for word in words) else "asks nobody"
    if words[0] == "./run":
        return None if words[1] in commands_of_run() else "no such command of ./run"
    if words[0] == "cmake" and "--preset" in words:
        return None if words[words.index("--preset") + 1] in presets() else "no such preset"
    if words[0] == "cmake" and words[1] in ("--build", "--install"):
        target = words[words.index("--target") + 1] if "--target" in words else None
        return None if Path(words[2]).name in presets() and (target is None or is_built(target)) else "builds nothing"
    if words[0].startswith("build/"):
        return None if words[0].endswith(("/zelcam", "/zelcam-sim")) or is_built(Path(words[0]).name) else "is built nowhere"
    return None if words[0] in ("zelcam", "zelcam-sim", *FLEET) else "nobody knows how to try this"


def fault_of_program(text):
    flags = ["-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wnon-virtual-dtor",
             "-Werror", f"-I{ROOT}", f"-I{ROOT / 'include'}", "-x", "c++", "-"]
    return subprocess.run([COMPILER, *flags], input=text, text=True, capture_output=True, check=False).stderr


class Reference(unittest.TestCase):
    """How plain comments become what the reference is made of."""

    def filtered(self, header):
        with tempfile.NamedTemporaryFile("w", suffix=".h") as file:
            file.write(header)
            file.flush()
            done = subprocess.run([sys.executable, ROOT / "cmake/reference/filter.py", file.name], check=True, capture_output=True, text=True)
        return done.stdout.split("\n")[1:-1]

    def test_a_comment_above_documents_and_its_contract_gets_headings(self):
        self.assertEqual(self.filtered("  // Opens a <thing>.\n  // Thread: any thread,\n  //         or none.\n  void open();\n"),
                         ["  /// Opens a \\<thing\\>.", "  /// @par Thread", "  /// any thread,", "  /// or none.", "  void open();"])

    def test_a_comment_behind_documents_what_it_stands_behind(self):
        self.assertEqual(self.filtered("  int height = 0;  // pixels\n"), ["  int height = 0;  ///< pixels"])

    def test_a_comment_of_nothing_stays(self):
        self.assertEqual(self.filtered("// -- Photos\nint a;\n// alone\n\nint b;\n}  // namespace\n"),
                         ["// -- Photos", "int a;", "// alone", "", "int b;", "}  // namespace"])


class Camera:
    """A simulated one on a bus of its own, with a folder to work in."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.environment = {**os.environ, "ZEL_ACCESSORIES": f"{self.folder.name}/bus", "PATH": f"{BUILD}/bin:{os.environ['PATH']}"}
        self.simulator = subprocess.Popen(["zelcam-sim"], env=self.environment, stdout=subprocess.PIPE, stdin=subprocess.PIPE, text=True)
        assert "is attached" in self.simulator.stdout.readline()
        return self

    def __exit__(self, *_):
        self.simulator.send_signal(signal.SIGTERM)
        self.simulator.communicate(timeout=60)
        self.folder.cleanup()

    def socket(self):
        accessory = next(Path(self.folder.name, "bus").glob("*.json"))
        return json.loads(accessory.read_text())["endpoint"]["path"]

    def run(self, command, **variables):
        return subprocess.run(command, env={**self.environment, **variables}, cwd=self.folder.name, capture_output=True, text=True, timeout=120,
                              check=False)


class Pages(unittest.TestCase):
    def test_links_lead_somewhere(self):
        for page in PAGES:
            for target in page.links():
                path, _, heading = target.partition("#")
                linked = page.path.parent / path if path else page.path
                self.assertTrue(linked.exists(), f"{page.path}: {target}")
                if heading:
                    headings = re.findall(r"^#+ (.*)$", linked.read_text(), re.MULTILINE)
                    self.assertIn(heading, [text.lower().replace(" ", "-") for text in headings], f"{page.path}: {target}")

    def test_blocks_are_of_a_kind_that_is_tried(self):
        for page in PAGES:
            self.assertLessEqual(page.languages(), LANGUAGES | SERVERS.get(page.path.name, set()), page.path)

    def test_programs_compile(self):
        compiled = [page for page in PAGES if page.program()]
        self.assertEqual([page.path.name for page in compiled], ["README.md", "porting.md"])
        for page in compiled:
            self.assertEqual(fault_of_program(page.program()), "", page.path)

    def test_a_program_that_does_not_compile_would_be_found(self):
        self.assertIn("gone", fault_of_program("int main() { return gone; }"))

    def test_commands_can_be_typed(self):
        lines = {line: page.path for page in PAGES for line in page.command_lines()}
        for line in ("./run test", "zelcam info", "zelcam live -o rtmp://server/live/key", "zelcam record start"):
            self.assertIn(line, lines)
        for line, path in lines.items():
            self.assertIsNone(complaint(line), f"{path}: {line}")
        own = [line for line in lines if line.split()[0] in ("zelcam", "zelcam-sim")]
        read = subprocess.run([BUILD / "bin" / "read_command_lines"], input="\n".join(own) + "\n", text=True, capture_output=True,
                              check=False)
        self.assertEqual(read.stdout, "")

    def test_a_command_that_cannot_be_typed_would_be_found(self):
        for line in ("./run everything", "cmake --preset quick", "cmake --build build/debug --target no_tests", "build/debug/bin/no_tests", "make install"):
            self.assertIsNotNone(complaint(line), line)

    def test_the_pages_of_the_programs_name_every_option(self):
        for program, name in (("zelcam", "zelcam.md"), ("zelcam-sim", "simulator.md")):
            text = (ROOT / "docs" / name).read_text()
            manual = (BUILD / "man" / f"{program}.1").read_text().replace("\\-", "-")
            options = [re.findall(r"\\fB(--?[a-z-]+)\\fR", line) for line in re.findall(r"^\.TP\n(\\fB-.*)$", manual, re.MULTILINE)]
            self.assertIn(["--accessories"], options)
            for names in options:
                told = any(option in text for option in names) or names[-1] in ("--help", "--version")
                self.assertTrue(told, f"{name}: {names}")

    def test_quoted_words_are_those_of_the_programs(self):
        sources = "".join(path.read_text() for folder in ("apps", "gateway", "facade", "outputs", "pictures", "platform", "live") for path in (ROOT / folder).rglob("*.cc"))
        quotes = re.findall(r'"([^"]+)"', Page(ROOT / "docs/reliability.md").text)
        self.assertIn("no output is left", quotes)
        sources = re.sub(r'"\n *"', "", sources)
        for quote in quotes:
            for part in re.split(r"\.\.\.|: |NSOSStatusErrorDomain \d+", quote):
                self.assertTrue(part.strip(" ():;").removeprefix("cannot ") in sources, quote)


class Sessions(unittest.TestCase):
    def test_the_readmes_host_program_asks_the_camera(self):
        with Camera() as camera:
            done = camera.run([BUILD / "bin" / "readme_host"])
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "battery: 100 %\n", ""))

    def test_the_phones_skeleton_asks_the_camera(self):
        with Camera() as camera:
            done = camera.run([BUILD / "bin" / "phone_host"], PHONE_CAMERA=camera.socket())
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "battery: 100 %, clock offset known\n", ""))

    def test_a_simulator_in_the_background_of_a_terminal_goes_on(self):
        """A program that reads the terminal from there is stopped otherwise."""
        with tempfile.TemporaryDirectory() as folder:
            script = """zelcam-sim >"$0/out" & for i in {1..600}; do grep -q attached "$0/out" && break; sleep 0.1; done
                        zelcam info >"$0/info"; kill -CONT $!; kill $!; wait"""
            shell, terminal = pty.fork()
            if shell == 0:
                os.environ.update({"ZEL_ACCESSORIES": f"{folder}/bus", "PATH": f"{BUILD}/bin:{os.environ['PATH']}"})
                os.execvp("bash", ["bash", "--norc", "-i", "-c", script, folder])
            os.waitpid(shell, 0)
            os.close(terminal)
            self.assertRegex(Path(folder, "info").read_text(), r"serialNumber +E1A0001\n")

    def test_what_is_shown_happens(self):
        """But for live streams and the demo, which the end-to-end tests run, since they last."""
        tried = 0
        with Camera() as camera:
            for page in PAGES:
                for line, shown in page.sessions():
                    words = shlex.split(line)
                    if words[0] != "zelcam" or {"live", "demo"} & set(words):
                        continue
                    done = camera.run(words)
                    self.assertEqual(done.returncode, 0, f"{page.path}: {line}: {done.stderr}")
                    for expected in shown:
                        self.assertIn(expected, done.stdout.splitlines(), f"{page.path}: {line}")
                    tried += 1
        self.assertGreaterEqual(tried, 4)


if __name__ == "__main__":
    unittest.main()
