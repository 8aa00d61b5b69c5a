#!/usr/bin/env python3
"""Holds tools/sum_up_tests against small test records."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "sum_up_tests"

PASSED = '<testcase name="passed" status="run"/>'
FAILED = '<testcase name="broken" status="fail"><failure message=""/></testcase>'
SKIPPED = '<testcase name="left out" status="notrun"><skipped message=""/></testcase>'


class SumUpTests(unittest.TestCase):
    def run_on(self, records, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            for name, cases in records.items():
                Path(folder, name + ".xml").write_text("<testsuite>" + "".join(cases) + "</testsuite>")
            done = subprocess.run([sys.executable, str(TOOL), *arguments, folder],
                                  capture_output=True, text=True)
        return done.returncode, done.stdout.splitlines()

    def test_last_line_is_the_sum_over_all_runs(self):
        code, lines = self.run_on({"dev": [PASSED, PASSED], "asan": [PASSED]})
        self.assertEqual((code, lines[-1]), (0, "3 passed, 0 failed"))

    def test_failure_is_named_and_fails_the_whole(self):
        code, lines = self.run_on({"dev": [PASSED, FAILED]})
        self.assertEqual((code, lines[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("dev: failed: broken", lines)

    def test_skipped_test_is_named_and_counted_apart(self):
        code, lines = self.run_on({"dev": [PASSED, SKIPPED], "asan": [SKIPPED]})
        self.assertEqual((code, lines[-1]), (0, "1 passed, 0 failed, 2 skipped"))
        self.assertIn("dev: skipped: left out", lines)

    def test_stage_that_was_not_built_is_a_failure(self):
        code, lines = self.run_on({"dev": [PASSED]}, "--broken", "1")
        self.assertEqual((code, lines[-1]), (1, "1 passed, 1 failed"))

    def test_empty_record_is_no_success(self):
        code, lines = self.run_on({"dev": []})
        self.assertEqual((code, lines[-1]), (1, "0 passed, 0 failed"))


if __name__ == "__main__":
    unittest.main()
