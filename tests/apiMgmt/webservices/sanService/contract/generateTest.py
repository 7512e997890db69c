"""The build stops when the generator writes something that the adaptation does not expect."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT, SOAPCPP2, IMPORTS = sys.argv[1:]

# A generator that differs from the installed one by what a stream editor does to its output.
GENERATOR = """#!/bin/sh
"{soapcpp2}" "$@" || exit 1
for argument in "$@"; do case "$argument" in -d*) out=${{argument#-d}} ;; esac; done
{change}
"""

# change of the generator's output, what the message then says
CHANGES = {
    "as it is": ("", None),
    "a reader that refuses otherwise": (
        "sed -i 's/n < 0 || n > 20/n > 20/' $out/SanApiC_*.cpp", "expected 17 times"),
    "an enumeration more": (
        'sed -i "s/^enum ns1__SanType {/enum ns1__New {\\n};\\n&/" $out/SanApiStub.h',
        "expected 17 times in SanApiStub.h"),
    "a type of a new kind": (
        "sed -i 's/<choice/<any/; s/choice>/any>/' $out/*.wsdl", "unexpected {http://"),
    "an attribute of a new kind": (
        "sed -i 's/\"port\" type/\"port\" form=\"x\" type/' $out/*.wsdl", "unexpected {'form"),
    "an operation without documentation": (
        "sed -i 's/<operation name=\"Ping\"/<operation name=\"New\"/' $out/*.wsdl",
        "sanOperations.h: write a line /// above class ns1__New"),
    "documentation of nothing": (
        "sed -i 's/name=\"scsiInfo\"/name=\"renamed\"/' $out/*.wsdl", "no place for"),
    "another default": (
        """sed -i 's/version != "2.3"/version != "2.4"/' $out/SanApiC_*.cpp""",
        "expected 2 times"),
    "a warning": ("echo '*WARNING*: something'", "*WARNING*: something"),
    "no output": ("exit 1", ""),
}


class Generate(unittest.TestCase):
    def test_it_stops_and_leaves_nothing_behind(self):
        for name, (change, message) in CHANGES.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                done, left = self.generate(pathlib.Path(folder), change)
                self.assertEqual(done.returncode == 0, message is None, done.stderr)
                self.assertIn(message or "", done.stderr)
                self.assertEqual("sanApi.wsdl" in left, message is None)

    @staticmethod
    def generate(folder, change):
        generator = folder / "generator"
        generator.write_text(GENERATOR.format(soapcpp2=SOAPCPP2, change=change))
        generator.chmod(0o755)
        out = folder / "out"
        done = subprocess.run([sys.executable, SCRIPT, "--soapcpp2", generator, "--imports",
                               IMPORTS, "--out", out], capture_output=True, text=True,
                              check=False)
        return done, {path.name for path in out.glob("*")}


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
