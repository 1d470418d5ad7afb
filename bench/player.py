#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the player costs beside other players: its start, its idling, its playing.

Each pair runs the peer and Velmora one right after the other on one private desk; the table gives medians over the pairs
and the median of the pairs' ratios. A start lasts until the first picture of the window is on the screen, as the memory of
the virtual screen shows it. Processor time, wake-ups and memory are those of the process, over half a minute.
"""
import argparse
import datetime
import os
import pathlib
import statistics
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))

import places  # noqa: E402
import sounds  # noqa: E402
from desk import Desk, Velmora, wait_for  # noqa: E402
from pairs import machine, ratio  # noqa: E402

SPAN = 30
COMMANDS = {"audacious": ["audacious"], "qmmp": ["qmmp"]}


class Screen:
    """Looks at the virtual screen's memory, which costs the programs nothing."""

    def __init__(self, folder):
        self.path = folder / "Xvfb_screen0"

    def picture(self):
        return self.path.read_bytes()

    def is_still(self):
        before = self.picture()
        time.sleep(0.3)
        return self.picture() == before


def first_paint(desk, command):
    """Seconds from the start of the process to a changed screen, and the process. What ended before leaves the screen."""
    wait_for(desk.screen.is_still, "the screen is still")
    before = desk.screen.picture()
    start = time.monotonic()
    process = desk.spawn(*command)
    wait_for(lambda: desk.screen.picture() != before, "the first picture", pause=0.001)
    return time.monotonic() - start, process


def busy_time(pid):
    """Processor time of the process's threads so far in seconds."""
    return sum(int(task.read_text().split()[0]) for task in pathlib.Path(f"/proc/{pid}/task").glob("*/schedstat")) / 1e9


def wakes(pid):
    """How often each thread went to sleep so far."""
    return {status.parent.name: int(line.split()[1]) for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status")
            for line in status.read_text().splitlines() if line.startswith("voluntary")}


def memory(pid):
    """Proportional set size in MB."""
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    return 0


def watch(process):
    """Processor time in seconds and wake-ups a second over the span."""
    busy, woken = busy_time(process.pid), wakes(process.pid)
    time.sleep(SPAN)
    slept = sum(count - woken.get(thread, 0) for thread, count in wakes(process.pid).items())
    return busy_time(process.pid) - busy, slept / SPAN


def row(what, unit, peer, theirs, ours):
    print(f"| {what} | {peer} | {statistics.median(theirs):.3g} {unit} | {statistics.median(ours):.3g} {unit} "
          f"| **{ratio(ours, theirs):.2f}** |", flush=True)


class Own:
    """Velmora in a portable copy, with a list of its own beside it if it is given rows."""

    def __init__(self, desk, build, rows=()):
        self.app = Velmora(desk, build, desk.folder / f"app{len(rows)}")
        self.command = [str(self.app.folder / "velmora")]
        if rows:
            self.keep_list(rows)

    def keep_list(self, rows):
        self.app.start()
        main = self.app.window("Velmora v2.0")
        self.app.menu(main, "f", "l")
        self.add(rows[0])
        stored = self.app.folder / "deflist.vlp"
        wait_for(lambda: stored.exists() and stored.read_text().split() == rows[:1], "the list is kept")
        wait_for(lambda: self.app.setting("Position PlayList Editor", "SHOWN") == "YES", "the window is kept")
        self.app.kill()
        stored.write_text("".join(row + "\r\n" for row in rows), newline="")

    def add(self, path):
        self.app.menu(self.app.window("Playlist Editor"), "o", "a")
        self.app.choose_file("Select .wav/.mp3 files to add to the playlist", path)

    def play(self, mp3):
        self.app.click(self.app.window("Velmora v2.0"), places.PLAY)
        self.app.choose_file("Select a file to open", mp3, 1)

    def play_list(self):
        self.app.click(self.app.window("Playlist Editor"), places.LIST_PLAY)


def compare_starts(desk, peer, own, pairs):
    theirs, ours = [], []
    for _ in range(pairs + 1):
        for command, times in ((COMMANDS[peer], theirs), (own.command, ours)):
            seconds, process = first_paint(desk, command)
            times.append(seconds)
            desk.end(process)
            time.sleep(0.5)
    row("start to the first picture, warm", "s", peer, theirs[1:], ours[1:])


def compare_idle(desk, peer, own, what):
    results = []
    for command in (COMMANDS[peer], own.command):
        _, process = first_paint(desk, command)
        time.sleep(5)
        results.append((*watch(process), memory(process.pid)))
        desk.end(process)
    for index, (cost, unit) in enumerate((("processor time in 30 s", "s"), ("wake-ups a second", ""),
                                          ("memory (PSS)", "MB"))):
        row(f"{what}, {cost}", unit, peer, [results[0][index]], [results[1][index]])


def compare_playing(desk, peer, files, own, begin, what):
    results = []
    for command, start in ((COMMANDS[peer] + files, lambda: None), (own.command, begin)):
        _, process = first_paint(desk, command)
        recording = desk.record()
        start()
        wait_for(lambda: any(recording.frames()[-4410:]), f"{command[0]} plays")
        recording.stop()
        time.sleep(2)
        results.append(watch(process))
        desk.end(process)
    row(f"{what}, processor time in 30 s", "s", peer, [results[0][0]], [results[1][0]])
    row(f"{what}, wake-ups a second", "", peer, [results[0][1]], [results[1][1]])


def music(desk, name, seconds, seed):
    wav = sounds.write_wav(desk.folder / "song.wav", sounds.music(1, seed=seed) * seconds)
    return str(sounds.encode(wav, desk.music / name, "-b", "192"))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=str(ROOT / "build/release"))
    parser.add_argument("--pairs", type=int, default=7)
    parser.add_argument("--peers", default=",".join(COMMANDS))
    options = parser.parse_args()
    with Desk(accessible=False, screen_file=True) as desk:
        desk.screen = Screen(desk.folder)
        song = music(desk, "song.mp3", 120, 0)
        short = [music(desk, f"short{number}.mp3", 6, number) for number in range(1, 9)]
        long = [music(desk, f"long{number}.mp3", 180, number) for number in range(1, 3)]
        alone, listed, unhurried = (Own(desk, options.build, rows) for rows in ((), short, long))
        print(f"{options.pairs} pairs of starts, {SPAN} s of watching; {machine()}; {datetime.date.today()}\n")
        print("| what | peer | peer | Velmora | ratio |")
        print("|---|---|---:|---:|---:|")
        for peer in options.peers.split(","):
            compare_starts(desk, peer, alone, options.pairs)
            compare_idle(desk, peer, alone, "idle")
            compare_playing(desk, peer, [song], alone, lambda: alone.play(song), "playing a file")
            compare_idle(desk, peer, listed, "idle with the list shown")
            compare_playing(desk, peer, short, listed, listed.play_list, "playing a list of 6 s files")
            compare_playing(desk, peer, long, unhurried, unhurried.play_list, "playing a list of 3 min files")


if __name__ == "__main__":
    main()
