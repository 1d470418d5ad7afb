#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Where the menus of the two skinned windows open: under the image that opens them, or above it where there is no room."""
import case
import places
from desk import TWIPS, wait_for

IMAGE_HEIGHT = places.MENU[3] // TWIPS
SCREEN = (1280, 900)


class Menu(case.Case):
    def opened(self, window):
        """The open menu's place, before the escape key closes it."""
        self.app.open_menu(window)
        place = self.app.geometry(self.app.popup_windows()[0])
        self.app.key("Escape")
        wait_for(lambda: self.app.popups() == 0, "the menu closes")
        return place

    def move(self, window, place):
        left, top = self.app.geometry(window)[:2]
        self.app.drag(window, (300, 60, 60, 100), (place[0] - left, place[1] - top))
        near = lambda: all(abs(a - b) <= 5 for a, b in zip(self.app.geometry(window), place))
        wait_for(near, f"the window stands at {place}")
        return self.app.geometry(window)[:2]

    def test_a_menu_hangs_under_its_image(self):
        for window in (self.main, self.show_list()):
            left, top = self.app.geometry(window)[:2]
            self.assertEqual(self.opened(window)[:2], (left, top + IMAGE_HEIGHT))

    def test_at_the_lower_edge_of_the_screen_it_stands_on_its_image(self):
        place = (300, SCREEN[1] - 60)
        place = self.move(self.main, place)
        left, top, _, height = self.opened(self.main)
        self.assertEqual((left, top + height), place)

    def test_at_the_side_of_the_screen_it_stays_on_it(self):
        place = self.move(self.main, (SCREEN[0] - 40, 200))
        left, top, width, _ = self.opened(self.main)
        self.assertEqual(top, place[1] + IMAGE_HEIGHT)
        self.assertLessEqual(left + width, SCREEN[0])


if __name__ == "__main__":
    case.main()
