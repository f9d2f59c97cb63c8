#!/usr/bin/env python3
"""Tests of bench/instructions: InstructionsTest.py BUILD, a folder in which orvuql_bench was built.

Two rows are really counted, once. What the script says of them depends on the file of counts that it is given.
"""
import importlib.machinery
import importlib.util
import os
import re
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.dirname(os.path.abspath(__file__))
SCRIPT = os.path.join(FOLDER, "instructions")
ROWS = "W1,M2"
build = None


def load_script():
    sys.path.insert(0, FOLDER)
    loader = importlib.machinery.SourceFileLoader("instructions", SCRIPT)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("instructions", loader))
    sys.dont_write_bytecode = True
    loader.exec_module(module)
    return module


instructions = load_script()


class Checks(unittest.TestCase):
    """The script as it is called, with files of counts made from what it counted itself."""

    @classmethod
    def setUpClass(cls):
        counter = instructions.Counter(build)
        cls.versions = counter.versions()
        cls.kinds = counter.kinds(ROWS.split(","))
        cls.counted = counter.count_all(cls.kinds)

    def check(self, rows=None, versions=None, options=("--check",)):
        """The exit status of a check against a file with these counts, and what was said."""
        rows = self.counted if rows is None else rows
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "counts.txt")
            instructions.write_counts(path, self.versions if versions is None else versions, rows,
                                      {row: self.kinds.get(row, "evaluate") for row in rows})
            done = subprocess.run([sys.executable, SCRIPT, "--build", build, "--counts", path, "--rows", ROWS,
                                   *options], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        return done.returncode, done.stdout

    def test_the_same_counts_pass(self):
        status, said = self.check()
        self.assertEqual(status, 0, said)
        self.assertIn("None has grown", said)
        self.assertNotIn("NOTHING WAS COMPARED", said)
        self.assertEqual(len(re.findall(r"\+0\.0 %", said)), 2, said)  # counts are exact: nothing varies

    def test_growth_fails_and_names_the_row(self):
        for row, factor in (("W1", 0.96), ("M2", 0.5)):
            status, said = self.check(dict(self.counted, **{row: self.counted[row] * factor}))
            self.assertEqual(status, 1, said)
            self.assertIn(row + " has grown by ", said)
            self.assertNotIn("None has grown", said)

    def test_little_growth_passes(self):
        status, said = self.check({row: figure / 1.02 for row, figure in self.counted.items()})
        self.assertEqual(status, 0, said)

    def test_less_passes_and_is_said(self):
        status, said = self.check({row: figure * 1.5 for row, figure in self.counted.items()})
        self.assertEqual(status, 0, said)
        self.assertIn("Less is needed for W1, M2", said)

    def test_other_versions_are_not_compared_and_that_is_said(self):
        for name in self.versions:
            other = dict(self.versions, **{name: "another 1.0"})
            smaller = {row: 1.0 for row in self.counted}
            status, said = self.check(smaller, other)
            self.assertEqual(status, 0, said)
            self.assertRegex(said, r"^NOTHING WAS COMPARED: .*%s: another 1\.0" % name)
            self.assertRegex(self.check(smaller, other, ["--versions"])[1], r"^NOTHING WAS COMPARED: ")
        self.assertEqual(self.check(options=["--versions"]), (0, ""))

    def test_a_row_that_the_file_lacks_fails(self):
        for versions in (self.versions, dict(self.versions, compiler="another 1.0")):
            status, said = self.check({"W1": self.counted["W1"]}, versions)
            self.assertEqual(status, 1, said)
            self.assertIn("M2 is not in the file of counts", said)
            self.assertNotIn("NOTHING WAS COMPARED", said)  # by which a test that is skipped is known

    def test_an_update_writes_what_a_check_accepts(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "counts.txt")
            instructions.write_counts(path, self.versions, self.counted, self.kinds)
            self.assertEqual(instructions.read_counts(path),
                             (self.versions, {row: round(figure, 1) for row, figure in self.counted.items()}))


class Faults(unittest.TestCase):
    def test_a_row_that_is_only_in_the_file_is_a_fault(self):
        self.assertEqual(instructions.faults({"W1": 10, "W0": 10}, {"W1": "evaluate"}, {"W1": 10}),
                         ["W0 is in the file of counts, but there is no such row"])

    def test_the_limit_itself_passes(self):
        kinds = {"W1": "evaluate"}
        self.assertEqual(instructions.faults({"W1": 1000}, kinds, {"W1": 1030}), [])
        self.assertEqual(instructions.faults({"W1": 1000}, kinds, {"W1": 1031}),
                         ["W1 has grown by 3.1 %, from 1000 to 1031 instructions"])


class Profiles(unittest.TestCase):
    PROFILE = """\
positions: line
events: Ir

ob=(1) /usr/bin/program
fl=(1) ???
fn=(1) main
0 5
cob=(2) /usr/lib/libOrvUQL.so.0.1
cfn=(2) Evaluate
calls=3 0
0 900
0 7

ob=(2)
fn=(2)
0 11
+1 13
cob=(3) /usr/lib/libc.so.6
cfn=(3) malloc
calls=1 0
* 400
-1 17

ob=(3)
fn=(3)
0 400
"""

    def test_only_the_library_itself_counts(self):
        self.assertEqual(instructions.instructions_inside(self.PROFILE.splitlines(True), "libOrvUQL.so"), 11 + 13 + 17)

    def test_a_program_without_the_library_is_an_error(self):
        with self.assertRaises(SystemExit):
            instructions.instructions_inside(self.PROFILE.splitlines(True), "libOther.so")


if __name__ == "__main__":
    build = os.path.abspath(sys.argv.pop(1))
    unittest.main()
