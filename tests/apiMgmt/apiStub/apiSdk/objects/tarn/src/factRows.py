"""Writes the rows of facts.txt as C++: factRows.inc for facts.cpp, and accessorRows.inc for
accessorTest.cpp, one for each class with attributes.

usage: factRows.py FACTS OUT_FOLDER
"""
import json
import pathlib
import sys

FACTS, OUT = map(pathlib.Path, sys.argv[1:])
KEYS = ("then", "after", "async", "privilege", "requires")
# Attributes that classes share are driven on a class that has them.
SHARED_BY = "APITarnServer"


def quoted(texts):
    return "{" + ", ".join(map(json.dumps, texts)) + "}"


class Fact:
    def __init__(self, line):
        self.words, self.attributes, key = {"": []}, [], ""
        for word in line.split():
            if word in KEYS:
                key = word
                self.words[key] = []
            elif word != "-":
                self.words[key].append(word)
        self.names = self.words.pop("")

    def listed(self, facts):
        """The rows of its attribute list: its own and its base's."""
        def base(where):
            return [row for other in facts if other.names[1:] == self.words.get(where)
                    for row in other.listed(facts)]
        own = [row for _, row, listed in self.attributes if listed == "true"]
        return base("after") + own + base("then")

    def row(self, facts):
        kind, owner, method = (*self.names, "")[:3]
        words = ", ".join(f"{{{json.dumps(key)}, {quoted(of)}}}" for key, of in self.words.items())
        attributes = ", ".join(f"{{{json.dumps(name)}, {json.dumps(row)}, {listed}}}"
                               for name, row, listed in self.attributes)
        return (f'{{"{" ".join(self.names)}", "{kind}", "{owner}", "{method}", {{{words}}}, '
                f"{{{attributes}}}, {quoted(self.listed(facts))}}},\n")

    def accessors(self):
        listed = ", ".join(name for name, _, _ in self.attributes)
        if listed and self.names[0] == "method":
            return f"METHOD_ACCESSORS({', '.join(self.names[1:])}, {listed}),\n"
        owner = SHARED_BY if self.names[0] == "rows" else f"API{self.names[1]}"
        return listed and f'ACCESSORS("{" ".join(self.names)}", {owner}, {listed}),\n'


def main():
    facts = []
    for line in FACTS.read_text(encoding="utf-8").splitlines():
        if line.startswith(" "):
            columns = [column.strip() for column in line.split("|")]
            row = "".join(column + "|" for column in (columns + [""] * 7)[:7])
            facts[-1].attributes.append((columns[0], row, "false" if columns[7:] else "true"))
        elif line and not line.startswith("#"):
            facts.append(Fact(line))
    (OUT / "factRows.inc").write_text("".join(fact.row(facts) for fact in facts), encoding="utf-8")
    (OUT / "accessorRows.inc").write_text("".join(fact.accessors() for fact in facts),
                                          encoding="utf-8")


main()
