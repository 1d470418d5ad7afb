#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop's portal with a file dialog, and a user whose choice comes in by standard input: a line of JSON, a list of
addresses. Prints "ready" when it can be asked, and the title of each dialog; there is one at a time."""
import json
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

CHOSEN = 0
VERSION = 3


class Request(dbus.service.Object):
    @dbus.service.signal("org.freedesktop.portal.Request", signature="ua{sv}")
    def Response(self, response, results):
        pass


class Portal(dbus.service.Object):
    def __init__(self, bus):
        self.bus, self.name = bus, dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.asked = 0
        self.request = None

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return dbus.UInt32(VERSION, variant_level=1)

    @dbus.service.method("org.freedesktop.portal.FileChooser", in_signature="ssa{sv}", out_signature="o")
    def OpenFile(self, parent, title, options):
        self.asked += 1
        path = f"/org/freedesktop/portal/desktop/request/{self.asked}"
        self.request = Request(self.bus, path)
        print(title, flush=True)
        return dbus.ObjectPath(path)

    def choose(self, stream, _):
        line = stream.readline()
        if line and self.request:
            self.request.Response(CHOSEN, {"uris": dbus.Array(json.loads(line), signature="s")})
        return bool(line)


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
portal = Portal(dbus.SessionBus())
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, portal.choose)
print("ready", flush=True)
GLib.MainLoop().run()
