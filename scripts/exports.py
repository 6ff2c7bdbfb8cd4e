#!/usr/bin/env python3
"""Compares the symbols that a built library exports with tests/exports.txt, the list of the 123. Of a .so it also shows
that it cannot throw: it takes nothing from the C++ runtime that allocates or throws, so that no exception can cross the C
interface. A .dll has the runtime inside, where nothing can be told from its imports; its sources are the same.

usage: exports.py LIBRARY [NM]      LIBRARY a .so or .dll; NM the nm or objdump of its platform
"""
import pathlib
import re
import subprocess
import sys

library = sys.argv[1]
tool = sys.argv[2] if len(sys.argv) > 2 else ("objdump" if library.endswith(".dll") else "nm")
wanted = set((pathlib.Path(__file__).resolve().parent.parent / "tests" / "exports.txt").read_text().split())

throws = []
if library.endswith(".dll"):
    text = subprocess.run([tool, "-p", library], check=True, capture_output=True, text=True).stdout
    table = text.split("[Ordinal/Name Pointer] Table", 1)[1]
    found = set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+)?(?:[0-9a-f]+\s+)?(\S+)\s*$", table, re.M))
else:
    text = subprocess.run([tool, "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    found = {line.split()[2] for line in text.splitlines() if len(line.split()) == 3}
    text = subprocess.run([tool, "-D", "--undefined-only", library], check=True, capture_output=True, text=True).stdout
    throws = re.findall(r"\b(_Zn\w+|_Zd\w+|_ZSt\w*throw\w*|__cxa_(?!finalize)\w+)", text)

for name in sorted(wanted - found):
    print(f"missing: {name}")
for name in sorted(found - wanted):
    print(f"not in the list: {name}")
for name in throws:
    print(f"from the C++ runtime: {name}")
print(f"{library}: {len(found & wanted)} of {len(wanted)} exports")
sys.exit(0 if found == wanted and not throws else 1)
