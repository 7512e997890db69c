#!/usr/bin/env python3
"""The plug-in exports what it is said to export, and nothing else.

usage: exportsTest.py PLUGIN FACTS
"""
import pathlib
import re
import subprocess
import sys

ENTRY = """apache_init_soap_interface apache_default_soap_init apache_soap_soap_destroy
    apache_default_soap_end apache_default_soap_done apache_default_soap_register_plugin_arg
    apache_default_soap_lookup_plugin"""
DATA = "namespaces logLevelMask includeHeader gNullPointerMsg"


def expected(facts):
    names = set((ENTRY + " " + DATA).split())
    methods = re.findall(r"^method (\w+) (\w+)", pathlib.Path(facts).read_text(), re.MULTILINE)
    assert methods
    return names | {f"apiAPI{owner}{method}Method" for owner, method in methods}


def exported(plugin):
    lines = subprocess.run(["nm", "-D", "-C", "--defined-only", plugin], check=True, text=True,
                           capture_output=True).stdout.splitlines()
    return {line.split(" ", 2)[2] for line in lines}


def main():
    found, wanted = exported(sys.argv[1]), expected(sys.argv[2])
    for name in sorted(found ^ wanted):
        print(name, "is exported, and should not be" if name in found else "is not exported")
    return 1 if found != wanted else 0


sys.exit(main())
