"""A third program builds against the API stub: installed, by CMake and by pkg-config, and as a part
of its own tree. Each one lists the array's clusters, which needs the classes that register
themselves."""

import os
import pathlib
import shlex
import tempfile
import unittest

from arraySimulator import ArraySimulator
from programs import BUILD, PRELOADED, ROOT, run

SANITIZE = [f"-fsanitize={os.environ['SAN_SANITIZE']}"] if os.environ.get("SAN_SANITIZE") else []
PROJECT = """cmake_minimum_required(VERSION 3.25)
project(third CXX)
{stub}
add_executable(third {source})
target_link_libraries(third san::apiStub)
"""
SEED = {"clusters": [{"id": "hcc-1", "name": "third", "key": "k1"}]}


class StubLibrary(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.prefix = self.scratch / "usr"

    def done(self, *command, **environment):
        done = run(*command, **environment)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def install(self):
        self.done("cmake", "--install", BUILD, "--component", "stub", "--prefix", self.prefix)
        return next(self.prefix.rglob("listClusters.cpp"))

    def build(self, stub, source, *options):
        folder = self.scratch / "third"
        folder.mkdir()
        (folder / "CMakeLists.txt").write_text(PROJECT.format(stub=stub, source=source))
        self.done("cmake", "-G", "Ninja", "-S", folder, "-B", folder / "build", *options)
        self.done("cmake", "--build", folder / "build")
        return folder / "build"

    def assert_lists_clusters(self, program):
        port = self.enterContext(ArraySimulator(seed_file=SEED)).port
        listed = self.done(program, **{**PRELOADED, "SAN_TEST_APIMGR_PORT": str(port)})
        self.assertEqual(listed, "success=1\nclusters=1\n101.1 third\n")

    def test_installed_and_found_by_cmake(self):
        source = self.install()
        built = self.build("find_package(sanApiStub 1.0 REQUIRED)", source,
                           f"-DCMAKE_PREFIX_PATH={self.prefix}",
                           f"-DCMAKE_CXX_FLAGS={' '.join(SANITIZE)}")
        self.assert_lists_clusters(built / "third")

    def test_installed_and_found_by_pkg_config(self):
        source = self.install()
        folder = next(self.prefix.rglob("sanApiStub.pc")).parent
        flags = self.done("pkg-config", f"--define-variable=prefix={self.prefix}", "--cflags",
                          "--libs", "sanApiStub", PKG_CONFIG_PATH=str(folder))
        program = self.scratch / "third"
        self.done("c++", "-std=c++20", *SANITIZE, "-o", program, source, *shlex.split(flags))
        self.assert_lists_clusters(program)

    def test_part_of_another_tree_with_its_examples(self):
        built = self.build(f'add_subdirectory("{ROOT}" san)', ROOT / "examples/listClusters.cpp",
                           "-DSAN_BUILD_EXAMPLES=ON")
        for program in (built / "third", built / "san/examples/listClusters"):
            self.assert_lists_clusters(program)
