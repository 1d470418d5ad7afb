#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The list under fire: killed at any moment of an edit, a save, a move or a run, it comes back as it was before or after."""
import contextlib
import os
import random
import subprocess
import threading
import time

import case
import places
from desk import wait_for

KILLS = int(os.environ.get("VELMORA_TEST_KILLS", "12"))
WEIGHTS = [int(weight) for weight in os.environ.get("VELMORA_TEST_WEIGHTS", "4,3,2,1,2").split(",")]
SAVE_DIALOG = "Enter a filename"


class ListUnderFire(case.Case):
    def start(self):
        super().start()
        if not self.app.windows(case.LIST):
            self.show_list()
        self.list = self.app.window(case.LIST)

    def setUp(self):
        super().setUp()
        self.chance = random.Random(int(os.environ.get("VELMORA_TEST_SEED", "1")))
        self.paths = self.copies_of_a_song(8)
        self.saved = {}  # what each list file may hold
        self.saving = {}  # what the save under way writes, by the file

    def refill(self, name=None):
        """While the program is away: a working copy with every row, as the program writes it, or a list of that name."""
        self.keep_list(name or self.app.folder / "deflist.vlp", self.paths, kind=2)

    def move_up(self, rows):
        number = self.chance.randrange(1, len(rows))
        self.choose_row(number)
        return lambda: self.app.click(self.list, places.LIST_UP), \
            rows[:number - 1] + [rows[number], rows[number - 1]] + rows[number + 1:]

    def remove(self, rows):
        number = self.chance.randrange(len(rows))
        self.choose_row(number)
        return lambda: self.app.key("Delete"), rows[:number] + rows[number + 1:]

    def run_list(self, rows):
        return lambda: self.app.click(self.list, places.LIST_PLAY), rows

    def save(self, rows):
        name = self.desk.home / f"list {self.chance.randrange(3)}.vlp"
        self.app.menu(self.list, "f", "a")
        self.app.window(SAVE_DIALOG)
        self.app.focus(self.app.window(SAVE_DIALOG))
        self.app.key("ctrl+a")
        self.app.type(str(name))
        before = name.read_bytes() if name.exists() else None
        self.expect(name, before, rows)

        def act():
            self.app.key("Return")
            if before is not None:
                self.app.key("alt+y")  # the question whether to write over it
        return act, rows

    def expect(self, name, before, rows):
        self.saving = {name: self.lines(rows)}
        self.saved[name] = {before, *self.saving.values()}

    def save_under_its_name(self, _):
        name = self.desk.home / "named list.vlp"
        self.begin(name)
        move, rows = self.move_up(self.paths)
        move()
        wait_for(lambda: self.rows() == rows, "the row moves up")
        wait_for(lambda: (self.app.folder / "deflist.vlp").read_bytes() == self.lines(rows), "the working copy is written")
        self.expect(name, self.lines(self.paths), rows)
        self.app.open_menu(self.list, "f")
        return lambda: self.app.key("s"), rows

    def test_the_list_is_never_lost(self):
        counts = {}
        for kill in range(KILLS):
            rows = wait_for(lambda: (lambda shown: shown if len(shown) > 2 else None)(self.rows()) if kill else self.begin(),
                            "rows stand")
            kind = self.chance.choices((self.move_up, self.remove, self.run_list, self.save, self.save_under_its_name),
                                       WEIGHTS)[0]
            self.saving = {}
            act, after = kind(rows)
            acting = threading.Thread(target=self.attempt, args=[act])
            acting.start()
            time.sleep(self.chance.uniform(0, 0.04))
            self.app.kill()
            acting.join()
            for name, wanted in self.saved.items():
                held = name.read_bytes() if name.exists() else None
                self.assertIn(held, wanted, name)
                self.saved[name] = {held}
            unnamed = "PlayList=\n" in (self.app.folder / "vlmset.ini").read_text().replace("\r", "")
            self.start()
            if unnamed and kind == self.save:  # what a list without a name comes to while its name is asked for
                self.begin()
                continue
            shown = wait_for(self.rows, f"the rows show again after kill {kill} during {kind.__name__}")
            self.assertIn(shown, (rows, after), f"kill {kill} during {kind.__name__}")
            for folder in (self.app.folder, self.desk.home, self.desk.music):
                self.assertEqual([path for path in folder.iterdir() if path.name.endswith(".part")], [])
            kept = shown == after and all(self.saved[name] == {new} for name, new in self.saving.items())
            counts[kind.__name__, kept] = counts.get((kind.__name__, kept), 0) + 1
            if len(shown) < 4:
                self.begin()
        print("what was killed, and whether the edit was kept:", counts, flush=True)

    @staticmethod
    def attempt(act):
        with contextlib.suppress(subprocess.CalledProcessError):  # the window may be gone by then
            act()

    def begin(self, name=None):
        if self.app.alive():
            self.app.kill()
        self.refill(name)
        self.start()
        return wait_for(lambda: self.rows() == self.paths and self.paths, "every row stands")


if __name__ == "__main__":
    case.main()
