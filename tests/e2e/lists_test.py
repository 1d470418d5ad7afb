#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""List files by the real engine: opened by the menu, and saved for other players."""
import subprocess

import case
import sounds
from desk import wait_for

OPEN_DIALOG = "Select a playlist"
SAVE_DIALOG = "Enter a filename"
OWN, M3U = 0, 1


class Lists(case.Case):
    def start(self):
        super().start()
        self.list = self.show_list()

    def wait_rows(self, paths):
        wait_for(lambda: self.rows() == [str(path) for path in paths], "the rows stand")

    def name(self):
        """The list file that the window names."""
        return next(c for c in self.app.controls(case.LIST) if c.role == "text").text()

    def put(self, name, lines):
        path = self.desk.home / name
        path.write_bytes("".join(f"{line}\r\n" for line in lines).encode())
        return path

    def open(self, path, filter_row):
        self.app.menu(self.list, "f", "o")
        self.app.choose_file(OPEN_DIALOG, path, filter_row)

    def save_as(self, path, filter_row):
        self.app.menu(self.list, "f", "a")
        self.app.choose_file(SAVE_DIALOG, path, filter_row)

    def songs(self):
        made = []
        for number, (seconds, *tags) in enumerate(((3, "--ta", "A band", "--tt", "Song 0"), (2,), (5, "--tt", "Полёт"))):
            wav = sounds.write_wav(self.desk.folder / "source.wav", sounds.music(1, seed=number) * seconds)
            made.append(sounds.encode(wav, self.desk.music / f"song {number}.mp3", "-b", "128", *tags))
        return made

    def test_an_own_list_is_opened_and_its_copy_and_its_name_are_kept(self):
        rows = [self.desk.music / f"{number}.mp3" for number in range(3)]
        path = self.put("mine.vlp", rows)
        self.open(path, OWN)
        self.wait_rows(rows)
        self.assertEqual(self.name(), str(path))
        wait_for(lambda: (self.app.folder / "deflist.vlp").read_bytes() == path.read_bytes(), "the copy is written")
        self.app.kill()
        self.start()
        self.wait_rows(rows)
        self.assertEqual(self.name(), str(path))

    def test_a_list_of_another_player_is_opened_without_its_notes(self):
        rows = [self.desk.music / "a.mp3", "relative.mp3"]
        path = self.put("theirs.m3u", ["#EXTM3U", "#EXTINF:12,A band - A song", rows[0], "#EXTINF:-1,", rows[1]])
        self.open(path, M3U)
        self.wait_rows(rows)
        self.assertEqual(self.name(), str(path))
        self.assert_alive()

    def test_a_list_is_saved_for_other_players_with_titles_and_lengths(self):
        songs = self.songs()
        self.open(self.put("mine.vlp", songs), OWN)
        self.wait_rows(songs)
        saved = self.desk.home / "for others.m3u"
        self.save_as(self.desk.home / "for others", M3U)
        wait_for(saved.exists, "the list is saved")
        wanted = ["#EXTM3U"]
        for song, words in zip(songs, ("A band - Song 0", " - ", " - Полёт")):
            length = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0",
                                     str(song)], check=True, capture_output=True, text=True).stdout
            wanted += [f"#EXTINF:{int(float(length)) - 1},{words}", str(song)]
        self.assertEqual(saved.read_bytes().decode(), "".join(f"{line}\r\n" for line in wanted))
        wait_for(lambda: self.name() == str(saved), "the window names it")

        self.app.menu(self.list, "f", "n")
        self.wait_rows([])
        self.open(saved, M3U)
        self.wait_rows(songs)

    def test_save_writes_the_opened_list_again_as_its_name_says(self):
        songs = self.songs()[:2]
        path = self.put("theirs.m3u", songs)
        self.open(path, M3U)
        self.wait_rows(songs)
        self.app.menu(self.list, "f", "s")
        wait_for(lambda: path.read_text().startswith("#EXTM3U"), "it is written")
        self.assertEqual(path.read_text().splitlines(),
                         ["#EXTM3U", "#EXTINF:2,A band - Song 0", str(songs[0]), "#EXTINF:1, - ", str(songs[1])])
        self.assert_alive()


if __name__ == "__main__":
    case.main()
