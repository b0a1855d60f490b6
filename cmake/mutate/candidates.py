"""Finds every mutant of a source and of its headers."""
import re
from collections import Counter

from clang.cindex import CursorKind, Index, TranslationUnit

from finder import Finder
from mutants import Mutant
from source import Source


def parse(path, arguments):
    unit = Index.create().parse(str(path), args=arguments, options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(one) for one in unit.diagnostics if one.severity >= 3]
    if errors:
        raise ValueError("cannot be read: " + "; ".join(errors[:3]))
    return unit


def immediate_functions(texts):
    return {name for text in texts for name in re.findall(r"\bconsteval\b[^;{}()=]*?\b(\w+)\(", text)}


def find(unit, root, wanted):
    """The mutants of the unit's wanted files: a dictionary from the file's name to a list."""
    sources, finders, cursors = {}, {}, []
    immediate = immediate_functions((root / name).read_text() for name in wanted)
    for cursor in unit.cursor.get_children():
        place = cursor.location.file
        name = str(place.name).removeprefix(f"{root}/") if place is not None else None
        if name in wanted:
            if name not in sources:
                sources[name] = Source(name, (root / name).read_text())
                finders[name] = Finder(sources[name], immediate)
            cursors.append((cursor, name))
    for cursor, name in cursors:
        if cursor.kind == CursorKind.MACRO_INSTANTIATION:
            sources[name].macros.append((cursor.extent.start.offset, cursor.extent.end.offset))
    for cursor, name in cursors:
        if not cursor.kind.is_preprocessing():
            finders[name].visit(cursor)
    return {name: named(finders[name]) for name in finders}


def named(finder):
    """Mutants in source order, each with its number among equal ones."""
    counts, out, source = Counter(), [], finder.source
    for start, function, operator, change, edit in sorted(finder.found, key=lambda one: (one[0], one[2], one[3])):
        told = (source.name, function, source.text_of_line_at(start), operator, change)
        counts[told] += 1
        out.append(Mutant(*told, counts[told], source.line_at(start), source.line_at(edit.end), edit))
    return out
