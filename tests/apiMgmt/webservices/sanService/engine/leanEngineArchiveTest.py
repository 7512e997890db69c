"""The build stops for an engine that the replaced functions were not written against."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT, OBJCOPY, OTHER_ARCHIVE = sys.argv[1:]


class LeanEngineArchive(unittest.TestCase):
    def test_another_engine_ends_the_build(self):
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder) / "out.a"
            done = subprocess.run(
                [sys.executable, SCRIPT, "--archive", OTHER_ARCHIVE, "--objcopy", OBJCOPY, "--out",
                 out], capture_output=True, text=True, check=False)
            self.assertEqual((done.returncode, out.exists()), (1, False))
            self.assertIn("-DSAN_LEAN_ENGINE=OFF", done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
