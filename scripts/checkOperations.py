#!/usr/bin/env python3
"""Checks that every operation that the contract serves stands in every place that it needs.

usage: checkOperations.py [ROOT]        (default: the repository that holds this script)

Prints a line for each place that was forgotten, with the file to edit and what to add, and ends
with status 1 when there is one. docs/addingOperations.md tells how to add an operation.
"""
import re
import sys
from pathlib import Path

CONTRACT = "apiMgmt/webservices/sanService/contract/sanOperations.h"
HANDLERS = ["apiMgmt/webservices/sanService/sanServiceMembership.cpp",
            "apiMgmt/webservices/sanService/sanServiceVolumes.cpp"]
SDK = "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache"

# The file, what must stand in it, what to add. {name} is AddServer, {lower} addServer, {command}
# add-server; {method} is the method of the management API that the handler calls.
PLACES = [
    (HANDLERS[1], r"\bSANService::{name}\(",
     "int SANService::{name}(SanApi::ns1__{name}* request, SanApi::ns1__{name}Response* response) "
     "{{ return ServeOperation(ServiceLog::k{name}, request, response, [&] {{ ... }}); }}"),
    ("apiMgmt/webservices/sanService/serviceLog.h", r'"Serving {name} request"',
     'inline constexpr FixedEntry k{name}{{{{SimpleLogger::LOGWarning, "{name}", LINE}}, '
     '"Serving {name} request"}};'),
    ("docs/logging.md", r"\| `Serving {name} request` \|",
     "| warning | `{name}` | LINE | `Serving {name} request` |"),
    ("client/commandLine/operations.cpp", r'row\("{name}",',
     'row("{name}", "What it does", &Proxy::{name}),'),
    ("client/commandLine/operations.cpp", r"declareFields\(FieldOptions&[^,]*, SanApi::ns1__{name}&",
     "void declareFields(FieldOptions& options, SanApi::ns1__{name}& message) {{ ... }}"),
    ("packaging/man/sanctl.1", r"^\.BR? .*\b{roff}\b", ".TP\\n.B {roff}\\nWhat it does: ..."),
]
# Of the operations that call the array.
ARRAY_PLACES = [
    (SDK + ".h", r"API_METHOD\(TarnHostCache, {method},",
     "class APITarnHostCache::APITarnHostCache{method}Method : public BASEApiMethod {{ "
     "API_METHOD(TarnHostCache, {method}, true, Admin); ... }};"),
    (SDK + ".cpp", r"API_REGISTER_METHOD\(TarnHostCache, {method}\);",
     "API_REGISTER_METHOD(TarnHostCache, {method});"),
    ("tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.txt", r"^method TarnHostCache {method} ",
     "method TarnHostCache {method} async true privilege 1 requires HccId"),
    ("sim/protocol/hostCacheCommands.cpp", r'Command{{kHostCache, +"{method}",',
     'Command{{kHostCache, "{method}", false, {{"HccId"}}, {lower}}},'),
    ("docs/simulator.md", r"^\|.*`{method}`", "| `{method}` | `HccId` | What it does. | When |"),
    ("tests/service/operations.py", r'Operation\(\s*"{name}",',
     'Operation("{name}", "hccId=c1 ...", "HccId=c1 ..."),'),
]


def words_of(name, handlers):
    """The words of the places. The method is None for an operation that is refused at once."""
    command = re.sub(r"(?<!^)([A-Z])", r"-\1", name).lower()
    words = {"name": name, "command": command, "roff": command.replace("-", r"\-"),
             "lower": name[0].lower() + name[1:], "method": name}
    handler = re.search(rf"^int SANService::{name}\(.*?^}}", handlers, re.MULTILINE | re.DOTALL)
    if handler:
        called = re.search(r"APITarnHostCache::APITarnHostCache(\w+)Method", handler[0])
        words["method"] = called[1] if called else None
    return words


def forgotten_places(root):
    def text_of(file):
        return "".join((root / each).read_text(encoding="utf-8")
                       for each in (HANDLERS if file in HANDLERS else [file]))

    for name in re.findall(r"^int __ns1__(\w+)\(", text_of(CONTRACT), re.MULTILINE):
        words = words_of(name, text_of(HANDLERS[0]))
        patterns = {key: re.escape(value or "") for key, value in words.items()}
        for file, pattern, line in PLACES + (ARRAY_PLACES if words["method"] else []):
            if not re.search(pattern.format(**patterns), text_of(file), re.MULTILINE):
                yield f"{name} is not in {file}; add: {line.format(**words)}"


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    forgotten = list(forgotten_places(root))
    for place in forgotten:
        print(place)
    return 1 if forgotten else 0


if __name__ == "__main__":
    sys.exit(main())
