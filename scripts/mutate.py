#!/usr/bin/env python3
"""Plants faults in a copy of the tree, one at a time, and shows that some test of the room finds each.

usage: mutate.py [--faults N] [--seed S] [ROOM...]

A fault is a changed constant, a flipped comparison, a swapped sign, a dropped guard. Sites are chosen by a seeded draw
over all places of a room where one can be planted. Prints a line a fault and a count a room; survivors are named, so
that each becomes a test or is explained in docs/testing.md.
"""
import argparse
import concurrent.futures
import pathlib
import random
import re
import shutil
import subprocess
import threading

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["port", "frame", "geometry", "store", "raster", "display", "edit", "surface", "shade", "render3d"]
WORKERS = 2
OPERATORS = [
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )<=(?= [\w\(\-])"), "<"),
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )>=(?= [\w\(\-])"), ">"),
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )<(?= [\w\(\-])"), "<="),
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )>(?= [\w\(\-])"), ">="),
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )==(?= [\w\(\-])"), "!="),
    ("flipped comparison", re.compile(r"(?<=[\w\)\]] )!=(?= [\w\(\-])"), "=="),
    ("swapped sign", re.compile(r"(?<=[\w\)\]] )\+(?= [\w\(])"), "-"),
    ("swapped sign", re.compile(r"(?<=[\w\)\]] )-(?= [\w\(])"), "+"),
    ("swapped connective", re.compile(r"&&"), "||"),
    ("swapped connective", re.compile(r"\|\|"), "&&"),
    ("changed constant", re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+)(?![\w.])"), lambda m: hex(int(m.group(1), 16) ^ 1)),
    ("changed constant", re.compile(r"(?<![\w.\[])([2-9]|[1-9]\d+)(?![\w.\]])"), lambda m: str(int(m.group(1)) + 1)),
    ("changed constant", re.compile(r"(?<![\w.])(\d+\.\d+)(?![\w.])"), lambda m: repr(float(m.group(1)) * 1.01 + 0.001)),
    ("dropped guard", re.compile(r"^(\s+)if \([^{]*\) (return[^;]*|continue|break);$"), lambda m: m.group(1) + ";"),
]
lock = threading.Lock()


def code_lines(text):
    """Lines of code with comments blanked out; preprocessor lines and assertions are left out."""
    text = re.sub(r"/\*.*?\*/", lambda m: re.sub(r"[^\n]", " ", m.group(0)), text, flags=re.S)
    for number, line in enumerate(text.split("\n")):
        stripped = line.strip()
        if stripped and not stripped.startswith(("#", "static_assert", "template", "namespace", "using")):
            if '"' not in line:
                yield number, line


def sites(room):
    found = []
    for path in sorted([*(ROOT / "src" / room).glob("*.cpp"), *(ROOT / "src" / room).glob("*.h")]):
        for number, line in code_lines(path.read_text()):
            for kind, pattern, replacement in OPERATORS:
                for match in pattern.finditer(line):
                    new = replacement(match) if callable(replacement) else replacement
                    found.append((path.relative_to(ROOT), number, match.start(), match.end(), kind, new))
    return found


def run(command, cwd, seconds):
    try:
        done = subprocess.run(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=seconds)
        return done.returncode
    except subprocess.TimeoutExpired:
        return -1


def make_copy(worker, rooms):
    copy = ROOT / "build" / "mutate" / str(worker)
    if copy.exists():
        shutil.rmtree(copy / "src")
    else:
        copy.mkdir(parents=True)
    for name in ["src", "include", "tests", "cmake", "scripts", "examples", "bench"]:
        # Times of now: an object with the last run's last fault in it would pass for newer than its source.
        shutil.copytree(ROOT / name, copy / name, dirs_exist_ok=True, copy_function=shutil.copy)
    for name in ["CMakeLists.txt", "CMakePresets.json"]:
        shutil.copy(ROOT / name, copy / name)
    configure = ["cmake", "--preset", "release", "-DZR32PATH_BENCH=OFF", "-DZR32PATH_EXAMPLES=OFF",
                 "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG"]
    targets = [f"test_{room}" for room in rooms]
    if run(configure, copy, 300) or run(["cmake", "--build", "--preset", "release", "--target", *targets], copy, 3000):
        raise SystemExit("mutate: the copy does not build")
    return copy


def plant(copy, room, site):
    """1 found, 0 survived, None when the fault does not compile."""
    path, number, start, end, kind, new = site
    target = copy / path
    original = target.read_text()
    lines = original.split("\n")
    lines[number] = lines[number][:start] + new + lines[number][end:]
    target.write_text("\n".join(lines))
    try:
        if run(["cmake", "--build", "--preset", "release", "-j", "1", "--target", f"test_{room}"], copy, 600):
            return None
        program = copy / "build" / "release" / "bin" / f"test_{room}"
        return 1 if run([str(program), "--gtest_brief=1", "--gtest_fail_fast"], copy, 300) else 0
    finally:
        target.write_text(original)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--faults", type=int, default=20)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("rooms", nargs="*", default=ROOMS)
    arguments = parser.parse_args()
    copies = [make_copy(worker, arguments.rooms) for worker in range(WORKERS)]
    survivors = 0
    for room in arguments.rooms:
        draw = sites(room)
        random.Random(f"{arguments.seed} {room}").shuffle(draw)
        tried = {"planted": 0, "found": 0}

        def work(copy):
            while True:
                with lock:
                    if tried["planted"] >= arguments.faults or not draw:
                        return
                    site = draw.pop()
                    tried["planted"] += 1
                result = plant(copy, room, site)
                path, number, start, end, kind, new = site
                with lock:
                    if result is None:
                        tried["planted"] -= 1
                        continue
                    tried["found"] += result
                    line = (ROOT / path).read_text().split("\n")[number]
                    verdict = "found   " if result else "SURVIVED"
                    print(f"{verdict} {path}:{number + 1} {kind}: {line[start:end].strip()} -> {new.strip()} | {line.strip()}",
                          flush=True)

        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            list(pool.map(work, copies))
        survivors += tried["planted"] - tried["found"]
        print(f"{room}: {tried['found']} of {tried['planted']} faults found", flush=True)
    print(f"mutate: {survivors} survivors")


if __name__ == "__main__":
    main()
