#!/usr/bin/env python3
"""A cluster's whole life, as the command-line client runs it, against the simulated array."""

import json
import os
import subprocess
import unittest

from arraySimulator import ArraySimulator
from webServer import BUILD, WebServer

SANCTL = BUILD / "client" / "sanctl"


class LifecycleTest(unittest.TestCase):
    def sanctl(self, *arguments):
        environment = {**os.environ, "SANCTL_URL": self.url, "SANCTL_USER": "admin",
                       "SANCTL_PASSWORD": "marker-pass"}
        return subprocess.run([SANCTL, *arguments], env=environment, text=True, timeout=300,
                              capture_output=True, check=False)

    def setUp(self):
        server = WebServer(api_manager_port=self.enterContext(ArraySimulator()).port)
        self.addCleanup(server.stop)
        server.start()
        self.url = f"http://127.0.0.1:{server.port}/sanService"

    def test_one_life_twice_and_many_beside_each_other(self):
        for _ in range(2):
            done = self.sanctl("lifecycle", "--hcc-id", "集群 <1>")
            self.assertEqual(done.returncode, 0, done)
        done = self.sanctl("lifecycle", "--clusters", "40", "--parallel", "8", "--json")
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(json.loads(done.stdout)["failures"], {})

    def test_a_refused_join_leaves_the_other_cluster_alone(self):
        join = ["add-hcc-to-san", "--san-id", "array-1", "--hcc-id", "c1", "--hcc-key", "k1",
                "--address", "192.0.2.1:443"]
        leave = ["remove-hcc-from-san", "--san-id", "array-1", "--hcc-id", "c1"]
        self.assertEqual(self.sanctl(*join).returncode, 0)
        refused = self.sanctl("lifecycle", "--hcc-id", "c1")
        self.assertEqual(refused.returncode, 1, refused)
        self.assertEqual(self.sanctl(*leave).returncode, 0)
        unknown = self.sanctl(*leave)
        self.assertEqual(unknown.returncode, 1, unknown)
        self.assertIn('Cluster "c1" is not known', unknown.stderr)


if __name__ == "__main__":
    unittest.main()
