# SPDX-License-Identifier: GPL-3.0-or-later
"""The hand at mouse and keys, which takes xdotool's words.

On an X server that is xdotool itself. A compositor knows nothing of what is played to its X windows that way: there the
hand is a remote one, of the kind that the compositor offers to people who help from afar.
"""
import ctypes
import os
import re
import time

import dbus
import dbus.bus

REMOTE, SESSION = "org.gnome.Mutter.RemoteDesktop", "org.gnome.Mutter.RemoteDesktop.Session"
HUMAN = 0.03  # seconds: what comes quicker than from any hand, before a window knows that the pointer is on it, may be lost
SIGHT = 0.5  # seconds that a person needs at least to see what has come
FAR = 20000  # pixels: no desk is larger
BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}  # the left, the middle and the right one, as the system counts them
WHEEL = {4: -1, 5: 1}
KEYS = {"ctrl": "Control_L", "alt": "Alt_L", "shift": "Shift_L", "super": "Super_L", "Page_Up": "Prior", "Page_Down": "Next"}


class XHand:
    def __init__(self, desk):
        self.desk = desk

    def __call__(self, *words):
        self.desk.run("xdotool", *words)

    def meanwhile(self, *words):
        """While the caller goes on."""
        self.desk.spawn("xdotool", *words)

    def reach(self):
        """Returns when what it does reaches the window that has just come."""

    def notice(self, window):
        """A person sees a window before the hand goes there."""

    def close(self):
        pass


def keys_down(environment):
    """Whether the X server knows of any."""
    x = ctypes.CDLL("libX11.so.6")
    x.XOpenDisplay.restype = ctypes.c_void_p
    os.environ["XAUTHORITY"] = environment["XAUTHORITY"]
    display = ctypes.c_void_p(x.XOpenDisplay(environment["DISPLAY"].encode()))
    keys = ctypes.create_string_buffer(32)
    x.XQueryKeymap(display, keys)
    x.XCloseDisplay(display)
    return any(keys.raw)


def keysym(name):
    library = ctypes.CDLL("libX11.so.6")
    library.XStringToKeysym.restype = ctypes.c_ulong
    return library.XStringToKeysym(KEYS.get(name, name).encode()) or of_letter(name)


def of_letter(letter):
    code = ord(letter)
    return code if code < 0x100 else 0x1000000 + code


class RemoteHand:
    def __init__(self, desk):
        self.desk = desk
        self.bus = dbus.bus.BusConnection(desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        remote = dbus.Interface(self.bus.get_object(REMOTE, "/org/gnome/Mutter/RemoteDesktop"), REMOTE)
        self.session = dbus.Interface(self.bus.get_object(REMOTE, remote.CreateSession()), SESSION)
        self.session.Start()
        self.noticed = set()
        self.speed = 1  # the compositor moves the pointer so many pixels for each one
        self.home()

    def __call__(self, *words):
        words = list(words)
        while words:
            getattr(self, "_" + words.pop(0))(words)

    def notice(self, window):
        """The X server shows it before the compositor does."""
        if window not in self.noticed:
            self.noticed.add(window)
            time.sleep(SIGHT)

    def home(self):
        """Wherever the pointer is: into the corner, from which on its way is known."""
        self.at = (FAR, FAR)
        self._to(0, 0)

    def meanwhile(self, *words):
        self(*words)  # the compositor takes it in no time

    def reach(self):
        """The first window gets the keyboard some time after it shows."""
        self._press(keysym("shift"), True)
        self.desk.wait_for(lambda: keys_down(self.desk.environment), "the keys reach the window")
        self._press(keysym("shift"), False)
        self.desk.wait_for(lambda: not keys_down(self.desk.environment), "the keys are up")

    def close(self):
        self.bus.close()

    def _to(self, x, y):
        self.session.NotifyPointerMotionRelative((x - self.at[0]) / self.speed, (y - self.at[1]) / self.speed)
        self.at = (x, y)
        time.sleep(HUMAN)

    @staticmethod
    def _option(words, name, default):
        """Takes it out of the words, where it stands there."""
        if name not in words:
            return default
        at = words.index(name)
        del words[at]
        return words.pop(at)

    def _mousemove(self, words):
        window = self._option(words, "--window", None)
        x, y = int(words.pop(0)), int(words.pop(0))
        if window:
            left, top = self._origin(window)
            x, y = left + x, top + y
        self._to(x, y)

    def _origin(self, window):
        told = self.desk.run("xwininfo", "-id", window)
        return tuple(int(re.search(f"Absolute upper-left {axis}:\\s+(-?\\d+)", told)[1]) for axis in "XY")

    def _button(self, number, down):
        self.session.NotifyPointerButton(BUTTONS[number], down)

    def _mousedown(self, words):
        self._button(int(words.pop(0)), True)

    def _mouseup(self, words):
        self._button(int(words.pop(0)), False)

    def _click(self, words):
        times, pause = int(self._option(words, "--repeat", 1)), int(self._option(words, "--delay", 0)) / 1000
        number = int(words.pop(0))
        for _ in range(times):
            if number in WHEEL:
                self.session.NotifyPointerAxisDiscrete(dbus.UInt32(0), WHEEL[number])
            else:
                self._button(number, True)
                time.sleep(HUMAN)
                self._button(number, False)
            time.sleep(pause)

    def _press(self, symbol, down):
        self.session.NotifyKeyboardKeysym(dbus.UInt32(symbol), down)

    def _stroke(self, symbols):
        for symbol in symbols:
            self._press(symbol, True)
        for symbol in reversed(symbols):
            self._press(symbol, False)

    def _key(self, words):
        pause = int(self._option(words, "--delay", 12)) / 1000
        while words:
            self._stroke([keysym(name) for name in words.pop(0).split("+")])
            time.sleep(pause)

    def _keydown(self, words):
        self._press(keysym(words.pop(0)), True)

    def _keyup(self, words):
        self._press(keysym(words.pop(0)), False)

    def _type(self, words):
        pause = int(self._option(words, "--delay", 12)) / 1000
        for letter in words.pop(0):
            self._stroke([of_letter(letter)])
            time.sleep(pause)
