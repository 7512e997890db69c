"""The include check finds what it is there for, in small trees made for it."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = os.environ["CHECK_INCLUDES"]
BASE = "apiMgmt/apiStub/base/"

# What the tree is about, its files with what they include, and what the check must say.
TREES = [
    ("downward", {BASE + "filters/a.h": ["apiMgmt/common/utils/stringUtil.h"]}, None),
    ("upward", {BASE + "filters/a.h": ["apiMgmt/apiStub/apiSdk/b.h"]}, "base must not use apiSdk"),
    ("error types are below the IPC client",
     {"apiMgmt/common/ipc/a.cpp": [BASE + "methodReturns/apiSocketError.h"]}, None),
    ("the rest of their folder is not",
     {"apiMgmt/common/ipc/a.cpp": [BASE + "methodReturns/apiApiMethodReturn.h"]},
     "ipc must not use base"),
    ("the client knows the contract",
     {"client/call/a.h": ["apiMgmt/webservices/sanService/contract/sanContract.h"]}, None),
    ("the client knows nothing else of the service",
     {"client/call/a.h": ["apiMgmt/webservices/sanService/sanService.h"]},
     "clientCall must not use service"),
    ("rooms of the client build on each other one way",
     {"client/call/a.h": ["client/report/report.h"]}, "clientCall must not use clientReport"),
    ("cycle over three headers",
     {BASE + "a.h": [BASE + "b.h"], BASE + "b.h": [BASE + "c.h"], BASE + "c.h": [BASE + "a.h"]},
     f"include cycle: {BASE}a.h -> {BASE}b.h -> {BASE}c.h -> {BASE}a.h"),
    ("cycle by bare names", {"host/a.h": ["b.h"], "host/b.h": ["a.h"]}, "include cycle: host/a.h"),
]


class CheckIncludes(unittest.TestCase):
    def test_trees(self):
        for about, files, complaint in TREES:
            with self.subTest(about), tempfile.TemporaryDirectory() as root:
                for name, includes in files.items():
                    path = Path(root, name)
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text("".join(f'#include "{i}"\n' for i in includes))
                run = subprocess.run([sys.executable, CHECK, root], capture_output=True, text=True)
                self.assertEqual(run.returncode, 0 if complaint is None else 1, run.stdout)
                self.assertIn(complaint or "one way", run.stdout + run.stderr)


if __name__ == "__main__":
    unittest.main()
