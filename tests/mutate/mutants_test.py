#!/usr/bin/env python3
"""Mutants are drawn in an order that holds, and stand in the source as they should, also one in the other."""
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "cmake/mutate"))
from mutants import Mutant, Swap, Wrap, drawn_order, with_mutants


def mutant(name):
    return Mutant("a.cc", "f", name, "boundary", "< -> <=", 1, 1, 1, None)


class MutantsTest(unittest.TestCase):
    def test_stand_side_by_side(self):
        edits = [(1, Wrap(0, 1, "<NUMBER ", ">")), (2, Wrap(4, 5, "<NUMBER ", ">"))]
        self.assertEqual(with_mutants("a + b;", edits), "<1 a> + <2 b>;")

    def test_stand_one_in_the_other(self):
        edits = [(1, Wrap(0, 5, "<NUMBER ", ">")), (2, Wrap(4, 5, "<NUMBER ", ">"))]
        self.assertEqual(with_mutants("a + b;", edits), "<1 a + <2 b>>;")

    def test_stand_at_one_place_together(self):
        edits = [(1, Wrap(0, 1, "<NUMBER ", ">")), (2, Wrap(0, 1, "<NUMBER ", ">"))]
        self.assertEqual(with_mutants("a + b;", edits), "<2 <1 a>> + b;")

    def test_another_operator_keeps_both_sides_whole(self):
        self.assertEqual(with_mutants("a || b || c", [(7, Swap(0, 11, 6, 10, "&&"))]),
                         "(mutate::on(7) ? ((a || b) && (c)) : ((a || b) || (c)))")

    def test_two_other_operators_share_a_place(self):
        self.assertEqual(with_mutants("a < b", [(1, Swap(0, 5, 1, 4, "<=")), (2, Swap(0, 5, 1, 4, ">"))]),
                         "(mutate::on(2) ? ((a) > (b)) : (mutate::on(1) ? ((a) <= (b)) : ((a) < (b))))")

    def test_sides_keep_the_mutants_in_them(self):
        edits = [(1, Swap(0, 5, 1, 4, "<=")), (2, Wrap(4, 5, "<NUMBER ", ">")), (3, Wrap(0, 5, "!NUMBER(", ")"))]
        self.assertEqual(with_mutants("a < b", edits), "!3((mutate::on(1) ? ((a) <= (<2 b>)) : ((a) < (<2 b>))))")

    def test_the_order_is_the_seeds(self):
        names = [mutant(str(number)) for number in range(20)]
        self.assertEqual(drawn_order(names, 1), drawn_order(names, 1))
        self.assertNotEqual(drawn_order(names, 1), drawn_order(names, 2))

    def test_a_new_line_of_code_changes_the_order_of_no_other(self):
        names = [mutant(str(number)) for number in range(20)]
        more = drawn_order([*names, mutant("new")], 1)
        self.assertEqual([one for one in more if one.text != "new"], drawn_order(names, 1))


if __name__ == "__main__":
    unittest.main()
