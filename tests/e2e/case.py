"""What the end-to-end tests share: a desk, the program on it, and short words for what a person does."""
import sys
import unittest

import places
from desk import Desk, Velmora, wait_for

MAIN = "Velmora v2.0"
LIST = "Playlist Editor"


class Case(unittest.TestCase):
    build = None

    def setUp(self):
        self.desk = self.enterContext(Desk())
        self.app = Velmora(self.desk, self.build)
        self.start()

    def start(self):
        self.app.start()
        self.main = self.app.window(MAIN)

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

    def assert_alive(self):
        self.assertTrue(self.app.alive(), self.app.said())


def main():
    """The first argument is the build's folder."""
    Case.build = sys.argv.pop(1)
    unittest.main(verbosity=2)
