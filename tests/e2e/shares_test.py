#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program while a share does not answer on which music, the list's file and the disc images lie: it waits its time, and
then it is there for its user."""
import time

import dbus
import dbus.bus

import case
import places
import sounds
from desk import LIMIT, wait_for

SERVICE, PATH = "org.mpris.MediaPlayer2.velmora", "/org/mpris/MediaPlayer2"
PATIENCE = 20  # seconds; a question to the share that is held up takes three times as long


class Shares(case.Case):
    def setUp(self):
        self.hangs = False
        super().setUp()
        self.shown = self.notifications()

    def start(self):
        """With the list's file on the share."""
        self.share = self.desk.home / "share"
        self.silence = self.desk.folder / "silence"
        self.song = self.share / "Music/song.mp3"
        self.list_file = self.share / "list.vlp"
        if not self.share.exists():
            self.furnish()
        self.app.environment = {
            "LD_PRELOAD": str(self.tool("../libhung_share.so")), "VELMORA_HUNG_SHARE": str(self.share),
            "VELMORA_HUNG_SHARE_WHEN": str(self.silence)}
        super().start()

    def furnish(self):
        discs = self.share / "Music/Velmora Discs"
        discs.mkdir(parents=True)
        (discs / "disc.bin").write_bytes(bytes(300 * 2352))
        (discs / "disc.cue").write_text('FILE "disc.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n')
        sounds.encode(sounds.write_wav(self.desk.folder / "a.wav", sounds.music(1) * 30), self.song)
        self.keep_list(self.list_file, [self.song])
        config = self.desk.home / ".config"
        config.mkdir(exist_ok=True)
        (config / "user-dirs.dirs").write_text('XDG_MUSIC_DIR="$HOME/share/Music"\n')

    def fall_silent(self):
        self.silence.touch()

    def assert_answers(self):
        """The window under the mouse, and the player under the desktop's hand."""
        begun = time.monotonic()
        left, top = self.app.geometry(self.main)[:2]
        self.app.drag(self.main, (1200, 60, 300, 100), (15, 10))
        wait_for(lambda: self.app.geometry(self.main)[:2] == (left + 15, top + 10), "the window is dragged", PATIENCE)
        self.remote("Get", "org.mpris.MediaPlayer2.Player", "Volume", interface="org.freedesktop.DBus.Properties")
        self.assertLess(time.monotonic() - begun, PATIENCE)

    def remote(self, method, *arguments, interface="org.mpris.MediaPlayer2"):
        bus = dbus.bus.BusConnection(self.desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        try:
            return bus.get_object(SERVICE, PATH, introspect=False).get_dbus_method(method, interface)(*arguments)
        finally:
            bus.close()

    def end(self):
        self.remote("Quit")
        self.assertEqual(self.app.process.wait(LIMIT), 0)
        self.assertEqual(self.list_file.read_bytes(), self.lines([self.song]))

    def test_a_program_that_starts_beside_a_silent_share_shows_itself_and_keeps_the_way_to_its_list(self):
        self.app.kill()
        self.fall_silent()
        begun = time.monotonic()
        self.start()
        self.assertLess(time.monotonic() - begun, PATIENCE + LIMIT)
        self.assert_answers()
        self.list = self.show_list()
        self.assertEqual(self.rows(), [])
        self.assertIn(f"PlayList={self.list_file}", (self.app.folder / "vlmset.ini").read_text())
        self.end()
        self.silence.unlink()
        self.start()
        self.show_list()
        wait_for(lambda: self.rows() == [str(self.song)], "the list is there again")

    def test_a_share_that_falls_silent_holds_neither_player_nor_list_nor_workbench(self):
        self.list = self.show_list()
        wait_for(lambda: self.rows() == [str(self.song)], "the list stands")
        self.fall_silent()
        self.app.click(self.list, places.LIST_PLAY)
        told = f"Velmora|A file cannot be opened|{self.song}: The disk or the network that it is on does not answer."
        wait_for(lambda: told in self.shown(), "it is told of the song")
        self.assert_answers()
        self.app.click(self.list, places.LIST_STOP)

        self.app.menu(self.main, "o", "e", "w")
        wait_for(self.workbench_opens, "the workbench opens")
        self.app.press(case.WORKBENCH, "page tab", "CD => WAV")
        self.assert_answers()
        self.assertEqual(self.rows(), [str(self.song)])
        self.end()

    def test_a_file_that_falls_silent_while_it_plays_leaves_the_program_its_users(self):
        self.list = self.show_list()
        self.app.click(self.list, places.LIST_PLAY)
        self.wait_clock(2)
        self.fall_silent()
        self.app.click(self.main, places.STOP)
        self.app.click(self.main, places.PLAY)
        self.assert_answers()
        self.end()

    def workbench_opens(self):
        """A word on what is not there, and the question after a recorder, come first."""
        if self.app.windows(case.WORKBENCH):
            return True
        if self.app.windows("CD Writer"):
            self.app.press("CD Writer", "push button", "Yes")
            self.app.gone("CD Writer")
        self.app.key("Return")
        time.sleep(0.2)
        return False


if __name__ == "__main__":
    case.main()
