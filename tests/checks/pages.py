#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails on a file or folder of the program that a page for readers names and that is not there: `engines/codec/tasks`,
`player/start_up.h`, `files/`. A name without its ending stands for the source and the header."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
rooms = {path.name for path in root.iterdir() if path.is_dir() and path.name not in ("build", "docs")}
pages = [*root.glob("docs/**/*.md"), root / "CONTRIBUTING.md", root / "README.md"]
named = re.compile(r"`(([a-z]+)/[\w./*]*\w)/?`")


def is_there(name):
    return (root / name).exists() or any((root / name).parent.glob(pathlib.Path(name).name + ".*"))


lost = []
seen = 0
for page in pages:
    for number, line in enumerate(page.read_text(encoding="utf-8").splitlines(), 1):
        for name, room in named.findall(line):
            if room in rooms and not re.search(r"[*]|[A-Z]{3}", name):
                seen += 1
                lost += [] if is_there(name) else [f"{page.relative_to(root)}:{number}: {name} is not there"]
print("\n".join(lost) or f"All {seen} files and folders that {len(pages)} pages name are there.")
sys.exit(bool(lost) or seen < 100)
