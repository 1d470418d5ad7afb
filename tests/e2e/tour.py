#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A tour through the program for a machine without a display: the real program on a virtual display and sound card, driven
by mouse and keys. Prints what each step showed, and leaves screenshots and the recorded sound. Ends with 0 only when
every step worked.

    tour.py BUILD OUTPUT
"""
import pathlib
import shutil
import subprocess
import sys
import wave

import case
import places
import sounds
from desk import wait_for

STEPS = []


def step(what):
    def add(function):
        STEPS.append((what, function))
        return function
    return add


class Tour(case.Case):
    def runTest(self):
        """Only what the steps share is used."""

    def picture(self, name):
        self.desk.screenshot(self.output / f"{name}.png")

    def prepare(self, build, output):
        self.build, self.output = build, output
        self.setUp()
        self.recording = self.desk.record()
        wav = sounds.write_wav(self.desk.folder / "song.wav", sounds.music(12))
        self.song = sounds.encode(wav, self.desk.music / "song.mp3", "-b", "192", "--tt", "Tour", "--ta", "Velmora")
        self.heard = sounds.trimmed(sounds.decode(self.song))


@step("play a file, and hear it sample for sample")
def play(tour):
    tour.play(tour.song, 1)
    tour.wait_label(places.TITLE, "Tour")
    tour.wait_clock(2)
    tour.picture("1-playing")
    tour.assertIsNotNone(sounds.begin(tour.recording.frames(), tour.heard))


@step("pause, and go on")
def pause(tour):
    tour.app.click(tour.main, places.PAUSE)
    wait_for(lambda: not any(tour.recording.frames()[-2 * sounds.RATE // 5:]), "it is silent")
    tour.app.click(tour.main, places.PAUSE)
    tour.wait_clock(4)
    whole = wait_for(lambda: sounds.pieces(tour.recording.frames(), tour.heard), "the file was heard whole")
    return f"{len(whole[0])} pieces, none of {len(tour.heard) // 2} frames lost or doubled"


@step("seek by the position bar")
def seek(tour):
    tour.app.click(tour.main, places.PLAY)
    tour.wait_clock(1)
    tour.app.drag(tour.main, tour.app.thumb(places.POSITION_TRACK), (137, 0))
    tour.wait_clock(6)
    tour.picture("2-sought")
    tour.app.click(tour.main, places.STOP)
    tour.wait_label(places.TIME, "0:00")


@step("play through a list that is docked to the player")
def play_list(tour):
    made = []
    for number in range(3):
        wav = sounds.write_wav(tour.desk.folder / "track.wav", sounds.music(2, seed=number + 5))
        mp3 = sounds.encode(wav, tour.desk.music / f"track {number + 1}.mp3")
        made.append((mp3, sounds.trimmed(sounds.decode(mp3))))
    tour.list = tour.show_list()
    left, top, _, height = tour.app.geometry(tour.main)
    own = tour.app.geometry(tour.list)
    tour.app.drag(tour.list, (1200, 60, 300, 100), (left - own[0], top + height + 8 - own[1]))
    wait_for(lambda: tour.app.geometry(tour.list)[1] == top + height, "the list snaps to the player")
    for mp3, _ in made:
        tour.app.menu(tour.list, "o", "a")
        tour.app.choose_file("Select .wav/.mp3 files to add to the playlist", mp3)
    tour.app.click(tour.list, places.LIST_PLAY)
    end, gaps = 0, []
    for _, wanted in made:
        starts, next_end = wait_for(lambda: sounds.pieces(tour.recording.frames(), wanted, end), "a track is heard whole")
        gaps += [(starts[0] - end) * 1000 // sounds.RATE] if end else []
        end = next_end
    tour.picture("3-list")
    return f"gaps of {gaps} ms"


@step("edit a tag")
def tag(tour):
    tour.app.menu(tour.main, "f", "o")
    tour.app.choose_file("Select a file to open", tour.song, 1)
    tour.app.menu(tour.main, "f", "i")
    tour.app.window(case.TAGS)
    box = [control for control in tour.app.controls(case.TAGS) if control.role == "text"][1]
    wait_for(lambda: box.text() == "Tour", "the title shows")
    tour.app.click_control(box)
    tour.app.key("ctrl+a")
    tour.app.type("A better title")
    tour.picture("4-tag")
    tour.app.press(case.TAGS, "push button", "SAVE")
    read = ["ffprobe", "-v", "error", "-show_entries", "format_tags=title", "-of", "csv=p=0", str(tour.song)]
    wait_for(lambda: subprocess.run(read, capture_output=True, text=True).stdout.strip() == "A better title",
             "another program reads the title")


@step("encode a file")
def encode(tour):
    source = tour.desk.home / "source"
    source.mkdir()
    sounds.write_wav(source / "made here.wav", sounds.music(30, seed=9))
    tour.open_workbench("e", "w")
    tour.to_folder(case.WORKBENCH, "source")
    tour.select_rows(case.WORKBENCH, ["made here.wav"])
    tour.picture("5-encoder")
    tour.app.press(case.WORKBENCH, "push button", "Encode")
    made = tour.desk.music / "made here.mp3"
    wait_for(made.exists, "the MP3 file stands")
    return f"{made.stat().st_size} bytes"


@step("decode it back, as its decoder says")
def decode(tour):
    tour.app.press(case.WORKBENCH, "page tab", "Mp3 Decoder")
    tour.to_folder(case.WORKBENCH, "Music")
    tour.select_rows(case.WORKBENCH, ["made here.mp3"])
    tour.app.press(case.WORKBENCH, "push button", "Decode")
    made = tour.desk.music / "made here.wav"
    wait_for(made.exists, "the WAV file stands")
    wanted = tour.desk.folder / "wanted.wav"
    subprocess.run(["mpg123", "-q", "-w", str(wanted), str(made.with_suffix(".mp3"))], check=True)
    tour.assertEqual(made.read_bytes(), wanted.read_bytes())


@step("record two files, dropped from another program, on a disc image")
def record(tour):
    tour.samples = [sounds.music(5, seed=20), sounds.music(6, seed=21)]
    files = [sounds.write_wav(tour.desk.home / f"for the disc {number}.wav", samples)
             for number, samples in enumerate(tour.samples)]
    tour.app.press(case.WORKBENCH, "page tab", "WAV => CD")
    tour.assertEqual(tour.drop(files), "copied")
    tour.wait_row(case.WORKBENCH, str(files[1]))
    tour.picture("6-recorder")
    tour.app.press(case.WORKBENCH, "push button", "Write CD")
    tour.app.window("CD created!")
    tour.app.press("CD created!", "push button", "OK")


@step("copy them back from the image, bit for bit")
def rip(tour):
    tour.app.press(case.WORKBENCH, "push button", "Exit")
    tour.app.kill()
    tour.start()
    tour.open_workbench("c")
    tour.check_tracks(2)
    tour.picture("7-tracks")
    tour.app.press(case.WORKBENCH, "push button", "START")
    found = wait_for(lambda: (lambda files: files if len(files) == 2 else None)(sorted(tour.desk.music.glob("Track*.wav"))),
                     "the tracks come back")
    for path, samples in zip(found, tour.samples):
        with wave.open(str(path)) as file:
            tour.assertTrue(file.readframes(file.getnframes()).startswith(samples.tobytes()), path)


@step("close the program")
def close(tour):
    tour.app.press(case.WORKBENCH, "push button", "EXIT")
    tour.app.gone(case.WORKBENCH)
    tour.app.click(tour.main, places.CLOSE)
    wait_for(lambda: not tour.app.alive(), "the program ends")
    tour.assertEqual(tour.app.process.returncode, 0)


def main():
    build, output = sys.argv[1], pathlib.Path(sys.argv[2])
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    tour = Tour()
    failed = 0
    try:
        tour.prepare(build, output)
        for what, function in STEPS:
            try:
                said = function(tour)
                print(f"passed: {what}" + (f" ({said})" if said else ""), flush=True)
            except Exception as error:  # told, and the tour goes on
                failed += 1
                tour.picture(f"failed-{function.__name__}")
                print(f"FAILED: {what}: {error}", flush=True)
        sounds.write_wav(output / "recorded.wav", tour.recording.stop())
    finally:
        tour.doCleanups()
    print(f"{len(STEPS) - failed} steps passed, {failed} failed. Screenshots and the recorded sound: {output}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
