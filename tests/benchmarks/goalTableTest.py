"""Tests of the table of goals. Usage: goalTableTest.py SOURCE_DIRECTORY"""

import json
import pathlib
import re
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv.pop(1) if len(sys.argv) > 1 else __file__.rsplit("/tests/", 1)[0])
sys.path.insert(0, str(SOURCE / "benchmarks"))
sys.dont_write_bytecode = True

import goalTable  # noqa: E402  (found by the path above)


def run(name, real, unit="ms", **more):
    return {"name": name, "run_type": "iteration", "real_time": real, "cpu_time": real, "time_unit": unit, **more}


class GoalTableTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def results(self, *runs):
        path = self.folder / "result.json"
        path.write_text(json.dumps({"benchmarks": list(runs)}), encoding="utf-8")
        return goalTable.read_results([path])

    def verdict(self, goal, *runs):
        return goalTable.judge({"goal": "g", "ours": "a/b/ours", **goal}, self.results(*runs))[3]

    def test_ratio_holds_from_its_limit_on_whatever_the_units(self):
        goal = {"plain": "a/b/plain", "rule": "plain / ours >= 12"}

        self.assertIs(self.verdict(goal, run("a/b/ours", 2000, "us"), run("a/b/plain", 24.0)), True)
        self.assertIs(self.verdict(goal, run("a/b/ours", 2000, "us"), run("a/b/plain", 23.9)), False)

    def test_amount_and_ratio_to_the_floor_hold_up_to_their_limits(self):
        self.assertIs(self.verdict({"rule": "ours <= 100 ms"}, run("a/b/ours", 100)), True)
        self.assertIs(self.verdict({"rule": "ours <= 100 ms"}, run("a/b/ours", 101)), False)
        goal = {"floor": "a/b/floor", "rule": "ours / floor <= 1.5"}
        self.assertIs(self.verdict(goal, run("a/b/ours", 3), run("a/b/floor", 2)), True)
        self.assertIs(self.verdict(goal, run("a/b/ours", 3.1), run("a/b/floor", 2)), False)

    def test_counter_is_taken_as_it_is(self):
        goal = {"metric": "p95_ms", "rule": "ours <= 100 ms"}

        self.assertIs(self.verdict(goal, run("a/b/ours", 1, "s", p95_ms=99)), True)
        self.assertIs(self.verdict(goal, run("a/b/ours", 1, "ns", p95_ms=101)), False)

    def test_best_run_counts_and_appendages_of_names_do_not(self):
        runs = [run("a/b/ours/iterations:5/real_time", 120), run("a/b/ours/iterations:5/real_time", 90)]
        mean = run("a/b/ours/iterations:5/real_time_mean", 1, run_type="aggregate")

        self.assertIs(self.verdict({"rule": "ours <= 100 ms"}, *runs, mean), True)
        self.assertIs(self.verdict({"rule": "ours <= 80 ms"}, *runs, mean), False)

    def test_what_is_not_there_or_failed_has_not_passed(self):
        goal = {"plain": "a/b/plain", "rule": "plain / ours >= 0"}
        failed = run("a/b/plain", 1, error_occurred=True, error_message="no display")

        self.assertIsNone(self.verdict(goal, run("a/b/ours", 1)))
        self.assertIsNone(self.verdict(goal, run("a/b/ours", 1), failed))
        self.assertIsNone(self.verdict({"metric": "p95_ms", "rule": "ours <= 100 ms"}, run("a/b/ours", 1)))
        lines, counts = goalTable.make_table([{"goal": "g", "ours": "a/b/ours", **goal}], self.results())
        self.assertIn("missing", lines[-1])
        self.assertEqual(counts, {True: 0, False: 0, None: 1})

    def test_wrong_rules_are_refused(self):
        path = self.folder / "goals.json"
        for rule in ("ours < 3 ms", "plain / ours >= 12", "as fast as it goes"):
            with self.subTest(rule):
                path.write_text(json.dumps([{"goal": "g", "ours": "a", "rule": rule}]), encoding="utf-8")
                self.assertRaises(goalTable.GoalError, goalTable.read_goals, path)

    def test_filter_takes_what_goals_name_and_nothing_else(self):
        goals = goalTable.read_goals(SOURCE / "benchmarks" / "goals.json")
        pattern = re.compile(goalTable.make_filter(goals))

        for name in goalTable.names_of(goals):
            self.assertGreaterEqual(name.count("/"), 2, name)
            self.assertTrue(pattern.search(name))
            self.assertTrue(pattern.search(name + "/iterations:5/process_time/real_time"))
            self.assertFalse(pattern.search(name + "x"))


if __name__ == "__main__":
    unittest.main()
