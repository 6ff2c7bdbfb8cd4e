#!/usr/bin/env python3
"""Shows that built DLLs need nothing but the system and each other: the C++ runtime is inside.

usage: imports.py OBJDUMP DLL...      OBJDUMP that of their platform
"""
import pathlib
import re
import subprocess
import sys

SYSTEM = re.compile(r"(kernel32|user32|gdi32|msvcrt|ucrtbase|api-ms-win-crt-[a-z0-9-]+)\.dll")

dlls = [pathlib.Path(name) for name in sys.argv[2:]]
own = {dll.name.lower() for dll in dlls}
bad = 0
for dll in dlls:
    text = subprocess.run([sys.argv[1], "-p", dll], check=True, capture_output=True, text=True).stdout
    names = re.findall(r"^\s*DLL Name: (\S+)$", text, re.M)
    foreign = [name for name in names if not SYSTEM.fullmatch(name.lower()) and name.lower() not in own]
    bad += len(foreign)
    print(f"{dll}: imports {', '.join(names)}" + (f"; not the system's: {', '.join(foreign)}" if foreign else ""))
sys.exit(1 if bad else 0)
