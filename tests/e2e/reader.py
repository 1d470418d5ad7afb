# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the program's windows as a screen reader does, over the accessibility bus of a desk."""
import dataclasses

import dbus
import dbus.bus

ACCESSIBLE = "org.a11y.atspi.Accessible"
COMPONENT = "org.a11y.atspi.Component"
PROPERTIES = "org.freedesktop.DBus.Properties"
SCREEN = dbus.UInt32(0)

# Bits of a control's state, counted from 0.
CHECKED, ENABLED, SELECTED, SHOWING = 4, 8, 23, 25


@dataclasses.dataclass
class Control:
    role: str
    name: str
    item: object
    states: int
    scale: float = 1

    def text(self):
        """What a text box holds."""
        return str(self.item.GetText(0, -1, dbus_interface="org.a11y.atspi.Text"))

    def place(self):
        """Left, top, width, height in pixels of the screen."""
        return tuple(round(int(n) * self.scale) for n in self.item.GetExtents(SCREEN, dbus_interface=COMPONENT))

    def has(self, state):
        return bool(self.states >> state & 1)

    def now(self):
        """The name as it is by now."""
        return str(self.item.Get(ACCESSIBLE, "Name", dbus_interface=PROPERTIES))

    def value(self, which="CurrentValue"):
        return float(self.item.Get("org.a11y.atspi.Value", which, dbus_interface=PROPERTIES))

    def share(self):
        """How far a bar is, 0 to 1."""
        return self.value() / self.value("MaximumValue")


class ScreenReader:
    def __init__(self, address, scale=1):
        """What is told of places is told in pixels of scale 1."""
        self.scale = scale
        session = dbus.bus.BusConnection(address)
        bus = session.get_object("org.a11y.Bus", "/org/a11y/bus")
        self.bus = dbus.bus.BusConnection(bus.GetAddress(dbus_interface="org.a11y.Bus"))
        session.close()

    def close(self):
        self.bus.close()

    def windows(self, name):
        """The program's visible windows of that title."""
        root = self.bus.get_object("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        windows = [self._control(window) for program in self._children(root) for window in self._children(program)]
        return [window for window in windows if window.name == name and window.has(SHOWING)]

    def controls(self, window_name):
        """Every control of the window in the order of its making, the hidden ones left out."""
        for window in self.windows(window_name):
            return list(self._below(window.item))
        return []

    def _below(self, item):
        for child in self._children(item):
            control = self._control(child)
            if control.has(SHOWING) or control.role == "list item":
                yield control
                yield from self._below(child)

    def _children(self, item):
        return [self.bus.get_object(name, path) for name, path in item.GetChildren(dbus_interface=ACCESSIBLE)]

    def _control(self, item):
        low, high = item.GetState(dbus_interface=ACCESSIBLE)
        return Control(str(item.GetRoleName(dbus_interface=ACCESSIBLE)),
                       str(item.Get(ACCESSIBLE, "Name", dbus_interface=PROPERTIES)), item, int(low) | int(high) << 32,
                       self.scale)
