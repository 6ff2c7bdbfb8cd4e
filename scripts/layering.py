#!/usr/bin/env python3
"""Checks the direction of includes between the rooms of src/: no arrow points upwards, and there is no circle."""
import pathlib
import re
import sys

BELOW = {
    "platform": {"port"},
    "port": set(),
    "comm": set(),
    "frame": {"platform", "comm"},
    "geometry": set(),
    "store": {"frame", "geometry", "platform"},
    "raster": {"store", "frame", "geometry", "platform"},
    "display": {"store", "frame", "geometry", "platform"},
    "edit": {"display", "raster", "store", "frame", "geometry", "platform"},
    "surface": {"raster", "store", "frame", "geometry", "platform", "comm"},
    "shade": {"raster", "store", "frame", "geometry", "platform"},
    "render3d": {"raster", "store", "frame", "geometry", "platform"},
}
# Single files of another room that a room may use.
EXCEPTIONS = {("render3d", "shade/profile.h")}
# Public headers of a room above that a room may use: to call its exports, or for the format of the planes.
PUBLIC = {("store", "display"), ("shade", "surface"), ("render3d", "surface")}
ROOM_OF_HEADER = {"frame", "store", "raster", "display", "edit", "surface", "shade", "render3d"}

root = pathlib.Path(__file__).resolve().parent.parent
bad = []
for path in sorted((root / "src").rglob("*")):
    if path.suffix not in (".cpp", ".h"):
        continue
    room = path.relative_to(root / "src").parts[0]
    for number, line in enumerate(path.read_text().splitlines(), 1):
        found = re.match(r'\s*#\s*include\s+([<"])([^>"]+)[>"]', line)
        if not found:
            continue
        name = found.group(2)
        where = f"{path.relative_to(root)}:{number}"
        public = re.match(r"zr32path/(\w+)\.h$", name)
        if name == "zr32path.h":
            bad.append(f"{where}: includes the umbrella header")
        elif public:
            target = public.group(1)
            if target in ROOM_OF_HEADER and target != room and target not in BELOW[room]:
                if (room, target) not in PUBLIC:
                    bad.append(f"{where}: {room} must not use the interface of {target}")
        elif found.group(1) == '"' and "/" in name:
            target = name.split("/")[0]
            if target != room and target not in BELOW[room] and (room, name) not in EXCEPTIONS:
                bad.append(f"{where}: {room} must not include {name}")
        elif found.group(1) == '"' and room not in ("port", "comm"):
            bad.append(f"{where}: include \"{name}\" by its path from src/")
        elif name == "windows.h" and room != "platform":
            bad.append(f"{where}: only src/platform includes the platform's headers")

print("\n".join(bad))
sys.exit(1 if bad else 0)
