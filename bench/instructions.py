#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a start and a tick cost in instructions, which no other load on the machine disturbs.

Counted by valgrind's callgrind: a start from the first instruction of the process to its first picture, the loader
included, beside a bare window of the toolkit with one label in the same run; a tick, which is the five handlers that fall
due together, as the mean of a hundred. With --guard it only looks whether a start costs more than RESULTS.md says.
"""
import argparse
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))

from desk import Desk, Velmora, wait_for  # noqa: E402

RESULTS = ROOT / "bench/RESULTS.md"
START = "start to the first picture, millions of instructions"
LEEWAY = 1.10
SKIPPED = 77  # as ctest knows it
TICKS = {"at rest": ["rest", "1"], "while playing": ["playing", "1"], "with a list of 10,000 rows": ["rest", "10000"]}
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


def starts(build, keep):
    """Of the bare window and of Velmora."""
    with Desk(sound=False, accessible=False) as desk:
        own = Velmora(desk, build)
        commands = {"bare": ([str(build / "bench/bare_window")], lambda: True),
                    "Velmora": ([str(own.folder / "velmora")], lambda: list((desk.home / ".cache").rglob("skin-1")))}
        counted = []
        for name, (command, left) in commands.items():
            warm(desk, command, left)
            counted.append(instructions(desk, command, name))
        for file in desk.folder.glob("*.callgrind.1") if keep else []:
            shutil.copy(file, keep)
        return counted


def tick(build, arguments, keep):
    """Instructions of one tick, of all of its handlers."""
    with Desk(sound=False, accessible=False) as desk:
        counts = desk.folder / ("tick-" + "-".join(arguments) + ".callgrind")
        process = desk.spawn("valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}",
                             "--toggle-collect=hundredTicks", str(build / "bench/tick_bench"), *arguments)
        if process.wait(600) != 0:
            raise SystemExit("tick_bench failed")
        if keep:
            shutil.copy(counts, keep)
        return int(re.search(r"^totals: (\d+)", counts.read_text(), re.M)[1]) / 100


def print_starts(bare, ours):
    print("| what | bare window | Velmora | ratio |")
    print("|---|---:|---:|---:|")
    print(f"| {START} | {bare:.1f} | {ours:.1f} | **{ours / bare:.2f}** |", flush=True)


def print_ticks(build, keep):
    print("\n| a tick | instructions |")
    print("|---|---:|")
    for what, arguments in TICKS.items():
        print(f"| {what} | {tick(build, arguments, keep):,.0f} |", flush=True)


def guard(build):
    """Ends with 0 while a start costs no more than ten per cent over what was measured for RESULTS.md."""
    for tool in ("valgrind", "Xvfb", "xdotool"):
        if not shutil.which(tool):
            print(f"skipped: A start costs no more than it did: there is no {tool} here")
            return SKIPPED
    written = float(re.search(re.escape(START) + r".*\*\*([\d.]+)\*\*", RESULTS.read_text())[1])
    bare, ours = starts(build, None)
    print(f"A start costs {ours / bare:.2f} bare windows; RESULTS.md says {written:.2f}.")
    return int(ours / bare > written * LEEWAY)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/release")
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for the counts by function")
    parser.add_argument("--guard", action="store_true")
    options = parser.parse_args()
    if options.guard:
        sys.exit(guard(options.build))
    print_starts(*starts(options.build, options.keep))
    print_ticks(options.build, options.keep)


if __name__ == "__main__":
    main()
