"""Reads the enumerations and structs out of the headers for C, with their comments."""
import re
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Member:
    kind: str  # its type in C, without an array's size
    name: str
    count: int  # of an array; 0 where it is none
    does: str


@dataclass
class Struct:
    name: str
    does: str
    members: list


@dataclass
class Enumeration:
    name: str
    does: str
    values: list  # of name, number and comment


TYPE = re.compile(r"((?://[^\n]*\n)*)typedef (enum|struct) (\w+) \{\n(.*?)\n\} \w+;", re.DOTALL)
MEMBER = re.compile(r"^  (?:const )?(\w+[*]?) ([^;/]+);(?: +// (.*))?$", re.MULTILINE)
VALUE = re.compile(r"^  ZEL_(\w+) = (\d+),?(?: +// (.*))?$", re.MULTILINE)


def comment(lines):
    """The text of a comment, a paragraph a line."""
    text = "\n".join(line[2:].strip() for line in lines.strip().splitlines())
    return [" ".join(part.split()) for part in text.split("\n\n") if part.strip()]


def members(body, constants):
    for kind, names, does in MEMBER.findall(body):
        for name in names.split(","):
            array = re.fullmatch(r"(\w+)\[(\w+)\]", name.strip())
            count = int(constants.get(array[2], array[2])) if array else 0
            yield Member(kind, array[1] if array else name.strip(), count, does)


def read(folder):
    """All enumerations and structs of zel*.h by name."""
    found, constants = {}, {}
    for path in sorted(Path(folder).glob("zel*.h")):
        text = path.read_text()
        constants |= {f"ZEL_{name}": number for name, number, _ in VALUE.findall(text)}
        for does, which, name, body in TYPE.findall(text):
            if which == "enum":
                found[name] = Enumeration(name, comment(does), VALUE.findall(body))
            else:
                found[name] = Struct(name, comment(does), [one for one in members(body, constants) if one.name != "size"])
    return found
