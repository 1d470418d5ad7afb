#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A disk that takes two seconds to keep anything for good: the windows go on meanwhile, and a kill loses nothing whole."""
import case
import places
from desk import wait_for


class SlowDisk(case.Case):
    def start(self):
        self.paths = self.copies_of_a_song(4)
        self.working_copy = self.app.folder / "deflist.vlp"
        self.saved = self.desk.home / "mine.vlp"
        self.keep_list(self.saved, self.paths, kind=2)
        self.forces = self.desk.folder / "forces.txt"
        self.app.environment = {"LD_PRELOAD": str(self.tool("libslow_forces.so")), "VELMORA_FORCES": str(self.forces)}
        super().start()
        self.list = self.show_list()
        self.wait_rows(self.paths)

    def noted(self):
        return self.forces.read_text().splitlines() if self.forces.exists() else []

    def move_up(self, number):
        self.choose_row(number)
        self.app.click(self.list, places.LIST_UP)

    def move_window(self):
        before = self.app.geometry(self.main)
        self.app.drag(self.main, places.TITLE_BAR, (60, 40))
        wait_for(lambda: self.app.geometry(self.main) != before, "the window has moved")

    def save(self, rows):
        self.app.menu(self.list, "f", "s")
        wait_for(lambda: self.saved.read_bytes() == self.lines(rows), "the list is saved")

    def save_as(self, path, rows):
        self.app.menu(self.list, "f", "a")
        self.app.choose_file("Enter a filename", path)
        wait_for(lambda: path.exists() and path.read_bytes() == self.lines(rows), "the list is saved under another name")

    def apply_a_setting(self):
        self.open_workbench("e", "s")
        self.app.press(case.SETTINGS, "radio button", "320")
        self.app.press(case.SETTINGS, "push button", "Apply")
        wait_for(lambda: self.app.setting("Encoder Settings", "Bitrate") == "320000", "the setting is kept")
        self.app.press(case.SETTINGS, "push button", "Cancel")
        self.app.gone(case.SETTINGS)

    def test_the_windows_do_not_wait_for_it_and_a_kill_leaves_every_file_old_or_new(self):
        rows = [self.paths[number] for number in (1, 0, 2, 3)]
        self.move_window()
        self.move_up(1)
        wait_for(lambda: self.working_copy.exists() and self.working_copy.read_bytes() == self.lines(rows), "a row is moved")
        self.app.click(self.list, places.LIST_PLAY)
        wait_for(lambda: self.label(places.BITRATE) != "", "the list runs")
        self.save(rows)
        self.app.click(self.list, places.LIST_STOP)
        self.save_as(self.desk.home / "other.vlp", rows)
        self.apply_a_setting()
        self.assertIn("worker", wait_for(self.noted, "something is kept for good"))
        self.assertEqual([line for line in self.noted() if line != "worker"], [])

        self.move_up(3)
        self.app.kill()
        moved = [rows[number] for number in (0, 1, 3, 2)]
        self.assertIn(self.working_copy.read_bytes(), (self.lines(rows), self.lines(moved)))
        self.assertEqual(self.saved.read_bytes(), self.lines(rows))
        self.app.environment = {}
        self.app.start()
        self.assertEqual(self.app.setting("Encoder Settings", "Bitrate"), "320000")


if __name__ == "__main__":
    case.main()
