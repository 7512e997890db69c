"""What the build's options leave out is not asked for either."""

import subprocess
import tempfile
import unittest

from programs import ROOT, run

PARTS = ("SERVICE", "SIMULATOR", "CLIENT", "EXAMPLES", "BENCHES", "FUZZERS")
# The parts that are built, the packages that are not there, and targets that must be known.
BUILDS = [
    (["SERVICE"], ["GTest", "benchmark", "SQLite3", "CLI11", "nlohmann_json"],
     ["sanService", "mod_gsoap"]),
    (["EXAMPLES"], ["GTest", "OpenSSL", "ZLIB", "Python3"], ["listClusters"]),
    (["SIMULATOR"], ["GTest", "benchmark", "ZLIB"], ["sanSim", "simctl"]),
    (["CLIENT"], ["GTest", "benchmark", "SQLite3"], ["sanctl"]),
    (["BENCHES", "SERVICE"], ["GTest", "SQLite3"], ["stubCost", "barePlugin"]),
    (["FUZZERS", "SERVICE"], ["GTest", "benchmark"], ["soapRequest"]),
]


class BuildOptions(unittest.TestCase):
    def test_a_part_needs_only_its_own_packages(self):
        for parts, absent, targets in BUILDS:
            with self.subTest(parts), tempfile.TemporaryDirectory() as scratch:
                options = [f"-DSAN_BUILD_{part}={'ON' if part in parts else 'OFF'}"
                           for part in PARTS]
                options += [f"-DCMAKE_DISABLE_FIND_PACKAGE_{name}=ON" for name in absent]
                done = run("cmake", "-G", "Ninja", "-S", ROOT, "-B", scratch,
                           "-DBUILD_TESTING=OFF", *options)
                self.assertEqual(done.returncode, 0, done.stderr)
                known = subprocess.check_output(["ninja", "-C", scratch, "-t", "targets", "all"],
                                                text=True)
                for target in targets:
                    self.assertRegex(known, rf"(?m)^{target}: phony")
