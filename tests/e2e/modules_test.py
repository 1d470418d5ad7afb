#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The parts that the program binds when it first needs them: one that is missing, damaged or of another build."""
import re

import case
import places
import sounds
from desk import wait_for

TOLD = "Velmora|A part of Velmora is missing|"


class Modules(case.Case):
    def setUp(self):
        super().setUp()
        self.shown = self.notifications()
        self.mp3 = sounds.encode(sounds.write_wav(self.desk.folder / "a.wav", sounds.music(2)), self.desk.music / "a.mp3")
        self.module = self.app.folder / "modules/velmora-sound.so"

    def assert_refused(self, words):
        """Told once, and the program goes on in all else."""
        self.play(self.mp3, 1)
        wait_for(lambda: [line for line in self.shown() if line.startswith(TOLD) and words in line], f"it is told of: {words}")
        self.app.click(self.main, places.STOP)
        self.app.click(self.main, places.PLAY)
        self.assert_alive()
        self.assertEqual(sum(line.startswith(TOLD) for line in self.shown()), 1)

    def test_a_missing_part_is_told_of_and_nothing_ends(self):
        self.module.unlink()
        self.assert_refused("velmora-sound.so is missing. Velmora has to be installed anew.")

    def test_a_damaged_part_is_told_of_and_nothing_ends(self):
        self.module.unlink()
        self.module.write_bytes(b"no library at all" * 1000)
        self.assert_refused("velmora-sound.so")

    def test_a_part_of_another_build_is_told_of_and_nothing_ends(self):
        whole = self.module.read_bytes()
        build = re.search(rb"2\.0\.3-[0-9a-f]{16}", whole)[0]
        self.module.unlink()
        self.module.write_bytes(whole.replace(build, b"2.0.3-" + b"0" * 16))
        self.assert_refused("belongs to another build of Velmora")


if __name__ == "__main__":
    case.main()
