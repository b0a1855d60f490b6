"""Mutants, and how the drawn ones are written into a source, all at once.

A source with mutants in it chooses at run time: each place where one stands asks mutate::on(NUMBER).
"""
import hashlib
from dataclasses import dataclass, field


@dataclass(frozen=True)
class Mutant:
    """One small fault. It is identified by everything but its position, so that it is found again after lines have moved."""

    file: str
    function: str  # the one that it stands in
    text: str  # of the line that it begins on
    operator: str
    change: str
    occurrence: int  # among those that are alike in everything above, from 1
    line: int = field(compare=False)
    last_line: int = field(compare=False)
    edit: object = field(compare=False, repr=False)

    def identity(self):
        return "\n".join((self.file, self.function, self.text, self.operator, self.change, str(self.occurrence)))

    def told(self):
        which = f" (number {self.occurrence})" if self.occurrence > 1 else ""
        return f"{self.file}:{self.line}: {self.operator}: {self.change}{which}: {self.text}"


@dataclass(frozen=True)
class Wrap:
    """Inserts text before start and after end; NUMBER is the mutant's."""

    start: int
    end: int
    before: str
    behind: str

    def apply(self, text, number):
        return self.before.replace("NUMBER", str(number)) + text + self.behind.replace("NUMBER", str(number))


@dataclass(frozen=True)
class Swap:
    """Replaces the operator between left_end and right_start."""

    start: int
    end: int
    left_end: int
    right_start: int
    other: str


def drawn_order(mutants, seed):
    """The mutants in the order of the sample. Adding code does not change the order of the others."""
    return sorted(mutants, key=lambda one: hashlib.sha256(f"{seed}\n{one.identity()}".encode()).digest())


def with_mutants(source, edits):
    """The source with all (number, edit) applied. Edits are nested or side by side, as expressions are."""
    places = {}
    for number, edit in edits:
        places.setdefault((edit.start, edit.end), []).append((number, edit))
    # Outer positions first, each followed by its inner ones.
    ordered = sorted(places, key=lambda place: (place[0], -place[1]))
    return _written(source, 0, len(source), ordered, places)


def _written(source, start, end, ordered, places):
    """The source from start to end. `ordered` are the positions inside it."""
    out, at = [], start
    for index, place in enumerate(ordered):
        if place[0] < at:
            continue  # stands inside one that is written already
        inner = [other for other in ordered[index + 1:] if other[1] <= place[1]]
        out += [source[at:place[0]], _place(source, place, inner, places)]
        at = place[1]
    return "".join(out) + source[at:end]


def _place(source, place, inner, places):
    edits = places[place]
    swaps = [(number, edit) for number, edit in edits if isinstance(edit, Swap)]
    text = _swapped(source, place, inner, places, swaps) if swaps else _written(source, *place, inner, places)
    for number, edit in edits:
        if isinstance(edit, Wrap):
            text = edit.apply(text, number)
    return text


def _swapped(source, place, inner, places, swaps):
    edit = swaps[0][1]

    def side(start, end):
        return _written(source, start, end, [one for one in inner if start <= one[0] and one[1] <= end], places)

    left, right = side(place[0], edit.left_end), side(edit.right_start, place[1])
    text = f"(({left}){source[edit.left_end:edit.right_start]}({right}))"
    for number, one in swaps:
        text = f"(mutate::on({number}) ? (({left}) {one.other} ({right})) : {text})"
    return text
