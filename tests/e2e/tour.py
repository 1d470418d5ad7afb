#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A tour through the program for a machine without a display: the real program on a virtual display and sound card, driven
by mouse and keys. Prints what each step showed, and leaves pictures of the windows and the recorded sound. Ends with 0 only
when every step worked.

    tour.py BUILD OUTPUT
"""
import pathlib
import shutil
import signal
import subprocess
import sys

import case
import places
import sounds
from desk import run, wait_for

STEPS = []
ADD = "Select .wav/.mp3 files to add to the playlist"
OPEN = "Select a file to open"

# What is in the music folder: short pieces that are heard to their end, and long ones.
SHORT = ("Slack Water", "Lanterns", "Gulls at Six")
LONG = ("Low Tide", "The Long Mole", "Fog Signal", "Ferry Home")
LONG_SECONDS = 204


def step(what):
    def add(function):
        STEPS.append((what, function))
        return function
    return add


def tags(number, title):
    return ("-b", "192", "--tt", title, "--ta", "The Quiet Quay", "--tl", "Harbour Lights", "--ty", "1999", "--tg", "Jazz",
            "--tc", "Recorded on the pier", "--tn", str(number))


class Tour(case.Case):
    def runTest(self):
        """Only what the steps share is used."""

    def picture(self, name, *titles):
        """Of these windows and the menus that are open, and of nothing beside them; without a title of the whole desk."""
        path = self.output / f"{name}.png"
        windows = [self.app.window(title) for title in titles] + (self.app.popup_windows() if titles else [])
        places = [self.app.inside(window) for window in windows]
        self.desk.screenshot(path)
        if places:
            only(path, places)

    def prepare(self, build, output):
        self.build, self.output = build, output
        self.setUp()
        self.recording = self.desk.record()
        wav = sounds.write_wav(self.desk.folder / "song.wav", sounds.music(12))
        self.song = sounds.encode(wav, self.desk.music / "Morning Ferry.mp3", *tags(1, "Morning Ferry"))
        self.heard = sounds.trimmed(sounds.decode(self.song))
        folder = self.desk.home / "Recordings"
        folder.mkdir()
        self.recordings = [sounds.write_wav(folder / f"Evening at the quay {number}.wav",
                                            sounds.music(6, seed=number + 20) * (LONG_SECONDS // 6)) for number in (1, 2, 3)]

    def album(self):
        """Files of an album in the order of its tracks, and what is to be heard of the short ones."""
        folder = self.desk.music / "Harbour Lights"
        folder.mkdir()
        files = [folder / f"{number} {title}.mp3" for number, title in enumerate(SHORT + LONG, 1)]
        for number, path in enumerate(files, 1):
            wav = self.recordings[0]
            if number <= len(SHORT):
                wav = sounds.write_wav(self.desk.folder / "track.wav", sounds.music(2, seed=number + 4))
            sounds.encode(wav, path, *tags(number, path.stem[2:]))
        return files, [sounds.trimmed(sounds.decode(path)) for path in files[:len(SHORT)]]


def only(path, places):
    """Cuts these rectangles out of a picture of the desk."""
    left, top = (min(place[n] for place in places) for n in (0, 1))
    right, bottom = (max(place[n] + place[n + 2] for place in places) for n in (0, 1))
    kept = " ".join(f"rectangle {x},{y} {x + width - 1},{y + height - 1}" for x, y, width, height in places)
    size = run("identify", "-format", "%wx%h", str(path))
    run("convert", str(path), "(", "-size", size, "xc:black", "-fill", "white", "-draw", kept, ")", "-alpha", "off",
        "-compose", "CopyOpacity", "-composite", "-crop", f"{right - left}x{bottom - top}+{left}+{top}", "+repage", str(path))


@step("play a file, and hear it sample for sample")
def play(tour):
    tour.app.click(tour.main, places.PLAY)
    tour.app.choose_file(OPEN, tour.song, 1, before=lambda: tour.picture("play-open", OPEN))
    tour.wait_label(places.TITLE, "Morning Ferry")
    tour.wait_clock(2)
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
    tour.app.click(tour.main, places.STOP)
    tour.wait_label(places.TIME, "0:00")


@step("play through a list that is docked to the player")
def play_list(tour):
    files, sounding = tour.album()
    tour.list = tour.show_list()
    left, top, _, height = tour.app.geometry(tour.main)
    own = tour.app.geometry(tour.list)
    tour.app.drag(tour.list, (1200, 60, 300, 100), (left - own[0], top + height + 8 - own[1]))
    wait_for(lambda: tour.app.geometry(tour.list)[1] == top + height, "the list snaps to the player")
    tour.app.open_menu(tour.list, "o")
    tour.picture("list-menu", case.MAIN, case.LIST)
    tour.app.key("a")
    tour.app.choose_file(ADD, " ".join(f'"{path}"' for path in files))
    tour.app.click(tour.list, places.LIST_PLAY)
    end, gaps = 0, []
    for wanted in sounding:
        starts, next_end = wait_for(lambda: sounds.pieces(tour.recording.frames(), wanted, end), "a track is heard whole")
        gaps += [(starts[0] - end) * 1000 // sounds.RATE] if end else []
        end = next_end
    return f"gaps of {gaps} ms"


@step("go on in the middle of the list's next track")
def middle(tour):
    tour.wait_label(places.TITLE, LONG[0])
    tour.wait_clock(1)
    track = places.POSITION_TRACK
    tour.app.drag(tour.main, tour.app.thumb(track), (tour.desk.pixels(track[2] * 0.35), 0))
    tour.wait_clock(LONG_SECONDS * 0.3)
    tour.picture("player", case.MAIN)
    tour.picture("windows", case.MAIN, case.LIST)
    tour.app.click(tour.list, places.LIST_STOP)
    tour.wait_label(places.TIME, "0:00")


@step("edit a tag")
def tag(tour):
    tour.app.menu(tour.main, "f", "o")
    tour.app.choose_file(OPEN, tour.song, 1)
    tour.app.open_menu(tour.main, "f")
    tour.picture("tag-menu", case.MAIN)
    tour.app.key("i")
    tour.app.window(case.TAGS)
    box = [control for control in tour.app.controls(case.TAGS) if control.role == "text"][1]
    wait_for(lambda: box.text() == "Morning Ferry", "the title shows")
    tour.app.click_control(box)
    tour.app.key("ctrl+a")
    tour.app.type("The Morning Ferry")
    tour.picture("tag", case.TAGS)
    tour.app.press(case.TAGS, "push button", "SAVE")
    read = ["ffprobe", "-v", "error", "-show_entries", "format_tags=title", "-of", "csv=p=0", str(tour.song)]
    wait_for(lambda: subprocess.run(read, capture_output=True, text=True).stdout.strip() == "The Morning Ferry",
             "another program reads the title")


@step("look at the settings")
def settings(tour):
    tour.open_workbench("e", "s")
    for tab, name in (("Mp3 Encoder", "mp3-settings"), ("CD => WAV", "copy-settings"), ("WAV => CD", "disc-settings")):
        tour.app.press(case.SETTINGS, "page tab", tab)
        tour.app.control(case.SETTINGS, "panel", SETTINGS_BOX[tab])
        tour.picture(name, case.SETTINGS)
    tour.app.press(case.SETTINGS, "push button", "Cancel")
    tour.app.gone(case.SETTINGS)


SETTINGS_BOX = {"Mp3 Encoder": "Bitrate (kbits/sec)", "CD => WAV": "Select Your CD Drive", "WAV => CD": "Write Speed"}


def picture_of_work(tour, name, bar, made):
    """Holds the program while the bar is on its way, or when what it makes is there already."""
    wait_for(lambda: 0.3 < bar.share() < 0.9 or made.exists(), "the bar moves", pause=0)
    tour.app.process.send_signal(signal.SIGSTOP)
    tour.picture(name, case.WORKBENCH)
    tour.app.process.send_signal(signal.SIGCONT)


def bar_of(tour, name=None):
    return next(control for control in tour.app.controls(case.WORKBENCH)
                if control.role == "progress bar" and name in (None, control.name))


@step("encode files")
def encode(tour):
    names = [path.name for path in tour.recordings]
    tour.open_workbench("e", "w")
    tour.to_folder(case.WORKBENCH, "Recordings")
    tour.select_rows(case.WORKBENCH, names[:2])
    made = [tour.desk.music / name.replace(".wav", ".mp3") for name in names[:2]]
    bar = bar_of(tour)
    tour.app.press(case.WORKBENCH, "push button", "Encode")
    picture_of_work(tour, "workbench", bar, made[1])
    wait_for(made[1].exists, "the MP3 files stand")
    return " and ".join(f"{path.stat().st_size} bytes" for path in made)


@step("decode one back, as its decoder says")
def decode(tour):
    tour.app.press(case.WORKBENCH, "page tab", "Mp3 Decoder")
    tour.to_folder(case.WORKBENCH, "Music")
    tour.select_rows(case.WORKBENCH, ["Evening at the quay 1.mp3"])
    tour.picture("mp3-decode", case.WORKBENCH)
    tour.app.press(case.WORKBENCH, "push button", "Decode")
    made = tour.desk.music / "Evening at the quay 1.wav"
    wait_for(made.exists, "the WAV file stands")
    wanted = tour.desk.folder / "wanted.wav"
    subprocess.run(["mpg123", "-q", "-w", str(wanted), str(made.with_suffix(".mp3"))], check=True)
    tour.assertEqual(made.read_bytes(), wanted.read_bytes())


@step("record two files, dropped from another program, on a disc image")
def record(tour):
    files = tour.recordings[:2]
    tour.app.press(case.WORKBENCH, "page tab", "WAV => CD")
    tour.assertEqual(tour.drop(files), "copied")
    tour.wait_row(case.WORKBENCH, str(files[1]))
    tour.app.press(case.WORKBENCH, "push button", "Write CD")
    tour.app.window("CD created!")
    tour.picture("disc-made", case.WORKBENCH, "CD created!")
    tour.app.press("CD created!", "push button", "OK")


@step("copy them back from the image, bit for bit")
def rip(tour):
    tour.app.press(case.WORKBENCH, "push button", "Exit")
    tour.app.kill()
    tour.start()
    tour.open_workbench("c")
    tour.check_tracks(2)
    bar = bar_of(tour, "All selected tracks")
    tour.app.press(case.WORKBENCH, "push button", "START")
    picture_of_work(tour, "copy-work", bar, tour.desk.music / "Track02.wav")
    found = wait_for(lambda: (lambda files: files if len(files) == 2 else None)(sorted(tour.desk.music.glob("Track*.wav"))),
                     "the tracks come back")
    for path, recorded in zip(found, tour.recordings):
        tour.assertEqual(sounds.read_wav(path), sounds.read_wav(recorded), path)


@step("close the program")
def close(tour):
    tour.app.press(case.WORKBENCH, "push button", "EXIT")
    tour.app.gone(case.WORKBENCH)
    tour.app.click(tour.main, places.CLOSE)
    wait_for(lambda: not tour.app.alive(), "the program ends")
    tour.assertEqual(tour.app.process.returncode, 0)


def walk(tour):
    """Takes every step, and returns how many failed."""
    failed = 0
    for what, function in STEPS:
        try:
            said = function(tour)
            print(f"passed: {what}" + (f" ({said})" if said else ""), flush=True)
        except Exception as error:  # told, and the tour goes on
            failed += 1
            tour.picture(f"failed-{function.__name__}")
            print(f"FAILED: {what}: {error}", flush=True)
    return failed


def main():
    build, output = sys.argv[1], pathlib.Path(sys.argv[2])
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    tour = Tour()
    try:
        tour.prepare(build, output)
        failed = walk(tour)
        sounds.write_wav(output / "recorded.wav", tour.recording.stop())
    finally:
        tour.doCleanups()
    print(f"{len(STEPS) - failed} steps passed, {failed} failed. Pictures and the recorded sound: {output}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
