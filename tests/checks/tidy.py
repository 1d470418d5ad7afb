#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs clang-tidy with the project's list: on every source for `./check tidy`; without the word "whole" on those that
differ from the branch this one came from (of a branch that is that one, its last commit). Ends with 77 where there is no
clang-tidy, and where too many sources differ for a quick look."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

root, build = (pathlib.Path(name).resolve() for name in sys.argv[1:3])
whole = sys.argv[3:] == ["whole"]
most = 30


def git(*words):
    answer = subprocess.run(["git", "-C", root, *words], capture_output=True, text=True)
    return answer.stdout.split() if answer.returncode == 0 else []


def base():
    head = git("rev-parse", "HEAD")
    for name in ("origin/HEAD", "origin/main"):
        common = git("merge-base", "HEAD", name)
        if common and common != head:
            return common[0]
    return (git("rev-parse", "HEAD~1") or head)[0]


def changed():
    names = {*git("diff", "--name-only", base()), *git("ls-files", "-o", "--exclude-standard")}
    return {root / name for name in names}


def without_compiled_headers(commands):
    """A folder with the commands, but for headers that were compiled before: those of another compiler are nothing to
    clang, and a source that forgot an include is found without them."""
    place = build / "tidy"
    place.mkdir(exist_ok=True)
    (place / "compile_commands.json").write_text(re.sub(r" -Winvalid-pch -include \S+", "", commands))
    return place


def tidy(source):
    answer = subprocess.run(["clang-tidy", "-p", known_from, "--quiet", source], capture_output=True, text=True)
    return answer.stdout if answer.returncode else ""


if not shutil.which("clang-tidy"):
    print("skipped: no clang-tidy")
    sys.exit(77)
commands = (build / "compile_commands.json").read_text()
known = {pathlib.Path(entry["file"]) for entry in json.loads(commands)}
known_from = without_compiled_headers(commands)
ours = {path for path in known if build not in path.parents}
sources = sorted(ours if whole else ours & changed())
if not whole and len(sources) > most:
    print(f"skipped: {len(sources)} sources have changed; ./check tidy looks at all of them")
    sys.exit(77)
with ThreadPoolExecutor(os.cpu_count()) as workers:
    found = [words for words in workers.map(tidy, sources) if words]
print("".join(found) or f"clang-tidy finds nothing in {len(sources)} sources.")
sys.exit(bool(found))
