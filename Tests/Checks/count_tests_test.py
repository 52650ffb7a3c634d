#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Gives scripts/count-tests small runs and expects the right sums, and the right complaints."""
import os, pathlib, subprocess, sys, tempfile, unittest

COUNT = pathlib.Path(__file__).resolve().parents[2] / "scripts/count-tests"
GOOD = '<testcase name="Works" status="run" result="completed" classname="Thing"/>'
BAD = '<testcase name="Breaks" status="run" result="completed" classname="Thing"><failure message="no"/></testcase>'
LAZY = '<testcase name="Waits" status="run" result="skipped" classname="Thing"><skipped message="why"/></testcase>'
LEFT_OUT = '<testcase name="Away" status="notrun" result="suppressed" classname="Thing"/>'

class CountTests(unittest.TestCase):
    def run_on(self, ctest, reports=None, left_out="", environment=None, said=""):
        """`ctest` maps entries, which all said `said`, to their state, `reports` executables to what they wrote."""
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            entries = "".join(f'<testcase name="{name}" status="{status}"><system-out>{said}</system-out></testcase>'
                              for name, status in ctest.items())
            (root / "ctest.xml").write_text(f"<testsuite>{entries}</testsuite>", encoding="utf-8")
            for name, cases in (reports or {}).items():
                (root / f"{name}.xml").write_text(f"<testsuites><testsuite>{cases}</testsuite></testsuites>", encoding="utf-8")
            (root / "left-out.txt").write_text("# comment\n" + left_out, encoding="utf-8")
            (root / "ThingTest.cpp").write_text("TEST_F(Thing, Away)\n{}\n", encoding="utf-8")
            done = subprocess.run([sys.executable, COUNT, root / "ctest.xml", root, root / "left-out.txt"], capture_output=True,
                                  text=True, env={**os.environ, "CI": "", **(environment or {})})
        return done.returncode, done.stdout + done.stderr

    def test_tests_of_executables_and_other_entries_are_added(self):
        code, output = self.run_on({"all": "run", "single": "run"}, {"all": GOOD + GOOD + LEFT_OUT})
        self.assertEqual((code, output), (0, "windows: 3 passed, 0 failed, 0 skipped\n"))

    def test_a_failed_test_and_a_failed_entry_fail(self):
        code, output = self.run_on({"all": "fail", "single": "fail"}, {"all": GOOD + BAD})
        self.assertEqual(code, 1)
        self.assertIn("windows: 1 passed, 2 failed, 0 skipped", output)

    def test_an_executable_that_fails_with_no_failed_test_is_named(self):
        code, output = self.run_on({"all": "fail"}, {"all": GOOD})
        self.assertEqual(code, 1)
        self.assertIn("all failed outside its tests", output)

    def test_an_executable_that_wrote_nothing_counts_as_its_entry(self):
        self.assertEqual(self.run_on({"all": "fail"})[0], 1)

    def test_an_executable_whose_results_are_not_there_is_named(self):
        code, output = self.run_on({"all": "run"}, said="[==========] Running 2 tests from 1 test suite.")
        self.assertEqual(code, 1)
        self.assertIn("all wrote no results", output)

    def test_an_executable_that_ran_nothing_is_named(self):
        code, output = self.run_on({"all": "run"}, {"all": LEFT_OUT})
        self.assertEqual(code, 1)
        self.assertIn("all ran no test", output)

    def test_a_skipped_test_fails_on_a_build_server_alone(self):
        self.assertEqual(self.run_on({"all": "run"}, {"all": GOOD + LAZY})[0], 0)
        code, output = self.run_on({"all": "run"}, {"all": GOOD + LAZY}, environment={"CI": "true"})
        self.assertEqual(code, 1)
        self.assertIn("skipped: Thing.Waits: why", output)

    def test_a_name_without_a_reason_or_a_test_is_named(self):
        self.assertEqual(self.run_on({"all": "run"}, {"all": GOOD}, "Thing.Away  it cannot\nUtf8/Thing.Away/0  nor this\n")[0], 0)
        self.assertIn("no reason: Thing.Away", self.run_on({"all": "run"}, {"all": GOOD}, "Thing.Away\n")[1])
        code, output = self.run_on({"all": "run"}, {"all": GOOD}, "Thing.Gone  a reason\n")
        self.assertEqual(code, 1)
        self.assertIn("no such test: Thing.Gone", output)

if __name__ == "__main__":
    unittest.main()
