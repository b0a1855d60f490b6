#!/usr/bin/env python3
"""All mutants of a small source are those that were worked out by hand, and each of them does what it says."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOOL = HERE.parents[1] / "cmake/mutate"
sys.path.insert(0, str(TOOL))

try:
    import candidates
except ImportError:
    print("candidates_test.py:1: Skipped\nclang's Python bindings are missing: the package python3-clang has them")
    sys.exit(77)
import mutate
from mutants import with_mutants

PLAIN = "10 8 4 5 6 1 2 10"
# Line, operator, change, and what the program prints when it is in force. The digits: isSmall(2), isSmall(3), four picks, calls,
# count after growing by 2, isOdd(3), isOdd(4).
EXPECTED = [
    (11, "dropped assignment", "no calls = calls + 1", "10 8 4 5 6 0 2 10"),
    (11, "arithmetic", "+ -> -", "10 8 4 5 6 -1 2 10"),
    (11, "constant", "1 -> 1 + 1", "10 8 4 5 6 2 2 10"),
    (11, "constant", "1 -> 1 - 1", "10 8 4 5 6 0 2 10"),
    (13, "boundary", "< -> <=", "11 8 4 5 6 1 2 10"),
    (13, "return", "value -> !value", "01 8 4 5 6 0 2 10"),
    (13, "constant", "kLimit -> kLimit + 1", "11 8 4 5 6 1 2 10"),
    (13, "constant", "kLimit -> kLimit - 1", "00 8 4 5 6 1 2 10"),
    (16, "negation", "== -> !=", "10 -1 8 8 8 0 2 10"),
    (16, "constant", "7 -> 7 + 1", "10 -1 4 5 6 1 2 10"),
    (16, "constant", "7 -> 7 - 1", "10 -1 4 5 6 1 2 10"),
    (19, "constant", "0 -> 0 + 1", "10 8 6 5 6 1 2 10"),
    (19, "constant", "0 -> 0 - 1", None),
    (23, "boundary", "> -> >=", "10 8 4 5 6 2 2 10"),
    (23, "logic", "&& -> ||", "10 8 4 5 6 2 2 10"),
    (23, "negation", "condition -> !condition", "10 8 4 5 6 1 2 10"),
    (23, "constant", "0 -> 0 + 1", "10 8 4 5 6 0 2 10"),
    (23, "constant", "0 -> 0 - 1", "10 8 4 5 6 2 2 10"),
    (23, "dropped call", "no called()", "10 8 4 5 6 0 2 10"),
    (24, "arithmetic", "- -> +", "10 8 4 7 6 1 2 10"),
    (24, "constant", "1 -> 1 + 1", None),
    (24, "constant", "1 -> 1 - 1", "10 8 4 3 4 1 2 10"),
    (29, "constant", "0 -> 0 + 1", "10 8 4 5 6 1 3 10"),
    (29, "constant", "0 -> 0 - 1", "10 8 4 5 6 1 1 10"),
    (32, "arithmetic", "+= -> -=", "10 8 4 5 6 1 -2 10"),
    (32, "dropped assignment", "no count += kStep", "10 8 4 5 6 1 0 10"),
    (38, "boundary", ">= -> >", "10 8 4 5 6 1 2 10"),
    (38, "negation", "condition -> !condition", "10 8 4 5 6 1 2 00"),
    (38, "arithmetic", "-= -> +=", None),
    (38, "dropped assignment", "no number -= two", None),
    (39, "negation", "== -> !=", "10 8 4 5 6 1 2 01"),
    (39, "return", "value -> !value", "10 8 4 5 6 1 2 01"),
    (39, "constant", "1 -> 1 + 1", "10 8 4 5 6 1 2 00"),
    (39, "constant", "1 -> 1 - 1", "10 8 4 5 6 1 2 01"),
]


def mutants_of(name, text):
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        (root / name).write_text(text)
        return candidates.find(candidates.parse(root / name, mutate.compiler_arguments(root)), root, {name})[name]


class CandidatesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.source = (HERE / "sample.cc").read_text()
        cls.mutants = mutants_of("sample.cc", cls.source)

    def test_finds_all_mutants_of_the_sample_and_no_other(self):
        self.assertEqual([(one.line, one.operator, one.change) for one in self.mutants], [one[:3] for one in EXPECTED])

    def test_each_does_what_it_says_and_none_does_anything_unasked(self):
        with tempfile.TemporaryDirectory() as folder:
            program = self.build(Path(folder))
            self.assertEqual(self.printed(program, {}), PLAIN)
            for number, expected in enumerate(EXPECTED, 1):
                if expected[3] is not None:  # the others read beyond an array or never end
                    self.assertEqual(self.printed(program, {"ZEL_MUTANT": str(number)}), expected[3], expected[:3])

    def test_records_which_are_reached(self):
        with tempfile.TemporaryDirectory() as folder:
            program, reached = self.build(Path(folder)), Path(folder) / "reached"
            reached.write_bytes(bytes(len(EXPECTED) + 1))
            self.printed(program, {"ZEL_MUTANTS_REACHED": str(reached)})
            self.assertEqual(reached.read_bytes(), bytes([0] + [1] * len(EXPECTED)))

    def build(self, folder):
        text = with_mutants(self.source, [(number, one.edit) for number, one in enumerate(self.mutants, 1)])
        (folder / "all.cc").write_text('#include "mutant.h"\n' + text + (HERE / "sample_main.cc").read_text())
        subprocess.run(["g++", "-std=c++20", "-w", f"-I{TOOL}", folder / "all.cc", "-o", folder / "all"], check=True)
        return folder / "all"

    @staticmethod
    def printed(program, environment):
        return subprocess.run([program], env={**os.environ, **environment}, capture_output=True, text=True, timeout=60,
                              check=True).stdout.strip()

    def test_leaves_out_what_a_macro_wrote(self):
        text = "#define LESS(a, b) (a < b)\nbool f(int a) { return LESS(a, 3); }\n"
        self.assertEqual(mutants_of("a.cc", text), [])

    def test_knows_a_mutant_again_when_lines_have_moved(self):
        before = mutants_of("a.cc", "bool f(int a) { return a < 3; }\n")
        after = mutants_of("a.cc", "// more\n\nbool f(int a) { return a < 3; }\n")
        self.assertEqual(before, after)
        self.assertNotEqual(before[0].line, after[0].line)

    def test_numbers_those_that_are_alike(self):
        found = mutants_of("a.cc", "bool f(int a, int b) { return a < b && b < a; }\n")
        self.assertEqual([(one.operator, one.occurrence) for one in found if one.operator == "boundary"],
                         [("boundary", 1), ("boundary", 2)])

    def test_tells_a_source_that_cannot_be_read(self):
        with self.assertRaisesRegex(ValueError, "cannot be read"):
            mutants_of("a.cc", "int f() { return unknown; }\n")


if __name__ == "__main__":
    unittest.main()
