#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The workbench at work: files to MP3 and back, and the tags of one."""
import subprocess

import case
import places
import sounds
from desk import wait_for


def probe(path, *entries):
    """What another program finds in the file."""
    return subprocess.run(["ffprobe", "-v", "error", "-show_entries", ",".join(entries), "-of",
                           "default=noprint_wrappers=1", str(path)], check=True, capture_output=True, text=True).stdout


class Workshop(case.Case):
    def setUp(self):
        super().setUp()
        self.source = self.desk.home / "source"
        self.source.mkdir()

    def names(self, ending):
        return [f"song {number}.{ending}" for number in range(3)]

    def test_files_are_encoded_as_the_settings_say_and_decoded_back(self):
        for number, name in enumerate(self.names("wav")):
            sounds.write_wav(self.source / name, sounds.music(1, seed=number) * 90)
        self.open_workbench("e", "s")
        self.app.press(case.SETTINGS, "radio button", "320")
        self.app.press(case.SETTINGS, "radio button", "22")
        self.app.press(case.SETTINGS, "push button", "Apply")
        wait_for(lambda: self.app.setting("Encoder Settings", "Bitrate") == "320000", "the settings are kept")
        self.app.press(case.SETTINGS, "push button", "Cancel")
        self.app.gone(case.SETTINGS)

        self.open_workbench("e", "w")
        self.to_folder(case.WORKBENCH, "source")
        self.select_rows(case.WORKBENCH, self.names("wav"))
        names, shares = self.watch("Encode", self.desk.music / "song 2.mp3")
        self.assertTrue(names & set(self.names("mp3")), names)
        self.assertTrue(any(0 < share < 1000 for share in shares), shares)
        for name in self.names("mp3"):
            self.assertIn("sample_rate=22050", probe(self.desk.music / name, "stream=sample_rate,bit_rate"))
            self.assertIn("bit_rate=160000", probe(self.desk.music / name, "stream=sample_rate,bit_rate"))

        self.app.press(case.WORKBENCH, "page tab", "Mp3 Decoder")
        self.to_folder(case.WORKBENCH, "Music")
        self.select_rows(case.WORKBENCH, self.names("mp3"))
        self.watch("Decode", self.desk.music / "song 2.wav")
        for name in self.names("mp3"):
            wanted = self.desk.folder / "wanted.wav"
            subprocess.run(["mpg123", "-q", "-w", str(wanted), str(self.desk.music / name)], check=True)
            decoded = (self.desk.music / name).with_suffix(".wav")
            self.assertEqual(decoded.read_bytes(), wanted.read_bytes(), name)
        self.assertEqual([path.name for path in self.desk.music.iterdir() if path.suffix == ".part"], [])

    def watch(self, button, last):
        """Starts a batch and waits for its last file, and for its end. Returns the names and the shares that showed
        meanwhile."""
        self.app.point_at(self.app.control(case.WORKBENCH, "push button", button))
        face = self.app.controls(case.WORKBENCH)
        box = next(control for control in face if control.role == "text")
        bar = next(control for control in face if control.role == "progress bar")
        names, shares = set(), set()
        self.app.click_meanwhile()

        def ended():
            name = box.text()
            names.add(name)
            shares.add(bar.value())
            return last.exists() and not name
        wait_for(ended, "the batch ends", pause=0)
        return names, shares

    def open(self, path):
        self.app.menu(self.main, "f", "o")
        self.app.choose_file("Select a file to open", path, 1)

    def box(self, number):
        """A text box of the tag editor, counted from 0: path, title, artist, album, year, comment."""
        return [c for c in self.app.controls(case.TAGS) if c.role == "text"][number]

    def typed(self, box, text):
        """A busy machine learns too late which letter a key has got."""
        self.app.click_control(box)
        self.app.key("ctrl+a")
        self.app.type(text)
        return box.text() == text

    def test_a_tag_is_refused_while_the_file_plays_and_written_when_it_is_stopped(self):
        wav = sounds.write_wav(self.source / "a.wav", sounds.music(20))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3", "-b", "128", "--tt", "Before")
        self.play(mp3, 1)
        self.wait_clock(1)
        self.app.menu(self.main, "f", "i")
        self.app.window(case.TAGS)
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.window("Error")
        self.app.press("Error", "push button", "OK")
        self.app.gone("Error")
        self.assertIn("TAG:title=Before", probe(mp3, "format_tags"))

        self.app.click(self.main, places.STOP)
        self.wait_label(places.TIME, "0:00")
        self.app.menu(self.main, "f", "i")
        self.app.window(case.TAGS)
        wait_for(lambda: self.box(1).text() == "Before", "the title shows")
        wait_for(lambda: self.typed(self.box(1), "Полёт шмеля"), "the title is typed")
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.gone(case.TAGS)
        wait_for(lambda: "TAG:title=Полёт шмеля" in probe(mp3, "format_tags"), "the title is in the file")
        other = subprocess.run(["mediainfo", "--Inform=General;%Title%", str(mp3)], capture_output=True, text=True, check=True)
        self.assertEqual(other.stdout.strip(), "Полёт шмеля")

    def test_a_long_title_is_shown_whole_and_survives_a_save(self):
        title = "A title of sixty characters, which is more than a box takes."
        self.assertEqual(len(title), 60)
        wav = sounds.write_wav(self.source / "a.wav", sounds.music(2))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3", "-b", "128", "--id3v2-only", "--tt", title)
        self.open(mp3)
        self.app.menu(self.main, "f", "i")
        self.app.window(case.TAGS)
        wait_for(lambda: self.box(1).text() == title, "the title shows whole")
        before = mp3.stat().st_mtime_ns
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.gone(case.TAGS)
        wait_for(lambda: mp3.stat().st_mtime_ns != before, "the tag is written")
        self.assertIn(f"TAG:title={title}", probe(mp3, "format_tags"))

    def test_a_year_of_letters_ends_the_program_at_save_and_says_why(self):
        wav = sounds.write_wav(self.source / "a.wav", sounds.music(1))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3", "-b", "128", "--tt", "Before")
        before = mp3.read_bytes()
        self.open(mp3)
        self.app.menu(self.main, "f", "i")
        self.app.window(case.TAGS)
        wait_for(lambda: self.box(1).text() == "Before", "the title shows")
        wait_for(lambda: self.typed(self.box(4), "abcd"), "the year is typed")
        self.app.press(case.TAGS, "push button", "SAVE")
        self.app.window("Velmora")
        self.app.control("Velmora", "label", "Run-time error '13':\n\nType mismatch")
        self.assert_alive()
        self.app.press("Velmora", "push button", "OK")
        wait_for(lambda: not self.app.alive(), "the program ends")
        self.assertEqual(self.app.process.returncode, 1, self.app.said())
        self.assertEqual(mp3.read_bytes(), before)


if __name__ == "__main__":
    case.main()
