#!/usr/bin/env python3
"""The rules of the house that need no compiler: the include graph, pairs and mirrors, ASCII, the length of functions.

Prints file:line: what is wrong and what to do. Ends with 1 when anything was found.
"""
import argparse
import re
import sys
from pathlib import Path

CORE = ("transport", "support", "capture", "media", "command", "live", "stack")
PROGRAMS = ("simulator", "apps")
SOURCES = CORE + ("platform", "include") + PROGRAMS + ("tests", "bench", "fuzz", "examples")
LONGEST_FUNCTION = 60
LONGEST_EXAMPLE = 59
STANDARD = re.compile(r"^[a-z_0-9]+$")  # <vector>, and nothing with a slash or a suffix
CLASS_OPERATION = re.compile(r"\b(default[A-Z]\w*|share[A-Z]\w*)\(")


def read_edges(path):
    edges = {}
    for line in path.read_text().splitlines():
        line = line.split("#")[0].strip()
        if line:
            folder, _, allowed = line.partition(":")
            edges[folder] = allowed.split()
    return edges


def sources(root):
    for folder in SOURCES:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cc"):
                yield path


def folder_of(relative, edges):
    for folder in sorted(edges, key=len, reverse=True):
        if relative.startswith(folder + "/"):
            return folder
    return None


def includes(path):
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        found = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
        if found:
            yield number, found.group(1), found.group(2)


def is_port(include):
    return re.fullmatch(r"platform/[a-z_]+\.h", include) is not None


def check_include(folder, quote, include, edges):
    """What is wrong with the include, or None."""
    if include.startswith("ZELTarkaSDK/") or is_port(include) or include.startswith(folder + "/"):
        return None
    if quote == "<":
        if folder in CORE and not STANDARD.match(include):
            return f"the core may not include <{include}>; put what needs it into an adapter behind a port"
        return None
    if any(include == allowed or include.startswith(allowed + "/") for allowed in edges[folder]):
        return None
    return f'{folder} may not include "{include}"; see cmake/lint/edges.txt'


def find_cycle(edges):
    state = {}

    def visit(folder, trail):
        if state.get(folder) == "done":
            return None
        if folder in trail:
            return trail[trail.index(folder):] + [folder]
        for allowed in edges.get(folder, []):
            cycle = visit(allowed, trail + [folder])
            if cycle:
                return cycle
        state[folder] = "done"
        return None

    for folder in edges:
        cycle = visit(folder, [])
        if cycle:
            return cycle
    return None


def include_graph(root, edges):
    cycle = find_cycle(edges)
    if cycle:
        yield "cmake/lint/edges.txt:1: the folders form a cycle: " + " -> ".join(cycle)
    for path in sources(root):
        relative = path.relative_to(root).as_posix()
        if relative.startswith("include/") or is_port(relative):
            for number, quote, include in includes(path):
                if quote == "<" and not STANDARD.match(include) and not include.startswith("ZELTarkaSDK/"):
                    yield f"{relative}:{number}: a public header or a port may not include <{include}>"
                if quote == '"' and not is_port(include):
                    yield f'{relative}:{number}: a public header or a port may not include "{include}"'
            continue
        folder = folder_of(relative, edges)
        if folder is None:
            continue
        for number, quote, include in includes(path):
            fault = check_include(folder, quote, include, edges)
            if fault:
                yield f"{relative}:{number}: {fault}"


def snake(name):
    name = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name)
    return re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name).lower()


def pairs_and_mirrors(root):
    public = {snake(path.stem) for path in (root / "include/ZELTarkaSDK").glob("*.h")}
    for folder in CORE:
        for path in sorted((root / folder).glob("*.cc")):
            relative = path.relative_to(root).as_posix()
            # A large class may be spread over files that bear its name and one of their own: zel_camera_ucd_files.cc.
            owner = path.stem
            while owner and not (path.with_name(owner + ".h").exists() or owner in public):
                owner = owner.rpartition("_")[0]
            if not owner and path.stem != "default_stack":
                yield f"{relative}:1: has no header of its name; add it, or move the code to where its header is"
            if not (root / "tests" / folder / f"{owner or path.stem}_test.cc").exists():
                yield f"{relative}:1: has no test; add tests/{folder}/{owner or path.stem}_test.cc"
        for path in sorted((root / "tests" / folder).glob("*_test.cc")):
            stem = re.sub(r"(_property|_thread|_allocation|_memory|_media|_long_read|_opening|_crossing|_destruction)?_test$", "", path.stem)
            if not any((root / folder / (stem + suffix)).exists() for suffix in (".cc", ".h")) and stem not in public:
                yield f"{path.relative_to(root).as_posix()}:1: mirrors no source; name it after what it tests"


def text_rules(root):
    for path in sources(root):
        relative = path.relative_to(root).as_posix()
        allowed_here = relative.startswith(("include/", "apps/", "tests/", "examples/", "stack/default_stack"))
        for number, line in enumerate(path.read_bytes().splitlines(), 1):
            if any(byte > 126 or (byte < 32 and byte != 9) for byte in line):
                yield f"{relative}:{number}: holds a character that is not ASCII"
            text = line.decode("ascii", "replace")
            if re.search(r"\b(TODO|FIXME|XXX)\b(?!\([a-z]+\): )", text):
                yield f"{relative}:{number}: write TODO(word): what is to be done"
            is_declaration = relative.startswith("transport/") and re.match(r"\s*static ", text)
            if CLASS_OPERATION.search(text) and not allowed_here and not is_declaration and "//" not in text:
                yield f"{relative}:{number}: class operations are for hosts; take a reference in the constructor"


def long_functions(root):
    """A function's body starts on a line that ends with '{' at column 0's declaration and ends with a lone '}' as indented."""
    for path in sources(root):
        lines = path.read_text(errors="replace").splitlines()
        for start, line in enumerate(lines):
            head = re.match(r"^( *)(?!namespace|class|struct|enum|union|extern|\}|:|//)\S.*\)( const| override| noexcept)* \{$", line)
            if not head:
                continue
            for end in range(start + 1, len(lines)):
                if lines[end].startswith(head.group(1) + "}"):
                    if end - start - 1 > LONGEST_FUNCTION:
                        yield f"{path.relative_to(root).as_posix()}:{start + 1}: {end - start - 1} lines; split it"
                    break


def examples(root):
    """A small host sees what any host sees: the public headers, the standard library and the system."""
    for path in sorted((root / "examples").glob("*")):
        relative = path.relative_to(root).as_posix()
        if path.suffix == ".cc" and len(path.read_text().splitlines()) > LONGEST_EXAMPLE:
            yield f"{relative}:1: an example has at most {LONGEST_EXAMPLE} lines"
        if path.suffix not in (".h", ".cc"):
            continue
        for number, quote, include in includes(path):
            if quote == '"' and include != "connect.h":
                yield f'{relative}:{number}: an example may not include "{include}"; only public headers, as <ZELTarkaSDK/...>'


CHECKS = {
    "include-graph": lambda root: include_graph(root, read_edges(root / "cmake/lint/edges.txt")),
    "pairs": pairs_and_mirrors,
    "text": text_rules,
    "length": long_functions,
    "examples": examples,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("checks", nargs="*", choices=[[], *CHECKS], default=[])
    arguments = parser.parse_args()
    faults = [fault for name in arguments.checks or CHECKS for fault in CHECKS[name](arguments.root)]
    print("\n".join(faults) if faults else "structure: clean")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
