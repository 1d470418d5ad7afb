#!/usr/bin/env python3
"""A person starts the player, chooses a file, hears it, pauses, stops."""
import sys
import unittest

import places
import sounds
from desk import Desk, Velmora, wait_for

BUILD = sys.argv.pop(1)


class Play(unittest.TestCase):
    def setUp(self):
        self.desk = self.enterContext(Desk())
        self.app = Velmora(self.desk, BUILD).start()
        self.main = self.app.window("Velmora v2.0")

    def play(self, path, row):
        self.app.click(self.main, places.PLAY)
        self.app.choose_file("Select a file to open", path, row)

    def test_an_mp3_file_sounds_as_its_decoder_says_from_its_first_to_its_last_sample(self):
        wav = sounds.write_wav(self.desk.music / "a.wav", sounds.music(3))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3")
        wanted = sounds.trimmed(sounds.decode(mp3))
        recording = self.desk.record()
        self.play(mp3, 1)
        wait_for(lambda: sounds.find(recording.frames(), wanted) is not None, "the file was heard whole")

    def test_a_wav_file_sounds_sample_for_sample(self):
        samples = sounds.counter(2 * sounds.RATE, 1)
        wav = sounds.write_wav(self.desk.music / "a.wav", samples)
        recording = self.desk.record()
        self.play(wav, 0)
        wait_for(lambda: sounds.find(recording.frames(), samples) is not None, "the file was heard whole")


if __name__ == "__main__":
    unittest.main(verbosity=2)
