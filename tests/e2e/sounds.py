"""Signals, files made of them, and what a decoder of its own makes of those."""
import array
import math
import random
import subprocess
import wave

RATE = 44100


def counter(frames, start=0):
    """Tells in each frame which one it is: left n & 0x7fff, right 1 + (n >> 15)."""
    samples = array.array("h")
    for n in range(start, start + frames):
        samples.append(n & 0x7FFF)
        samples.append(1 + (n >> 15))
    return samples


def music(seconds, seed=1, rate=RATE):
    """Never silent, never the same: what a codec has work with."""
    chance = random.Random(seed)
    tones = [(chance.uniform(110, 3000), chance.uniform(0, 6.3)) for _ in range(5)]
    samples = array.array("h")
    for n in range(round(seconds * rate)):
        value = sum(math.sin(2 * math.pi * f * n / rate + p) for f, p in tones) * 2800 + chance.randint(-300, 300)
        samples.append(int(value))
        samples.append(int(-value / 2))
    return samples


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
