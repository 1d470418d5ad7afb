#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What earlier builds left on the disk, killed at work: this one starts on it and loses nothing.

VELMORA_OLDER_BUILD names the folder of such a build: then that one starts again on what this one left.
"""
import contextlib
import os
import pathlib
import shutil
import sqlite3
import sys

import dbus
import dbus.bus

import case
from desk import Velmora, wait_for
from reader import CHECKED

KEPT = pathlib.Path(__file__).resolve().parent.parent / "yesterday"
sys.path.append(str(KEPT))

from make import ROWS, put_disc  # noqa: E402

SERVICE, PATH = "org.mpris.MediaPlayer2.velmora", "/org/mpris/MediaPlayer2"


class Yesterday(case.Case):
    def start(self):
        pass  # each test does, on its own ground

    def furnish(self, kept):
        for file in (file for file in kept.rglob("*") if file.is_file()):
            target = self.desk.folder / file.relative_to(kept)
            target.parent.mkdir(parents=True, exist_ok=True)
            data = file.read_bytes()
            target.write_bytes(data if "sqlite" in file.name else data.replace(b"@DESK@", bytes(self.desk.folder)))
        self.move_in()
        (self.desk.home / "mine.vlp").write_bytes("".join(f"{row}\r\n" for row in ROWS).encode())
        put_disc(self.desk.music)
        for note in (self.desk.home / ".local/state/Velmora/parts").iterdir():
            for part in note.read_bytes().split(b"\0")[:-1]:
                pathlib.Path(os.fsdecode(part)).write_bytes(b"half a song")

    def move_in(self):
        """The folders of the desk that the settings were made on are those of this one."""
        with contextlib.closing(sqlite3.connect(self.app.store_path())) as store, store:
            for section, key, value in store.execute("select section, key, value from settings").fetchall():
                if key == "SaveDirectory":
                    store.execute("update settings set value = ? where section = ? and key = ?",
                                  (str(self.desk.music), section, key))

    def settings(self):
        with contextlib.closing(sqlite3.connect(self.app.store_path())) as store:
            return {(section, key): value for section, key, value in store.execute("select section, key, value from settings")}

    def volume(self):
        bus = dbus.bus.BusConnection(self.desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        wait_for(lambda: bus.name_has_owner(SERVICE), "the player is on the bus")
        player = bus.get_object(SERVICE, PATH, introspect=False)
        read = lambda: player.Get("org.mpris.MediaPlayer2.Player", "Volume", dbus_interface="org.freedesktop.DBus.Properties")
        return wait_for(read, "the volume is told")

    def assert_everything_is_there(self, before, levels):
        self.app.start()
        self.main = self.app.window(case.MAIN)
        stored = [float(before["Position StartUp Window", side]) / 15 for side in ("Left", "Top")]
        wait_for(lambda: [*self.app.geometry(self.main)[:2]] == stored, f"the window stands at {stored}")
        self.app.window(case.LIST)
        wait_for(lambda: self.rows() == ROWS, "the rows stand")
        self.assertEqual(round(100 * float(self.volume())), levels)
        self.assertEqual([file.name for file in self.desk.music.glob("*.part")], [])

        self.app.environment = {}
        self.open_workbench("e", "s")
        button = self.app.control(case.SETTINGS, "radio button", "320")
        wait_for(lambda: button.has(CHECKED), "the bit rate is the chosen one")
        self.app.press(case.SETTINGS, "push button", "Cancel")
        self.app.gone(case.SETTINGS)
        titled = lambda: [c.name for c in self.app.controls(case.WORKBENCH) if "Some Band - Of yesterday" in c.name]
        self.open_workbench("c")
        wait_for(titled, "the disc has its kept title")
        self.app.kill()
        self.assertEqual({name: self.settings().get(name) for name in before}, before)

    def test_the_next_build_starts_on_it_and_loses_nothing(self):
        self.start_on_each(older=None)

    def test_the_older_build_starts_again_on_what_the_newer_left(self):
        older = os.environ.get("VELMORA_OLDER_BUILD")
        if not older:
            self.skipTest("VELMORA_OLDER_BUILD names no build")
        self.start_on_each(older)

    def start_on_each(self, older):
        nowhere = "http://127.0.0.1:9"  # nobody answers: kept titles have to do
        for kept in sorted(path for path in KEPT.iterdir() if path.is_dir() and path.name != "__pycache__"):
            with self.subTest(kept.name):
                self.desk.environment.update(http_proxy=nowhere, https_proxy=nowhere)
                for folder in (self.desk.home, self.app.folder):
                    shutil.rmtree(folder)
                self.desk.music.mkdir(parents=True)
                self.app = Velmora(self.desk, self.build)
                self.furnish(kept)
                before = self.settings()
                self.assertGreater(len(before), 15)
                levels = int((self.desk.home / ".local/state/Velmora/levels").read_text().split()[0])
                self.assert_everything_is_there(before, levels)
                if older:
                    left = self.settings()
                    for name in ("velmora", "conf.mp3"):
                        shutil.copy2(pathlib.Path(older) / name, self.app.folder / name)
                    self.assert_everything_is_there(left, levels)


if __name__ == "__main__":
    case.main()
