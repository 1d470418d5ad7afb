#!/usr/bin/python3
"""What the player costs beside other players: its start, its idling, its playing.

Each pair runs the peer and Velmora one right after the other on one private desk; the table gives medians over the pairs
and the median of the pairs' ratios. A start lasts until the first picture of the window is on the screen, as the memory of
the virtual screen shows it. Processor time, wake-ups and memory are those of the process, over half a minute.
"""
import argparse
import datetime
import os
import pathlib
import platform
import statistics
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))

import sounds  # noqa: E402
from desk import Desk, wait_for  # noqa: E402

SPAN = 30
COMMANDS = {"audacious": ["audacious"], "qmmp": ["qmmp"]}


class Screen:
    """Looks at the virtual screen's memory, which costs the programs nothing."""

    def __init__(self, folder):
        self.path = folder / "Xvfb_screen0"

    def picture(self):
        return self.path.read_bytes()


def first_paint(desk, command):
    """Seconds from the start of the process to a changed screen, and the process."""
    before = desk.screen.picture()
    start = time.monotonic()
    process = desk.spawn(*command)
    wait_for(lambda: desk.screen.picture() != before, "the first picture", pause=0.001)
    return time.monotonic() - start, process


def ticks(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


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
    busy, woken = ticks(process.pid), wakes(process.pid)
    time.sleep(SPAN)
    slept = sum(count - woken.get(thread, 0) for thread, count in wakes(process.pid).items())
    return ticks(process.pid) - busy, slept / SPAN


def machine():
    model = next((line.split(":", 1)[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")),
                 platform.machine())
    return f"{model}, {os.cpu_count()} cores, load {os.getloadavg()[0]:.1f}"


def row(what, unit, peer, theirs, ours):
    ratio = statistics.median(mine / max(their, 1e-9) for mine, their in zip(ours, theirs))
    print(f"| {what} | {peer} | {statistics.median(theirs):.3g} {unit} | {statistics.median(ours):.3g} {unit} | **{ratio:.2f}** |",
          flush=True)


def own(build):
    return [str(pathlib.Path(build) / "velmora")]


def compare_starts(desk, peer, build, pairs):
    theirs, ours = [], []
    for _ in range(pairs + 1):
        for command, times in ((COMMANDS[peer], theirs), (own(build), ours)):
            seconds, process = first_paint(desk, command)
            times.append(seconds)
            desk.end(process)
            time.sleep(0.5)
    row("start to the first picture, warm", "s", peer, theirs[1:], ours[1:])


def compare_idle(desk, peer, build):
    results = []
    for command in (COMMANDS[peer], own(build)):
        _, process = first_paint(desk, command)
        time.sleep(5)
        results.append((*watch(process), memory(process.pid)))
        desk.end(process)
    for index, (what, unit) in enumerate((("idle, processor time in 30 s", "s"), ("idle, wake-ups a second", ""),
                                          ("idle, memory (PSS)", "MB"))):
        row(what, unit, peer, [results[0][index]], [results[1][index]])


def compare_playing(desk, peer, build, mp3):
    results = []
    for command, plays in ((COMMANDS[peer] + [str(mp3)], None), (own(build), True)):
        _, process = first_paint(desk, command)
        recording = desk.record()
        if plays:
            play_in_velmora(desk, mp3)
        wait_for(lambda: any(recording.frames()[-4410:]), f"{command[0]} plays")
        recording.stop()
        time.sleep(2)
        results.append(watch(process))
        desk.end(process)
    row("playing, processor time in 30 s", "s", peer, [results[0][0]], [results[1][0]])
    row("playing, wake-ups a second", "", peer, [results[0][1]], [results[1][1]])


def play_in_velmora(desk, mp3):
    def window(title):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], env=desk.environment,
                               capture_output=True, text=True).stdout.split()
        return found[-1] if found else None
    main = wait_for(lambda: window("Velmora v2.0"), "the window")
    desk.run("xdotool", "mousemove", "--window", main, "44", "91", "click", "1")
    dialog = wait_for(lambda: window("Select a file to open"), "the dialog")
    desk.run("xdotool", "windowfocus", "--sync", dialog)
    desk.run("xdotool", "key", "alt+t")
    desk.run("xdotool", "key", "End", "alt+n", "ctrl+a")
    desk.run("xdotool", "type", str(mp3))
    desk.run("xdotool", "key", "Return")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=str(ROOT / "build/release"))
    parser.add_argument("--pairs", type=int, default=7)
    options = parser.parse_args()
    with Desk(accessible=False, screen_file=True) as desk:
        desk.screen = Screen(desk.folder)
        wav = sounds.write_wav(desk.folder / "song.wav", sounds.music(1) * 120)
        mp3 = sounds.encode(wav, desk.music / "song.mp3", "-b", "192")
        print(f"{options.pairs} pairs of starts, {SPAN} s of watching; {machine()}; {datetime.date.today()}\n")
        print("| what | peer | peer | Velmora | ratio |")
        print("|---|---|---:|---:|---:|")
        for peer in COMMANDS:
            compare_starts(desk, peer, options.build, options.pairs)
            compare_idle(desk, peer, options.build)
            compare_playing(desk, peer, options.build, mp3)


if __name__ == "__main__":
    main()
