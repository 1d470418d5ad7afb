#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tags in the real program: what the editor shows, what it saves, and into which file."""
import pathlib
import subprocess

import case
import places
import sounds
from desk import run, wait_for

OPEN = "Select a file to open"


class Tags(case.Case):
    def song(self, name, *tags):
        wav = sounds.write_wav(self.desk.folder / "song.wav", sounds.music(2))
        plain = sounds.encode(wav, self.desk.folder / "plain.mp3")
        song = self.desk.music / name
        fields = [word for tag in tags for word in ("-metadata", tag)]
        run("ffmpeg", "-v", "error", "-i", str(plain), "-c", "copy", *fields, str(song))
        return song

    def field(self, song, name):
        read = ["ffprobe", "-v", "error", "-show_entries", f"format_tags={name}", "-of", "csv=p=0", str(song)]
        return subprocess.run(read, capture_output=True, text=True).stdout.strip()

    def choose(self, song):
        self.app.menu(self.main, "f", "o")
        self.app.choose_file(OPEN, song, 1)

    def edit(self):
        self.app.menu(self.main, "f", "i")
        self.app.window(case.TAGS)

    def save(self):
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.gone(case.TAGS)

    def test_a_genre_without_a_row_is_shown_by_name_and_outlives_a_saving(self):
        song = self.song("metal.mp3", "title=Two\nlines", "genre=Heavy Metal")
        self.choose(song)
        self.wait_label(places.GENRE, "Heavy Metal")
        self.wait_label(places.TITLE, "Two lines")
        self.app.click(self.main, places.STOP)
        self.edit()
        self.save()
        wait_for(lambda: song.read_bytes()[-128:-125] == b"TAG", "the tag is saved")
        self.assertEqual(song.read_bytes()[-1], 80)
        self.assertEqual(self.field(song, "genre"), "Heavy Metal")
        self.assertTrue(self.app.alive())

    def test_a_saving_after_a_cancelled_dialog_reaches_no_file_and_says_so(self):
        shown = self.notifications()
        song = self.song("song.mp3", "title=Kept")
        self.choose(song)
        self.wait_label(places.TITLE, "Kept")
        self.app.kill()
        self.start()  # with an MP3 file as the kind used last, and none open
        levels = [path for folder in (self.desk.home, pathlib.Path(self.build)) for path in folder.rglob("conf.mp3")]
        before = [path.read_bytes() for path in (song, *levels)]
        self.app.menu(self.main, "f", "o")
        self.app.escape(OPEN)
        self.edit()
        self.save()
        wait_for(lambda: any("The tag was not saved" in line for line in shown()), "the desktop is told")
        self.assertEqual([path.read_bytes() for path in (song, *levels)], before)
        self.assertTrue(levels)


if __name__ == "__main__":
    case.main()
