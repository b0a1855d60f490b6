#!/usr/bin/env python3
"""Converts a header's plain comments for Doxygen, so that headers need no markup.

A comment directly above a declaration documents it, one behind a declaration documents that. "Units:", "Owner:", "Thread:" and "Errors:"
become paragraphs under a heading. A comment with an empty line below it, or one that begins with "--", is none of a declaration's.
"""
import re
import sys
from pathlib import Path

CONTRACT = re.compile(r"^(Units|Owner|Thread|Errors): +(.*)$")


def plain(text):
    """The text with all markup characters escaped."""
    return re.sub(r"([\\@<>#%&*_`~\"])", r"\\\1", text).replace("\\*", "&lowast;").replace("\\_", "_").replace("\\`", "`").replace("\\~", "~")


def documented(lines, indent):
    out = []
    for line in lines:
        text = line.strip()
        contract = CONTRACT.match(text)
        if contract:
            out += [f"{indent}/// @par {contract.group(1)}", f"{indent}/// {plain(contract.group(2))}"]
        else:
            out.append(f"{indent}/// {plain(text)}")
    return out


def filtered(source):
    out, block = ["/// @file"], []
    for line in source.splitlines():
        comment = re.match(r"^(\s*)//(?!/)(.*)$", line)
        if comment:
            block.append(comment)
            continue
        isOwn = block and line.strip() and not block[0].group(2).strip().startswith("--")
        if isOwn:
            out += documented([one.group(2) for one in block], block[0].group(1))
        else:
            out += [one.group(0) for one in block]
        block = []
        behind = re.match(r"^(.*[;,{})\w])\s+//\s+(.*)$", line)
        out.append(f"{behind.group(1)}  ///< {plain(behind.group(2))}" if behind and not line.startswith("}") else line)
    return "\n".join(out + [one.group(0) for one in block]) + "\n"


if __name__ == "__main__":
    sys.stdout.write(filtered(Path(sys.argv[1]).read_text()))
