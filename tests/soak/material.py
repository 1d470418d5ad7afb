# SPDX-License-Identifier: GPL-3.0-or-later
"""What lies on the disk of a home under soak: music, lists and discs, good ones and bad ones, that come and go."""
import os
import shutil
import struct

import case
import sounds

MINUTE = "  TRACK {:02} AUDIO\n    INDEX 01 00:{:02}:00\n"


class Material:
    def __init__(self, desk):
        self.music, self.home, self.store = desk.music, desk.home, desk.folder / "store"
        self.discs = desk.music / "Velmora Discs"
        self.store.mkdir()
        self.discs.mkdir()
        self.good = self._make_good()
        self.bad = self._make_bad()
        self.lists = self._make_lists()
        for path in (*self.good, *self.bad):
            self.appear(path)

    def _make_good(self):
        """By the name that they have in the music folder."""
        made = []
        for number, seconds in enumerate((1, 2, 5, 30)):
            wav = sounds.write_wav(self.store / f"sound {number}.wav", sounds.music(1, seed=number) * seconds)
            made += [wav, sounds.encode(wav, self.store / f"song {number}.mp3", "-b", "128", "--tt", f"Song {number}",
                                        "--ty", "1999")]
        return [self.music / path.name for path in made]

    def _make_bad(self):
        song = (self.store / "song 1.mp3").read_bytes()
        lying = b"ID3\x04\x00\x00\x7f\x7f\x7f\x7fTIT2" + struct.pack(">IH", 1 << 27, 0)
        made = {b"empty.mp3": b"", b"empty.wav": b"", b"noise.mp3": song[::-1], b"cut.mp3": song[:5000], b"wav.mp3":
                (self.store / "sound 0.wav").read_bytes(), b"mp3.wav": song, b"lying.mp3": lying + song,
                b"head.wav": b"RIFF\xff\xff\xff\xffWAVEfmt \x10\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0data\xff\xff\xff\xff"}
        made |= {name[:251] + b".mp3": song for name in case.HOSTILE_NAMES}
        for name, content in made.items():
            (self.store / os.fsdecode(name)).write_bytes(content)
        return [self.music / os.fsdecode(name) for name in made]

    def _make_lists(self):
        songs = [str(path) for path in self.good if path.suffix == ".mp3"]
        rows = {"good.vlp": songs, "mixed.vlp": [*map(str, self.good)], "away.vlp": [songs[0], "/nowhere/at all.mp3", *songs],
                "odd.vlp": [*map(str, self.bad), "", "  ", "x" * 5000, "relative.mp3", "\x01\x02"], "many.vlp": songs * 60, "empty.vlp": [],
                "tune.m3u": ["#EXTM3U", "#EXTINF:x,y", *songs]}
        for name, lines in rows.items():
            (self.home / name).write_bytes(b"".join(os.fsencode(line) + b"\r\n" for line in lines))
        (self.home / "noise.vlp").write_bytes(bytes(range(256)) * 300)
        return [self.home / name for name in (*rows, "noise.vlp")]

    # Files come and go.

    def appear(self, path):
        shutil.copyfile(self.store / path.name, path)

    def vanish(self, path):
        path.unlink(missing_ok=True)

    # Discs: images, of which some are none.

    def insert_disc(self, number, kind):
        sheet, sound = self.discs / f"disc {number}.cue", self.discs / f"disc {number}.bin"
        sound.write_bytes(b"\x11\x22" * (1176 * 75 * (8 if kind == "whole" else 1)))
        tracks = "".join(MINUTE.format(n + 1, 4 * n) for n in range(2))
        sheet.write_text({"whole": f'FILE "{sound.name}" BINARY\n' + tracks, "short": f'FILE "{sound.name}" BINARY\n' + tracks,
                          "lost": 'FILE "none.bin" BINARY\n' + tracks, "outside": 'FILE "/etc/passwd" BINARY\n' + tracks,
                          "rubbish": tracks * 400}[kind])

    def eject_disc(self, number):
        for ending in ("cue", "bin"):
            (self.discs / f"disc {number}.{ending}").unlink(missing_ok=True)
