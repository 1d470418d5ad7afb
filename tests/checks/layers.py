#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails on an include that crosses a wall: a room sees the rooms and the libraries that its CMakeLists.txt names, and no
other. Also fails on a circle of rooms, on a window's header that includes another window's, on a window library shown by
the toolkit's public headers, and on an event loop outside the rooms that may run one. Prints the graph when it fails."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
include = re.compile(r'^\s*#include\s+["<]([^">]+)[">]')
loop = re.compile(r"\b(processEvents|QEventLoop|QCoreApplication::exec|QApplication::exec|\.exec\()")

windows = ("player", "sliders", "config", "settingsdlg", "playlist", "workbench", "info")
libraries = {  # headers of each library from outside: what a room has to link to include them
    r"Q[A-Z]\w+$": "Qt6::", r"mpg123": "libmpg123", r"lame/": "LAME", r"sndfile": "sndfile", r"cubeb/": "CUBEB",
    r"cdio/": "libcdio", r"libburn/": "libburn", r"curl/": "libcurl", r"sqlite3": "sqlite3",
    r"zlib\.h": "zlib", r"xcb/": "xcb"}


class Room:
    def __init__(self, name, folders, sees, links):
        self.name, self.folders, self.sees, self.links = name, folders, sees, links


def rooms():
    for build in [*root.glob("*/CMakeLists.txt"), *root.glob("engines/*/CMakeLists.txt"),
                  *root.glob("modules/*/CMakeLists.txt")]:
        text = re.sub(r"#.*", "", build.read_text())
        call = re.search(r"velmora_(?:room|module)\((\w+)([^)]*)\)(.*)", text, re.S)
        if call:
            sees, _, links = call[2].partition("LINKS")
            folder = build.parent.relative_to(root).as_posix()
            yield Room(call[1], (folder,), sees.split()[1:], links + call[3])
    yield Room("rules", (), ["platform"], "")
    yield Room("windows", windows, ["platform", "toolkit", "rules"], "")


house = {room.name: room for room in rooms()}
listed = re.search(r"set\(rules\n(.*?)\)", (root / "CMakeLists.txt").read_text(), re.S)[1].split()
rules = {name.removesuffix(".cpp") for name in listed}


def room_of(name):
    """The room of a file by its path from the root; None for what is no room's."""
    if name.startswith("program."):
        return house["windows"]
    if name.rsplit(".", 1)[0] in rules:
        return house["rules"]
    return next((room for room in house.values() for folder in room.folders if name.startswith(folder + "/")), None)


def sources():
    folders = [root / folder for room in house.values() for folder in room.folders]
    files = [path for folder in folders for path in folder.glob("*") if path.suffix in (".h", ".cpp")]
    return sorted([*files, root / "program.h", root / "program.cpp"])


def included(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        found = include.match(line)
        if found:
            yield number, found[1]


def is_public_header(path):
    text = path.read_text()
    return path.suffix == ".h" and not any(mark in text for mark in ("own sources", "platform sources"))


crossings = []
graph = {name: set() for name in house}


def look(path):
    name = path.relative_to(root).as_posix()
    room = room_of(name)
    for number, other in included(path):
        def report(why):
            crossings.append(f"{name}:{number}: {other}: {why}")

        target = room_of(other)
        if target and target is not room:
            graph[room.name].add(target.name)
            if target.name not in room.sees:
                report(f"{room.name} does not see {target.name}")
        library = next((link for header, link in libraries.items() if re.match(header, other)), None)
        if library and not target and library not in room.links:
            report(f"{room.name} does not link {library.strip(':')}")
        if path.suffix == ".h" and room.name == "windows" and other.startswith(windows) and \
                target.name == "windows" and path.parent != root and other not in ("info/genre_rows.h",):
            report("windows include each other in their sources alone")
        if room.name == "toolkit" and library == "Qt6::" and is_public_header(path) and \
                path.stem not in ("pace", "skin"):
            report("the toolkit's public headers show no other")
    if "Qt6::" not in room.links:
        crossings.extend(f"{name}:{number}: {room.name} runs no event loop"
                         for number, line in enumerate(path.read_text().splitlines(), 1) if loop.search(line))


def circle(name, above=()):
    if name in above:
        return [*above[above.index(name):], name]
    return next((found for other in sorted(graph[name]) if (found := circle(other, (*above, name)))), None)


for path in sources():
    look(path)
for name in house:
    found = circle(name)
    if found:
        crossings.append("a circle of rooms: " + " -> ".join(found))
        break

read = len(sources())
if crossings:
    crossings += ["The rooms and what they include:", *(f"  {name} -> {', '.join(sorted(seen)) or 'nothing'}"
                                                        for name, seen in graph.items())]
print("\n".join(crossings) or f"No wall is crossed in {read} files of {len(house)} rooms.")
sys.exit(bool(crossings) or read < 300)
