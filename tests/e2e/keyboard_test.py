#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A person without a mouse: a day's jobs, by keys alone."""
import subprocess

import case
import places
import sounds
from desk import wait_for

FOCUSED = 12  # the bit of a control's state
OPEN = "Select a file to open"
ADD = "Select .wav/.mp3 files to add to the playlist"


class Keyboard(case.Case):
    def song(self, number, seconds):
        wav = sounds.write_wav(self.desk.folder / "source.wav", sounds.music(1, seed=number) * seconds)
        return sounds.encode(wav, self.desk.music / f"song{number}.mp3", "-b", "192", "--tt", f"Song {number}")

    def in_front(self, title):
        def name():
            found = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], env=self.desk.environment,
                                   capture_output=True, text=True)
            return found.stdout.strip()
        wait_for(lambda: name() == title, f"{title!r} is in front")

    def menu(self, title, *letters):
        self.in_front(title)
        self.app.key("F10")
        for depth, letter in enumerate(letters, 1):
            wait_for(lambda: self.app.popups() >= depth, f"menu {depth} is open")
            self.app.key(letter)
        wait_for(lambda: self.app.popups() == 0, "the menus close")

    def focused(self, title):
        """The current row of a list says that it has the keys, also while another control has them."""
        return next((c for c in self.app.controls(title) if c.has(FOCUSED) and c.role != "list item"), None)

    def tab_to(self, title, what, fits, key="Tab"):
        """Presses Tab until the control that has the keys fits."""
        self.in_front(title)
        for _ in range(25):
            at = self.focused(title)
            if at and fits(at):
                return at
            self.app.key(key)
            wait_for(lambda: (now := self.focused(title)) and (at is None or now.place() != at.place()),
                     "the keys go to another control")
        self.fail(f"no Tab leads to {what}")

    def to_button(self, title, name):
        self.tab_to(title, name, lambda c: (c.role, c.name) == ("push button", name))

    def to_thumb(self, track):
        """The thumb that stands on that track."""
        left, top, _, _ = self.app.geometry(self.main)
        row = top + track[1] // 15

        def stands_there(control):
            x, y, _, height = control.place()
            return control.role == "slider" and y <= row < y + height and left + track[0] // 15 <= x
        self.tab_to(case.MAIN, "the thumb", stands_there)

    def choose(self, title, text, filter_row=0):
        """The file dialog's own keys: its name box, then the kinds of files, then the name."""
        self.app.window(title)
        self.in_front(title)
        if filter_row:
            self.tab_to(title, "the kinds of files", lambda c: c.role == "combo box" and "Files" in c.name + self.chosen(c))
            self.app.key("Home", *["Down"] * filter_row)
        self.app.key("alt+n")
        self.app.key("ctrl+a")
        self.app.type(text)
        self.app.key("Return")
        self.app.gone(title)

    @staticmethod
    def chosen(combo):
        try:
            return combo.text()
        except Exception:
            return ""

    def seconds(self):
        minutes, seconds = self.label(places.TIME).split(":")
        return int(minutes) * 60 + int(seconds)

    def silent(self, recording):
        """Nothing was heard for a fifth of a second."""
        frames = recording.frames()
        return len(frames) // 2 - sounds.last_sound(frames) > sounds.RATE / 5

    def test_a_day_without_a_mouse(self):
        long = self.song(0, 90)
        recording = self.desk.record()
        self.menu(case.MAIN, "f", "o")
        self.choose(OPEN, str(long), filter_row=1)
        self.wait_label(places.TITLE, "Song 0")

        self.to_button(case.MAIN, "Play")
        self.app.key("space")
        wait_for(lambda: self.seconds() >= 1, "it plays")
        self.to_button(case.MAIN, "Pause")
        self.app.key("Return")
        wait_for(lambda: self.silent(recording), "the sound halts")
        self.app.key("Return")
        wait_for(lambda: not self.silent(recording), "the sound goes on")

        self.to_thumb(places.POSITION_TRACK)
        self.app.key(*["Page_Up"] * 5)
        wait_for(lambda: 44 <= self.seconds() < 89, "it plays on from the middle")

        self.to_thumb(places.VOLUME_TRACK)
        self.app.key("Home")
        wait_for(lambda: self.silent(recording), "nothing is heard")
        self.app.key("End")
        wait_for(lambda: not self.silent(recording), "it is heard again")
        recording.stop()
        self.to_button(case.MAIN, "Stop")
        self.app.key("space")
        self.wait_label(places.TIME, "0:00")

        self.run_a_list()
        self.edit_a_tag()
        self.encode_a_file()

        self.menu(case.MAIN, "f", "x")
        wait_for(lambda: not self.app.alive(), "the program ends")
        self.assertEqual(self.app.process.returncode, 0)

    def run_a_list(self):
        songs = [self.song(number, 8) for number in (1, 2, 3)]
        self.menu(case.MAIN, "f", "l")
        self.app.window(case.LIST)
        self.menu(case.LIST, "o", "a")
        self.choose(ADD, " ".join(f'"{song}"' for song in songs))
        copy = self.app.folder / "deflist.vlp"
        wait_for(lambda: copy.exists() and copy.read_text().split() == [str(song) for song in songs], "three rows stand")

        self.tab_to(case.LIST, "the list", lambda c: c.role == "list")
        self.app.key("Down", "Home")
        self.to_button(case.LIST, "Play")
        self.app.key("space")
        for number in (1, 2, 3):
            self.wait_label(places.TITLE, f"Song {number}")
            wait_for(lambda: 1 <= self.seconds() <= 5, "it plays, and the clock is no longer that of the song before it")
        wait_for(lambda: self.seconds() == 0, "the run has ended")
        self.to_button(case.LIST, "Close Playlist Editor")
        self.app.key("Return")
        self.app.gone(case.LIST)

    def edit_a_tag(self):
        self.menu(case.MAIN, "f", "i")
        self.app.window(case.TAGS)
        self.tab_to(case.TAGS, "the title", lambda c: c.role == "text" and c.text() == "Song 3")
        self.app.key("ctrl+a")
        self.app.type("By keys alone")
        self.app.key("alt+s")
        self.app.gone(case.TAGS)
        read = ("ffprobe", "-v", "error", "-show_entries", "format_tags=title", "-of", "csv=p=0")
        wait_for(lambda: self.desk.run(*read, str(self.desk.music / "song3.mp3")).strip() == "By keys alone", "the tag is saved")

    def encode_a_file(self):
        sounds.write_wav(self.desk.home / "tone.wav", sounds.music(2))
        self.menu(case.MAIN, "o", "e", "w")
        shown = wait_for(lambda: [title for title in (case.WORKBENCH, "CD Writer") if self.app.windows(title)],
                         "the workbench or its question shows")
        if "CD Writer" in shown:
            self.in_front("CD Writer")
            self.app.key("Return")
            self.app.gone("CD Writer")
        self.app.window(case.WORKBENCH)
        self.wait_row(case.WORKBENCH, "tone.wav")
        files = [c for c in self.app.controls(case.WORKBENCH) if c.role == "list"][-1].place()
        self.tab_to(case.WORKBENCH, "the files", lambda c: c.place() == files)
        self.app.key("Home", "space", "alt+e")
        made = self.desk.music / "tone.mp3"
        wait_for(made.exists, "the file is encoded")
        self.assertAlmostEqual(len(sounds.decode(made)) / 2 / sounds.RATE, 2, delta=0.1)
        self.app.key("Escape")
        self.app.gone(case.WORKBENCH)


if __name__ == "__main__":
    case.main()
