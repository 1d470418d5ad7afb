#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The file dialogs of the real program: what they cost, what they remember, and which files the desktop's own can give."""
import json
import os
import pathlib
import subprocess
import unittest
import urllib.parse

import case
import places
import sounds
from desk import wait_for

TITLE = "Select a file to open"
CHOOSER = pathlib.Path(__file__).with_name("chooser.py")
PLUGIN = "qt6/plugins/platformthemes/libqxdgdesktopportal.so"


class Dialogs(case.Case):
    def own_memory(self):
        """KB that no other process shares, and that stand in memory."""
        lines = pathlib.Path(f"/proc/{self.app.process.pid}/smaps_rollup").read_text().splitlines()
        return sum(int(line.split()[1]) for line in lines if line.startswith(("Private_Dirty:", "Swap:")))

    def open_and_cancel(self):
        self.app.click(self.main, places.PLAY)
        self.app.escape(TITLE)

    def test_forty_openings_cost_less_than_a_megabyte_in_all(self):
        for number in range(30):
            (self.desk.music / f"song {number}.wav").write_bytes(b"RIFF")
        for _ in range(10):  # what a dialog needs is taken once
            self.open_and_cancel()
        before = self.own_memory()
        for _ in range(40):
            self.open_and_cancel()
        cost = self.own_memory() - before
        print(f"forty openings cost {cost} KB", flush=True)
        if self.is_sanitized():
            self.skipTest("they opened and went; a sanitizer's own memory for each new way to the same call is more than that")
        self.assertLess(cost, 1024)

    def test_size_and_folder_of_the_last_dialog_outlive_the_program(self):
        album = self.desk.home / "An album"
        album.mkdir()
        song = sounds.write_wav(album / "song.wav", sounds.counter(sounds.RATE, 1))
        memory = self.desk.home / ".local/state/Velmora/dialogs"
        self.app.click(self.main, places.PLAY)
        dialog = self.app.window(TITLE)
        self.desk.run("xdotool", "windowsize", "--sync", dialog, "640", "430")
        self.app.choose_file(TITLE, song, 0)
        self.wait_label(places.LENGTH, "0:01")
        wait_for(lambda: memory.exists() and memory.read_text() == f"640 430\n{album}/\n", "it is kept")
        for content, size in ((memory.read_bytes(), (640, 430)), (b"\xff damaged", (720, 460))):
            self.app.kill()
            memory.write_bytes(content)
            self.start()
            self.app.click(self.main, places.PLAY)
            dialog = self.app.window(TITLE)
            wait_for(lambda: self.app.geometry(dialog)[2:] == size, f"the dialog is {size} large")
            self.app.focus(dialog)
            if size == (640, 430):  # the name alone is enough where it begins
                self.app.type("song.wav")
                self.app.key("Return")
                self.app.gone(TITLE)
                self.wait_label(places.LENGTH, "0:01")

    def test_a_file_whose_name_is_no_text_can_be_clicked(self):
        for seconds, name in ((3, b"na\xefve.wav"), (4, b"na\xeeve.wav")):
            path = os.fsencode(self.desk.music) + b"/" + name
            sounds.write_wav(pathlib.Path(os.fsdecode(path)), sounds.counter(seconds * sounds.RATE, 1))
        for shown, length in (("na\ufffdve.wav", "0:04"), ("na\ufffd\ufffdve.wav", "0:03")):
            self.app.menu(self.main, "f", "o")
            row = wait_for(lambda: next((c for c in self.app.controls(TITLE) if c.name == shown), None), f"{shown} shows")
            self.app.click_control(row, times=2)
            self.app.gone(TITLE)
            self.wait_label(places.LENGTH, length)


@unittest.skipUnless(any(pathlib.Path("/usr/lib").glob(f"*/{PLUGIN}")), "the library's way to the desktop's dialog is not there")
class DesktopsOwn(case.Case):
    def start(self):
        self.app.environment = {"QT_QPA_PLATFORMTHEME": "xdgdesktopportal"}
        told = self.desk.folder / "asked.txt"
        with open(told, "wb") as output:
            self.chooser = self.desk.spawn("/usr/bin/python3", str(CHOOSER), stdin=subprocess.PIPE, stdout=output, text=True)
        self.addCleanup(self.chooser.stdin.close)
        self.told = lambda: told.read_text().splitlines()
        wait_for(lambda: self.told() == ["ready"], "the desktop has a file dialog")
        super().start()

    def ask(self):
        before = len(self.told())
        self.app.menu(self.main, "f", "o")
        wait_for(lambda: self.told()[before:] == [TITLE], "the desktop is asked for a file")

    def chosen(self, path, seconds):
        """The program may not listen yet when it is told the first time."""
        print(json.dumps(["file://" + urllib.parse.quote(path)]), file=self.chooser.stdin, flush=True)
        return self.label(places.LENGTH) == f"0:0{seconds}"

    def test_a_file_of_any_name_can_be_chosen_there(self):
        for number, name in enumerate(case.HOSTILE_NAMES):
            path = os.fsencode(self.desk.music) + b"/" + name + b".wav"
            sounds.write_wav(pathlib.Path(os.fsdecode(path)), sounds.counter((number % 9 + 1) * sounds.RATE, 1))
            self.ask()
            wait_for(lambda: self.chosen(path, number % 9 + 1), f"{name} is open")


if __name__ == "__main__":
    case.main()
