#!/usr/bin/env python3
"""Generates the contract's code and its service description with soapcpp2, and adapts the code.

The generator has no option for what the ADAPTATIONS do, so they edit its output. Each says how
often its text has to be there; anything else, as after a new release of the generator, fails the
build and leaves no output behind.

How to add one: a row in ADAPTATIONS with the reason above it.
"""
import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from describeContract import describe

CONTRACT = pathlib.Path(__file__).resolve().parent
ENUMERATIONS = len(re.findall(r"^enum ", (CONTRACT / "sanEnums.h").read_text(), re.MULTILINE))

# files, pattern, replacement, how often it must be found
ADAPTATIONS = [
    # An attribute that equals its default is left out and an empty one written; clients read the
    # version of every reply, and an empty one says nothing.
    ("SanApiC_*.cpp",
     r'if \(\(\((_?ns\d__(?:HccApiXsd|SanApiWsdl))\*\)a\)->version != "2\.[13]"\)',
     r"if (!((\1*)a)->version.empty())", 2),
    # A number without a name is an error only for a strict reader.
    ("SanApiC_*.cpp",
     r"if \(soap_s2int\(soap, s, &n\) \|\| n < 0 \|\| n > (\d+)\)",
     r"if (soap_s2int(soap, s, &n) || ((soap->mode & SOAP_XML_STRICT) && (n < 0 || n > \1)))",
     ENUMERATIONS),
    # So an enumeration holds every int; without a type of its own that would be undefined.
    ("SanApiStub.h", r"^enum (ns1__\w+) \{$", r"enum \1 : int {", ENUMERATIONS),
    # The skeleton's slots are part of the interface and know no secure transport: that is the
    # web server's business.
    ("SanApiSanApiPortBindingService.h", r"virtual int (ssl_run|ssl_accept)\(", r"int \1(", 2),
    # The time of the generation: without it the same definitions give the same files.
    ("*C*.cpp", r"^SOAP_SOURCE_STAMP\(.*\)$", "", 4),
]


def run_generator(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False)
    if done.returncode or "WARNING" in done.stdout:
        sys.exit(f"{' '.join(command)}\n{done.stdout}")


def adapt(out, files, pattern, replacement, expected):
    found = 0
    for path in sorted(out.glob(files)):
        text, count = re.subn(pattern, replacement, path.read_text(), flags=re.MULTILINE)
        if count:
            path.write_text(text)
        found += count
    if found != expected:
        sys.exit(f"The generated code has changed: expected {expected} times in {files}, "
                 f"found {found} times:\n    {pattern}")


def operation_list(definitions):
    """A header with every served operation once, for what has to do something for each."""
    names = re.findall(r"^int __ns1__(\w+)\(", definitions, re.MULTILINE)
    rows = " \\\n".join(f"    OPERATION({name})" for name in names)
    return f"#pragma once\n#define SAN_API_OPERATIONS(OPERATION) \\\n{rows}\n"


def generate(soapcpp2, imports, out):
    common = ["-1", "-x", "-L", f"-d{out}", f"-I{CONTRACT}:{imports}"]
    # 150 serializers a file: two files of like size, which compile beside each other.
    run_generator([soapcpp2, *common, "-i", "-f150", "-qSanApi", "-pSanApi",
                   str(CONTRACT / "sanApi.h")])
    run_generator([soapcpp2, *common, "-S", "-w", "-penv", str(CONTRACT / "sanEnv.h")])
    for row in ADAPTATIONS:
        adapt(out, *row)
    (out / "SanApiOperations.h").write_text(
        operation_list((CONTRACT / "sanOperations.h").read_text()))
    definitions = re.findall(r'^#import "(san\w+\.h)"', (CONTRACT / "sanApi.h").read_text(), re.M)
    (out / "sanApi.wsdl").write_text(
        describe(out / "SanApiPortBinding.wsdl", [CONTRACT / name for name in definitions]))


def take_over(made, out):
    """Writes what differs from the last time only: what stayed the same is not compiled again."""
    out.mkdir(parents=True, exist_ok=True)
    for path in made.iterdir():
        old = out / path.name
        if not old.exists() or old.read_bytes() != path.read_bytes():
            shutil.copyfile(path, old)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--soapcpp2", required=True)
    parser.add_argument("--imports", required=True, help="folder of the generator's own imports")
    parser.add_argument("--out", required=True, type=pathlib.Path)
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        made = pathlib.Path(folder)
        generate(args.soapcpp2, args.imports, made)
        take_over(made, args.out)


if __name__ == "__main__":
    main()
