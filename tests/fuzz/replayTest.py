"""What a fuzz program makes of its command line: one that fuzzes nothing must not pass."""

import unittest

from programs import BUILD, ROOT, run

PROGRAM = BUILD / "fuzz" / "dateTime"
SEED = next((ROOT / "fuzz" / "corpus" / "dateTime").iterdir())

# The arguments, the status, and what is said.
COMMANDS = [
    ([SEED, "--runs", "3"], 0, "1 files, 3 mutated inputs"),
    ([], 64, "FILE-OR-DIRECTORY is required"),
    (["/nowhere/at/all"], 64, "/nowhere/at/all"),
    ([SEED, "--runs", "x"], 64, "--runs"),
    ([SEED, "-runs=3"], 64, "-runs=3"),
]


class Replay(unittest.TestCase):
    def test_takes_what_it_understands(self):
        for arguments, status, said in COMMANDS:
            with self.subTest(arguments):
                done = run(PROGRAM, *arguments)
                self.assertEqual(done.returncode, status)
                self.assertIn(said, done.stderr if status else done.stdout)
