#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Where the program waits and no window says why: the desktop says it, the windows live, and the processor rests."""
import os

import case
import places
import sounds
from desk import wait_for

SAVE_DIALOG = "Enter a filename"


class Silence(case.Case):
    def setUp(self):
        super().setUp()
        self.shown = self.notifications()
        self.mp3 = sounds.encode(sounds.write_wav(self.desk.folder / "a.wav", sounds.music(2)), self.desk.music / "a.mp3")

    def told(self, path, reason):
        """Is told once, however often it is tried."""
        line = f"Velmora|A file cannot be opened|{path}: {reason}"
        wait_for(lambda: line in self.shown(), f"it is told of {path}")
        return self.shown().count(line) == 1

    def begin_with(self, rows):
        """The program on a list of these rows."""
        self.app.kill()
        self.keep_list(self.app.folder / "deflist.vlp", rows)
        self.start()
        self.list = self.show_list()

    def assert_window_alive(self):
        title = self.app.geometry(self.main)[:2]
        self.app.drag(self.main, (1200, 60, 300, 100), (15, 10))
        wait_for(lambda: self.app.geometry(self.main)[:2] == (title[0] + 15, title[1] + 10), "the window is dragged")

    def test_a_damaged_conf_mp3_is_told_of_while_no_window_shows(self):
        self.app.kill()
        conf = self.app.folder / "conf.mp3"
        whole = conf.read_bytes()
        conf.write_bytes(os.urandom(len(whole)))
        self.app.start(wait=False)
        self.assertTrue(self.told(conf, "It is no MP3 or WAV file, or a damaged one."))
        self.assert_at_rest()
        self.assertEqual(self.app.windows(case.MAIN), [])
        self.assertEqual(len(self.shown()), 1)
        conf.write_bytes(whole)
        self.app.window(case.MAIN)

    def test_a_chosen_file_that_does_not_play_is_told_of(self):
        noise = self.desk.music / "noise.mp3"
        noise.write_bytes(b"no sound at all" * 1000)
        self.play(noise, 1)
        self.assertTrue(self.told(noise, "It is no MP3 or WAV file, or a damaged one."))
        text = self.desk.music / "text.wav"
        text.write_bytes(b"no sound at all" * 1000)
        self.app.kill()
        self.start()
        self.play(text, 0)
        self.assertTrue(self.told(text, "It is no WAV file, or a damaged one."))

    def test_a_missing_row_holds_the_run_is_told_of_and_goes_on_when_it_is_there(self):
        missing = self.desk.music / "missing.mp3"
        self.begin_with([missing, self.mp3])
        self.app.click(self.list, places.LIST_PLAY)
        self.assertTrue(self.told(missing, "There is no such file."))
        self.assert_at_rest()
        self.assert_window_alive()
        self.assertEqual(len(self.shown()), 1)
        os.link(self.mp3, missing)
        self.wait_label(places.LENGTH, "0:02")
        self.assert_alive()

    def test_a_save_that_waits_for_a_missing_row_is_told_of_and_ends_when_it_is_there(self):
        missing = self.desk.music / "missing.mp3"
        saved = self.desk.home / "list.m3u"
        self.begin_with([missing])
        self.app.menu(self.list, "f", "a")
        self.app.choose_file(SAVE_DIALOG, saved, filter_row=1)
        self.assertTrue(self.told(missing, "There is no such file."))
        self.assert_at_rest()
        self.assert_window_alive()
        self.assertFalse(saved.exists())
        os.link(self.mp3, missing)
        wait_for(saved.exists, "the list is saved")
        self.assertIn(str(missing), saved.read_text())
        self.assertEqual(len(self.shown()), 1)

    def test_after_a_kill_in_save_as_the_rows_are_said_to_be_in_the_backup(self):
        self.begin_with([self.mp3])
        self.app.menu(self.list, "f", "a")
        self.app.window(SAVE_DIALOG)
        wait_for(lambda: "PlayList=\n" in (self.app.folder / "vlmset.ini").read_text().replace("\r", ""), "the name is gone")
        self.app.kill()
        self.start()
        kept = self.app.folder / "deflist.vlp.bak"
        line = (f"Velmora|The list begins empty|Its last rows are in {kept}. "
                "Open that file as a list to have them back.")
        wait_for(lambda: self.shown() == [line], "it is told where the rows are")
        self.assertEqual(kept.read_bytes(), f"{self.mp3}\r\n".encode())
        self.app.kill()
        self.start()
        self.assert_alive()
        self.assertEqual(self.shown(), [line])

    def test_a_list_that_the_user_empties_is_not_told_of(self):
        self.begin_with([self.mp3])
        self.app.menu(self.list, "f", "n")
        wait_for(lambda: (self.app.folder / "deflist.vlp").read_bytes() == b"", "the list is empty")
        wait_for((self.app.folder / "deflist.vlp.bak").exists, "its rows are kept")
        self.assertEqual(self.shown(), [])


if __name__ == "__main__":
    case.main()
