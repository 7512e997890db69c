"""The examples of docs/sandboxInTests.md, as they stand there, with a cluster that behaves and
with one that does not."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from arraySimulator import ArraySimulator
from programs import ROOT, SIMCTL

BLOCK = re.compile(r"^```(?:python|java|sh)\n(?:#|//) (\S+)\n(.*?)^```$", re.M | re.S)
JUNIT = "/usr/share/java/junit4.jar:/usr/share/java/hamcrest-core.jar"
# What a cluster does whose first answer is lost: one repeats the call, one another call.
CLUSTER = """
import commandTest
for changes in ({}, %s):
    try:
        commandTest.call(PORT, "AddHccToSan", **changes)
    except ConnectionResetError:
        pass
"""


class ExamplesTest(unittest.TestCase):
    def setUp(self):
        self.simulator = self.enterContext(ArraySimulator("--web", "0"))
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        blocks = BLOCK.findall((ROOT / "docs/sandboxInTests.md").read_text(encoding="utf-8"))
        for name, text in blocks:
            (self.folder / name).write_text(text, encoding="utf-8")
        self.assertEqual(len(blocks), 5)

    def judge(self, *command):
        """Runs the example with both clusters; only the first may pass."""
        for changes, passes in (("{}", True), ("{'HccName': 'other'}", False)):
            cluster = self.folder / "cluster.py"
            cluster.write_text(f"PORT = {self.simulator.port}\n" + CLUSTER % changes,
                               encoding="utf-8")
            ended = subprocess.run(
                command, cwd=self.folder, capture_output=True, encoding="utf-8", check=False,
                timeout=300,
                env={**os.environ, "SANSIM_URL": f"http://127.0.0.1:{self.simulator.web_port}",
                     "PATH": f"{SIMCTL.parent}:{os.environ['PATH']}",
                     "CLUSTER": f"{sys.executable} {cluster}"})
            self.assertEqual(ended.returncode == 0, passes, ended.stdout + ended.stderr)
            self.assertEqual("repeatIsSameCall" in ended.stdout + ended.stderr and not passes,
                             not passes, ended.stdout + ended.stderr)

    def test_pytest(self):
        self.judge("/usr/bin/python3", "-B", "-m", "pytest", "-p", "no:cacheprovider")

    def test_junit(self):
        subprocess.run(["javac", "-cp", JUNIT, "ArraySandbox.java", "ClusterTest.java"],
                       cwd=self.folder, check=True)
        self.judge("java", "-cp", f"{JUNIT}:.", "org.junit.runner.JUnitCore", "ClusterTest")

    def test_shell(self):
        self.judge("sh", "cluster.sh")
        self.assertIn("<failure", (self.folder / "verdict.xml").read_text(encoding="utf-8"))
