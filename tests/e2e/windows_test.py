#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The two windows on the desk: how they cling together, and where they are found again."""
import os
import random
import re
import signal
import time
import unittest.mock

import case
import desk
import places
import sounds
from desk import Impatient, wait_for

TITLE = (1200, 60, 300, 100)  # in the title bar, clear of its buttons
LONG = bool(os.environ.get("VELMORA_LONG_TESTS"))
KILLS = 200 if LONG else 5
TICK = 0.06 if LONG else 0.5  # seconds; a busy machine ticks late


class WindowsCase(case.Case):
    def settled(self, window, geometry):
        try:
            wait_for(lambda: self.app.geometry(window)[:2] == geometry, f"the window stands at {geometry}")
        except Impatient as late:
            raise Impatient(f"{late}, but at {self.app.geometry(window)[:2]}") from None

    def beside(self, side, gap):
        """Where the list must stand to be that far from the main window's side."""
        left, top, width, height = self.app.geometry(self.main)
        own_width, own_height = self.app.geometry(self.list)[2:]
        return {"bottom": (left, top + height + gap), "top": (left, top - own_height - gap),
                "right": (left + width + gap, top), "left": (left - own_width - gap, top)}[side]

    def drag_list_to(self, place):
        left, top = self.app.geometry(self.list)[:2]
        self.app.drag(self.list, TITLE, (place[0] - left, place[1] - top))


