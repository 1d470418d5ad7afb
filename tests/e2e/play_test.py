#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A person starts the player, chooses a file, hears it, pauses, stops."""
import case
import places
import sounds
from desk import wait_for


class Play(case.Case):
    def mp3(self, seconds):
        wav = sounds.write_wav(self.desk.music / "a.wav", sounds.music(seconds))
        mp3 = sounds.encode(wav, self.desk.music / "a.mp3")
        return mp3, 1, sounds.trimmed(sounds.decode(mp3))

    def wav(self, seconds):
        samples = sounds.counter(round(seconds * sounds.RATE), 1)
        return sounds.write_wav(self.desk.music / "a.wav", samples), 0, samples

    def both(self, seconds):
        for make in (self.mp3, self.wav):
            with self.subTest(make.__name__):
                if self.app.alive():
                    self.app.kill()
                self.start()
                yield make(seconds)
                self.assert_alive()

    def test_a_file_sounds_sample_for_sample_from_its_first_to_its_last(self):
        for path, filter_row, wanted in self.both(3):
            recording = self.desk.record()
            self.play(path, filter_row)
            wait_for(lambda: sounds.pieces(recording.frames(), wanted), "the file was heard whole")
            self.assertEqual(sounds.last_sound(recording.frames()), sounds.pieces(recording.frames(), wanted)[1])
            recording.stop()

    def test_pause_halts_and_continues_without_a_lost_or_doubled_sample(self):
        for path, filter_row, wanted in self.both(4):
            recording = self.desk.record()
            self.play(path, filter_row)
            self.wait_clock(1)
            self.app.click(self.main, places.PAUSE)
            heard = wait_for(lambda: self.silent_since(recording), "the sound halts")
            self.app.click(self.main, places.PAUSE)
            starts, _ = wait_for(lambda: sounds.pieces(recording.frames(), wanted), "the file was heard whole")
            recording.stop()
            self.assertTrue(any(start > heard for start in starts))

    def test_stop_silences_and_play_starts_at_the_beginning(self):
        for path, filter_row, wanted in self.both(8):
            recording = self.desk.record()
            self.play(path, filter_row)
            self.wait_clock(1)
            self.app.click(self.main, places.STOP)
            stopped = wait_for(lambda: self.silent_since(recording), "the sound ends")
            self.wait_label(places.TIME, "0:00")
            self.app.click(self.main, places.PLAY)
            again = wait_for(lambda: sounds.begin(recording.frames(), wanted, stopped), "it plays again")
            self.assertEqual(sounds.last_sound(recording.frames()[:2 * again]), stopped)
            recording.stop()

    def test_play_on_a_playing_file_starts_it_again(self):
        for path, filter_row, wanted in self.both(8):
            recording = self.desk.record()
            self.play(path, filter_row)
            self.wait_clock(1)
            first = sounds.begin(recording.frames(), wanted)
            self.app.click(self.main, places.PLAY)
            wait_for(lambda: sounds.begin(recording.frames(), wanted, first + 1), "it begins again")
            recording.stop()

    @staticmethod
    def silent_since(recording):
        """The frame from which on nothing was heard for a fifth of a second; nothing while it sounds."""
        frames = recording.frames()
        last = sounds.last_sound(frames)
        return last if len(frames) // 2 - last > sounds.RATE / 5 else None


if __name__ == "__main__":
    case.main()
