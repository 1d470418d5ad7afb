#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a start costs in instructions, which no other load on the machine disturbs.

Counted by valgrind's callgrind, from the first instruction of the process to its first picture, the loader included. The
peer is a bare window of the toolkit with one label, in the same run.
"""
import argparse
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))

from desk import Desk, Velmora, wait_for  # noqa: E402

PICTURE = "QBackingStore::flush(QRegion const&, QWindow*, QPoint const&)"  # hands the window's first picture over


def instructions(desk, command, name):
    """Up to the first picture, in millions; the counts by function stay in the desk's folder."""
    counts = desk.folder / f"{name}.callgrind"
    process = desk.spawn("valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}", f"--dump-before={PICTURE}",
                         *command)
    first = pathlib.Path(f"{counts}.1")
    wait_for(lambda: first.exists() and "totals:" in first.read_text(), f"the first picture of {name}", limit=300)
    desk.end(process)
    return int(re.search(r"^totals: (\d+)", first.read_text(), re.M)[1]) / 1e6


def warm(desk, command, left):
    """Starts once, until everything that a first start leaves for the next ones is `left`."""
    process = desk.spawn(*command)
    search = ["xdotool", "search", "--onlyvisible", "--pid", str(process.pid)]
    wait_for(lambda: subprocess.run(search, env=desk.environment, capture_output=True).stdout, "a window shows")
    wait_for(left, "the caches are filled")
    desk.end(process)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/release")
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for the counts by function")
    options = parser.parse_args()
    with Desk(sound=False, accessible=False) as desk:
        own = Velmora(desk, options.build)
        commands = {"bare window": ([str(options.build / "bench/bare_window")], lambda: True),
                    "Velmora": ([str(own.folder / "velmora")], lambda: list((desk.home / ".cache").rglob("skin-*")))}
        counted = {}
        for name, (command, left) in commands.items():
            warm(desk, command, left)
            counted[name] = instructions(desk, command, name.split()[0])
            if options.keep:
                for file in desk.folder.glob("*.callgrind.1"):
                    (options.keep / file.name).write_bytes(file.read_bytes())
        print("| what | bare window | Velmora | ratio |")
        print("|---|---:|---:|---:|")
        print("| start to the first picture, millions of instructions | {:.1f} | {:.1f} | **{:.2f}** |".format(
            counted["bare window"], counted["Velmora"], counted["Velmora"] / counted["bare window"]))


if __name__ == "__main__":
    main()
