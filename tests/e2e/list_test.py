#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A list beside the player: its runs as they are heard, and its rows."""
import case
import places
import sounds
from desk import wait_for


class List(case.Case):
    def start(self):
        super().start()
        self.list = self.show_list()

    def tracks(self, count, seconds=2):
        """Files that all sound different, and what each one decodes to."""
        made = []
        for number in range(count):
            wav = sounds.write_wav(self.desk.music / "track.wav", sounds.music(seconds, seed=number))
            mp3 = sounds.encode(wav, self.desk.music / f"track{number + 1}.mp3")
            made.append((mp3, sounds.trimmed(sounds.decode(mp3))))
        return made

    def add(self, paths):
        for path in paths:
            self.app.menu(self.list, "o", "a")
            self.app.choose_file("Select .wav/.mp3 files to add to the playlist", path)
        self.wait_rows(paths)

    def row(self, number):
        return [control for control in self.app.controls(case.LIST) if control.role == "list item"][number]

    def heard(self, recording, wanted, start=0):
        """Where the whole track was heard: its first frame, and the one behind its last."""
        starts, end = wait_for(lambda: sounds.pieces(recording.frames(), wanted, start), "a track is heard whole")
        return starts[0], end

    def begins(self, recording, wanted, start=0):
        return wait_for(lambda: sounds.begin(recording.frames(), wanted, start), "a track begins")

    def test_a_list_is_heard_in_order_with_hardly_a_gap(self):
        tracks = self.tracks(5)
        self.add([path for path, _ in tracks])
        recording = self.desk.record()
        self.app.click(self.list, places.LIST_PLAY)
        end, gaps = None, []
        for _, wanted in tracks:
            start, next_end = self.heard(recording, wanted, end or 0)
            gaps += [] if end is None else [start - end]
            end = next_end
        print("gaps in ms:", *(round(gap * 1000 / sounds.RATE) for gap in gaps), flush=True)
        # What else the machine does lengthens some gaps, not every one.
        self.assertLess(min(gaps), sounds.RATE / 10)
        self.assertLess(sorted(gaps)[len(gaps) // 2], sounds.RATE / 2)
        self.assertEqual(sounds.last_sound(recording.frames()), end)

    def test_next_previous_stop_and_start(self):
        tracks = [wanted for path, wanted in self.fill(3, seconds=20)]
        recording = self.desk.record()
        self.app.click(self.list, places.LIST_PLAY)
        first = self.begins(recording, tracks[0])
        self.app.click(self.list, places.LIST_NEXT)
        second = self.begins(recording, tracks[1], first)
        self.app.click(self.list, places.LIST_NEXT)
        third = self.begins(recording, tracks[2], second)
        self.app.click(self.list, places.LIST_PREVIOUS)
        back = self.begins(recording, tracks[1], third)
        self.app.click(self.list, places.LIST_STOP)
        stopped = wait_for(lambda: self.silence(recording), "it is silent")
        self.app.click(self.list, places.LIST_PLAY)
        self.begins(recording, tracks[1], max(back, stopped))

    def test_a_double_click_and_play_selected(self):
        tracks = [wanted for path, wanted in self.fill(3, seconds=6)]
        recording = self.desk.record()
        self.app.click_control(self.row(1), times=2)
        second = self.begins(recording, tracks[1])
        self.app.click_control(self.row(2))
        self.app.menu(self.list, "p", "l")
        _, end = self.heard(recording, tracks[2], second)
        wait_for(lambda: recording.length() > end + sounds.RATE, "a second goes by")
        self.assertEqual(sounds.last_sound(recording.frames()), end)

    def test_a_wav_row_holds_the_run(self):
        (first, wanted), (last, never) = self.tracks(2)
        samples = sounds.counter(sounds.RATE, 1)
        wav = sounds.write_wav(self.desk.music / "middle.wav", samples)
        self.add([first, wav, last])
        recording = self.desk.record()
        self.app.click(self.list, places.LIST_PLAY)
        self.heard(recording, wanted)
        _, end = self.heard(recording, samples)
        wait_for(lambda: recording.length() > end + 2 * sounds.RATE, "two seconds go by")
        self.assertEqual(sounds.last_sound(recording.frames()), end)
        self.app.click(self.list, places.LIST_NEXT)
        self.heard(recording, never, end)

    def test_rows_move_go_and_come_back(self):
        paths = [str(path) for path, _ in self.fill(3, seconds=1)]
        self.app.click_control(self.row(0))
        self.app.click(self.list, places.LIST_DOWN)
        wait_for(lambda: self.rows() == [paths[1], paths[0], paths[2]], "the row moves down")
        self.app.click_control(self.row(2))
        self.app.key("Delete")
        wait_for(lambda: self.rows() == [paths[1], paths[0]], "the row goes")
        self.app.key("Delete")
        stored = self.app.folder / "deflist.vlp"
        wait_for(lambda: stored.exists() and stored.read_text().split() == [paths[1], paths[0]], "the copy is written")
        self.app.kill()
        super().start()
        self.list = self.app.window(case.LIST)
        wait_for(lambda: self.rows() == [paths[1], paths[0]], "the list is there again")

    def fill(self, count, seconds):
        tracks = self.tracks(count, seconds)
        self.add([path for path, _ in tracks])
        return tracks

    @staticmethod
    def silence(recording):
        frames = recording.frames()
        last = sounds.last_sound(frames)
        return last if len(frames) // 2 - last > sounds.RATE / 5 else None


if __name__ == "__main__":
    case.main()
