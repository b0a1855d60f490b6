"""Runs test programs: once unchanged, to learn which mutants each reaches, then for each mutant until one of them fails."""
import os
import re
import resource
import signal
import subprocess
import tempfile
import time
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field
from pathlib import Path

MOST_MEMORY = 8 << 30
MOST_FILE = 1 << 30
# Limits that distinguish a mutant that hangs from a busy machine: seconds, and multiples of an unchanged run.
WALL_TIMES, WALL_MORE = 4, 15
CPU_TIMES, CPU_MORE = 5, 5
SLOW_TEST = 0.2  # seconds; most mutants fall to a quicker one, so that these are run last


@dataclass
class Program:
    path: Path
    folder: str  # whose tests it holds
    seconds: float = 0
    cpu: float = 0
    reached: set = field(default_factory=set)
    slow_tests: list = field(default_factory=list)

    @property
    def name(self):
        return self.path.name


def _limited(path, cpu):
    limits = [f"--as={MOST_MEMORY}", f"--fsize={MOST_FILE}", "--core=0"] + ([f"--cpu={cpu}:{cpu + 1}"] if cpu is not None else [])
    return ["prlimit", *limits, str(path)]


def run(program, environment, wall=None, cpu=None):
    """The result ("passed", "failed", "timed out"), and the end of the output. Runs in a separate folder."""
    with tempfile.TemporaryDirectory(prefix="mutant-") as folder:
        os.chmod(folder, 0o755)  # a test gives up its rights, and still has to find its files
        own = {**os.environ, "HOME": folder, "TMPDIR": folder, "XDG_RUNTIME_DIR": folder, "XDG_DATA_HOME": folder,
               "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1", **environment}
        with subprocess.Popen(_limited(program.path, cpu), cwd=folder, env=own, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True) as process:
            try:
                said, _ = process.communicate(timeout=wall)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                return "timed out", ""
    if process.returncode in (-signal.SIGXCPU, -signal.SIGKILL):
        return "timed out", ""
    return "passed" if process.returncode == 0 else "failed", _end(said.decode(errors="replace"))


def _end(said):
    """The end of what GoogleTest has said, without the tests that it skipped: after the first failure those are all."""
    return re.sub(r"^.*: Skipped\n.*\n", "", said, flags=re.MULTILINE)[-4000:]


def learn(program, highest, environment):
    """Measures an unchanged run, and which mutants it reaches. Returns the output of a failing one, else None."""
    with tempfile.NamedTemporaryFile(prefix="reached-") as file, tempfile.NamedTemporaryFile(suffix=".xml") as times:
        file.truncate(highest + 1)
        before, started = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
        ended, said = run(program, {**environment, "ZEL_MUTANTS_REACHED": file.name, "GTEST_OUTPUT": f"xml:{times.name}"})
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        program.seconds = time.monotonic() - started
        program.cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        program.reached = {number for number, byte in enumerate(Path(file.name).read_bytes()) if byte}
        program.slow_tests = slow_tests(Path(times.name).read_text())
    return None if ended == "passed" else said


def slow_tests(report):
    """The slow tests in GoogleTest's report."""
    cases = ElementTree.fromstring(report).iter("testcase") if report else []
    return [f"{one.get('classname')}.{one.get('name')}" for one in cases if float(one.get("time")) > SLOW_TEST]


def likely_order(programs, number, folder):
    """The programs that reach the mutant: first those of its own folder, then the fast ones."""
    return sorted((one for one in programs if number in one.reached), key=lambda one: (one.folder != folder, one.seconds))


def verdict(programs, number, folder, environment):
    """The result of a mutant ("killed", "timed out", "survived", "not covered"), and the program that decided it."""
    reaching = likely_order(programs, number, folder)
    if not reaching:
        return "not covered", ""
    quick = [(one, "-" + ":".join(one.slow_tests)) for one in reaching]
    slow = [(one, ":".join(one.slow_tests)) for one in reaching if one.slow_tests]
    for program, tests in quick + slow:
        chosen = {**environment, "ZEL_MUTANT": str(number), "GTEST_FILTER": tests}
        ended, _ = run(program, chosen, WALL_TIMES * program.seconds + WALL_MORE, int(CPU_TIMES * program.cpu + CPU_MORE))
        if ended != "passed":
            return ("killed" if ended == "failed" else ended), program.name
    return "survived", ""
