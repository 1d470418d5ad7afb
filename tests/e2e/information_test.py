#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the main window tells of a file: its information, and where in it the sound is."""
import os
import subprocess

import case
import places
import sounds
from desk import wait_for

LONG = bool(os.environ.get("VELMORA_LONG_TESTS"))
WORDS = ["--tt", "A title", "--ta", "An artist", "--tl", "An album", "--tg", "Jazz"]


class Information(case.Case):
    def open(self, path):
        self.app.menu(self.main, "f", "o")
        self.app.choose_file("Select a file to open", path, 1)

    def told(self):
        rows = (places.TITLE, places.ARTIST, places.ALBUM, places.GENRE, places.LENGTH, places.BITRATE, places.FREQUENCY)
        return tuple(self.label(row) for row in rows)

    def make(self, name, rate, *options, channels=2):
        wav = self.desk.music / "source.wav"
        subprocess.run(["ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                        f"anoisesrc=sample_rate={rate}:duration=5", "-ac", str(channels), str(wav)], check=True)
        return sounds.encode(wav, self.desk.music / name, *options)

    def test_the_labels_tell_what_the_file_is(self):
        blank = ("", "", "", "")
        tagged = ("A title", "An artist", "An album", "Jazz")
        for name, rate, options, words, bitrate, frequency in (
                ("cbr", 44100, ["-b", "192"], blank, "192", "44.1"),
                ("vbr with a header", 44100, ["-V", "2"], blank, None, "44.1"),
                ("vbr without one", 44100, ["-V", "2", "-t"], blank, None, "44.1"),
                ("22.05 kHz", 22050, ["-b", "64"], blank, "64", "22.05"),
                ("mono", 44100, ["-b", "96", "-m", "m"], blank, "96", "44.1"),
                ("old tag", 44100, ["-b", "128", "--id3v1-only", *WORDS], tagged, "128", "44.1"),
                ("new tag", 44100, ["-b", "128", "--id3v2-only", *WORDS], tagged, "128", "44.1"),
                ("utf-16 tag", 44100, ["-b", "128", "--id3v2-only", "--id3v2-utf16", *WORDS], tagged, "128", "44.1")):
            with self.subTest(name):
                made = self.make(name.replace(" ", "") + ".mp3", rate, *options, channels=1 + (name != "mono"))
                self.open(made)
                told = wait_for(lambda: self.told() if self.told()[6] else None, "the information shows")
                self.assertEqual(tuple(word.strip() for word in told[:4]), words)
                self.assertIn("0:05", told[4])
                self.assertEqual(told[6], frequency)
                if bitrate:
                    self.assertEqual(told[5], bitrate)
                else:
                    mean = made.stat().st_size * 8 / 5000
                    self.assertAlmostEqual(int(told[5]), mean, delta=mean / 20)
                self.app.kill()
                self.start()

    def test_a_tag_is_not_saved_in_a_pause(self):
        wav = sounds.write_wav(self.desk.music / "a.wav", sounds.counter(60 * sounds.RATE, 1))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3")
        before = mp3.read_bytes()
        self.play(mp3, 1)
        self.wait_clock(1)
        self.app.click(self.main, places.PAUSE)
        self.app.menu(self.main, "f", "i")
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.window("Error")
        self.app.gone(case.TAGS)
        self.assertEqual(mp3.read_bytes(), before)

    def test_the_clock_goes_with_the_sound(self):
        seconds = 180 if LONG else 8
        wav = sounds.write_wav(self.desk.music / "a.wav", sounds.counter(seconds * sounds.RATE, 1))
        recording = self.desk.record()
        self.play(wav, 0)
        clock = self.app.label_at(case.MAIN, places.TIME)
        worst, shown = 0, "0:00"
        while shown != f"{(seconds - 1) // 60}:{(seconds - 1) % 60:02}":
            before = shown
            shown = wait_for(lambda: clock.now() if clock.now() != before else None, "the clock moves", pause=0.002)
            heard = recording.heard_second()
            minutes, rest = shown.split(":")
            worst = max(worst, abs(heard - (int(minutes) * 60 + int(rest))))
        print(f"the clock was off by at most {worst * 1000:.0f} ms", flush=True)
        self.assertLess(worst, 0.1 if LONG else 1)


if __name__ == "__main__":
    case.main()
