#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Copying tracks of a disc image to WAV files, against cd-paranoia.

Each pair runs the peer and Velmora one right after the other, so that both meet the same machine; the table gives
medians over the pairs. `wall` is what a person waits, `cpu` the processor time of all cores, both with the start of
the process. Outputs are removed before each run, and compared once.
"""

import argparse
import datetime
import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from pairs import machine, measure, middle, ratio_of

ROOT = Path(__file__).resolve().parent.parent
SECTOR = 2352
TRACKS = 12


@dataclass
class Row:
    what: str
    first: int
    last: int


def time_text(sector):
    return f"{sector // 75 // 60:02}:{sector // 75 % 60:02}:{sector % 75:02}"


def make_image(place, minutes):
    """A disc of noise; its sheet."""
    sectors = minutes * 60 * 75 // TRACKS
    with open(place / "disc.bin", "wb") as image:
        for _ in range(TRACKS):
            image.write(os.urandom(sectors * SECTOR))
    lines = ['FILE "disc.bin" BINARY']
    for track in range(TRACKS):
        lines += [f"  TRACK {track + 1:02} AUDIO", f"    INDEX 01 {time_text(track * sectors)}"]
    sheet = place / "disc.cue"
    sheet.write_text("\n".join(lines) + "\n")
    return sheet


def emptied(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    return folder


def commands(row, sheet, driver, ours):
    # The order of bytes is given: guessed from the sound, it is wrong for noise.
    tracks = str(row.first) if row.first == row.last else f"{row.first}-{row.last}"
    batch = [] if row.first == row.last else ["-B"]
    peer = ["cd-paranoia", "-q", "-Z", "-c", "-d", str(sheet), *batch, tracks]
    return peer, [driver, str(sheet), str(row.first), str(row.last), str(ours)]


def sounds(folder):
    return [path.read_bytes() for path in sorted(folder.iterdir(), key=lambda path: (len(path.name), path.name))]


def run(command, folder):
    emptied(folder)
    return measure(command, stderr=subprocess.DEVNULL, cwd=folder)


def compare(row, sheet, driver, place, pairs):
    theirs, ours = place / "theirs", place / "ours"
    peer_command, own_command = commands(row, sheet, driver, ours)
    peer, own = [], []
    for _ in range(pairs):
        peer.append(run(peer_command, theirs))
        own.append(run(own_command, ours))
    if sounds(theirs) != sounds(ours):
        raise SystemExit("The two read different sound.")
    print(f"| {row.what} | cd-paranoia -Z | {middle(peer, 'wall'):.3f} | {middle(own, 'wall'):.3f} "
          f"| **{ratio_of(own, peer, 'wall'):.3f}** | {middle(peer, 'cpu'):.3f} | {middle(own, 'cpu'):.3f} "
          f"| {ratio_of(own, peer, 'cpu'):.3f} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--driver", default=str(ROOT / "build/release/bench/rip_bench"))
    parser.add_argument("--pairs", type=int, default=9)
    parser.add_argument("--minutes", type=int, default=60, help="length of the disc")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="velmora-bench-") as folder:
        place = Path(folder)
        sheet = make_image(place, options.minutes)
        print(f"{options.minutes} min of sound in {TRACKS} tracks, {options.pairs} pairs; {machine()}; "
              f"{datetime.date.today()}\n")
        print("| what | peer | peer wall s | Velmora wall s | ratio | peer cpu s | Velmora cpu s | ratio |")
        print("|---|---|---:|---:|---:|---:|---:|---:|")
        for row in (Row("rip one track of an image", 1, 1), Row("rip a whole image", 1, TRACKS)):
            compare(row, sheet, options.driver, place, options.pairs)


if __name__ == "__main__":
    main()
