#!/usr/bin/env python3
"""Checks that includes flow one way: no folder includes what it may not use, and no headers
include each other in a circle.

usage: checkIncludes.py [ROOT]        (default: the repository that holds this script)

Prints one line for each fault and ends with status 1 when there is one.
"""
import re
import sys
from pathlib import Path

# Room: its files, and the rooms whose files they may include besides their own. A file belongs to
# the first room that matches. To add a folder, add a row above every wider one.
ERRORS = r"apiMgmt/apiStub/base/methodReturns/" \
         r"(errorStateEnum|generalError|apiMethodError|apiSocketError|tarnResponseStatus)\."
STUB = ["text", "utils", "proto", "errors", "ipc", "xmlParser"]
SERVICE = STUB + ["base", "apiSdk", "contract", "hostInterface"]
CALLS = ["text", "contract"]
SIM_ARRAY = ["text", "simText", "simArray", "simProtocol", "simWire", "simFaults", "simExchanges",
             "simVerify"]
ANYTHING = None
ROOMS = [
    ("text",          r"apiMgmt/common/text/",           []),
    ("utils",         r"apiMgmt/common/utils/",          ["text"]),
    ("proto",         r"apiMgmt/proto/",                 []),
    ("errors",        ERRORS,                            ["text", "utils"]),
    ("ipc",           r"apiMgmt/common/ipc/",            ["text", "utils", "proto", "errors"]),
    ("xmlParser",     r"apiMgmt/common/xmlParser/",      ["text", "utils"]),
    ("base",          r"apiMgmt/apiStub/base/",          STUB),
    ("apiSdk",        r"apiMgmt/apiStub/apiSdk/",        STUB + ["base"]),
    ("contract",      r"apiMgmt/webservices/sanService/contract/", ["text"]),
    ("engine",        r"apiMgmt/webservices/sanService/engine/", []),
    ("service",       r"apiMgmt/webservices/sanService/", SERVICE),
    ("hostInterface", r"host/include/",                  []),
    ("hostPlugin",    r"host/(soapPlugin|serveGuard)\.", ["hostInterface"]),
    ("host",          r"host/",                          ["hostInterface", "hostPlugin"]),
    ("simText",      r"sim/text/",        ["text"]),
    ("simArray",     r"sim/array/",       ["simText"]),
    ("simProtocol",  r"sim/protocol/",    ["proto", "xmlParser", "simText", "simArray"]),
    ("simWire",      r"sim/wire/",        ["ipc"]),
    ("simFaults",    r"sim/faults/",      ["proto", "ipc", "simText", "simProtocol", "simWire"]),
    ("simExchanges", r"sim/exchanges/",   ["text", "simText"]),
    ("simVerify",    r"sim/verify/",      ["simText", "simArray", "simProtocol", "simExchanges"]),
    ("simulator",    r"sim/simulator/",   ["proto", "ipc", *SIM_ARRAY]),
    ("simPage",      r"sim/page/",        []),
    ("simControl",   r"sim/control/",     [*SIM_ARRAY, "simulator", "simPage"]),
    ("simctl",       r"sim/simctl/",      ["ipc", *SIM_ARRAY, "simControl"]),
    ("sim",          r"sim/",             ["ipc", *SIM_ARRAY, "simulator", "simControl"]),
    ("verdict",       r"apiCheck/verdict\.",             []),
    ("apiCheck",      r"apiCheck/",                      STUB + ["base", "apiSdk", "verdict"]),
    ("pluginCheck",   r"pluginCheck/",                   ["text", "hostInterface", "hostPlugin",
                                                          "verdict"]),
    ("clientCall",        r"client/call/",               CALLS),
    ("clientReport",      r"client/report/",             CALLS + ["clientCall"]),
    ("clientLifecycle",   r"client/lifecycle/",          CALLS + ["clientCall", "clientReport"]),
    ("clientTop",         r"client/top/",                ["text", "clientReport"]),
    ("clientCommandLine", r"client/commandLine/",
     CALLS + ["clientCall", "clientReport", "clientLifecycle", "clientTop"]),
    ("client",            r"client/",
     CALLS + ["clientCall", "clientReport", "clientLifecycle", "clientTop", "clientCommandLine"]),
    ("testbed",       r"testbed/",                       ["ipc", "base", "hostInterface"]),
    ("outside",       r"(tests|bench|fuzz|examples)/",   ANYTHING),
]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
SUFFIXES = {".h", ".hpp", ".c", ".cpp"}


def room_of(path):
    for name, pattern, allowed in ROOMS:
        if re.match(pattern, path):
            return name, allowed
    return None, ANYTHING


def sources(root):
    tops = {re.match(r"\(?([\w|]+)", pattern).group(1) for _, pattern, _ in ROOMS}
    for top in sorted({name for group in tops for name in group.split("|")}):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in SUFFIXES and path.is_file():
                yield path


def read_includes(root):
    """File -> the files that it includes, all as texts relative to the root."""
    includes = {}
    for path in sources(root):
        names = INCLUDE.findall(path.read_text(encoding="utf-8", errors="replace"))
        # A bare name is a neighbour's, or comes from the generator or a library.
        beside = [(path.parent / name).resolve() for name in names]
        includes[path.relative_to(root).as_posix()] = [
            near.relative_to(root).as_posix()
            if near.is_file() and near.is_relative_to(root) else name
            for near, name in zip(beside, names)]
    return includes


def upward_includes(includes):
    for source, targets in includes.items():
        own, allowed = room_of(source)
        for target in targets:
            room, _ = room_of(target)
            if allowed is not ANYTHING and room not in (None, own, *allowed):
                yield f"{source}: may not include {target} ({own} must not use {room})"


def cycles(includes):
    """One line for each circle of includes that a depth-first walk meets."""
    done, trail = set(), []

    def walk(file):
        if file in trail:
            yield "include cycle: " + " -> ".join(trail[trail.index(file):] + [file])
        elif file not in done:
            trail.append(file)
            for target in includes.get(file, []):
                yield from walk(target)
            done.add(trail.pop())

    for file in includes:
        yield from walk(file)


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent.parent).resolve()
    includes = read_includes(root)
    if not includes:
        sys.exit(f"no sources below {root}")
    faults = [*upward_includes(includes), *cycles(includes)]
    print("\n".join(faults) if faults else f"{len(includes)} files, includes flow one way")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
