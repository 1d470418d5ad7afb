"""What the end-to-end tests share: a desk, the program on it, and short words for what a person does."""
import pathlib
import sys
import unittest

import places
from desk import Desk, Velmora, wait_for

MAIN = "Velmora v2.0"
LIST = "Playlist Editor"
WORKBENCH = "Encoder / Decoder / CD => WAV / WAV => CD"
SETTINGS = "Settings"
TAGS = "Edit File Information"


class Case(unittest.TestCase):
    build = None

    def setUp(self):
        self.desk = self.enterContext(Desk())
        self.app = Velmora(self.desk, self.build)
        self.start()

    def start(self):
        self.app.start()
        self.main = self.app.window(MAIN)

    def tool(self, name):
        """A program that the build makes for these tests."""
        return pathlib.Path(self.build) / "tests/e2e" / name

    def play(self, path, filter_row):
        """Presses Play with nothing chosen yet, and chooses."""
        self.app.click(self.main, places.PLAY)
        self.app.choose_file("Select a file to open", path, filter_row)

    def label(self, place):
        return self.app.label_at(MAIN, place).name

    def wait_label(self, place, text):
        wait_for(lambda: self.label(place) == text, f"the label reads {text!r}")

    def show_list(self):
        self.app.menu(self.main, "f", "l")
        return self.app.window(LIST)

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
        self.desk.run("xdotool", "keydown", "ctrl")
        for name in names[1:]:
            self.app.click_control(self.wait_row(title, name))
        self.desk.run("xdotool", "keyup", "ctrl")

    def assert_alive(self):
        self.assertTrue(self.app.alive(), self.app.said())


def main():
    """The first argument is the build's folder."""
    Case.build = sys.argv.pop(1)
    unittest.main(verbosity=2)
