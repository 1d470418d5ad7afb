#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The windows as a screen reader has them: by an AT-SPI client, without a look and without the mouse."""
import json
import pathlib

import case
import places
import sounds
from desk import wait_for

CLIENT = pathlib.Path(__file__).with_name("atspi_client.py")

# What is no control of its own: a label says its text, and one without a text has nothing to say; the rest only holds others.
SILENT = ("label", "filler", "layered pane", "scroll bar", "separator")


class ScreenReader(case.Case):
    def client(self, *words):
        return self.desk.run("/usr/bin/python3", str(CLIENT), *map(str, words))

    def all_controls(self):
        return json.loads(self.client("list"))

    def value(self, name):
        return json.loads(self.client("value", case.MAIN, name))

    def assert_named(self, window):
        """Every control of it has a name, and no two panels have the same."""
        wait_for(lambda: self.app.windows(window), f"{window!r} shows")
        controls = wait_for(lambda: [c for c in self.all_controls() if c["window"] == window], f"{window!r} is read")
        for control in controls:
            print(f'{control["window"]} | {control["role"]} | {control["name"]}', flush=True)
        self.assertEqual((controls[0]["role"], controls[0]["name"]), ("frame", window))
        self.assertEqual([c for c in controls if not c["name"] and c["role"] not in SILENT], [])
        for box in (c for c in controls if c["role"] == "combo box"):
            self.assertRegex(box["name"], "^Drive ")  # and not what it shows
        panels = [c["name"] for c in controls if c["role"] == "panel"]
        self.assertEqual(len(panels), len(set(panels)))
        return controls

    def test_every_control_of_every_window_has_a_role_and_a_name(self):
        (self.desk.music / "song.wav").write_bytes(b"")
        main = self.assert_named(case.MAIN)
        self.assertEqual(sorted(c["name"] for c in main if c["role"] == "slider"), ["Balance", "Position", "Volume"])
        self.app.menu(self.main, "f", "i")
        self.assert_named("Error")
        self.client("press", "Error", "push button", "OK")
        self.app.gone("Error")
        self.app.menu(self.main, "a")
        self.assert_named("About Velmora")
        self.client("press", "About Velmora", "page tab", "Updates & Bug Fixes")
        self.assert_named("About Velmora")
        self.client("press", "About Velmora", "page tab", "About")
        self.client("press", "About Velmora", "push button", "OK")
        self.show_list()
        self.assert_named(case.LIST)
        self.open_workbench("w")
        for window in (case.WORKBENCH, case.SETTINGS):
            if window == case.SETTINGS:
                self.client("press", case.WORKBENCH, "push button", "Settings")
            for tab in [c["name"] for c in self.assert_named(window) if c["role"] == "page tab"]:
                self.client("press", window, "page tab", tab)
                self.assert_named(window)

    def test_play_of_a_list_is_answered_before_the_list_is_heard(self):
        window = self.show_list()
        song = sounds.encode(sounds.write_wav(self.desk.music / "song.wav", sounds.counter(60 * sounds.RATE, 1)),
                             self.desk.music / "song.mp3")
        self.app.menu(window, "o", "a")
        self.app.choose_file("Select .wav/.mp3 files to add to the playlist", song)
        answers = []
        for _ in range(5):  # the machine may be busy with something else at any one of them
            answers.append(float(self.client("press", case.LIST, "push button", "Play")))
        print("answered after ms:", *answers, flush=True)
        self.assertLess(min(answers), 200)
        self.wait_clock(1)
        self.client("press", case.MAIN, "push button", "Stop")
        self.wait_label(places.TIME, "0:00")
        self.assert_alive()

    def test_a_selected_row_is_the_lists_selection(self):
        window = self.show_list()
        for n in range(3):
            sounds.write_wav(self.desk.music / f"song{n}.wav", sounds.counter(sounds.RATE * 30, 1))
            self.app.menu(window, "o", "a")
            self.app.choose_file("Select .wav/.mp3 files to add to the playlist", self.desk.music / f"song{n}.wav")
        wait_for(lambda: sum(c["role"] == "list item" for c in self.all_controls()) == 3, "the rows stand")
        self.client("select", case.LIST, "Songs", 1)
        self.client("press", case.LIST, "push button", "Play")
        playing = lambda: self.desk.run("playerctl", "--player=velmora", "metadata", "title").strip()
        wait_for(lambda: playing() == "song1.wav", "the selected row plays")

    def test_the_volume_is_set_and_read_back(self):
        for name, least in (("Volume", 0), ("Balance", -100), ("Position", 0)):
            self.assertEqual(self.value(name)[1:], [least, 100, 1])
        self.client("value", case.MAIN, "Volume", 37)
        self.assertEqual(self.value("Volume")[0], 37)
        told = lambda: self.desk.run("playerctl", "--player=velmora", "volume").strip()
        wait_for(lambda: told() == "0.370000", "the panel has it, too")
        self.client("value", case.MAIN, "Volume", 1000)
        self.assertEqual(self.value("Volume")[0], 100)
        self.client("value", case.MAIN, "Balance", -20)
        self.assertEqual(self.value("Balance")[0], -20)

    def test_a_bar_tells_its_new_value_whoever_moves_it(self):
        heard = self.desk.folder / "heard.txt"
        with open(heard, "wb") as output:
            self.desk.spawn("/usr/bin/python3", str(CLIENT), "hear", stdout=output)
        told = lambda: [json.loads(line) for line in heard.read_text().splitlines(keepends=True) if line.endswith("\n")]
        wait_for(lambda: told() == ["ready"], "the reader listens")
        left, top, width, height = places.VOLUME_TRACK
        self.app.focus(self.main)
        self.app.click(self.main, (left + width / 4, top, 15, height))
        wait_for(lambda: len(told()) > 1 and told()[-1] == ["Volume", self.value("Volume")[0]], "the reader hears of the click")
        self.assertLess(told()[-1][1], 100)
        self.client("value", case.MAIN, "Balance", -20)
        wait_for(lambda: told()[-1] == ["Balance", -20], "the reader hears of what it set itself")
        self.play(sounds.write_wav(self.desk.music / "song.wav", sounds.counter(20 * sounds.RATE, 1)), 0)
        wait_for(lambda: told()[-1][0] == "Position" and told()[-1][1] > 2, "the reader hears of the song going on")
        self.assert_alive()


if __name__ == "__main__":
    case.main()
