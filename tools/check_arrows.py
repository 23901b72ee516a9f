#!/usr/bin/env python3
"""Fails on an #include that the table in docs/architecture.md does not allow.

Usage: check_arrows.py ROOT
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
source = root / "src"


def allowed_arrows():
    """The table as {room: rooms it may use}."""
    rooms = {}
    for line in (root / "docs" / "architecture.md").read_text().splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if len(cells) == 3 and (name := re.fullmatch(r"`([\w/]+)`", cells[0])):
            rooms[name[1]] = set(re.findall(r"`([\w/]+)`", cells[2]))
    return rooms


def room_of(path, rooms):
    """The room a path relative to src/ lies in; the longest name wins."""
    names = [room for room in rooms if path.startswith(room + "/")]
    return max(names, key=len, default=None)


rooms = allowed_arrows()
problems = []
if len(rooms) < 2:
    problems.append("docs/architecture.md has no table of rooms")
for file in sorted(source.rglob("*.[ch]*")):
    relative = file.relative_to(source).as_posix()
    room = room_of(relative, rooms)
    if room is None:
        problems.append(f"{relative}: lies in no room of the table")
        continue
    for number, line in enumerate(file.read_text().splitlines(), 1):
        if not (include := re.match(r'\s*#\s*include\s+"([^"]+)"', line)):
            continue
        target = room_of(include[1], rooms)
        if target is None:
            problems.append(f"{relative}:{number}: {include[1]} is not written from a room on")
        elif target != room and target not in rooms[room]:
            problems.append(f"{relative}:{number}: {room} may not use {target} ({include[1]})")
print("\n".join(problems) or f"{len(rooms)} rooms, every arrow allowed")
sys.exit(1 if problems else 0)
