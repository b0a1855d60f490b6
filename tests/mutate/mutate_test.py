#!/usr/bin/env python3
"""The sample, its results and the closing line are as they should be; so are the words on a wrong command line."""
import contextlib
import io
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "cmake/mutate"))
import mutate
import tree
from mutants import Mutant, Wrap


def mutant(name, file="a.cc", line=1, last_line=1):
    return Mutant(file, "f", name, "boundary", "< -> <=", 1, line, last_line, Wrap(0, 1, "", ""))


def some(count):
    return [mutant(str(number)) for number in range(count)]


class SampleTest(unittest.TestCase):
    def test_takes_the_first_of_the_drawn_order(self):
        ten, twenty = mutate.Sample(some(30), 10, 1), mutate.Sample(some(30), 20, 1)
        self.assertEqual(ten.taken, twenty.taken[:10])

    def test_takes_all_where_there_are_fewer(self):
        self.assertEqual(len(mutate.Sample(some(3), 10, 1).taken), 3)

    def test_others_take_the_places_of_those_that_do_not_compile(self):
        sample = mutate.Sample(some(30), 10, 1)
        refused = sample.taken[4]
        sample.leave_out([refused])
        self.assertEqual([number for number, _ in sample.taken], [1, 2, 3, 4, 6, 7, 8, 9, 10, 11])


class TreeTest(unittest.TestCase):
    def test_knows_which_mutants_the_compiler_refused(self):
        numbered = [(1, mutant("a", line=3)), (2, mutant("b", line=4, last_line=6)), (3, mutant("c", file="b.cc", line=5))]
        said = "In file included from unity.cxx:3:\na.cc:5:12: error: no match\na.cc:3:1: note: here\n"
        self.assertEqual(tree.refused(said, numbered), [numbered[1]])

    def test_writes_the_mutants_into_a_copy_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            root, copy = Path(folder) / "root", Path(folder) / "copy"
            root.mkdir()
            (root / "a.cc").write_text("a;\n")
            (root / "b.cc").write_text("b;\n")
            subprocess.run(["git", "init", "-q", root], check=True)
            one = Mutant("a.cc", "", "a;", "boundary", "", 1, 1, 1, Wrap(0, 1, "<NUMBER ", ">"))
            tree.write_copy(root, copy, [(5, one)])
            self.assertEqual((copy / "a.cc").read_text(), '#include "mutant.h"\n#line 1 "a.cc"\n<5 a>;\n')
            self.assertEqual([(root / "a.cc").read_text(), (copy / "b.cc").read_text()], ["a;\n", "b;\n"])
            (root / "b.cc").unlink()
            untouched = (copy / "a.cc").stat().st_mtime_ns
            tree.write_copy(root, copy, [(5, one)])
            self.assertEqual(((copy / "a.cc").stat().st_mtime_ns, (copy / "b.cc").exists()), (untouched, False))

    def test_all_programs_that_test_the_core_are_known(self):
        programs = tree.test_programs(ROOT)
        self.assertEqual((programs["media_tests"], programs["platform_tests"]), ("media", "platform"))


class ResultsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = Path(folder.name) / "results"
        mutate.Results(self.path, "one").add(mutant("a"), "killed", "media_tests")

    def test_a_killed_run_goes_on(self):
        results = mutate.Results(self.path, "one")
        self.assertEqual([results.verdict(mutant("a")), results.verdict(mutant("b"))], ["killed", None])

    def test_a_line_that_was_cut_off_is_as_if_it_were_not_there(self):
        whole = self.path.read_text()
        self.path.write_text(whole[:-5])
        self.assertIsNone(mutate.Results(self.path, "one").verdict(mutant("a")))
        mutate.Results(self.path, "one").add(mutant("b"), "survived", "")
        self.assertEqual(mutate.Results(self.path, "one").verdict(mutant("b")), "survived")

    def test_those_of_another_state_of_the_project_are_dropped(self):
        self.assertIsNone(mutate.Results(self.path, "other").verdict(mutant("a")))
        self.assertIsNone(mutate.Results(self.path, "one").verdict(mutant("a")))


class ReportTest(unittest.TestCase):
    def report(self, count, verdicts, equal=()):
        """The status and the words for so many mutants, killed but for those with a verdict of their own."""
        with tempfile.TemporaryDirectory() as folder:
            results = mutate.Results(Path(folder) / "results", "one")
            for one in some(count):
                results.add(one, verdicts.get(one.text, "killed"), "")
            words = io.StringIO()
            with contextlib.redirect_stdout(words), mock.patch.object(mutate, "FOLDER", Path(folder)):
                status = mutate.report(mutate.Sample(some(count), count, 1), set(equal), [], results, 1)
            return status, words.getvalue()

    def test_one_in_twenty_is_too_many(self):
        self.assertEqual(self.report(20, {"3": "survived"})[0], 1)
        self.assertEqual(self.report(20, {"3": "not covered"})[0], 1)

    def test_one_in_twenty_one_passes_and_is_named(self):
        status, words = self.report(21, {"3": "survived"})
        self.assertEqual(status, 0)
        self.assertRegex(words, r"survived: \d+: a.cc:1: boundary: < -> <=: 3\n")
        self.assertIn("21 of 21 mutants", words)
        self.assertIn("4.8 % unseen", words)

    def test_an_endless_test_counts_as_killed(self):
        self.assertEqual(self.report(20, {"3": "timed out"})[0], 0)

    def test_equivalent_ones_are_not_counted(self):
        status, words = self.report(22, {"3": "survived"}, equal=[mutant("4"), mutant("5")])
        self.assertEqual(status, 1)
        self.assertIn("2 are listed as equivalent; of the other 20 ", words)


class CommandLineTest(unittest.TestCase):
    def refused(self, *words):
        done = subprocess.run([ROOT / "run", "mutate", *words], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 2)
        return done.stderr.splitlines()[0]

    def test_tells_what_is_wrong(self):
        self.assertEqual(self.refused("many"), './run: "many" is not a number of mutants')
        self.assertEqual(self.refused("0"), './run: "0" is not a number of mutants')
        self.assertEqual(self.refused("--list", "-3"), './run: "-3" is not a number of mutants')
        self.assertEqual(self.refused("10", "x"), './run: "x" is not a seed, an integer below 1000000000')
        self.assertEqual(self.refused("10", "1", "2"), './run: unexpected argument "2"')


if __name__ == "__main__":
    unittest.main()
