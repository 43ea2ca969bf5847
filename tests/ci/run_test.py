"""How .ci/run treats steps that pass, fail, hang or look at nothing: run_test.py REPOSITORY."""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
STEPS = """
step good 1 3 things 1 'other things'
step_good() { counted 2 things; counted 2 things; counted 1 'other things'; }
step nothing 1 1 things
step_nothing() { echo looked at nothing; }
step few 1 5 things
step_few() { counted 4 things; }
step fails 1 1 things
step_fails() { counted 1 things; false; echo not reached; }
step hangs 0.02 1 things
step_hangs() { counted 1 things; sleep 1000 & sleep 1000; }
step waits 5 1 things
step_waits() { echo started >&2; sleep 1000; }
"""


def command(steps, *arguments):
    return dict(
        args=[REPOSITORY / ".ci/run", *arguments], env=dict(os.environ, CI_STEPS=str(steps)), text=True
    )


def table(output):
    """{step: result} of the table at the end."""
    lines = output[output.index("\nstep  ") :].splitlines()[2:]
    rows = [re.match(r"(\S+) .*?(passed|FAILED[^;]*|interrupted|not run)", line) for line in lines]
    return {row.group(1): row.group(2) for row in rows if row}


class RunTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.steps = pathlib.Path(cls.folder.name) / "steps"
        cls.steps.write_text(STEPS)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def run_steps(self, *arguments):
        done = subprocess.run(**command(self.steps, *arguments), capture_output=True)
        return done.returncode, done.stdout, done.stderr

    def test_a_step_passes_with_its_counts(self):
        code, out, _ = self.run_steps("good")
        self.assertEqual(code, 0)
        self.assertEqual(table(out), {"good": "passed"})
        self.assertIn("4 things (at least 3), 1 other things (at least 1)", out)

    def test_every_kind_of_failure_is_named(self):
        code, out, _ = self.run_steps("--keep-going", "nothing", "few", "fails", "hangs", "good")
        self.assertEqual(code, 1)
        self.assertEqual(
            table(out),
            {
                "nothing": "FAILED: counted too little",
                "few": "FAILED: counted too little",
                "fails": "FAILED: exit code 1",
                "hangs": "FAILED: not finished after 0.02 min",
                "good": "passed",
            },
        )
        self.assertIn("failed: nothing few fails hangs", out)
        self.assertNotIn("not reached", out)

    def test_stops_at_the_first_failure_with_a_table(self):
        code, out, _ = self.run_steps("good", "fails", "few")
        self.assertEqual(code, 1)
        self.assertEqual(table(out), {"good": "passed", "fails": "FAILED: exit code 1", "few": "not run"})

    def test_refuses_a_step_that_does_not_exist(self):
        code, _, errors = self.run_steps("good", "unheard-of")
        self.assertEqual(code, 2)
        self.assertIn("there is no step unheard-of", errors)

    def test_an_interrupt_ends_the_step(self):
        process = subprocess.Popen(
            **command(self.steps, "waits"), stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True
        )
        self.assertEqual(process.stderr.readline(), "started\n")
        process.send_signal(signal.SIGTERM)
        out, _ = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130)
        self.assertEqual(table(out), {"waits": "interrupted"})

    def test_the_steps_of_the_project_have_limits_and_floors(self):
        done = subprocess.run([REPOSITORY / ".ci/run", "--list"], check=True, capture_output=True, text=True)
        lines = done.stdout.splitlines()
        self.assertGreaterEqual(len(lines), 10)
        for line in lines:
            self.assertRegex(line, r"^[\w-]+ +[1-9]\d* min  at least [1-9]\d* \w")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
