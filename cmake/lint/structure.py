#!/usr/bin/env python3
"""The project's rules that need no compiler: include graph, circles, pairs of source and test, ASCII, labels, length of functions.

Prints file:line: what is wrong and what to do. Ends with 1 when anything was found.
"""
import argparse
import re
import sys
from pathlib import Path

CORE = ("base", "protocol", "link", "support", "capture", "media", "command", "live", "stack")
PROGRAMS = ("simulator", "tools", "gateway", "apps")
SOURCES = CORE + ("platform", "include") + PROGRAMS + ("tests", "bench", "fuzz", "examples")
PUBLIC = "include/ZELTarkaSDK"
PORTS = "include/ZELTarkaSDK/platform"
LONGEST_FUNCTION = 60
LONGEST_EXAMPLE = 59
STANDARD = re.compile(r"^([a-z_0-9]+|std(def|int)\.h)$")  # <vector>, and in headers that C reads too <stdint.h>
LABEL_IN_MID_LINE = re.compile(r"(^|\s)//.*\S.*\b(Units|Owner|Thread|Errors):( |$)")
CLASS_OPERATION = re.compile(r"\b(default[A-Z]\w*|share[A-Z]\w*)\(")


def read_edges(path):
    """The folders that each folder may include, from the lowest up."""
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
    """Line, kind of quote and file of each include; public headers with their path in the project."""
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        found = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
        if found:
            quote, include = found.groups()
            yield number, quote, f"include/{include}" if include.startswith("ZELTarkaSDK/") else include


def check_include(folder, quote, include, edges):
    """What is wrong with the include, or None."""
    if quote == "<" and not include.startswith("include/"):
        if folder.startswith((*CORE, "include/")) and not STANDARD.match(include):
            return f"the core and its headers may not include <{include}>; put what needs it into an adapter behind a port"
        return None
    if quote == '"' and folder.startswith("include/"):
        return f'a public header may not include "{include}"; others have only <ZELTarkaSDK/...>'
    within = folder_of(include, edges)
    everybody = () if folder.startswith("include/") else (PUBLIC, PORTS)
    if within == folder or within in everybody or within in edges[folder] or include in edges[folder]:
        return None
    return f"{folder} may not include {include}; see cmake/lint/edges.txt"


def arrows_up(edges):
    """Edges to folders that are not listed above their line. Without such edges there is no circle."""
    below = set()
    for folder, allowed in edges.items():
        for one in allowed:
            if (folder_of(one, edges) if one.endswith(".h") else one) not in below:
                yield f"cmake/lint/edges.txt:1: {folder} may include {one}, which does not stand above its line"
        below.add(folder)


def include_graph(root, edges):
    yield from arrows_up(edges)
    for path in sources(root):
        relative = path.relative_to(root).as_posix()
        folder = folder_of(relative, edges)
        if folder is None:
            continue
        for number, quote, include in includes(path):
            fault = check_include(folder, quote, include, edges)
            if fault:
                yield f"{relative}:{number}: {fault}"


def public_headers(root):
    """Public headers by the names that their sources bear."""
    return {snake(path.stem): path for path in (root / PUBLIC).glob("**/*.h")}


def owner_of(path, public):
    """The header of a source, or None. A large class may be split into files whose names begin with its
    name: zel_camera_ucd_files.cc, zel_live_data_source_state.h."""
    owner = path.stem
    while owner:
        beside = path.with_name(owner + ".h")
        if owner in public:
            return public[owner]
        if beside.exists() and path.suffix == ".cc":
            return beside
        owner = owner.rpartition("_")[0]
    return path if path.suffix == ".h" else None


def file_circles(root, edges):
    """Headers (each with its sources) that include each other in a circle."""
    public = public_headers(root)
    graph = {}
    for path in sources(root):
        if folder_of(path.relative_to(root).as_posix(), edges) is None:
            continue
        owner = owner_of(path, public) or path
        targets = graph.setdefault(owner.relative_to(root).as_posix(), set())
        for _, _, include in includes(path):
            target = root / include
            if target.exists() and target != owner:
                targets.add(include)
    for circle in circles(graph):
        yield f"{circle[0]}:1: includes itself by way of " + " -> ".join(circle[1:] + circle[:1])


def circles(graph):
    """One circle for each group of nodes that reach each other."""
    done, seen = set(), set()

    def visit(node, trail):
        if node in trail:
            yield trail[trail.index(node):]
            return
        if node in done:
            return
        for target in sorted(graph.get(node, ())):
            yield from visit(target, trail + [node])
        done.add(node)

    for start in sorted(graph):
        for circle in visit(start, []):
            if not seen & set(circle):
                seen |= set(circle)
                yield circle


