#!/usr/bin/env python3
"""Generates the contract's code with soapcpp2 and adapts it.

The generator has no option for what the ADAPTATIONS do, so they edit its output. Each says how
often its text has to be there; anything else, as after a new release of the generator, fails the
build and leaves no output behind.

How to add one: a row in ADAPTATIONS with the reason above it.
"""
import argparse
import pathlib
import re
import subprocess
import sys

ENUMERATIONS = 17

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


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--soapcpp2", required=True)
    parser.add_argument("--imports", required=True, help="folder of the generator's own imports")
    parser.add_argument("--out", required=True, type=pathlib.Path)
    args = parser.parse_args()

    contract = pathlib.Path(__file__).resolve().parent
    args.out.mkdir(parents=True, exist_ok=True)
    for old in args.out.iterdir():
        old.unlink()
    common = ["-1", "-x", "-L", f"-d{args.out}", f"-I{contract}:{args.imports}"]
    try:
        # 150 serializers a file: two files of like size, which compile beside each other.
        run_generator([args.soapcpp2, *common, "-i", "-f150", "-qSanApi", "-pSanApi",
                       str(contract / "sanApi.h")])
        run_generator([args.soapcpp2, *common, "-S", "-w", "-penv", str(contract / "sanEnv.h")])
        for row in ADAPTATIONS:
            adapt(args.out, *row)
    except SystemExit:
        for written in args.out.iterdir():
            written.unlink()
        raise


if __name__ == "__main__":
    main()
