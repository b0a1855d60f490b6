"""The copy of the project with the mutants, and its build."""
import hashlib
import re
import subprocess
from pathlib import Path

from mutants import with_mutants

TOOL = Path(__file__).resolve().parent
CORE = ("base", "protocol", "link", "support", "capture", "media", "command", "live", "stack")
HEADERS = ("include/ZELTarkaSDK/platform", "include/ZELTarkaSDK")  # the ports, and what hosts include: those of them that hold code
TESTED = (*CORE, "platform")
COUNTS_MEMORY = re.compile(r'^#include "tests/(allocation_count|live_bytes|allocation_fault)\.h"', re.MULTILINE)
KEPT_LIST = "cmake/mutate/equivalents.txt"


def units(root):
    """The compiled sources, except those of separate programs."""
    return [path for folder in CORE for path in sorted((root / folder).glob("*.cc")) if not path.stem.endswith("_main")]


def wanted(root):
    """The names of all files that may contain mutants."""
    files = [path for folder in CORE for path in (root / folder).glob("*") if path.suffix in (".h", ".cc")]
    files += [path for folder in HEADERS for path in (root / folder).glob("*.h")]
    return {path.relative_to(root).as_posix() for path in files}


def project_files(root):
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=root, capture_output=True, text=True,
                            check=True).stdout
    return sorted(name for name in listed.split("\0") if name and (root / name).is_file())


def fingerprint(root):
    """A hash of everything that is compiled: runs with the same hash share their results."""
    sum_of_all = hashlib.sha256()
    for name in project_files(root):
        if name.endswith((".h", ".cc", ".cmake", "CMakeLists.txt")) and not name.startswith("tests/mutate/"):
            sum_of_all.update(name.encode() + b"\0" + (root / name).read_bytes() + b"\0")
    return sum_of_all.hexdigest()


def write_copy(root, copy, numbered):
    """Writes the project with the numbered mutants. Unchanged files keep their time stamps, and are not built again."""
    by_file = {}
    for number, mutant in numbered:
        by_file.setdefault(mutant.file, []).append((number, mutant.edit))
    names = project_files(root)
    for name in names:
        content = (root / name).read_bytes()
        if name in by_file:
            text = with_mutants(content.decode(), by_file[name])
            content = f'#include "mutant.h"\n#line 1 "{name}"\n{text}'.encode()
        _write(copy / name, content, (root / name).stat().st_mode)
    _write(copy / "mutant.h", (TOOL / "mutant.h").read_bytes(), 0o644)
    known = {*names, "mutant.h"}
    for path in copy.rglob("*"):
        if path.is_file() and path.relative_to(copy).as_posix() not in known:
            path.unlink()


def _write(path, content, mode):
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)
    path.chmod(mode & 0o777)


def test_programs(root):
    """The names of the programs that test the core, each with its folder of tests."""
    programs = {}
    for folder in TESTED:
        tests = root / "tests" / folder
        for name in re.findall(r"zel_tests\((\w+)", (tests / "CMakeLists.txt").read_text()):
            programs[f"{name}_tests"] = folder
        counting = [path for path in tests.glob("*_test.cc") if COUNTS_MEMORY.search(path.read_text())]
        programs |= {f"{path.stem}s": folder for path in counting}
    return programs


def configure(copy, build, cache):
    """Warnings are off, because a mutant may contain constant comparisons."""
    command = ["cmake", "-S", copy, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DZEL_BUILD_BENCH=OFF",
               "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG", "-DCMAKE_CXX_FLAGS=-w -Wno-narrowing -fpermissive",
               f"-DZEL_TEST_CACHE={cache}"]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise ValueError(f"configuring failed\n{done.stdout}{done.stderr}")


def compile_programs(build, programs, jobs):
    """The compiler's messages if it fails, else None."""
    command = ["cmake", "--build", build, "-j", str(jobs), "--target", *programs, "--", "-k", "0"]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    return None if done.returncode == 0 else done.stdout + done.stderr


def refused(said, numbered):
    """The mutants on lines with compiler errors."""
    places = {(name, int(line)) for name, line in re.findall(r"^([\w./-]+):(\d+):\d+: (?:fatal )?error:", said, re.MULTILINE)}
    return [(number, one) for number, one in numbered
            if any(name == one.file and one.line <= line <= one.last_line for name, line in places)]
