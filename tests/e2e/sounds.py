# SPDX-License-Identifier: GPL-3.0-or-later
"""Signals, files made of them, and what a decoder of its own makes of those."""
import array
import random
import subprocess
import sys
import wave

RATE = 44100


def stereo(left, right):
    """Of two channels."""
    samples = array.array("h", bytes(4 * len(left)))
    samples[0::2], samples[1::2] = left, right
    return samples


def counter(frames, start=0):
    """Tells in each frame which one it is: left n & 0x7fff, right 1 + (n >> 15)."""
    count = 1 << 15
    end = start + frames
    left, right = array.array("h"), array.array("h")
    for high in range(start // count, -(-end // count)):
        first, last = max(start - high * count, 0), min(end - high * count, count)
        left.extend(range(first, last))
        right.extend(array.array("h", [1 + high]) * (last - first))
    return stereo(left, right)


def music(seconds, seed=1, rate=RATE):
    """Never silent, never the same: what a codec has work with."""
    chance = random.Random(seed)
    frames = round(seconds * rate)
    low, high = bytes(n | 1 for n in range(256)), bytes((n % 64 - 32) % 256 for n in range(256))

    def channel():
        data = bytearray(2 * frames)
        data[0::2] = chance.randbytes(frames).translate(low)
        data[1::2] = chance.randbytes(frames).translate(high)
        values = array.array("h", data)
        if sys.byteorder == "big":
            values.byteswap()
        return values
    return stereo(channel(), channel())


def write_wav(path, samples, rate=RATE):
    with wave.open(str(path), "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(samples.tobytes())
    return path


def read_wav(path):
    with wave.open(str(path), "rb") as file:
        return array.array("h", file.readframes(file.getnframes()))


def encode(wav, mp3, *options):
    subprocess.run(["lame", "--quiet", *(options or ["-b", "192"]), str(wav), str(mp3)], check=True)
    return mp3


def decode(mp3):
    """What libmpg123 makes of the file: stereo, 16 bit, gapless."""
    raw = subprocess.run(["mpg123", "-q", "-s", "--stereo", "-e", "s16", "-r", "44100", str(mp3)], check=True,
                         capture_output=True).stdout
    return array.array("h", raw)


def find(recording, wanted, start=0):
    """The frame at which `wanted` begins in the recording, both interleaved stereo; None when it does not stand there."""
    frame_bytes = 4
    hay, needle = recording.tobytes(), wanted.tobytes()
    at = hay.find(needle, start * frame_bytes)
    while at >= 0 and at % frame_bytes:
        at = hay.find(needle, at + 1)
    return None if at < 0 else at // frame_bytes


def trimmed(samples):
    """Without the silence before and behind."""
    first = next((i for i, value in enumerate(samples) if value), len(samples)) // 2 * 2
    last = len(samples)
    while last > first and samples[last - 1] == 0:
        last -= 1
    return samples[first:last + last % 2]


def head(wanted):
    """So much of it as tells it from everything else."""
    return wanted[:400]


def begin(recording, wanted, start=0):
    """The frame at which `wanted` begins to be heard."""
    return find(recording, head(wanted), start)


def pieces(recording, wanted, start=0):
    """How `wanted` was heard, every sample of it in order, with silence in it where there was a pause or the machine was
    too busy: the frames at which its pieces begin, and where the last one ends. None when it was not, or not yet.
    """
    at, done, starts = begin(recording, wanted, start), 0, []
    while at is not None and 2 * at < len(recording):
        starts.append(at)
        same = common(recording, 2 * at, wanted, 2 * done) // 2
        done, at = done + same, at + same
        if 2 * done >= len(wanted) - 1:
            return starts, at
        if same == 0:
            return None
        while 2 * at < len(recording) and recording[2 * at] == recording[2 * at + 1] == 0:
            at += 1
    return None


def common(one, from_one, other, from_other):
    """How many values are the same from there on."""
    length = min(len(one) - from_one, len(other) - from_other)
    low, high = 0, length
    while low < high:
        middle = (low + high + 1) // 2
        if one[from_one + low:from_one + middle] == other[from_other + low:from_other + middle]:
            low = middle
        else:
            high = middle - 1
    return low


def last_sound(recording):
    """The frame after the last one that is not silence."""
    last = len(recording)
    while last and not recording[last - 1]:
        last -= 1
    return (last + 1) // 2
