"""The list of mutants that change no observable behaviour, each with the reason."""
from collections import namedtuple

Equivalent = namedtuple("Equivalent", "file function text operator change occurrence reason")
FIELDS = {"file": "file", "in": "function", "line": "text", "mutant": "mutant", "number": "occurrence", "because": "reason"}


def parse(text):
    """The entries: paragraphs of "key: value"; an indented line continues the value above; "#" begins a comment."""
    entries, current, key = [], {}, None
    for number, line in enumerate([*text.splitlines(), ""], 1):
        if line.startswith("#"):
            continue
        if not line.strip():
            if current:
                entries.append(_entry(current, number))
            current, key = {}, None
        elif line.startswith(" ") and key is not None:
            current[key] = f"{current[key]} {line.strip()}".strip()
        else:
            key, _, value = line.partition(":")
            if key not in FIELDS or key in current:
                raise ValueError(f"line {number}: \"{line}\" is no \"key: value\" with one of {', '.join(FIELDS)}, each once")
            current[key] = value.strip()
    return entries


def _entry(values, number):
    # Outside functions "in" is empty.
    missing = [key for key in FIELDS if not values.get(key) and key not in ("in", "number")]
    if missing:
        raise ValueError(f"the entry before line {number} lacks {', '.join(missing)}")
    operator, separator, change = values["mutant"].partition(": ")
    if not separator:
        raise ValueError(f"the entry before line {number} names no mutant as \"operator: change\"")
    return Equivalent(values["file"], values.get("in", ""), values["line"], operator, change, int(values.get("number", "1")),
                      values["because"])


def matching(entries, mutants):
    """The given mutants that are listed, and the entries that match none."""
    known = {entry[:-1]: entry for entry in entries}
    found = {one for one in mutants if key_of(one) in known}
    seen = {key_of(one) for one in found}
    return found, [entry for key, entry in known.items() if key not in seen]


def key_of(mutant):
    return (mutant.file, mutant.function, mutant.text, mutant.operator, mutant.change, mutant.occurrence)


def entry_of(mutant):
    """The mutant's entry for the list, without a reason."""
    number = f"number: {mutant.occurrence}\n" if mutant.occurrence > 1 else ""
    return (f"file: {mutant.file}\nin: {mutant.function}\nline: {mutant.text}\nmutant: {mutant.operator}: {mutant.change}\n"
            f"{number}because: \n")
