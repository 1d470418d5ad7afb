#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop's portal that knows settings and nothing else: portal.py JSON, as {"group": {"key": value}}. Prints "ready" when it
can be asked; whole numbers are sent unsigned, as the standard has them. A line of such JSON on its standard input changes those
settings, which is told to whoever listens."""
import json
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib


def sent(value):
    if isinstance(value, bool):
        return dbus.Boolean(value, variant_level=1)
    if isinstance(value, int):
        return dbus.UInt32(value, variant_level=1)
    return (dbus.Double if isinstance(value, float) else dbus.String)(value, variant_level=1)


class Portal(dbus.service.Object):
    def __init__(self, bus, settings):
        self.name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.settings = settings

    @dbus.service.method("org.freedesktop.portal.Settings", in_signature="as", out_signature="a{sa{sv}}")
    def ReadAll(self, namespaces):
        return {group: {key: sent(value) for key, value in keys.items()}
                for group, keys in self.settings.items() if group in namespaces}

    @dbus.service.signal("org.freedesktop.portal.Settings", signature="ssv")
    def SettingChanged(self, namespace, key, value):
        pass

    def change(self, stream, _):
        line = stream.readline()
        for group, keys in json.loads(line or "{}").items():
            self.settings.setdefault(group, {}).update(keys)
            for key, value in keys.items():
                self.SettingChanged(group, key, sent(value))
        return bool(line)


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
portal = Portal(dbus.SessionBus(), json.loads(sys.argv[1]))
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, portal.change)
print("ready", flush=True)
GLib.MainLoop().run()
