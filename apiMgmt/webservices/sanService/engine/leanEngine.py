#!/usr/bin/env python3
"""Makes the copy of the engine's archive in which leanEngine.cpp replaces functions.

The symbols of those functions become weak, so that the linker takes ours; nothing else of the
archive changes. What the replacements need of the engine's own stays reachable under a second
name. That is only right for the engine that the replacements were written against, so anything
else ends the build.
"""
import argparse
import hashlib
import pathlib
import subprocess
import sys
import tempfile

MEMBER = "libgsoapssl___la-stdsoap2_ssl_cpp.o"
# Of the machine code of that member: gSOAP 2.8.124-2 of Debian 12, amd64.
KNOWN = "eb746d218ebdc6d42ac2042ba720c326b040e323802c94b59871e2ef786f01f6"

# The symbol that becomes weak, the second name of what it stood for.
REPLACED = [
    ("soap_resolve", "engineResolve"),
    ("soap_free_temp", "engineFreeTemp"),
    ("soap_begin_recv", "engineBeginReceive"),
    ("soap_enter", "engineEnter"),
    ("soap_get", "engineGet"),
    ("soap_peek_element", "enginePeekElement"),
    ("soap_element_end_in", "engineEndElement"),
    ("soap_match_tag", "engineMatchTag"),
    ("soap_string_in", "engineStringIn"),
    ("soap_value", "engineValue"),
    ("_ZN4soapC1ERKS_", None),  # the copy constructor, under its two names
    ("_ZN4soapC2ERKS_", None),
]


def run(*command):
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE,
                          text=True).stdout


def code_digest(folder, tool):
    code = folder / "code"
    run(tool, "-O", "binary", "--only-section=.text", folder / MEMBER, code)
    return hashlib.sha256(code.read_bytes()).hexdigest()


def addresses(folder):
    rows = (line.split() for line in run("nm", "--defined-only", folder / MEMBER).splitlines())
    return {name: int(address, 16) for address, kind, name in rows if kind == "T"}


def make(archive, tool, out):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        run("ar", "x", "--output", folder, archive)
        members = sorted(folder.iterdir())
        if folder / MEMBER not in members or code_digest(folder, tool) != KNOWN:
            sys.exit(f"{archive} is not the engine that leanEngine.cpp was written against. "
                     "Compare its functions with those of this engine and enter the new digest in "
                     f"{__file__}, or configure with -DSAN_LEAN_ENGINE=OFF, which costs half a "
                     "Ping more.")
        known = addresses(folder)
        change = [f"--weaken-symbol={symbol}" for symbol, _ in REPLACED]
        change += [f"--add-symbol={second}=.text:{known[symbol]},function,global"
                   for symbol, second in REPLACED if second]
        run(tool, *change, folder / MEMBER)
        out.unlink(missing_ok=True)
        run("ar", "rcsD", out, *members)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--archive", required=True, type=pathlib.Path)
    parser.add_argument("--objcopy", required=True)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    arguments = parser.parse_args()
    make(arguments.archive, arguments.objcopy, arguments.out)


if __name__ == "__main__":
    main()
