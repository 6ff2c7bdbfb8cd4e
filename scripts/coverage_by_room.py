#!/usr/bin/env python3
"""Prints line and branch coverage by room, and the files below the aim, from gcovr's JSON summary."""
import collections
import json
import sys

rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
files = json.load(open(sys.argv[1]))["files"]
for entry in files:
    counts = [entry["line_covered"], entry["line_total"], entry["branch_covered"], entry["branch_total"]]
    for room in (entry["filename"].split("/")[1], "all"):
        rooms[room] = [a + b for a, b in zip(rooms[room], counts)]


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


print(f"{'room':<12}{'lines':>9}{'branches':>10}")
for room, (lc, lt, bc, bt) in sorted(rooms.items(), key=lambda item: (item[0] == "all", item[0])):
    print(f"{room:<12}{percent(lc, lt):8.1f}%{percent(bc, bt):9.1f}%")
for entry in files:
    lines = percent(entry["line_covered"], entry["line_total"])
    branches = percent(entry["branch_covered"], entry["branch_total"])
    if lines < 98 or branches < 92:
        print(f"below the aim: {entry['filename']}: lines {lines:.1f} %, branches {branches:.1f} %")
