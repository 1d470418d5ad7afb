#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""WAV files onto a disc and back: onto a disc image, and in a drive that is simulated."""
import pathlib
import subprocess
import wave

import case
import sounds
from desk import wait_for

SECTOR = 588  # frames

COMMA = """LC_NUMERIC
decimal_point ","
thousands_sep ""
grouping -1
END LC_NUMERIC
"""
LETTERS = """<code_set_name> LETTERS
CHARMAP
<U0000>..<U007F> \\x00
END CHARMAP
"""


class Disc(case.Case):
    def restart(self, **environment):
        self.app.kill()
        self.app.environment = environment
        self.start()

    def sources(self, *lengths):
        """WAV files of so many frames, and their samples."""
        paths, samples = [], []
        for number, frames in enumerate(lengths):
            sound = sounds.music(1, seed=number)
            samples.append((sound * (frames // sounds.RATE + 1))[:2 * frames])
            paths.append(sounds.write_wav(self.desk.home / f"source {number}.wav", samples[-1]))
        return paths, samples

    def record(self, sources):
        self.open_workbench("w")
        self.assertEqual(self.drop(sources), "copied")
        wait_for(lambda: self.rows(case.WORKBENCH) == [str(path) for path in sources], "the rows stand")
        self.app.press(case.WORKBENCH, "push button", "Write CD")
        self.app.window("CD created!")
        self.app.press("CD created!", "push button", "OK")
        self.app.gone("CD created!")
        self.assertTrue(all(path.exists() for path in sources))

    def rip(self, count, meanwhile=lambda track: None):
        """The files of the disc's first tracks, and the bars whose moves were seen. `meanwhile` is told each value of a
        track's bar."""
        self.open_workbench("c")
        self.check_tracks(count)
        bars = {control.name: control for control in self.app.controls(case.WORKBENCH) if control.role == "progress bar"}
        shown = {name: set() for name in ("This track", "All selected tracks")}
        self.app.point_at(self.app.control(case.WORKBENCH, "push button", "START"))
        self.app.click_meanwhile()

        def ended():
            for name, values in shown.items():
                values.add(bars[name].value())
            meanwhile(bars["This track"].value())
            found = sorted(self.desk.music.glob("*.wav"))
            return len(found) == count and shown["All selected tracks"] >= {0} and bars["This track"].value() == 0 and found
        found = wait_for(ended, "the tracks come back", pause=0)
        return found, {name for name, values in shown.items() if max(values) > 0}

    def assert_tracks(self, paths, samples):
        """A track fills whole sectors, and four seconds at least."""
        for path, wanted in zip(paths, samples, strict=True):
            with wave.open(str(path)) as file:
                data = file.readframes(file.getnframes())
            whole = -(-len(wanted) // (2 * SECTOR)) * SECTOR * 4
            self.assertEqual(data, wanted.tobytes().ljust(max(whole, 300 * SECTOR * 4), b"\0"), path)

    def test_three_files_go_onto_an_image_and_come_back_bit_for_bit(self):
        sources, samples = self.sources(200 * sounds.RATE + 123, 2 * sounds.RATE, 200 * SECTOR * 75)
        self.record(sources)
        (sheet,) = (self.desk.music / "Velmora Discs").glob("*.cue")
        self.other_programs_accept(sheet)
        for _ in range(5):  # too quick to see both bars move, and on a busy machine any
            self.restart()
            tracks, moved = self.rip(3)
            self.assert_tracks(tracks, samples)
            if moved:
                break
            for path in tracks:
                path.unlink()
        self.assertTrue(moved)

    def other_programs_accept(self, sheet):
        listed = subprocess.run(["cd-info", "--no-header", "--no-cddb", "--cue-file", str(sheet)], capture_output=True,
                                text=True, check=True).stdout
        self.assertEqual(sum("audio" in line for line in listed.splitlines() if line.strip()[:2].strip(" :").isdigit()), 3)
        points = subprocess.run(["cuebreakpoints", str(sheet)], capture_output=True, text=True, check=True).stdout
        self.assertEqual(len(points.split()), 2)
        subprocess.run(["bchunk", "-w", str(sheet.with_suffix(".bin")), str(sheet), str(self.desk.folder / "chunk")],
                       capture_output=True, check=True)
        self.assertEqual(len(list(self.desk.folder.glob("chunk*.wav"))), 3)

    def login_manager(self):
        """One that keeps the system awake. Returns how to learn which locks were asked for and let go so far."""
        told = self.desk.folder / "locks"
        with open(told, "w") as output:
            self.desk.spawn(str(pathlib.Path(self.build) / "tests/sleep_service"),
                            self.desk.environment["DBUS_SYSTEM_BUS_ADDRESS"], "login", stdout=output)
        wait_for(lambda: told.read_text() == "ready\n", "the login manager answers")
        return lambda: told.read_text().splitlines()[1:]

    def drive(self):
        """A drive with a blank disc in it; the program finds it at its next start."""
        drive = self.desk.spawn(str(self.tool("cd_drive")), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(drive.communicate)
        self.restart(VELMORA_SIMULATED_DRIVES=drive.stdout.readline().strip(),
                     LD_PRELOAD=str(pathlib.Path(self.build) / "tests/libsimulated_drive.so"))
        return drive

    def test_files_go_onto_a_disc_in_a_drive_and_come_back_and_the_system_stays_awake_meanwhile(self):
        locks = self.login_manager()
        drive = self.drive()
        sources, samples = self.sources(400 * SECTOR - 5, 300 * SECTOR)
        self.record(sources)
        wait_for(lambda: locks() == ["sleep|Velmora|Writing a disc|block", "let go"], "the writing's lock")
        self.assertEqual(list(self.desk.music.iterdir()), [])

        print(file=drive.stdin, flush=True)
        self.assertEqual(drive.stdout.readline(), "closed\n")
        self.restart(**self.app.environment)
        held = set()
        tracks, moved = self.rip(2, meanwhile=lambda track: 0 < track < 1000 and held.add(locks()[-1]))
        self.assert_tracks(tracks, samples)
        self.assertEqual(moved, {"This track", "All selected tracks"})
        self.assertIn("sleep|Velmora|Reading a disc|block", held)
        wait_for(lambda: locks()[-1] == "let go", "the reading's lock is let go")

    def test_the_decimal_sign_of_a_track_is_the_systems(self):
        discs = self.desk.music / "Velmora Discs"
        discs.mkdir()
        (discs / "A.cue").write_text('FILE "A.bin" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n')
        with open(discs / "A.bin", "wb") as image:
            image.truncate(205 * 75 * SECTOR * 4)
        self.open_workbench("c")
        self.wait_row(case.WORKBENCH, "Track 01    325.00    3279.3  MB")
        self.restart(LOCPATH=str(self.comma()), LC_ALL="", LC_CTYPE="C.UTF-8", LC_NUMERIC="comma")
        self.open_workbench("c")
        self.wait_row(case.WORKBENCH, "Track 01    03,25    32,8  MB")

    def comma(self):
        """A folder of locales that holds one, of a decimal comma alone. That it is no more is warned of by a status."""
        folder = self.desk.folder / "locales"
        folder.mkdir()
        (folder / "comma.def").write_text(COMMA)
        (folder / "letters").write_text(LETTERS)
        subprocess.run(["localedef", "-c", "-f", str(folder / "letters"), "-i", str(folder / "comma.def"),
                        str(folder / "comma")], capture_output=True)
        self.assertTrue((folder / "comma/LC_NUMERIC").exists())
        return folder


if __name__ == "__main__":
    case.main()
