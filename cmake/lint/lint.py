#!/usr/bin/env python3
"""The checks of ./run lint: format, structure, self-contained headers, clang-tidy."""
import argparse
import json
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from structure import read_edges

ROOT = Path(__file__).resolve().parents[2]
LAYERS = sorted({folder.split("/")[0] for folder in read_edges(ROOT / "cmake/lint/edges.txt")})
FOLDERS = (*LAYERS, "packaging", "tests", "bench", "fuzz", "examples")
# Of Debian's Python, which others do not find.
PYTHON_HEADERS = subprocess.run(["/usr/bin/python3", "-c", "import sysconfig; print(sysconfig.get_path('include'))"],
                                capture_output=True, text=True, check=True).stdout.strip()
TIDIED = tuple(f"{folder}/" for folder in LAYERS if folder != "include")


def run(command):
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    return done.returncode, (done.stdout + done.stderr).strip()


def files(*suffixes):
    return [path for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*")) if path.suffix in suffixes]


def check_format(pool):
    command = ["clang-format", "--dry-run", "-Werror"]
    every = [str(path) for path in files(".h", ".cc")]
    groups = [every[first:first + 40] for first in range(0, len(every), 40)]
    return [output for code, output in pool.map(lambda group: run([*command, *group]), groups) if code]


def is_included_first(header):
    """Whether the build already shows that the header is self-contained, because its source includes it first."""
    source = header.with_suffix(".cc")
    if not source.exists():
        return False
    first = next((line for line in source.read_text().splitlines() if line.startswith("#include")), "")
    return first == f'#include "{header.relative_to(ROOT)}"'


def check_headers(pool):
    command = ["g++", "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-DASIO_STANDALONE", "-I.", "-Iinclude",
               "-isystem", PYTHON_HEADERS, "-x", "c++"]

    def compile_alone(path):
        code, output = run([*command, "-include", str(path), "/dev/null"])
        return f"{path.relative_to(ROOT)}:1: does not compile alone\n{output}" if code else None

    # Headers of tests are included only by their own tests.
    headers = [header for header in files(".h")
               if str(header.relative_to(ROOT)).startswith((*TIDIED, "include/")) and not is_included_first(header)]
    return [fault for fault in pool.map(compile_alone, headers) if fault]


def amount(source):
    """How much a source or a generated unity file, which includes sources by their whole paths, has to be read."""
    included = re.findall(r'^#include "(/[^"]+)"', source.read_text(), re.MULTILINE)
    return sum(Path(path).stat().st_size for path in [source, *included])


def check_tidy(pool, build):
    entries = json.loads((build / "compile_commands.json").read_text())
    sources = sorted({str(Path(entry["file"]).relative_to(ROOT)) for entry in entries
                      if Path(entry["file"]).is_relative_to(ROOT)})
    # A generated unity file is listed under the folder of its sources. Sources that only a build makes are not there.
    folder = f"{build.relative_to(ROOT)}/"
    sources = [source for source in sources if source.removeprefix(folder).startswith(TIDIED) and (ROOT / source).exists()]

    def tidy(source):
        # In the headers of JSON and CLI11 this check takes as long as all the others together.
        reads_large_headers = source.removeprefix(folder).startswith(("apps/", "gateway/", "simulator/"))
        left_out = ["--checks=-performance-unnecessary-value-param"] if reads_large_headers else []
        return run(["clang-tidy", "--quiet", "-p", str(build), *left_out, source])

    largest_first = sorted(sources, key=lambda source: -amount(ROOT / source))  # so that none is alone at the end
    return [output for code, output in pool.map(tidy, largest_first) if code]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=Path, required=True, help="a build folder with compile_commands.json of clang")
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    faults = []
    with ThreadPoolExecutor(arguments.jobs) as pool:
        for name, check in (("format", lambda: check_format(pool)),
                            ("structure", lambda: [out for code, out in [run([sys.executable,
                                                   "cmake/lint/structure.py"])] if code]),
                            ("bindings", lambda: [out for code, out in [run([sys.executable,
                                                  "tools/bindings/generate.py", "--check"])] if code]),
                            ("headers", lambda: check_headers(pool)),
                            ("clang-tidy", lambda: check_tidy(pool, ROOT / arguments.build))):
            found = check()
            print(f"lint: {name}: {'clean' if not found else f'{len(found)} found'}", flush=True)
            faults += found
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