class Windows(WindowsCase):
    def setUp(self):
        # The windows stand side by side on it: some window managers let none go over the edge.
        self.desk = self.enterContext(desk.Desk(size="1600x900"))
        self.app = self.program(self.desk, self.build)
        self.start()

    def test_the_list_snaps_at_thirteen_pixels_and_not_at_fourteen(self):
        self.list = self.show_list()
        for side in ("bottom", "top", "right", "left"):
            with self.subTest(side):
                self.drag_list_to(self.beside(side, 14))
                self.settled(self.list, self.beside(side, 14))
                self.drag_list_to(self.beside(side, 13))
                self.settled(self.list, self.beside(side, 0))

    def test_a_docked_list_goes_with_the_main_window_also_after_a_restart(self):
        self.list = self.show_list()
        self.drag_list_to(self.beside("bottom", 9))
        self.settled(self.list, self.beside("bottom", 0))
        for start_again in (False, True):
            if start_again:
                wait_for(lambda: self.app.setting("Position PlayList Editor", "POS") == "bottom", "the side is kept")
                self.app.kill()
                self.app.gone(case.LIST)
                self.start()
                self.list = self.app.window(case.LIST)
            left, top = self.app.geometry(self.main)[:2]
            self.app.drag(self.main, TITLE, (-60, 25))
            self.settled(self.main, (left - 60, top + 25))
            self.settled(self.list, self.beside("bottom", 0))

    def test_a_docked_list_can_be_drawn_off_also_after_a_dialog_was_in_front(self):
        self.list = self.show_list()
        self.drag_list_to(self.beside("bottom", 9))
        self.settled(self.list, self.beside("bottom", 0))
        title = "Select .wav/.mp3 files to add to the playlist"
        self.app.menu(self.list, "o", "a")
        self.app.escape(title)
        away = self.beside("bottom", 60)
        self.drag_list_to(away)
        wait_for(lambda: self.app.setting("Position PlayList Editor", "Top") == str(away[1] * 15), "the place is noted")
        self.settled(self.list, away)

    def test_both_windows_minimise_and_come_back(self):
        self.list = self.show_list()
        self.app.click(self.main, places.MINIMIZE)
        for title in (case.MAIN, case.LIST):  # a compositor keeps them drawn
            wait_for(lambda: not self.app.framed(title), f"{title!r} is minimised")
        self.desk.run("xdotool", "windowactivate", self.main)
        for title in (case.MAIN, case.LIST):
            wait_for(lambda: self.app.framed(title), f"{title!r} is back")
        wait_for(lambda: self.desk.active_window() in (self.main, self.list), "the keys go to one of them")

    def test_a_box_that_is_minimised_comes_back_when_the_keys_go_to_the_window_behind_it(self):
        self.app.menu(self.main, "a")
        self.app.press("About Velmora", "push button", "System Info...")
        box = wait_for(lambda: self.app.framed("Velmora"), "the box shows")[0]
        if "MINIMIZE" not in self.desk.run("xprop", "-id", box, "_NET_WM_ALLOWED_ACTIONS"):
            self.skipTest("the window manager minimises no dialog")
        self.app.process.send_signal(signal.SIGSTOP)  # or it might be back before it was seen to go
        self.desk.run("xdotool", "windowminimize", box)
        wait_for(lambda: not self.app.framed("Velmora"), "the box is minimised")
        self.desk.run("xdotool", "windowactivate", self.main)
        self.app.process.send_signal(signal.SIGCONT)
        wait_for(lambda: self.app.framed("Velmora"), "the box is back")
        wait_for(lambda: self.desk.active_window() == str(int(box, 16)), "the box has the keys")
        self.assertTrue(self.app.framed("About Velmora"))
        self.desk.hand("key", "Escape")
        wait_for(lambda: not self.app.framed("Velmora"), "the box is answered")
        self.app.escape("About Velmora")

    def test_a_drag_that_a_closing_window_cuts_off_leaves_the_pointer_free(self):
        self.list = self.show_list()
        x, y = self.app.grip(self.list, TITLE)
        self.app.pull((x, y), (x + 30, y + 20))
        self.desk.hand("key", "alt+F4")
        self.app.gone(case.LIST)
        self.app.release()
        self.list = self.show_list()
        self.drag_list_to(self.beside("bottom", 9))
        self.settled(self.list, self.beside("bottom", 0))

    def asked_of_manager(self, title):
        """What a window asks of the window manager: functions, decorations, and its first kind."""
        window = self.app.window(title)
        hints, kinds = self.desk.run("xprop", "-id", window, "-notype", "_MOTIF_WM_HINTS", "_NET_WM_WINDOW_TYPE").splitlines()
        flags, functions, decorations = (int(word, 16) for word in hints.split("=")[1].split(",")[:3])
        self.assertEqual(flags & 3, 3, title)
        return functions, decorations, kinds.split("=")[1].split(",")[0].strip()

    def assert_dialog(self, title):
        """A dialog window that moves and closes, and asks for no minimise, no maximise. A window manager that offers them all
        the same (openbox takes no such wish) brings nothing into danger: what is minimised comes back when it is shown."""
        functions, decorations, kind = self.asked_of_manager(title)
        self.assertEqual(kind, "_NET_WM_WINDOW_TYPE_DIALOG", title)
        self.assertEqual(functions & (1 | 8 | 16), 0, title)  # all, minimise, maximise
        self.assertEqual(functions & (4 | 32), 4 | 32, title)  # move, close
        self.assertEqual(decorations & (1 | 32 | 64), 0, title)
        self.assertEqual(decorations & 8, 8, title)  # the title
        window = self.app.window(title)
        if "maximum size" in self.desk.run("xprop", "-id", window, "WM_NORMAL_HINTS"):
            self.assertNotIn("MAXIMIZE", self.desk.run("xprop", "-id", window, "_NET_WM_ALLOWED_ACTIONS"), title)

    def test_whatever_speaks_to_the_user_is_a_dialog_without_minimise_and_maximise(self):
        mp3 = sounds.encode(sounds.write_wav(self.desk.folder / "a.wav", sounds.music(2)), self.desk.music / "a.mp3")
        for title, letters in (("Error", "fi"), ("About Velmora", "a")):
            self.app.menu(self.main, *letters)
            self.assert_dialog(title)
            self.app.escape(title)
        self.app.click(self.main, places.PLAY)
        self.assert_dialog("Select a file to open")
        self.app.escape("Select a file to open")
        self.play(mp3, 1)
        self.wait_label(places.LENGTH, "0:02")
        self.app.menu(self.main, "f", "i")
        self.assert_dialog(case.TAGS)
        self.app.escape(case.TAGS)
        self.app.menu(self.main, "o", "w")
        self.assert_dialog("CD Writer")
        self.app.press("CD Writer", "push button", "Yes")
        functions, decorations, kind = self.asked_of_manager(case.WORKBENCH)
        self.assertEqual((functions & 8, decorations & 32, kind), (8, 32, "_NET_WM_WINDOW_TYPE_NORMAL"))
        self.app.press(case.WORKBENCH, "push button", "Settings")
        self.assert_dialog(case.SETTINGS)

    def noted(self):
        place = [self.app.setting("Position StartUp Window", key) for key in ("Left", "Top")]
        return place if all(place) else None

    def test_a_killed_program_is_found_where_it_was_shown_last(self):
        chance = random.Random(1)
        for kill in range(KILLS):
            before = wait_for(self.noted, "a place is noted")
            x, y = self.app.grip(self.main, TITLE)
            left, top = self.app.geometry(self.main)[:2]
            hold = x - left, y - top
            shown = []

            def move(right, down):
                nonlocal x, y
                x, y = min(max(x + right, 100), 1100), min(max(y + down, 50), 700)
                self.desk.hand("mousemove", str(x), str(y))
                shown.append((time.monotonic(), (x - hold[0], y - hold[1])))
                shown.append((time.monotonic(), self.app.geometry(self.main)[:2]))

            move(40 if x < 600 else -40, 0)
            wait_for(lambda: self.noted() not in (None, before), "the first movement is noted")
            for _ in range(chance.randint(1, 12)):
                move(chance.randint(-40, 40), chance.randint(-30, 30))
            self.app.process.send_signal(signal.SIGSTOP)
            stopped = time.monotonic()
            shown.append((stopped, self.app.geometry(self.main)[:2]))
            self.app.kill()
            self.app.release()
            self.start()
            place = wait_for(lambda: self.app.geometry(self.main)[:2], "the window stands")
            # A place is noted on the clock's next tick.
            last = [here for (_, here), (left, _) in zip(shown, [*shown[1:], (stopped, None)]) if left > stopped - TICK]
            self.assertIn(place, last, f"kill {kill}, shown before: {shown}")

    def test_the_close_image_ends_the_program(self):
        self.app.click(self.main, places.CLOSE)
        wait_for(lambda: not self.app.alive(), "the program ends")
        self.assertEqual(self.app.process.returncode, 0)


