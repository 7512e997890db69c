"""Writes a row for each class of facts.txt, with its attributes, for accessorTest.cpp.

usage: accessorRows.py FACTS OUT
"""
import pathlib
import sys

FACTS, OUT = map(pathlib.Path, sys.argv[1:])
# Attributes that classes share are driven on a class that has them.
SHARED_BY = "APITarnServer"


def main():
    classes = []
    for line in FACTS.read_text(encoding="utf-8").splitlines():
        if line.startswith(" "):
            classes[-1][1].append(line.split("|")[0].strip())
        elif line and not line.startswith("#"):
            classes.append((line.split(), []))
    rows = []
    for (kind, name, *others), attributes in classes:
        listed = ", ".join(attributes)
        if attributes and kind == "method":
            rows.append(f"METHOD_ACCESSORS({name}, {others[0]}, {listed}),\n")
        elif attributes:
            owner = SHARED_BY if kind == "rows" else f"API{name}"
            rows.append(f'ACCESSORS("{kind} {name}", {owner}, {listed}),\n')
    OUT.write_text("".join(rows), encoding="utf-8")


main()
