#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the desktop asks of programs' looks, over a portal of the test's own: more contrast, larger type, or nothing at all."""
import json
import pathlib
import signal
import subprocess

import case
import places
from desk import Desk, wait_for

PORTAL = pathlib.Path(__file__).with_name("portal.py")
CONTRAST = {"org.freedesktop.appearance": {"contrast": 1}}
LARGE = {"org.gnome.desktop.interface": {"text-scaling-factor": 1.3}}
USUAL = {"org.freedesktop.appearance": {"contrast": 0}, "org.gnome.desktop.interface": {"text-scaling-factor": 1.0}}
WINDOWS = (case.MAIN, case.LIST, case.WORKBENCH, case.SETTINGS)
ASIDE = {case.WORKBENCH: (20, 30), case.SETTINGS: (20, 530)}
CAPTION = (1920, 480, 780, 255)  # "Title:"


class Appearance(case.Case):
    def setUp(self):
        self.desk = self.enterContext(Desk(size="2560x1000"))  # with room for all windows beside each other
        self.app = self.program(self.desk, self.build)

    def start_with(self, settings):
        if settings is not None:
            self.open_portal(settings)
        super().start()

    def open_portal(self, settings):
        self.portal = self.desk.spawn("/usr/bin/python3", str(PORTAL), json.dumps(settings), stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.portal.stdin.close)
        self.addCleanup(self.portal.stdout.close)
        self.assertEqual(self.portal.stdout.readline(), "ready\n")

    def change(self, settings):
        print(json.dumps(settings), file=self.portal.stdin, flush=True)

    def open_windows(self):
        """The list, the workbench and its settings, none over another or over the player."""
        if not self.app.windows(case.LIST):  # it comes by itself where it stood
            self.show_list()
        self.open_workbench("w")
        self.app.press(case.WORKBENCH, "push button", "Settings")
        for title, (left, top) in ASIDE.items():
            self.desk.run("xdotool", "windowmove", self.app.window(title), str(left), str(top))
            wait_for(lambda: abs(self.app.geometry(self.app.window(title))[1] - top) < 30, "it stands aside")

    def pictures(self):
        return [subprocess.run(["import", "-window", self.app.window(title), "-depth", "8", "rgb:-"],
                               env=self.desk.environment, capture_output=True, check=True).stdout for title in WINDOWS]

    def settled_pictures(self):
        """As they are once everything is drawn."""
        last = []

        def same():
            last.append(self.pictures())
            return last[-2:] == [last[-1]] * 2

        wait_for(same, "the windows are drawn", pause=0.3)
        return last[-1]

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

    def test_a_change_of_the_desktop_is_taken_up_while_windows_show(self):
        """They look as if the program had been started so, and again as before when the desktop goes back."""
        self.start_with({**CONTRAST, **LARGE})
        self.open_windows()
        wait_for(lambda: self.brightest() > 210, "the captions are bright")
        wanted = self.settled_pictures()
        self.app.kill()
        self.desk.end(self.portal)
        self.start_with(USUAL)
        self.open_windows()
        self.assert_usual()
        usual = self.settled_pictures()
        self.change({**CONTRAST, **LARGE})
        wait_for(lambda: self.pictures() == wanted, "all windows look as if started so")
        self.change(USUAL)
        wait_for(lambda: self.pictures() == usual, "all windows look as before")
        self.assert_alive()

    def test_who_is_not_the_portal_changes_nothing(self):
        """Others can say the portal's words: then the portal is asked, and what it says holds."""
        self.start_with(USUAL)
        self.assert_usual()
        for _ in range(3):
            self.desk.run("dbus-send", "--session", "/org/freedesktop/portal/desktop",
                          "org.freedesktop.portal.Settings.SettingChanged", "string:org.freedesktop.appearance",
                          "string:contrast", "variant:uint32:1")
        usual = self.type_height()
        self.change(LARGE)  # comes behind them
        wait_for(lambda: self.type_height() > usual, "the letters are larger")
        wait_for(lambda: 15 < self.ground() < 60, "the ground is as usual")

    def test_a_portal_that_never_answers_holds_up_nothing(self):
        self.open_portal(CONTRAST)
        self.portal.send_signal(signal.SIGSTOP)
        super().start()
        self.app.click(self.main, places.PLAY)
        self.app.window("Select a file to open")
        self.assert_alive()


if __name__ == "__main__":
    case.main()