def snake(name):
    name = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name)
    return re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name).lower()


def pairs_and_mirrors(root):
    public = public_headers(root)
    for folder in CORE:
        for path in sorted((root / folder).glob("*.cc")):
            relative = path.relative_to(root).as_posix()
            owner = owner_of(path, public)
            if not owner and path.stem != "default_stack":
                yield f"{relative}:1: has no header of its name; add it, or move the code to where its header is"
            name = snake(owner.stem) if owner else path.stem
            if not (root / "tests" / folder / f"{name}_test.cc").exists():
                yield f"{relative}:1: has no test; add tests/{folder}/{name}_test.cc"
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
            if LABEL_IN_MID_LINE.search(text) and not relative.startswith("tests/"):
                yield f"{relative}:{number}: a label of a contract begins its own line of the comment"
            is_declaration = relative.startswith("link/") and re.match(r"\s*static ", text)
            if CLASS_OPERATION.search(text) and not allowed_here and not is_declaration and "//" not in text:
                yield f"{relative}:{number}: class operations are for hosts; take a reference in the constructor"


def long_functions(root):
    """A function's body starts after a declaration line that ends with '{', and ends at a '}' with the same indentation."""
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
    """An example may include what any host may: the public headers, the standard library and the system's."""
    for path in sorted((root / "examples").glob("*")):
        relative = path.relative_to(root).as_posix()
        if path.suffix == ".cc" and len(path.read_text().splitlines()) > LONGEST_EXAMPLE:
            yield f"{relative}:1: an example has at most {LONGEST_EXAMPLE} lines"
        if path.suffix not in (".h", ".cc"):
            continue
        for number, quote, include in includes(path):
            if quote == '"' and include != "connect.h":
                yield f'{relative}:{number}: an example may not include "{include}"; only public headers, as <ZELTarkaSDK/...>'


# What stands in one place: a pattern, the files that it may not stand in again, and where the fact is.
CODE = CORE + ("platform", "include", "gateway", "apps", "examples")
KEYS = r"u?(char|short|int)Value[23]?|u?int64Value2?|nsString|NS(Data|Value1|Error)|IPAEMMWeight|IPMEParam|gpsData|orientationData|FileSize"
FACTS = (
    (re.compile(r"\bcase \d+:"), CORE, "a frame type, an event or a state by its number; use its enumerator"),
    (re.compile(r"\b15, *20, *25, *30\b"), CODE, "the preview's rates are in ZELTarkaSDK/PreviewFormat.h"),
    (re.compile(r"\b(1440|2160|2560|3040), *(720|1080|1280|1520)\b.*\b(1440|2160|2560|3040), *(720|1080|1280|1520)\b"), CODE,
     "the preview's sizes are in ZELTarkaSDK/PreviewFormat.h"),
    (re.compile(r"\bstatus\(\) *([!=]=|[<>]=?) *\d"), CODE + ("bench",), "compare linkStatus() with a zel::LinkStatus"),
    (re.compile(r"\bstatus *([!=]=|[<>]=?) *\d"), ("link", "command", "examples"), "compare it with a zel::LinkStatus"),
    (re.compile(r"\b190\b"), CODE, "firmware levels are in ZELTarkaSDK/WireConstants.h"),
    (re.compile(rf'"({KEYS})"'), CODE, "the keys are in ZELTarkaSDK/ZELMessageKeys.h"),
)
HOMES = ("include/ZELTarkaSDK/PreviewFormat.h", "include/ZELTarkaSDK/WireConstants.h", "include/ZELTarkaSDK/ZELMessageKeys.h")


def facts(root):
    """A fact of the protocol is written once. The simulator writes its own on purpose, and tests hold literal values."""
    lines = [(path, path.read_text(errors="replace").splitlines(), path.relative_to(root).parts[0]) for path in sources(root)]
    lines += [(page, page.read_text().splitlines(), "examples") for page in root.glob("README.md")]
    for path, text, folder in lines:
        relative = path.relative_to(root).as_posix()
        for number, line in enumerate(text, 1):
            code = line.split("//")[0]
            for pattern, folders, home in FACTS:
                if folder in folders and relative not in HOMES and pattern.search(code):
                    yield f"{relative}:{number}: {home}"


CHECKS = {
    "facts": facts,
    "include-graph": lambda root: include_graph(root, read_edges(root / "cmake/lint/edges.txt")),
    "circles": lambda root: file_circles(root, read_edges(root / "cmake/lint/edges.txt")),
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
