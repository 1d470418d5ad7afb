#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A drive chosen by hand in the workbench: the folders and the files of that drive follow."""
import case
import sounds
from desk import wait_for
from reader import SHOWING

FOCUSED = 12  # the bit of a control's state
DRIVES, FOLDERS, FILES = "Drive of the wave files", "Folder of the wave files", "Wave files"


class Drives(case.Case):
    def setUp(self):
        super().setUp()
        inner = self.desk.home / "records"
        inner.mkdir()
        for path in (self.desk.home / "at home.wav", inner / "inside.wav", self.desk.music / "in music.wav"):
            sounds.write_wav(path, sounds.music(0.1))
        self.open_workbench("e", "w")
        self.app.window(case.WORKBENCH)
        self.wait_files(["at home.wav"])

    def list(self, name):
        return self.app.control(case.WORKBENCH, "combo box" if name == DRIVES else "list", name)

    def rows(self, name):
        """Those that stand in that list."""
        left, top, width, height = self.list(name).place()
        rows = [c for c in self.app.controls(case.WORKBENCH) if c.role == "list item" and c.has(SHOWING)]
        return [c for c in rows if left <= c.place()[0] < left + width and top <= c.place()[1] < top + height]

    def folders(self):
        return [row.name.strip() for row in self.rows(FOLDERS)]

    def files(self):
        return [row.name for row in self.rows(FILES)]

    def wait_files(self, names):
        wait_for(lambda: self.files() == names, f"the files are {names}")

    def choose_by_mouse(self, drive):
        """The rows of a list that is open come before those of the lists below it."""
        self.app.click_control(self.list(DRIVES))
        wait_for(lambda: self.app.popups() == 1, "the list of drives is open")
        self.app.click_control(self.wait_row(case.WORKBENCH, str(drive)))
        wait_for(lambda: self.app.popups() == 0, "the list of drives closes")

    def tab_to(self, name):
        def focused():
            if self.list(name).has(FOCUSED):
                return True
            self.app.key("Tab")
            return False
        wait_for(focused, f"Tab leads to {name}", pause=0.3)

    def test_a_drive_is_chosen_by_the_mouse_and_a_folder_on_it(self):
        self.to_folder(case.WORKBENCH, "Music")
        self.wait_files(["in music.wav"])
        self.choose_by_mouse(self.desk.home)
        self.wait_files(["at home.wav"])
        self.to_folder(case.WORKBENCH, "records")
        self.wait_files(["inside.wav"])
        self.choose_by_mouse(self.desk.home)  # the drive that is named already leads back to its root
        self.wait_files(["at home.wav"])
        self.assertEqual(self.folders()[-2:], ["Music", "records"])
        self.choose_by_mouse("/")
        wait_for(lambda: "etc" in self.folders(), "the root's folders are listed")
        self.wait_files([])
        self.assert_alive()

    def test_a_drive_is_chosen_by_keys_and_a_folder_on_it(self):
        self.tab_to(FOLDERS)
        self.app.key("End", "Return")
        self.wait_files(["inside.wav"])
        self.tab_to(DRIVES)
        self.app.key("Down")
        self.wait_files(["at home.wav"])
        self.app.key("Up")
        wait_for(lambda: "etc" in self.folders(), "the root's folders are listed")
        self.wait_files([])
        self.assert_alive()

    def test_escape_closes_an_open_list_of_drives_and_not_the_window(self):
        self.app.click_control(self.list(DRIVES))
        wait_for(lambda: self.app.popups() == 1, "the list of drives is open")
        self.app.key("Escape")
        wait_for(lambda: self.app.popups() == 0, "the list of drives closes")
        self.tab_to(FOLDERS)
        self.assertTrue(self.app.windows(case.WORKBENCH))
        self.app.key("Escape")
        wait_for(lambda: not self.app.windows(case.WORKBENCH), "the next Escape hides the window")


if __name__ == "__main__":
    case.main()
