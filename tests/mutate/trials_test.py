#!/usr/bin/env python3
"""A mutant's fate is told by the programs that reach it, of which one may fail, crash or wait for good."""
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "cmake/mutate"))
import trials

# Reaches the mutants 2 and 4, and behaves as each number in $ZEL_MUTANT says.
SCRIPT = r"""#!/bin/bash
if [ -n "$ZEL_MUTANTS_REACHED" ]; then
  for number in 2 4; do printf '\001' | dd of="$ZEL_MUTANTS_REACHED" bs=1 seek=$number conv=notrunc status=none; done
fi
if [ -n "$GTEST_OUTPUT" ]; then
  echo '<testsuites><testsuite><testcase classname="A" name="b" time="0.3"/><testcase classname="A" name="c" time="0.1"/>
        </testsuite></testsuites>' >"${GTEST_OUTPUT#xml:}"
fi
case $ZEL_MUTANT in
  2) echo "one is not two"; exit 1 ;;
  3) kill -SEGV $$ ;;
  4) exec sleep 1000 ;;
  5) while :; do :; done ;;
  6) [ "$GTEST_FILTER" != A.b ] ;;
  7) [ "$GTEST_FILTER" != -A.b ] ;;
esac
"""


class TrialsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def program(self, text=SCRIPT, name="script", of="media"):
        path = self.folder / name
        path.write_text(text)
        path.chmod(0o755)
        return trials.Program(path, of)

    def test_learns_what_a_plain_run_reaches(self):
        program = self.program()
        self.assertIsNone(trials.learn(program, 6, {}))
        self.assertEqual(program.reached, {2, 4})

    def test_runs_the_slow_tests_by_themselves(self):
        program = self.program()
        trials.learn(program, 6, {})
        self.assertEqual(program.slow_tests, ["A.b"])
        program.reached = {6, 7}
        self.assertEqual(trials.verdict([program], 6, "media", {}), ("killed", "script"))
        self.assertEqual(trials.verdict([program], 7, "media", {}), ("killed", "script"))

    def test_tells_what_a_plain_run_that_fails_has_said(self):
        self.assertEqual(trials.learn(self.program("#!/bin/sh\necho broken\nexit 3\n"), 6, {}), "broken\n")

    def test_tells_the_failure_itself_though_hundreds_of_tests_are_skipped_after_it(self):
        skipped = 'for test in $(seq 500); do printf "tests/media/a_test.cc:10: Skipped\\n\\n"; done'
        program = self.program(f"#!/bin/bash\necho 'a_test.cc:7: Failure'\n{skipped}\necho '[  PASSED  ] 3 tests.'\nexit 1\n")
        self.assertEqual(trials.learn(program, 6, {}), "a_test.cc:7: Failure\n[  PASSED  ] 3 tests.\n")

    def test_a_failing_or_crashing_test_kills(self):
        program = self.program()
        program.reached = {2, 3}
        self.assertEqual(trials.verdict([program], 2, "media", {}), ("killed", "script"))
        self.assertEqual(trials.verdict([program], 3, "media", {}), ("killed", "script"))

    def test_waiting_for_good_is_ended(self):
        program = self.program()
        program.reached = {4}
        with mock.patch.object(trials, "WALL_MORE", 0.3):
            self.assertEqual(trials.verdict([program], 4, "media", {}), ("timed out", "script"))

    def test_running_for_good_is_ended(self):
        program = self.program()
        program.reached = {5}
        with mock.patch.object(trials, "CPU_MORE", 1), mock.patch.object(trials, "WALL_MORE", 300):
            self.assertEqual(trials.verdict([program], 5, "media", {}), ("timed out", "script"))

    def test_survives_where_all_that_reach_it_pass(self):
        program = self.program()
        program.reached = {1}
        self.assertEqual(trials.verdict([program], 1, "media", {}), ("survived", ""))

    def test_is_not_covered_where_none_reaches_it(self):
        self.assertEqual(trials.verdict([self.program()], 2, "media", {}), ("not covered", ""))

    def test_runs_those_of_its_own_folder_first_and_then_the_quick_ones(self):
        programs = [trials.Program(Path(name), of, seconds, reached={1})
                    for name, of, seconds in (("slow", "live", 9), ("quick", "stack", 1), ("own", "media", 5))]
        programs.append(trials.Program(Path("blind"), "media", 0.1, reached={2}))
        self.assertEqual([one.name for one in trials.likely_order(programs, 1, "media")], ["own", "quick", "slow"])


if __name__ == "__main__":
    unittest.main()
