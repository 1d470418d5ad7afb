#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop's portal that knows settings and nothing else: portal.py JSON, as {"group": {"key": value}}. Prints "ready" when it
can be asked; whole numbers are sent unsigned, as the standard has them."""
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


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
portal = Portal(dbus.SessionBus(), json.loads(sys.argv[1]))
print("ready", flush=True)
GLib.MainLoop().run()
