#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Encoding and decoding one file, against lame, ffmpeg and mpg123.

Each pair runs the peer and Velmora one right after the other, so that both meet the same machine; the table gives
medians over the pairs. `wall` is what a person waits, `cpu` the processor time of all cores, `MiB` the most memory
that each held, in one more run. Outputs are removed before each run. Velmora's times hold the writing through to the
disk, which no peer does.
"""

import argparse
import datetime
import os
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from pairs import machine, measure, middle, peak_memory, ratio_of

ROOT = Path(__file__).resolve().parent.parent


@dataclass
class Row:
    what: str
    peer_name: str
    peer: list
    ours: list
    outputs: list


def rows(driver, place, workers):
    full, half = str(place / "full.wav"), str(place / "half.wav")
    theirs, ours, wav = str(place / "theirs"), str(place / "ours"), str(place / "source.mp3")
    subprocess.run(["lame", "--quiet", "-b", "128", full, wav], check=True)

    def encode(kilobits, is_half):
        source = half if is_half else full
        rate = ["--resample", "22.05"] if is_half else ["--resample", "44.1"]
        what = f"encode, {kilobits} kbit/s" + (", 22.05 kHz" if is_half else "")
        own = [driver, "encode", source, ours, str(kilobits), "half" if is_half else "full", workers]
        lame = ["lame", "--quiet", "-b", str(kilobits), *rate, source, theirs]
        ffmpeg = ["ffmpeg", "-nostdin", "-v", "error", "-y", "-i", source, "-c:a", "libmp3lame",
                  "-b:a", f"{kilobits}k", "-f", "mp3", theirs]
        yield Row(what, "lame", lame, own, [ours, theirs])
        yield Row(what, "ffmpeg", ffmpeg, own, [ours, theirs])

    yield from encode(128, False)
    yield from encode(320, False)
    yield from encode(64, True)

    own = [driver, "decode", wav, ours, workers]
    mpg123 = ["mpg123", "-q", "-w", theirs, wav]
    ffmpeg = ["ffmpeg", "-nostdin", "-v", "error", "-y", "-i", wav, "-f", "wav", theirs]
    synced = ["sh", "-c", 'mpg123 -q -w "$0" "$1" && sync "$0"', theirs, wav]
    yield Row("decode", "mpg123 -w", mpg123, own, [ours, theirs])
    yield Row("decode", "mpg123 -w, then sync", synced, own, [ours, theirs])
    yield Row("decode", "ffmpeg", ffmpeg, own, [ours, theirs])


def remove(outputs):
    for output in outputs:
        Path(output).unlink(missing_ok=True)


def run(command, outputs):
    remove(outputs)
    return measure(command)


def compare(row, pairs, launcher):
    peer, ours = [], []
    for _ in range(pairs):
        peer.append(run(row.peer, row.outputs))
        ours.append(run(row.ours, row.outputs))
    peer_peak = peak_memory(launcher, row.peer)
    remove(row.outputs)
    own_peak = peak_memory(launcher, row.ours)
    print(f"| {row.what} | {row.peer_name} | {middle(peer, 'wall'):.2f} | {middle(ours, 'wall'):.2f} "
          f"| **{ratio_of(ours, peer, 'wall'):.3f}** | {middle(peer, 'cpu'):.2f} | {middle(ours, 'cpu'):.2f} "
          f"| {ratio_of(ours, peer, 'cpu'):.3f} | {peer_peak:.0f} | {own_peak:.0f} "
          f"| {own_peak / peer_peak:.2f} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--driver", default=str(ROOT / "build/release/bench/codec_bench"))
    parser.add_argument("--pairs", type=int, default=7)
    parser.add_argument("--seconds", type=int, default=600, help="length of the sound")
    parser.add_argument("--only", default="", help="rows whose name begins so")
    parser.add_argument("--workers", default=str(os.cpu_count()))
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="velmora-bench-") as folder:
        place = Path(folder)
        for name, rate in (("full", 44100), ("half", 22050)):
            subprocess.run([options.driver, "music", str(options.seconds), str(rate), str(place / f"{name}.wav")],
                           check=True)
        print(f"{options.seconds} s of sound, {options.workers} workers, {options.pairs} pairs; {machine()}; "
              f"{datetime.date.today()}\n")
        print("| what | peer | peer wall s | Velmora wall s | ratio | peer cpu s | Velmora cpu s | ratio "
              "| peer MiB | Velmora MiB | ratio |")
        print("|---|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|")
        for row in rows(options.driver, place, options.workers):
            if row.what.startswith(options.only):
                compare(row, options.pairs, str(Path(options.driver).parent / "peak_memory"))


if __name__ == "__main__":
    main()
