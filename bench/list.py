#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a long list costs: the program's start with it, opening it, and a tick while it does not change.

The start is compared with a peer that keeps the same list, both list windows shown: seconds to the first picture and
processor time until the program has come to rest. Opening and ticks are measured inside the program, without a screen.
"""
import argparse
import datetime
import pathlib
import subprocess
import time

from player import COMMANDS, Own, Screen, busy_time, first_paint, memory, row
from desk import Desk, wait_for
from pairs import machine
import sounds

ROOT = pathlib.Path(__file__).resolve().parent.parent
PEER = "audacious"


def at_rest(process):
    """True when the program used next to no processor time for a second."""
    before = busy_time(process.pid)
    time.sleep(1)
    return busy_time(process.pid) - before < 0.01


def start(desk, command):
    seconds, process = first_paint(desk, command)
    wait_for(lambda: at_rest(process), "the program comes to rest")
    result = seconds, busy_time(process.pid), memory(process.pid)
    desk.end(process)
    return result


def give_list(desk, rows):
    """The list as the peer keeps it."""
    folder = desk.home / ".config/audacious/playlists"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "order").write_text("1001")
    (folder / "1001.audpl").write_text("title=List\n" + "".join(f"uri=file://{row}\n" for row in rows))


def compare_starts(count, build, pairs):
    with Desk(accessible=False, screen_file=True) as desk:
        desk.screen = Screen(desk.folder)
        song = sounds.encode(sounds.write_wav(desk.folder / "song.wav", sounds.music(1)), desk.music / "song.mp3")
        rows = [str(song)] + [f"{desk.music}/Some-Artist/Some-Album/{row}-A-Song.mp3" for row in range(1, count)]
        own = Own(desk, build, rows)
        give_list(desk, rows)
        peer, ours = [], []
        for _ in range(pairs + 1):
            peer.append(start(desk, COMMANDS[PEER]))
            ours.append(start(desk, own.command))
        for column, (what, unit) in enumerate((("to the first picture", "s"), ("processor time until at rest", "s"),
                                               ("memory (PSS)", "MB"))):
            theirs, mine = ([run[column] for run in runs[1:]] for runs in (peer, ours))
            row(f"start with {count} rows, {what}", unit, PEER, theirs, mine)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=str(ROOT / "build/release"))
    parser.add_argument("--pairs", type=int, default=5)
    options = parser.parse_args()
    print(f"{options.pairs} pairs of starts; {machine()}; {datetime.date.today()}\n")
    print("| what | peer | peer | Velmora | ratio |")
    print("|---|---|---:|---:|---:|")
    for count in (10000, 100000):
        compare_starts(count, options.build, options.pairs)
    print("\n| rows | open, window hidden ms | open, window shown ms | tick, nothing changed ms | tick that writes ms |")
    print("|---:|---:|---:|---:|---:|")
    for count in (10000, 100000):
        times = subprocess.run([f"{options.build}/bench/list_bench", str(count)], check=True, capture_output=True,
                               text=True).stdout.split()
        print(f"| {count} |", " | ".join(f"{float(time):.3g}" for time in times), "|", flush=True)


if __name__ == "__main__":
    main()
