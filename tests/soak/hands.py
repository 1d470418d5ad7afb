# SPDX-License-Identifier: GPL-3.0-or-later
"""What a person, their computer and their neighbours do to the program at random. Each action is drawn from a chance of its
own, and does not wait for what comes of it."""
import contextlib
import os
import signal
import subprocess
import time

import dbus
import dbus.bus

import case
import places
from reader import SHOWING

OPEN, OPEN_LIST = "Select a file to open", "Select a playlist"
ADD, SAVE = "Select .wav/.mp3 files to add to the playlist", "Enter a filename"
FILE_DIALOGS = (OPEN, OPEN_LIST, ADD, SAVE)
NUMBER_OF_KINDS = {OPEN: 2, OPEN_LIST: 2, ADD: 2, SAVE: 2}

KEYS = ("Tab", "Tab", "shift+Tab", "space", "Return", "Escape", "Up", "Down", "Left", "Right", "Home", "End", "Page_Up",
        "Page_Down", "Delete", "u", "d", "F10", "Menu", "ctrl+a", "BackSpace", "alt+e", "alt+s", "alt+o", "alt+a", "alt+c", "alt+w",
        "alt+d", "alt+t", "F4")
WORDS = ("1999", "x", "0", "-1", "99999", "a b", "%s%n", "<b>", "&x", "\"'", "Song", " ", "C:\\x", "/", "..", "1e9", "Полёт")
MENUS = {case.MAIN: ("fo", "fl", "fl", "fi", "oew", "oes", "odm", "ods", "oc", "ow", "os", "a"),
         case.LIST: ("fn", "fo", "fo", "fc", "fs", "fa", "fl", "ps", "pt", "pp", "pn", "pl", "pf", "oa", "oa", "or")}
ROLES = ("push button", "list item", "text", "check box", "radio button", "page tab", "combo box", "slider", "list", "spin button")
LIST_PLACES = (places.LIST_UP, places.LIST_DOWN, places.LIST_PREVIOUS, places.LIST_PLAY, places.LIST_STOP, places.LIST_NEXT)
MAIN_PLACES = (places.PLAY, places.PLAY, places.PAUSE, places.STOP)
TRACKS = (places.VOLUME_TRACK, places.BALANCE_TRACK, places.POSITION_TRACK)
TITLE = (1200, 60, 300, 100)
REMOTE = ("Play", "Pause", "PlayPause", "Stop", "Next", "Previous", "Raise")


