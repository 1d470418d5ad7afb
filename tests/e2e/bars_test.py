#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The three bars of the main window, by the mouse."""
import case
import places
import sounds
from desk import wait_for


class Bars(case.Case):
    def setUp(self):
        super().setUp()
        wav = sounds.write_wav(self.desk.music / "a.wav", sounds.music(1) * 60)
        self.play(sounds.encode(wav, self.desk.music / "a.mp3"), 1)
        wait_for(lambda: self.label(places.TIME) != "0:00", "it plays")
        self.recording = self.desk.record()

    def thumb(self, track):
        """Where the thumb of that bar is on the screen: its middle."""
        left, top, _, _ = self.app.geometry(self.main)
        row = top + track[1] // 15

        def on_track(control):
            x, y, _, height = control.place()
            return (control.role == "slider" and y <= row < y + height
                    and left + track[0] // 15 <= x <= left + (track[0] + track[2]) // 15)
        x, y, width, height = next(c for c in self.app.controls(case.MAIN) if on_track(c)).place()
        return x + width // 2, y + height // 2

    def drop(self, thumb, share):
        """Drags a bar's thumb to that share of its track."""
        left, top, _, _ = self.app.geometry(self.main)
        start = self.thumb(thumb)
        travel = thumb[2] - 105
        end = left + round((thumb[0] + travel * share) / 15), top + round((thumb[1] + thumb[3] / 2) / 15)
        self.desk.hand("mousemove", *map(str, start), "mousedown", "1")
        self.app.pull(start, end)
        self.app.release()

    def loudest(self):
        """Of the last fifth of a second: left, right."""
        last = self.recording.frames()[-2 * (sounds.RATE // 5):]
        return max(map(abs, last[::2]), default=0), max(map(abs, last[1::2]), default=0)

    def seconds(self):
        minutes, seconds = self.label(places.TIME).split(":")
        return int(minutes) * 60 + int(seconds)

    def test_the_position_goes_where_the_thumb_is_dropped(self):
        self.drop(places.POSITION_TRACK, 0.5)
        wait_for(lambda: 29 <= self.seconds() < 58, "it plays on from the middle")
        self.drop(places.POSITION_TRACK, 0.1)
        wait_for(lambda: 5 <= self.seconds() < 28, "it plays on from nearer its beginning")

    def test_the_volume_follows_its_thumb_and_its_track(self):
        self.drop(places.VOLUME_TRACK, 0)
        wait_for(lambda: self.loudest() == (0, 0), "nothing is heard")
        left, top, _, _ = self.app.geometry(self.main)
        before = self.thumb(places.VOLUME_TRACK)
        self.desk.hand("mousemove", str(left + (360 + 1300) // 15), str(top + 1970 // 15), "click",
                      "--repeat", "3", "--delay", "200", "1")
        wait_for(lambda: 0 < max(self.loudest()) < 2000, "presses on the track make it a little louder")
        self.assertGreater(self.thumb(places.VOLUME_TRACK)[0], before[0])
        self.drop(places.VOLUME_TRACK, 1)
        wait_for(lambda: min(self.loudest()) > 2000, "both sides are heard in full")

    def test_the_balance_takes_one_side_away(self):
        self.drop(places.VOLUME_TRACK, 1)
        for share, silent in ((1, 0), (0, 1)):
            self.drop(places.BALANCE_TRACK, share)
            wait_for(lambda: self.loudest()[silent] == 0 and self.loudest()[1 - silent] > 2000, "one side is heard")


if __name__ == "__main__":
    case.main()
