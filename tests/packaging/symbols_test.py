#!/usr/bin/env python3
"""symbols_test.py KEPT LIBRARY LEAST: every symbol of the kept binary interface, LEAST of them at least, is still shown by the
library, under its version."""
import subprocess
import sys
import xml.etree.ElementTree as ElementTree


def kept_symbols(path):
    root = ElementTree.parse(path).getroot()
    return {f"{symbol.get('name')}@@{symbol.get('version')}"
            for kind in ("elf-function-symbols", "elf-variable-symbols") for symbol in root.findall(f"{kind}/elf-symbol")
            if symbol.get("is-defined") == "yes"}


def shown_symbols(library):
    lines = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1] for line in lines.splitlines()}


def main():
    kept, shown = kept_symbols(sys.argv[1]), shown_symbols(sys.argv[2])
    if len(kept) < int(sys.argv[3]):
        sys.exit(f"only {len(kept)} symbols are kept; is this the dump of the library?")
    missing = sorted(kept - shown)
    if missing:
        sys.exit("hosts that were linked before miss (docs/packaging.md says what to do):\n" + "\n".join(missing))
    print(f"{len(kept)} symbols are still shown")


if __name__ == "__main__":
    main()