class BetweenPixels(WindowsCase):
    """On a screen whose pixels are two thirds of the windows' own."""

    def setUp(self):
        self.enterContext(unittest.mock.patch.object(desk, "TWIPS", 10))
        self.desk = self.enterContext(desk.Desk(size="2300x1300", scale=1.5))
        self.app = self.program(self.desk, self.build)
        self.start()

    def drag_main_to(self, place):
        """Where it stands only roughly: a pixel of its own is more than one of the screen's."""
        left, top = self.app.geometry(self.main)[:2]
        self.app.drag(self.main, TITLE, (place[0] - left, place[1] - top))
        wait_for(lambda: all(abs(here - there) < 3 for here, there in zip(self.app.geometry(self.main), place)),
                 "the main window is there")

    def test_a_window_manager_that_counts_in_steps_leaves_the_size_alone(self):
        """KWin and mutter do: a window is as large as its base and so many steps."""
        self.list = self.show_list()
        for window in (self.main, self.list):
            told = self.desk.run("xprop", "-id", window, "WM_NORMAL_HINTS")
            wanted = re.search(r"minimum size: (\d+) by (\d+)", told).groups()
            steps = re.search(r"increment: (\d+) by (\d+)", told)
            base = re.search(r"base size: (-?\d+) by (-?\d+)", told)
            if steps:
                self.assertEqual([(int(size) - int(least)) % int(step)
                                  for size, least, step in zip(wanted, base.groups(), steps.groups())], [0, 0], told)
            self.assertEqual(self.app.geometry(window)[2:], tuple(map(int, wanted)))

    def test_docked_windows_meet_to_the_pixel_wherever_they_stand(self):
        self.list = self.show_list()
        for side in ("bottom", "top", "right", "left"):
            for place in ((750, 450), (751, 451), (752, 452), (753, 454)):
                with self.subTest(f"{side} {place}"):
                    self.drag_list_to(self.beside(side, 90))
                    self.drag_main_to(place)
                    self.drag_list_to(self.beside(side, 9))
                    wait_for(lambda: self.app.geometry(self.list)[:2] == self.beside(side, 0), "they meet")
                    self.drag_main_to((place[0] + 7, place[1] + 5))
                    wait_for(lambda: self.app.geometry(self.list)[:2] == self.beside(side, 0), "they meet after a move, too")


if __name__ == "__main__":
    case.main()
