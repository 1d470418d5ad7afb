# SPDX-License-Identifier: GPL-3.0-or-later
"""One run under soak: a desk, the program on it, and seeded random input until the run is over or something is wrong."""
import contextlib
import pathlib
import random
import re
import sqlite3
import subprocess
import sys
import time

import case
import places
from desk import NOT_THERE, Impatient, wait_for
from hands import FILE_DIALOGS, OPEN, Hands
from judge import Fault, Judge
from material import Material

FENCE = pathlib.Path(__file__).with_name("fence.py")
LEAVING = ("Escape", "alt+F4", "Return")  # some questions have no way out but an answer
REST_EVERY = 50  # actions
PROXY = "http://127.0.0.1:9"  # nobody answers: nothing is asked outside


class Session(case.Case):
    def runTest(self):
        """Only what the tests share is used."""

    def prepare(self, build, tools, seed, sanitized, log):
        self.build, self.tools, self.seed, self.sanitized, self.log = build, tools, seed, sanitized, log
        self.begun = time.monotonic()
        self.done = self.ends = self.rests = 0
        self.longest = 0
        self.setUp()

    def start(self):
        if not hasattr(self, "hands"):
            self.app.environment = {name: PROXY for name in ("http_proxy", "https_proxy", "all_proxy")}
            self.app.command = [sys.executable, str(FENCE), str(self.desk.folder), *self.app.command]
            self.material = Material(self.desk)
            self.hands = Hands(self)
        super().start()
        self.judge = Judge(self, self.sanitized, self.note)

    def note(self, what):
        print(f"{time.monotonic() - self.begun:7.1f} {what}", file=self.log, flush=True)

    # The windows

    def shown_windows(self):
        """[(window, title, (left, top, width, height))], the last one in front."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "velmora"], env=self.desk.environment,
                               capture_output=True, text=True).stdout.split()
        windows = []
        for window in found:
            told = subprocess.run(["xdotool", "getwindowname", window, "getwindowgeometry", "--shell", window],
                                  env=self.desk.environment, capture_output=True, text=True)
            values = dict(re.findall("(X|Y|WIDTH|HEIGHT)=(-?[0-9]+)", told.stdout))
            if told.returncode == 0 and len(values) == 4:
                title = told.stdout.split("\n")[0]
                windows.append((window, title, tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))))
        return windows

    # Action for action

    def run_actions(self, numbers, seconds):
        """Each one has a chance of its own, so that a run can begin at any of them."""
        for number in numbers:
            if time.monotonic() - self.begun > seconds:
                break
            self.act(number, random.Random(f"{self.seed} {number}"))
            self.done += 1
            if number % REST_EVERY == REST_EVERY - 1:
                self.rest()
        self.rest()
        self.judge_what_is_kept()

    def act(self, number, chance):
        if not self.app.alive():
            self.start_after_end()
        windows = self.shown_windows()
        if not windows:
            with contextlib.suppress(*NOT_THERE):  # it may be about to end
                self.desk.hand("windowmap", self.main)
            windows = [(self.main, case.MAIN, (0, 0, 430, 180))]
        with contextlib.suppress(*NOT_THERE, FileNotFoundError, ProcessLookupError):
            self.judge.notice([title for _, title, _ in windows])
        try:
            what = self.hands.act(chance, windows)
        except (*NOT_THERE, Impatient) as error:  # the window was gone before the hand was there
            what = f"reaches for what is gone ({type(error).__name__})"
        self.note(f"{number} {what}")
        with contextlib.suppress(*NOT_THERE, FileNotFoundError, ProcessLookupError):
            self.judge.judge([title for _, title, _ in windows])
        self.longest = max(self.longest, self.judge.longest)

    def start_after_end(self):
        self.note(f"it ended with {self.judge.judge_end()}, and starts again")
        self.ends += 1
        self.start()

    # To rest

    def rest(self):
        """Everything is answered, stopped and closed but the player and its list; then it is looked at."""
        self.hands.wake_sound()
        if self.desk.sound.poll() is not None:
            self.desk.start_sound()
        if not self.app.alive():
            self.start_after_end()
        with contextlib.suppress(*NOT_THERE, FileNotFoundError, ProcessLookupError):
            self.close_windows()
            self.judge.judge([])
        if not self.app.alive():
            self.start_after_end()
        self.unwind()
        self.hands.end_sources()
        self.judge.judge_rest()
        self.judge_list()
        self.rests += 1

    def others(self):
        return [window for window in self.shown_windows() if window[1] not in (case.MAIN, case.LIST)]

    def close_windows(self):
        self.desk.hand("mouseup", "1", "windowmap", self.main)
        for number in range(40):
            others = self.others()
            if not others:  # what the last key asked for may be on its way
                self.judge.judge([])
                others = self.others()
            if not others or not self.app.alive():
                return
            window, title, _ = others[-1 - number % len(others)]
            if title:
                self.desk.hand("windowactivate", window)
            self.app.key("Escape" if not title or title in FILE_DIALOGS else LEAVING[number % len(LEAVING)])
            self.judge.judge([title for _, title, _ in self.shown_windows()])
        if self.app.alive():
            raise Fault(f"windows do not close: {[title for _, title, _ in self.shown_windows()]}")

    def unwind(self):
        """A run that waits for a missing file is led out, a pause ends, and the list's run is stopped."""
        song = self.material.good[1]
        self.material.appear(song)
        self.desk.hand("windowmove", self.main, "40", "40")
        self.choose("f", "o")
        self.app.choose_file(OPEN, song, 1)
        self.desk.hand("windowactivate", "--sync", self.main)
        self.app.click(self.main, places.STOP)
        if not self.app.windows(case.LIST):
            self.choose("f", "l")
        window = self.app.window(case.LIST)
        self.desk.hand("windowmove", window, "40", "400", "windowactivate", "--sync", window)
        self.app.click(window, places.LIST_STOP)
        self.desk.hand("windowactivate", "--sync", self.main)
        self.app.click(self.main, places.STOP)

    def open_menu(self):
        """A key that meets a window on its way to the front may go to another one. The window manager, hurried with letters that
        no key has and clicks, may hold one window for active while another one has the keys."""
        for _ in range(3):
            self.desk.hand("windowactivate", "--sync", self.main)
            self.app.focus(self.main)
            self.app.key("F10")
            with contextlib.suppress(Impatient):
                return wait_for(self.app.popups, "the menu is open by its key", limit=10)
            self.note(f"F10 opens no menu while {self.desk.active_window()} is active, and {self.main} is the player")
        raise Fault("F10 opens no menu")

    def choose(self, *letters):
        self.open_menu()
        for depth, letter in enumerate(letters, 1):
            wait_for(lambda: self.app.popups() >= depth, f"menu {depth} is open by its key", limit=30)
            self.app.key(letter)

    # What is kept

    def kept_rows(self):
        path = self.app.folder / "deflist.vlp"
        lines = path.read_bytes().decode(errors="replace").split("\r\n")[:-1] if path.exists() else []
        return [line for line in lines if line and not line.startswith("#")]

    def judge_list(self):
        if not self.app.windows(case.LIST):
            return
        shown = self.rows()
        with contextlib.suppress(Impatient):
            wait_for(lambda: len(self.kept_rows()) == len(self.rows()), "the rows are kept", limit=20)
        kept = self.kept_rows()
        # Of other rows a screen reader hears less.
        plain = lambda rows: [row for row in rows if row.startswith("/") and row.isascii() and row.isprintable()]
        if plain(kept) != [row for row, other in zip(shown, kept) if plain([other])] or len(shown) != len(kept):
            raise Fault(f"the list shows {len(shown)} rows, and {len(kept)} are kept\n{str(shown)[:1000]}\n{str(kept)[:1000]}")

    def kept_settings(self):
        with contextlib.closing(sqlite3.connect(f"file:{self.app.store_path()}?mode=ro", uri=True, timeout=10)) as store:
            if store.execute("pragma integrity_check").fetchone() != ("ok",):
                raise Fault("the settings are damaged")
            return dict(((section, key), value) for section, key, value in
                        store.execute("select section, key, value from settings"))

    def judge_what_is_kept(self):
        """Over an end and a start of its own will."""
        rows, settings = self.kept_rows(), self.kept_settings()
        self.choose("f", "x")
        self.judge_status()
        self.start()
        self.judge_list()
        if (self.kept_rows(), self.kept_settings()) != (rows, settings):
            changed = {key: (settings.get(key), value) for key, value in self.kept_settings().items() if settings.get(key) != value}
            raise Fault(f"another start found other rows or settings: {len(rows)}, {len(self.kept_rows())} rows, {changed}")
        self.choose("f", "x")
        self.judge_status()

    def judge_status(self):
        wait_for(lambda: not self.app.alive(), "the program ends")
        status = self.judge.judge_end()
        if status:
            raise Fault(f"it ended with {status}")
