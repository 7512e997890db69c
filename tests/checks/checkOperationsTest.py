"""The check of an operation's places names each one that was forgotten."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "scripts/checkOperations.py"
sys.path.insert(0, str(SCRIPT.parent))
import checkOperations  # noqa: E402

FILES = {file for file, _, _ in checkOperations.PLACES + checkOperations.ARRAY_PLACES}
FILES |= {checkOperations.CONTRACT, *checkOperations.HANDLERS}


class CheckOperationsTest(unittest.TestCase):
    def test_each_forgotten_place_is_named_with_what_to_add(self):
        root = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for file in FILES:
            (root / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / file, root / file)
        with open(root / checkOperations.CONTRACT, "a", encoding="utf-8") as contract:
            contract.write("int __ns1__GetHcns(ns1__GetHcns* a, ns1__GetHcnsResponse* b);\n")
        done = subprocess.run([sys.executable, SCRIPT, root], capture_output=True, text=True,
                              check=False)
        self.assertEqual(done.returncode, 1)
        told = done.stdout.splitlines()
        self.assertEqual(len(told), len(checkOperations.PLACES + checkOperations.ARRAY_PLACES))
        for row, (file, _, _) in zip(told, checkOperations.PLACES + checkOperations.ARRAY_PLACES):
            self.assertIn(f"GetHcns is not in {file}; add: ", row)
            self.assertRegex(row, r"(?i)add: .*get\\?-?hcns")


if __name__ == "__main__":
    unittest.main()