class Hands:
    def __init__(self, session):
        self.session, self.desk, self.material = session, session.desk, session.material
        self.bus = dbus.bus.BusConnection(self.desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.stopped_sound = False
        self.sources = []

    @property
    def app(self):
        return self.session.app

    def act(self, chance, windows):
        """One action. `windows`: [(window, title, geometry)], the last one in front. Returns what it was."""
        dialogs = [window for window in windows if window[1] in FILE_DIALOGS]
        if dialogs and chance.random() < 0.75:
            return self.answer_dialog(chance, dialogs[-1])
        action = chance.choices(*zip(*self.weights))[0]
        return action(self, chance, windows)

    # Mouse

    def click_control(self, chance, windows):
        """What a screen reader tells of the windows."""
        title = chance.choice(windows)[1]
        if title in FILE_DIALOGS or not title:
            return "looks"
        fitting = [c for c in self.app.controls(title) if c.role in ROLES and c.has(SHOWING)]
        if not fitting:
            return f"finds no control in {title!r}"
        role = chance.choice(sorted({c.role for c in fitting}))
        control = chance.choice([c for c in fitting if c.role == role])
        left, top, width, height = control.place()
        times = chance.choice((1, 1, 1, 2))
        self.desk.hand("mousemove", str(left + min(width, 200) // 2), str(top + height // 2), "click", "--repeat", str(times),
                       "--delay", "40", "1")
        return f"clicks {times} times {role} {control.name!r} in {title!r}"

    def click_place(self, chance, windows):
        """A known place of a skinned window."""
        skinned = [window for window in windows if window[1] in (case.MAIN, case.LIST)]
        if not skinned:
            return "finds no skinned window"
        window, title, _ = chance.choice(skinned)
        place = chance.choice(MAIN_PLACES if title == case.MAIN else LIST_PLACES)
        self.app.click(window, place)
        return f"clicks {place} of {title!r}"

    def click_anywhere(self, chance, windows):
        window, title, (_, _, width, height) = chance.choice(windows)
        x, y, button = chance.randrange(max(width, 1)), chance.randrange(max(height, 1)), chance.choice((1, 1, 1, 3, 2, 4, 5))
        if title in FILE_DIALOGS:
            return "looks"
        self.desk.hand("mousemove", "--window", window, str(x), str(y), "click", str(button))
        return f"clicks {button} at {x},{y} of {title!r}"

    def drag(self, chance, windows):
        window, title, (_, _, width, height) = chance.choice(windows)
        if title in FILE_DIALOGS:
            return "looks"
        x, y = chance.randrange(max(width, 1)), chance.randrange(max(height, 1))
        way = chance.randrange(-300, 300), chance.randrange(-200, 200)
        words = ["mousemove", "--window", window, str(x), str(y), "mousedown", "1"]
        for step in range(1, 5):
            words += ["mousemove", "--window", window, str(x + way[0] * step // 4), str(y + way[1] * step // 4)]
        self.desk.hand(*words, "mouseup", "1")
        return f"drags {way} from {x},{y} of {title!r}"

    def draw_thumb(self, chance, windows):
        track = chance.choice(TRACKS)
        left, top, width, height = track
        window = self.session.main
        if not any(window == w for w, _, _ in windows):
            return "misses the player"
        self.app.click(window, (left + chance.randrange(width), top, 1, height))
        return f"clicks into track {track}"

    def move_to_edge(self, chance, windows):
        window, title, (left, top, width, height) = chance.choice(windows)
        x, y = (chance.choice((-width // 2, 0, 400, 1280 - width, 1280 - width // 3)),
                chance.choice((0, 0, 300, 900 - height, 900 - height // 3)))
        self.desk.hand("windowmove", window, str(x), str(y))
        return f"moves {title!r} to {x},{y}"

    # Keys

    def press_keys(self, chance, windows):
        if any(title in FILE_DIALOGS for _, title, _ in windows):
            return "looks"
        keys = chance.choices(KEYS, k=chance.choice((1, 2, 5)))
        self.app.key(*keys)
        return f"presses {' '.join(keys)}"

    def type_words(self, chance, windows):
        if any(title in FILE_DIALOGS for _, title, _ in windows):
            return "looks"
        word = chance.choice(WORDS)
        self.app.type(word)
        return f"types {word!r}"

    def use_menu(self, chance, windows):
        fitting = [window for window in windows if window[1] in MENUS]
        if not fitting:
            return "finds no menu"
        window, title, _ = chance.choice(fitting)
        letters = chance.choice(MENUS[title])
        self.desk.hand("windowactivate", window)
        self.app.click(window, places.MENU)
        for letter in letters:
            self.pause()
            self.app.key(letter)
        return f"chooses {letters} in {title!r}"

    def focus(self, chance, windows):
        window, title, _ = chance.choice(windows)
        self.desk.hand("windowactivate", window)
        return f"goes to {title!r}"

    # Windows

    def minimise(self, chance, windows):
        window, title, _ = chance.choice(windows)
        self.desk.hand("windowminimize", window)
        return f"minimises {title!r}"

    def restore(self, _, windows):
        self.desk.hand("windowmap", self.session.main)
        return "maps the player"

    def close_window(self, chance, windows):
        others = [window for window in windows if window[1] not in (case.MAIN, "")]
        if not others:
            return "finds nothing to close"
        window, title, _ = chance.choice(others)
        self.desk.hand("windowactivate", window, "key", "alt+F4" if title != case.LIST else "Escape")
        return f"closes {title!r}"

    def end_program(self, chance, windows):
        how = chance.choice(("menu", "cross", "key"))
        if how == "menu":
            self.app.click(self.session.main, places.MENU)
            self.pause()
            self.app.key("f")
            self.pause()
            self.app.key("x")
        elif how == "cross":
            self.app.click(self.session.main, places.CLOSE)
        else:
            self.desk.hand("windowactivate", self.session.main, "key", "alt+F4")
        return f"ends the program by its {how}"

    def start_again(self, *_):
        self.desk.spawn(*self.app.command, stdout=subprocess.DEVNULL)
        return "starts a second one"

    # Dialogs

    def answer_dialog(self, chance, dialog):
        window, title, (_, _, width, height) = dialog
        self.desk.hand("windowactivate", window)
        how = chance.random()
        if how < 0.2:
            self.app.key("Escape")
            return f"leaves {title!r}"
        if how < 0.3:
            self.app.key("Return")
            return f"presses Return in {title!r}"
        kind = chance.randrange(NUMBER_OF_KINDS[title])
        self.desk.hand("mousemove", "--window", window, str(width // 2), str(height - 23), "click", "1")
        self.pause()
        self.app.key("Home", *["Down"] * kind, "Return")
        answer = self.drawn_name(chance, title, kind)
        self.desk.hand("mousemove", "--window", window, str(width // 2), str(height - 53), "click", "1")
        self.app.key("alt+n", "ctrl+a")
        self.desk.hand("type", "--delay", "2", answer)
        self.app.key("Return")
        return f"answers {title!r} with kind {kind}, {answer!r}"

    def drawn_name(self, chance, title, kind):
        material = self.material
        if title == SAVE:
            return str(chance.choice([material.home / f"saved {n}" for n in range(3)] + [
                material.music / "song 0.mp3", "/proc/none", "/dev/full", "x" * 300, "no\\such/folder/x", material.home]))
        if chance.random() < 0.1:
            return chance.choice(("/nowhere/x.mp3", "/dev/zero", "/proc/self/mem", "..", "x" * 400, "*", "\"", str(material.music)))
        if title == OPEN_LIST:
            return str(chance.choice(material.lists))
        if title == ADD and chance.random() < 0.5:
            return " ".join(f'"{path}"' for path in chance.sample(material.good, 3))
        fitting = [path for path in material.good if path.suffix == (".wav", ".mp3")[kind]]
        plain = [path for path in material.bad if path.name.isascii()]
        return str(chance.choice(fitting if chance.random() < 0.7 else plain))

    # The world around it

    def change_files(self, chance, _):
        path = chance.choice((*self.material.good, *self.material.bad))
        if path.exists() and chance.random() < 0.4:
            self.material.vanish(path)
            return f"takes {path.name!r} away"
        self.material.appear(path)
        return f"puts {path.name!r}"

    def change_discs(self, chance, _):
        number = chance.randrange(3)
        if chance.random() < 0.4:
            self.material.eject_disc(number)
            return f"ejects disc {number}"
        kind = chance.choice(("whole", "whole", "short", "lost", "outside", "rubbish"))
        self.material.insert_disc(number, kind)
        return f"inserts disc {number}, {kind}"

    def change_sound(self, chance, _):
        if self.desk.sound.poll() is not None:
            self.desk.start_sound()
            return "starts the sound server"
        if self.stopped_sound:
            self.wake_sound()
            return "lets the sound server go on"
        if chance.random() < 0.5:
            self.desk.sound.kill()
            self.desk.sound.wait()
            return "kills the sound server"
        self.desk.sound.send_signal(signal.SIGSTOP)
        self.stopped_sound = True
        return "halts the sound server"

    def wake_sound(self):
        if self.stopped_sound:
            self.desk.sound.send_signal(signal.SIGCONT)
            self.stopped_sound = False

    def command_from_afar(self, chance, _):
        member = chance.choice(REMOTE)
        interface = "org.mpris.MediaPlayer2" + ("" if member == "Raise" else ".Player")
        with contextlib.suppress(dbus.DBusException):
            player = self.bus.get_object("org.mpris.MediaPlayer2.velmora", "/org/mpris/MediaPlayer2", introspect=False)
            player.get_dbus_method(member, interface)(timeout=0.5)
        return f"commands {member} from afar"

    def drop_files(self, chance, windows):
        boxes = [window for window in windows if window[1] == case.WORKBENCH]
        if not boxes:
            return "finds no box to drop into"
        paths = chance.sample((*self.material.good, *self.material.bad), 3)
        window, _, (left, top, width, height) = boxes[0]
        self.sources.append(self.desk.spawn(str(self.session.tools / "tests/e2e/file_source"), *map(os.fspath, paths)))
        with contextlib.suppress(StopIteration):
            shown = next(found for found in map(self._source_window, range(100)) if found)
            self.desk.hand("windowmove", shown, str(max(left - 140, 0)), str(max(top - 20, 0)), "windowraise", shown)
            self.desk.hand("mousemove", "--window", shown, "40", "30", "mousedown", "1", "mousemove_relative", "8", "8")
            for _ in range(6):
                self.desk.hand("mousemove", str(left + width // 2), str(top + height // 3), "mousemove_relative", "2", "0")
            self.desk.hand("mouseup", "1", "windowunmap", shown)
        return f"drops {[path.name for path in paths]}"

    def end_sources(self):
        """At rest: who is dropped on may fetch the files later, and waits for them."""
        for source in self.sources:
            self.desk.end(source)
            self.desk.processes.remove(source)
        self.sources = []

    def _source_window(self, _):
        self.pause()
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Files$"], env=self.desk.environment,
                              capture_output=True, text=True).stdout.strip()

    @staticmethod
    def pause():
        time.sleep(0.05)

    weights = ((click_control, 30), (click_place, 18), (click_anywhere, 8), (drag, 6), (draw_thumb, 4), (move_to_edge, 3),
               (press_keys, 12), (type_words, 5), (use_menu, 22), (focus, 4), (minimise, 1), (restore, 2), (close_window, 4),
               (end_program, 0.3), (start_again, 0.5), (change_files, 5), (change_discs, 2), (change_sound, 1.5),
               (command_from_afar, 3), (drop_files, 1))
