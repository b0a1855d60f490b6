#!/usr/bin/env python3
"""The list of equivalent mutants is read, matched wherever the lines have moved to, and never quietly wrong."""
import sys
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "cmake/mutate"
sys.path.insert(0, str(TOOL))
import equivalents
from mutants import Mutant

ENTRY = """# A comment.

file: a.cc
in: zel::f
line: if (a: b < c)
mutant: boundary: < -> <=
because: the two are never alike,
  as the caller sees to it
"""


def mutant(line=1, occurrence=1, change="< -> <="):
    return Mutant("a.cc", "zel::f", "if (a: b < c)", "boundary", change, occurrence, line, line, None)


class EquivalentsTest(unittest.TestCase):
    def test_reads_an_entry(self):
        expected = ("a.cc", "zel::f", "if (a: b < c)", "boundary", "< -> <=", 1,
                    "the two are never alike, as the caller sees to it")
        self.assertEqual([tuple(one) for one in equivalents.parse(ENTRY)], [expected])

    def test_matches_wherever_the_line_has_moved_to(self):
        found, unmatched = equivalents.matching(equivalents.parse(ENTRY), [mutant(line=70), mutant(change="< -> >")])
        self.assertEqual((found, unmatched), ({mutant()}, []))

    def test_matches_the_named_one_of_several_alike(self):
        second = equivalents.parse(ENTRY.replace("because", "number: 2\nbecause"))
        found, _ = equivalents.matching(second, [mutant(), mutant(occurrence=2)])
        self.assertEqual(found, {mutant(occurrence=2)})

    def test_tells_entries_that_match_nothing(self):
        found, unmatched = equivalents.matching(equivalents.parse(ENTRY), [mutant(change="< -> >")])
        self.assertEqual((found, len(unmatched)), (set(), 1))

    def test_refuses_an_entry_without_a_reason(self):
        with self.assertRaisesRegex(ValueError, "lacks because"):
            equivalents.parse(ENTRY.split("because")[0])

    def test_refuses_what_it_does_not_know(self):
        with self.assertRaisesRegex(ValueError, "line 9"):
            equivalents.parse(ENTRY + "becuse: nothing\n")

    def test_refuses_a_key_that_comes_twice(self):
        with self.assertRaisesRegex(ValueError, "each once"):
            equivalents.parse(ENTRY + "file: b.cc\n")

    def test_what_it_writes_for_a_mutant_matches_that_mutant(self):
        entries = equivalents.parse(equivalents.entry_of(mutant(occurrence=2)) + " it is so\n")
        self.assertEqual(equivalents.matching(entries, [mutant(), mutant(occurrence=2)]), ({mutant(occurrence=2)}, []))

    def test_the_kept_list_can_be_read(self):
        equivalents.parse((TOOL / "equivalents.txt").read_text())


if __name__ == "__main__":
    unittest.main()
