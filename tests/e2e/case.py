# SPDX-License-Identifier: GPL-3.0-or-later
"""What the end-to-end tests share: a desk, the program on it, and short words for what a person does."""
import os
import pathlib
import re
import subprocess
import sys
import time
import unittest

import places
import sounds
from desk import Desk, Velmora, wait_for
from reader import SHOWING

MAIN = "Velmora v2.0"
LIST = "Playlist Editor"
WORKBENCH = "Encoder / Decoder / CD => WAV / WAV => CD"
SETTINGS = "Settings"
TAGS = "Edit File Information"

# Of files, from somebody who means harm.
HOSTILE_NAMES = [b'quo"te\'s', b"100%s%n%d%20", b"x" * 251, b"inval\xff\xfeid\xc3", "turned \u202e3pm.exe".encode(),
                 b"<b>bold<img src=x>&amp;<br>", b"-rf", b" blanks ", b"`touch pwned`$(touch pwned);|&", b"&mnemonic&&",
                 b"#EXTM3U", b"http:", b"..."]


class Case(unittest.TestCase):
    build = None
    program = Velmora

    def setUp(self):
        self.desk = self.enterContext(Desk())
        self.app = self.program(self.desk, self.build)
        self.start()

    def start(self):
        self.app.start()
        self.main = self.app.window(MAIN)

    def is_sanitized(self):
        cache = pathlib.Path(self.build) / "CMakeCache.txt"
        return cache.exists() and re.search("^VELMORA_SANITIZE:STRING=.", cache.read_text(), re.MULTILINE) is not None

    def forget_freed_memory(self):
        """A sanitizer keeps it for a while, to see who still goes there."""
        if self.is_sanitized():
            self.app.kill()
            self.app.environment["ASAN_OPTIONS"] = ":".join((self.desk.environment["ASAN_OPTIONS"], "quarantine_size_mb=0",
                                                             "thread_local_quarantine_size_kb=0"))
            self.start()

    def tool(self, name):
        """A program that the build makes for these tests."""
        return pathlib.Path(self.build) / "tests/e2e" / name

    def notifications(self):
        """A desktop that shows notifications: the lines that it got so far, by a function."""
        shown = self.desk.folder / "notifications.txt"
        with open(shown, "wb") as output:
            self.desk.spawn(str(pathlib.Path(self.build) / "tests/notification_service"),
                            self.desk.environment["DBUS_SESSION_BUS_ADDRESS"], stdout=output)
        lines = lambda: shown.read_text(errors="replace").splitlines()
        wait_for(lambda: lines() == ["ready"], "the desktop takes notifications")
        return lambda: lines()[1:]

    def memory(self, kinds=("Dirty", "Clean")):
        """Megabytes of its own, of what it has mapped as well."""
        lines = pathlib.Path(f"/proc/{self.app.process.pid}/smaps_rollup").read_text().splitlines()
        fields = dict(line.split()[:2] for line in lines[1:])
        return sum(int(fields[f"Private_{kind}:"]) for kind in kinds) / 1024

    def written_memory(self):
        """Megabytes that it has written to. Libraries are its own or shared as other programs come and go."""
        return self.memory(["Dirty"])

    def processor_time(self):
        """Seconds, of all its threads."""
        fields = pathlib.Path(f"/proc/{self.app.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def rests(self):
        """Whether it takes less than half of a processor over a second: what polls without a pause takes a whole one."""
        before, start = self.processor_time(), time.monotonic()
        wait_for(lambda: time.monotonic() - start > 1, "a second goes by")
        return self.processor_time() - before < 0.5 * (time.monotonic() - start)

    def assert_at_rest(self):
        self.assertTrue(self.rests(), "it polls without a pause")

    def play(self, path, filter_row):
        """Presses Play with nothing chosen yet, and chooses."""
        self.app.click(self.main, places.PLAY)
        self.app.choose_file("Select a file to open", path, filter_row)

    def label(self, place):
        return self.app.label_at(MAIN, place).name

    def wait_label(self, place, text):
        wait_for(lambda: self.label(place) == text, f"the label reads {text!r}")

    def clock(self):
        """What the player's clock says, in seconds."""
        minutes, seconds = self.label(places.TIME).split(":")
        return 60 * int(minutes) + int(seconds)

    def wait_clock(self, seconds):
        """A busy machine may miss the one second in which the clock says just that."""
        wait_for(lambda: self.clock() >= seconds, f"the clock has come to {seconds} s")

    def show_list(self):
        self.app.menu(self.main, "f", "l")
        return self.app.window(LIST)

    def rows(self, title=LIST):
        return [control.name for control in self.app.controls(title) if control.role == "list item"]

    def wait_rows(self, paths):
        """Every row stands, in this order."""
        return wait_for(lambda: self.rows() == [str(path) for path in paths], f"the rows are {paths}")

    def choose_row(self, number):
        left, top, width, _ = places.LIST
        self.app.click(self.app.window(LIST), (left, top + 60 + number * 225, width, 15))

    @staticmethod
    def lines(rows):
        """What a list of them holds."""
        return "".join(f"{row}\r\n" for row in rows).encode()

    def name_list(self, path, kind=1):
        """While the program is away: its note that this is the list at work."""
        (self.app.folder / "vlmset.ini").write_text(f"[Playlist Editor]\r\nPlayList={path}\r\nFileType={kind}\r\n")

    def keep_list(self, path, rows, kind=1):
        path.write_bytes(self.lines(rows))
        self.name_list(path, kind)

    def copies_of_a_song(self, count):
        """Their paths: a second of music under so many names."""
        wav = sounds.write_wav(self.desk.folder / "a.wav", sounds.music(1))
        mp3 = sounds.encode(wav, self.desk.music / "0.mp3").read_bytes()
        paths = [self.desk.music / f"{number}.mp3" for number in range(count)]
        for path in paths:
            path.write_bytes(mp3)
        return [str(path) for path in paths]

    # The workbench and its settings

    def open_workbench(self, *mnemonics):
        """By the main window's menu; the first time Velmora asks for a CD writer."""
        self.app.menu(self.main, "o", *mnemonics)
        shown = wait_for(lambda: [title for title in (WORKBENCH, SETTINGS, "CD Writer") if self.app.windows(title)],
                         "a window of the workbench shows")
        if "CD Writer" in shown:
            self.app.press("CD Writer", "push button", "Yes")
            self.app.gone("CD Writer")
            wait_for(lambda: self.app.windows(WORKBENCH) or self.app.windows(SETTINGS), "the window shows")

    def to_folder(self, title, name):
        """Opens a folder that a window's directory list shows."""
        row = wait_for(lambda: next((c for c in self.app.controls(title)
                                     if c.role == "list item" and c.name.strip() == name), None), f"the folder {name}")
        self.app.click_control(row, times=2)

    def wait_row(self, title, name):
        return wait_for(lambda: next((c for c in self.app.controls(title)
                                      if c.role == "list item" and c.name == name), None), f"the row {name!r}")

    def select_rows(self, title, names):
        """One by a click, the others by clicks with the control key."""
        self.app.click_control(self.wait_row(title, names[0]))
        self.desk.hand("keydown", "ctrl")
        for name in names[1:]:
            self.app.click_control(self.wait_row(title, name))
        self.desk.hand("keyup", "ctrl")

    def drop(self, paths):
        """Drags the files out of another program's window into the workbench's list. Returns what that one was told."""
        source = self.desk.spawn(str(self.tool("file_source")), *map(str, paths), stdout=subprocess.PIPE, text=True)
        self.addCleanup(source.stdout.close)
        window = self.app.window("Files")
        aside = round(700 * self.desk.scale)
        self.desk.run("xdotool", "windowmove", window, str(aside), "20")
        wait_for(lambda: self.app.geometry(window)[0] > aside - 100, "the other window stands aside")
        left, top, width, height = next(c for c in self.app.controls(WORKBENCH) if c.role == "list").place()
        x, y, _, _ = self.app.geometry(window)
        middle = (left + width // 2, top + height // 2)
        self.desk.hand("mousemove", str(x + 40), str(y + 30), "mousedown", "1")
        self.app.pull((x + 40, y + 30), middle, steps=20)
        for _ in range(20):  # a hand is never quite still, and the two programs talk on each move
            self.app.pull(middle, (middle[0] + 3, middle[1]), steps=1)
            self.app.pull(middle, middle, steps=1)
        self.app.release()
        return source.stdout.readline().strip()

    def check_tracks(self, count):
        """Puts check marks before the first tracks of the disc."""
        rows = wait_for(lambda: [control for control in self.app.controls(WORKBENCH)
                                 if control.role in ("list item", "check box") and control.has(SHOWING)][:count],
                        "the tracks are listed")
        for row in rows:
            left, top, _, height = row.place()
            self.desk.hand("mousemove", str(left + round(9 * self.desk.scale)), str(top + height // 2), "click", "1")

    def assert_alive(self):
        self.assertTrue(self.app.alive(), self.app.said())


def main():
    """The first argument is the build's folder."""
    Case.build = sys.argv.pop(1)
    unittest.main(verbosity=2)
