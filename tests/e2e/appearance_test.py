#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the desktop asks of programs' looks, over a portal of the test's own: more contrast, larger type, or nothing at all."""
import json
import pathlib
import signal
import subprocess

import case
import places
from desk import wait_for

PORTAL = pathlib.Path(__file__).with_name("portal.py")
CONTRAST = {"org.freedesktop.appearance": {"contrast": 1}}
CAPTION = (1920, 480, 780, 255)  # "Title:"


class Appearance(case.Case):
    def start(self):
        """The tests start it themselves: the portal comes first."""

    def start_with(self, settings):
        if settings is not None:
            portal = self.desk.spawn("/usr/bin/python3", str(PORTAL), json.dumps(settings), stdout=subprocess.PIPE, text=True)
            self.addCleanup(portal.stdout.close)
            self.assertEqual(portal.stdout.readline(), "ready\n")
        super().start()

    def pixels(self, place):
        """Rows of the brightness of each pixel of a control, 0 to 255."""
        left, top, width, height = (round(number / 15) for number in place)
        data = subprocess.run(["import", "-window", self.main, "-crop", f"{width}x{height}+{left}+{top}", "+repage",
                               "-colorspace", "Gray", "-depth", "8", "gray:-"], env=self.desk.environment,
                              capture_output=True, check=True).stdout
        return [data[row * width:(row + 1) * width] for row in range(height)]

    def brightest(self):
        return max(max(row) for row in self.pixels(CAPTION))

    def assert_usual(self):
        wait_for(lambda: 120 < self.brightest() < 185, "the captions are quiet")
        wait_for(lambda: 15 < self.ground() < 60, "the ground is as usual")

    def type_height(self):
        """How many rows of pixels the caption's letters take."""
        return sum(max(row) > 110 for row in self.pixels(CAPTION))

    def ground(self):
        """The usual brightness of the face beside the controls."""
        values = sorted(value for row in self.pixels((6150, 600, 240, 1500)) for value in row)
        return values[len(values) // 2]

    def test_without_a_portal_all_is_as_usual(self):
        self.start_with(None)
        self.assert_usual()

    def test_a_desktop_of_high_contrast_gets_the_second_tone(self):
        self.start_with(CONTRAST)
        wait_for(lambda: self.brightest() > 210, "the captions are bright")
        wait_for(lambda: self.ground() < 10, "the ground is dark")
        self.assert_alive()

    def test_the_other_word_for_high_contrast_is_known(self):
        self.start_with({"org.gnome.desktop.a11y.interface": {"high-contrast": True}})
        wait_for(lambda: self.brightest() > 210, "the captions are bright")

    def test_larger_type_grows_and_stays_in_its_place(self):
        self.start_with(None)
        self.assert_usual()
        usual = self.type_height()
        self.app.kill()
        self.start_with({"org.gnome.desktop.interface": {"text-scaling-factor": 1.5}})
        wait_for(lambda: self.type_height() > usual, "the letters are larger")
        rows = self.pixels(CAPTION)
        self.assertLess(max(rows[0]), 110)  # nothing is cut, above or below
        self.assertLess(max(rows[-1]), 110)

    def test_a_portal_that_says_odd_things_changes_nothing(self):
        self.start_with({"org.freedesktop.appearance": {"contrast": "very"},
                         "org.gnome.desktop.interface": {"text-scaling-factor": -3.0},
                         "org.gnome.desktop.a11y.interface": {"high-contrast": 0}})
        self.assert_usual()
        self.app.menu(self.main, "a")
        self.app.escape("About Velmora")
        self.assert_usual()
        self.assert_alive()

    def test_a_portal_that_never_answers_holds_up_nothing(self):
        portal = self.desk.spawn("/usr/bin/python3", str(PORTAL), json.dumps(CONTRAST), stdout=subprocess.PIPE, text=True)
        self.addCleanup(portal.stdout.close)
        self.assertEqual(portal.stdout.readline(), "ready\n")
        portal.send_signal(signal.SIGSTOP)
        super().start()
        self.app.click(self.main, places.PLAY)
        self.app.window("Select a file to open")
        self.assert_alive()


if __name__ == "__main__":
    case.main()
