#!/usr/bin/env python3
"""Fails on an include or a call that crosses the layers: rules and operation lists know no window toolkit, windows no
toolkit but Velmora's own and no backend, and only the platform runs an event loop."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
include = re.compile(r'^\s*#include\s+["<]([^">]+)[">]')
qt = re.compile(r"^Q[A-Za-z]")
codec = re.compile(r"^(mpg123|lame/|sndfile|taglib/|cubeb/|cdio/|libburn/|curl/|sqlite3)")
loop = re.compile(r"\b(processEvents|QEventLoop|QCoreApplication::exec|QApplication::exec|\.exec\()")

windows = ("player", "sliders", "config", "settingsdlg", "playlist", "workbench", "info")
backends = ("platform/audio", "platform/codec", "platform/disc", "platform/tags", "platform/system")


def sources(*folders):
    for folder in folders:
        yield from sorted(path for path in (root / folder).rglob("*") if path.suffix in (".h", ".cpp"))


def lists():
    return sorted(path for path in (root / "platform").glob("*") if path.suffix in (".h", ".cpp"))


def included(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        found = include.match(line)
        if found:
            yield number, found[1]


crossings = []


def forbid(paths, test, why):
    for path in paths:
        crossings.extend(f"{path.relative_to(root)}:{number}: {name}: {why}" for number, name in included(path)
                         if test(name))


own = [*sources(*windows), root / "program.h", root / "program.cpp"]
forbid(own, qt.match, "a window sees Velmora's toolkit alone")
forbid([*own, *lists(), *sources("platform/toolkit")], codec.match, "codecs stay behind the operation lists")
forbid([*own, *lists(), *sources("platform/toolkit")], lambda name: name.startswith(backends),
       "no backend is known by name outside main and the desktop")
forbid(lists(), qt.match, "an operation list knows no window toolkit")
forbid(sources("platform/audio", "platform/codec", "platform/disc", "platform/tags"), qt.match,
       "this backend knows no window toolkit")
forbid(sources("platform"), lambda name: name.startswith(windows) or name == "program.h",
       "the platform knows no window of the program")
forbid([path for path in sources(*windows) if path.suffix == ".h"],
       lambda name: name.startswith(windows) and not name.startswith("info/genre_rows"),
       "windows include each other in their sources alone")
forbid([path for path in sources("platform/toolkit") if path.suffix == ".h"
        and "own sources" not in path.read_text() and "platform sources" not in path.read_text()
        and path.stem not in ("pace", "skin")],
       qt.match, "the toolkit's public headers show no other")

for path in [*own, *lists()]:
    crossings.extend(f"{path.relative_to(root)}:{number}: only the platform runs an event loop"
                     for number, line in enumerate(path.read_text().splitlines(), 1) if loop.search(line))

read = len(own) + len(lists()) + len(list(sources("platform")))
print("\n".join(crossings) or f"No layer is crossed in {read} files.")
sys.exit(bool(crossings) or read < 100)
