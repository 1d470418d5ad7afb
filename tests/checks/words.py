#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails on words that have no place in the project's files: they would mean something to nobody but their writer."""
import re
import subprocess
import sys

root = sys.argv[1]
# Put together from pieces, so that this file passes its own check.
forbidden = re.compile("|".join([r"\b[Ss]p" + r"ec(ification)?s?\b", r"\bPa" + r"rt [1-7]\.[0-9]\b", r"\bTO" + r"DO\b",
                                 r"\bFIX" + r"ME\b"]))
allowed = re.compile(r"-specific|unspecified|\bspec(s|file)?=|%?\.spec\b|freedesktop|code-spec")

files = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard", "-z"], capture_output=True,
                       check=True).stdout.decode().split("\0")
found = []
for name in files:
    if not name or name == "LICENSE" or name.endswith(".svg"):
        continue
    try:
        lines = open(f"{root}/{name}", encoding="utf-8").read().splitlines()
    except (UnicodeDecodeError, FileNotFoundError):
        continue
    found += [f"{name}:{number}: {line.strip()}" for number, line in enumerate(lines, 1)
              if forbidden.search(line) and not allowed.search(line)]
print("\n".join(found) or "No such word.")
sys.exit(bool(found))
